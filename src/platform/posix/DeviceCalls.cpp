#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cerrno>
#include <string>

#include "common/Utf8.h"
#include "platform/posix/Device.h"
#include "platform/TimeLimits.h"

namespace tavoren {

namespace {

HANDLE failToOpen(DWORD error) {
    failWith(error);
    return INVALID_HANDLE_VALUE;
}

/// A full queue of the device makes `connect` wait; the limit of sending holds for that.
void limitConnecting(int socket) {
    timeval limit{};
    limit.tv_sec = transferLimit.count() / 1000;
    limit.tv_usec = static_cast<suseconds_t>(transferLimit.count() % 1000) * 1000;
    ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

bool connectTo(int socket, const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(path.begin(), path.end(), &address.sun_path[0]);
    const void* const general = &address;
    int result = -1;
    do
        result = ::connect(socket, static_cast<const sockaddr*>(general), sizeof address);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

/// The event that a transfer is to be started with, if device and event are there.
std::shared_ptr<Event> eventOf(const std::shared_ptr<Device>& device,
                               const OVERLAPPED* overlapped) {
    if (!device)
        return nullptr;
    if (!overlapped) {
        failWith(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return openedAs<Event>(overlapped->hEvent);
}

BOOL startTransfer(Event& event, std::shared_ptr<Transfer> transfer) {
    event.reset();
    event.transfer = std::move(transfer);
    return failWith(ERROR_IO_PENDING);
}

/// Moves one packet and waits for its end.
DWORD runNow(Transfer& transfer, Deadline deadline) {
    return transfer.finish(deadline) ? transfer.error : ERROR_SEM_TIMEOUT;
}

}  // namespace

HANDLE CreateFileW(const wchar_t* path, DWORD, DWORD, void*, DWORD, DWORD, HANDLE) {
    const std::string name = toUtf8(path).value_or("");
    if (name.empty())
        return failToOpen(ERROR_INVALID_PARAMETER);
    if (name.size() >= sizeof(sockaddr_un::sun_path))
        return failToOpen(ERROR_FILENAME_EXCED_RANGE);
    const int socket = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    if (socket < 0)
        return failToOpen(errorFromErrno(errno));
    const auto device = std::make_shared<Device>(socket);
    limitConnecting(socket);
    if (!connectTo(socket, name))
        return failToOpen(errorFromErrno(errno));
    return openObject(device);
}

BOOL DeviceIoControl(HANDLE handle, DWORD controlCode, const void* input, DWORD inputSize,
                     void* output, DWORD outputSize, DWORD* returned, OVERLAPPED* overlapped) {
    const auto device = openedAs<Device>(handle);
    if (!device)
        return FALSE;
    if (overlapped)
        return failWith(ERROR_INVALID_PARAMETER);
    std::vector<std::uint8_t> request;
    for (unsigned shift = 0; shift < 32; shift += 8)
        request.push_back(static_cast<std::uint8_t>(controlCode >> shift));
    const auto* const bytes = static_cast<const std::uint8_t*>(input);
    request.insert(request.end(), bytes, bytes + inputSize);
    const Deadline deadline = deadlineIn(static_cast<DWORD>(transferLimit.count()));
    SendTransfer question(device, PacketKind::control, request);
    ReceiveTransfer answer(device, PacketKind::control,
                           {static_cast<std::uint8_t*>(output), outputSize});
    DWORD error = runNow(question, deadline);
    if (error == 0)
        error = runNow(answer, deadline);
    if (error != 0)
        return failWith(error);
    if (returned)
        *returned = answer.transferred;
    return TRUE;
}

BOOL ReadFile(HANDLE handle, void* buffer, DWORD size, DWORD*, OVERLAPPED* overlapped) {
    const auto device = openedAs<Device>(handle);
    const auto event = eventOf(device, overlapped);
    if (!event)
        return FALSE;
    const std::span into(static_cast<std::uint8_t*>(buffer), size);
    return startTransfer(*event,
                         std::make_shared<ReceiveTransfer>(device, PacketKind::message, into));
}

BOOL WriteFile(HANDLE handle, const void* buffer, DWORD size, DWORD*, OVERLAPPED* overlapped) {
    const auto device = openedAs<Device>(handle);
    const auto event = eventOf(device, overlapped);
    if (!event)
        return FALSE;
    const std::span message(static_cast<const std::uint8_t*>(buffer), size);
    return startTransfer(*event,
                         std::make_shared<SendTransfer>(device, PacketKind::message, message));
}

BOOL GetOverlappedResult(HANDLE handle, OVERLAPPED* overlapped, DWORD* transferred, BOOL wait) {
    const auto event = eventOf(openedAs<Device>(handle), overlapped);
    if (!event)
        return FALSE;
    if (!event->transfer)
        return failWith(ERROR_INVALID_PARAMETER);
    Transfer& transfer = *event->transfer;
    if (!transfer.ended && (wait == FALSE || !transfer.finish(Deadline::max())))
        return failWith(ERROR_IO_INCOMPLETE);
    *transferred = transfer.transferred;
    return transfer.error == 0 ? TRUE : failWith(transfer.error);
}

BOOL CancelIoEx(HANDLE handle, OVERLAPPED* overlapped) {
    const auto event = eventOf(openedAs<Device>(handle), overlapped);
    if (!event)
        return FALSE;
    if (!event->transfer || event->transfer->ended)
        return failWith(ERROR_NOT_FOUND);
    event->transfer->ended = true;
    event->transfer->error = ERROR_OPERATION_ABORTED;
    return TRUE;
}

}  // namespace tavoren
