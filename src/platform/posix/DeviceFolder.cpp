#include "platform/posix/DeviceFolder.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>
#include <optional>
#include <string>

#include "common/Utf8.h"
#include "platform/posix/SystemObject.h"

namespace tavoren {

namespace {

constexpr const char* deviceFolder = "devices";

struct DeviceList final : SystemObject {
    std::vector<std::filesystem::path> devices;
};

std::string prefixOf(const GUID& id) {
    std::array<char, 40> text{};
    const auto& d = id.Data4;
    std::snprintf(text.data(), text.size(), "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}.",
                  id.Data1, id.Data2, id.Data3, d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7]);
    return text.data();
}

}  // namespace

std::vector<std::filesystem::path> presentDevices(const GUID& interfaceClass) {
    const std::string prefix = prefixOf(interfaceClass);
    std::vector<std::filesystem::path> devices;
    std::error_code error;
    std::filesystem::directory_iterator entry(deviceFolder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
        if (entry->path().filename().string().starts_with(prefix))
            devices.push_back(entry->path());
    std::sort(devices.begin(), devices.end());
    return devices;
}

HDEVINFO SetupDiGetClassDevsW(const GUID* interfaceClass, const wchar_t*, void*, DWORD) {
    const auto list = std::make_shared<DeviceList>();
    list->devices = presentDevices(*interfaceClass);
    return openObject(list);
}

BOOL SetupDiEnumDeviceInterfaces(HDEVINFO devices, void*, const GUID* interfaceClass,
                                 DWORD memberIndex, SP_DEVICE_INTERFACE_DATA* interfaceData) {
    const auto list = openedAs<DeviceList>(devices);
    if (!list)
        return FALSE;
    if (interfaceData->cbSize != sizeof(SP_DEVICE_INTERFACE_DATA))
        return failWith(ERROR_INVALID_PARAMETER);
    if (memberIndex >= list->devices.size())
        return failWith(ERROR_NO_MORE_ITEMS);
    interfaceData->InterfaceClassGuid = *interfaceClass;
    interfaceData->Reserved = memberIndex;
    return TRUE;
}

BOOL SetupDiGetDeviceInterfaceDetailW(HDEVINFO devices, SP_DEVICE_INTERFACE_DATA* interfaceData,
                                      SP_DEVICE_INTERFACE_DETAIL_DATA_W* detail, DWORD detailSize,
                                      DWORD* requiredSize, void*) {
    const auto list = openedAs<DeviceList>(devices);
    if (!list)
        return FALSE;
    if (interfaceData->Reserved >= list->devices.size())
        return failWith(ERROR_INVALID_PARAMETER);
    const auto path = fromUtf8(list->devices[interfaceData->Reserved].string());
    if (!path)
        return failWith(ERROR_GEN_FAILURE);
    const std::size_t required = offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_W, DevicePath) +
                                 (path->size() + 1) * sizeof(wchar_t);
    if (requiredSize)
        *requiredSize = static_cast<DWORD>(required);
    if (!detail || detailSize < required)
        return failWith(ERROR_INSUFFICIENT_BUFFER);
    if (detail->cbSize != sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W))
        return failWith(ERROR_INVALID_PARAMETER);
    wchar_t* const end = std::copy(path->begin(), path->end(), &detail->DevicePath[0]);
    *end = L'\0';
    return TRUE;
}

BOOL SetupDiDestroyDeviceInfoList(HDEVINFO devices) {
    return openedAs<DeviceList>(devices) ? CloseHandle(devices) : FALSE;
}

HLOCAL LocalAlloc(DWORD, std::size_t size) {
    return ::operator new(size, std::nothrow);
}

HLOCAL LocalFree(HLOCAL memory) {
    ::operator delete(memory);
    return nullptr;
}

}  // namespace tavoren
