#include <unistd.h>

#include <string_view>

#include "platform/posix/SystemObject.h"

namespace tavoren {

namespace {

constexpr WORD plainAttribute = 7;  // light grey, which a fresh Windows console has

SystemObject standardOutput;
WORD currentAttribute = plainAttribute;

bool isTerminal(HANDLE object) {
    return object == &standardOutput && isatty(STDOUT_FILENO) == 1;
}

std::string_view escapeSequence(WORD attributes) {
    switch (attributes) {
        case 10:
            return "\x1b[92m";
        case 12:
            return "\x1b[91m";
        default:
            return "\x1b[0m";
    }
}

}  // namespace

HANDLE GetStdHandle(DWORD standardHandle) {
    return standardHandle == STD_OUTPUT_HANDLE ? &standardOutput : nullptr;
}

BOOL GetConsoleScreenBufferInfo(HANDLE consoleOutput, CONSOLE_SCREEN_BUFFER_INFO* info) {
    if (!isTerminal(consoleOutput))
        return failWith(ERROR_INVALID_HANDLE);
    info->wAttributes = currentAttribute;
    return TRUE;
}

BOOL SetConsoleTextAttribute(HANDLE consoleOutput, WORD attributes) {
    if (!isTerminal(consoleOutput))
        return failWith(ERROR_INVALID_HANDLE);
    const std::string_view sequence = escapeSequence(attributes);
    if (::write(STDOUT_FILENO, sequence.data(), sequence.size()) < 0)
        return failWith(ERROR_GEN_FAILURE);
    currentAttribute = attributes;
    return TRUE;
}

DWORD GetConsoleOutputCP() {
    return CP_UTF8;
}

BOOL SetConsoleOutputCP(DWORD) {
    return TRUE;
}

}  // namespace tavoren
