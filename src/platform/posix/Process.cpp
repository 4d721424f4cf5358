#include <unistd.h>

#include "platform/posix/DeviceFolder.h"
#include "platform/posix/SystemObject.h"

namespace tavoren {

namespace {

SystemObject currentProcess;
SystemObject currentToken;

bool isElevated() {
    if (geteuid() == 0)
        return true;
    const auto devices = presentDevices(busDriverClass);
    return devices.empty() || access(devices.front().c_str(), R_OK | W_OK) == 0;
}

}  // namespace

BOOL SetDefaultDllDirectories(DWORD) {
    return TRUE;
}

BOOL SetDllDirectoryW(const wchar_t*) {
    return TRUE;
}

HANDLE GetCurrentProcess() {
    return &currentProcess;
}

BOOL OpenProcessToken(HANDLE process, DWORD desiredAccess, HANDLE* token) {
    if (process != &currentProcess || desiredAccess != TOKEN_QUERY)
        return failWith(ERROR_INVALID_PARAMETER);
    *token = &currentToken;
    return TRUE;
}

BOOL GetTokenInformation(HANDLE token, TOKEN_INFORMATION_CLASS informationClass, void* information,
                         DWORD informationLength, DWORD* returnLength) {
    if (token != &currentToken)
        return failWith(ERROR_INVALID_HANDLE);
    if (informationClass != TokenElevation || informationLength < sizeof(TOKEN_ELEVATION))
        return failWith(ERROR_INVALID_PARAMETER);
    static_cast<TOKEN_ELEVATION*>(information)->TokenIsElevated = isElevated() ? 1 : 0;
    *returnLength = sizeof(TOKEN_ELEVATION);
    return TRUE;
}

}  // namespace tavoren
