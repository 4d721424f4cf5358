#include "firmware/BraxWindows.h"

#include <exception>

#include "common/SmhiException.h"
#include "frame/Logger.h"
#include "frame/LogScope.h"

namespace tavoren {

namespace {

constexpr DWORD connectRequestCode = 0x8000E004;
constexpr std::size_t connectReplySize = 5;

class DeviceInfoSet {
  public:
    explicit DeviceInfoSet(const GUID& interfaceClass)
        : devices(SetupDiGetClassDevsW(&interfaceClass, nullptr, nullptr,
                                       DIGCF_PRESENT | DIGCF_DEVICEINTERFACE)) {
        if (devices == INVALID_HANDLE_VALUE)
            throw SmhiException("Failed to get handle to the device information set");
    }
    DeviceInfoSet(const DeviceInfoSet&) = delete;
    DeviceInfoSet& operator=(const DeviceInfoSet&) = delete;
    ~DeviceInfoSet() { SetupDiDestroyDeviceInfoList(devices); }

    HDEVINFO get() const { return devices; }

  private:
    HDEVINFO devices;
};

class LocalBuffer {
  public:
    explicit LocalBuffer(DWORD size) : memory(LocalAlloc(LMEM_FIXED, size)) {
        if (!memory)
            throw SmhiException("Local allocation failure");
    }
    LocalBuffer(const LocalBuffer&) = delete;
    LocalBuffer& operator=(const LocalBuffer&) = delete;
    ~LocalBuffer() { LocalFree(memory); }

    void* get() const { return memory; }

