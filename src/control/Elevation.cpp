#include "control/Elevation.h"

#include "platform/Platform.h"

namespace tavoren {

bool processIsElevated() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token))
        return false;
    TOKEN_ELEVATION elevation{};
    DWORD length = 0;
    const bool known =
        GetTokenInformation(token, TokenElevation, &elevation, sizeof elevation, &length) != FALSE;
    CloseHandle(token);
    return known && elevation.TokenIsElevated != 0;
}

}  // namespace tavoren