  private:
    HLOCAL memory;
};

/// One overlapped operation with the event that tells its end. Buffer and event belong to the
/// system while it is pending, so that one which is given up is cancelled first.
class OverlappedTransfer {
  public:
    explicit OverlappedTransfer(HANDLE target)
        : device(target), event(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {
        if (!event)
            throw SmhiException("Failed to create event");
        record.hEvent = event;
    }
    OverlappedTransfer(const OverlappedTransfer&) = delete;
    OverlappedTransfer& operator=(const OverlappedTransfer&) = delete;
    ~OverlappedTransfer() { end(); }

    /// Cancels what is pending and closes the event.
    void end() {
        if (pending) {
            DWORD transferred = 0;
            CancelIoEx(device, &record);
            GetOverlappedResult(device, &record, &transferred, TRUE);
        }
        pending = false;
        if (event)
            CloseHandle(event);
        event = nullptr;
    }

    OVERLAPPED* overlapped() { return &record; }
    /// Judges the call that began the operation.
    bool hasStarted(BOOL completed) {
        pending = completed != FALSE || GetLastError() == ERROR_IO_PENDING;
        return pending;
    }
    bool endsWithin(std::chrono::milliseconds limit) {
        return WaitForSingleObject(event, static_cast<DWORD>(limit.count())) != WAIT_TIMEOUT;
    }
    bool takeResult(DWORD& transferred) {
        const BOOL succeeded = GetOverlappedResult(device, &record, &transferred, TRUE);
        pending = false;
        return succeeded != FALSE;
    }

  private:
    HANDLE device;
    HANDLE event;
    OVERLAPPED record{};
    bool pending = false;
};

}  // namespace

void BraxWindows::Connect() {
    constexpr const char* function = "BraxWindows::Connect";
    Logger::write(LogLevel::insane, function, __LINE__, "Started BraxWin::Connect");
    if (handle != INVALID_HANDLE_VALUE)
        return;
    try {
        findDevice();
        openDevice();
        connectToClient();
    } catch (const SmhiException&) {
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
        handle = INVALID_HANDLE_VALUE;
        throw;
    }
    Logger::write(LogLevel::insane, function, __LINE__, "Finished BraxWin::Connect");
}

void BraxWindows::findDevice() {
    const DeviceInfoSet devices(deviceInterfaceGuid);
    SP_DEVICE_INTERFACE_DATA interfaceData{};
    interfaceData.cbSize = sizeof interfaceData;
    if (SetupDiEnumDeviceInterfaces(devices.get(), nullptr, &deviceInterfaceGuid, 0,
                                    &interfaceData) == FALSE)
        throw SmhiException("Failed to enumerate device interfaces");
    DWORD size = 0;
    if (SetupDiGetDeviceInterfaceDetailW(devices.get(), &interfaceData, nullptr, 0, &size,
                                         nullptr) == FALSE &&
        GetLastError() != ERROR_INSUFFICIENT_BUFFER)
        throw SmhiException("Failed to enumerate device interfaces");
    const LocalBuffer buffer(size);
    auto* const detail = static_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(buffer.get());
    detail->cbSize = sizeof *detail;
    if (SetupDiGetDeviceInterfaceDetailW(devices.get(), &interfaceData, detail, size, nullptr,
                                         nullptr) == FALSE)
        throw SmhiException("Failed to get device interface detail");
    devicePath = &detail->DevicePath[0];
}

void BraxWindows::openDevice() {
    handle = CreateFileW(devicePath.c_str(), GENERIC_READ | GENERIC_WRITE,
                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                         FILE_FLAG_OVERLAPPED, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        throw SmhiException("Failed to create device handle");
}

void BraxWindows::connectToClient() {
    std::array<std::uint8_t, connectReplySize> reply{};
    DWORD returned = 0;
    if (DeviceIoControl(handle, connectRequestCode, clientGuid.data(),
                        static_cast<DWORD>(clientGuid.size()), reply.data(),
                        static_cast<DWORD>(reply.size()), &returned, nullptr) == FALSE)
        throw SmhiException("Failed to connect to client");
}

void BraxWindows::Write(const ByteString& message) {
    const LogScope log("BraxWindows::Write", __LINE__, LogScope::Form::started, "BraxWin::Write");
    if (handle == INVALID_HANDLE_VALUE)
        throw SmhiException("Invalid device handle");
    OverlappedTransfer transfer(handle);
    try {
        if (!transfer.hasStarted(WriteFile(handle, message.data(),
                                           static_cast<DWORD>(message.size()), nullptr,
                                           transfer.overlapped())))
            throw SmhiException("Failed to write to device");
        if (!transfer.endsWithin(waitLimit))
            throw SmhiException("Failed to write to device, timed out");
        DWORD written = 0;
        if (!transfer.takeResult(written))
            throw SmhiException("Failed to write to device");
    } catch (const SmhiException&) {
        transfer.end();
        closeQuietly();
        throw;
    }
}

ByteString BraxWindows::Read(std::size_t maximumLength) {
    const LogScope log("BraxWindows::Read", __LINE__, LogScope::Form::started, "BraxWin::Read");
    ByteString message(maximumLength);
    if (handle == INVALID_HANDLE_VALUE)
        throw SmhiException("Invalid device handle");
    OverlappedTransfer transfer(handle);
    try {
        if (!transfer.hasStarted(ReadFile(handle, message.data(), static_cast<DWORD>(maximumLength),
                                          nullptr, transfer.overlapped())))
            throw SmhiException("Failed to read from device");
        DWORD read = 0;
        if (!transfer.endsWithin(waitLimit) || !transfer.takeResult(read))
            throw SmhiException("Failed to read from device, timed out");
        message.resize(read);
    } catch (const SmhiException&) {
        transfer.end();
        closeQuietly();
        throw;
    }
    return message;
}

void BraxWindows::Close() {
    const LogScope log("BraxWindows::Close", __LINE__, LogScope::Form::started, "BraxWin::Close");
    if (handle == INVALID_HANDLE_VALUE)
        return;
    const BOOL closed = CloseHandle(handle);
    handle = INVALID_HANDLE_VALUE;
    if (closed == FALSE)
        throw SmhiException("Failed to close device handle");
}

/// The failure that led here is the one to report.
void BraxWindows::closeQuietly() noexcept {
    try {
        Close();
    } catch (const SmhiException&) {  // NOLINT(bugprone-empty-catch)
    }
}

}  // namespace tavoren
