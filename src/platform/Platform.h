#pragma once

// The calls of the operating system that the tool is written against, by their Windows names. On
// Windows they are the system's own; elsewhere this subset is declared here, and `platform/posix`
// implements it with the same results and error codes.

#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOGDI
#define NOGDI
#endif
#include <windows.h>

#include <setupapi.h>

#else

#include <cstddef>
#include <cstdint>

namespace tavoren {

using BOOL = int;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;

struct SystemObject;
using HANDLE = SystemObject*;
using HDEVINFO = HANDLE;
using HLOCAL = void*;

extern SystemObject noObject;
inline constexpr HANDLE INVALID_HANDLE_VALUE = &noObject;

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];  // NOLINT(modernize-avoid-c-arrays): as the system has it
};

struct SP_DEVICE_INTERFACE_DATA {
    DWORD cbSize;
    GUID InterfaceClassGuid;
    DWORD Flags;
    std::uint64_t Reserved;
};

struct SP_DEVICE_INTERFACE_DETAIL_DATA_W {
    DWORD cbSize;
    wchar_t DevicePath[1];  // NOLINT(modernize-avoid-c-arrays): goes on behind the record
};

struct OVERLAPPED {
    DWORD Offset;
    DWORD OffsetHigh;
    HANDLE hEvent;
};

struct LARGE_INTEGER {
    std::int64_t QuadPart;
};

struct CONSOLE_SCREEN_BUFFER_INFO {
    WORD wAttributes;
};

enum TOKEN_INFORMATION_CLASS { TokenElevation = 20 };

struct TOKEN_ELEVATION {
    DWORD TokenIsElevated;
};

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;

inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;
inline constexpr DWORD ERROR_GEN_FAILURE = 31;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_SEM_TIMEOUT = 121;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_ALREADY_EXISTS = 183;
inline constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
inline constexpr DWORD ERROR_MORE_DATA = 234;
inline constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
inline constexpr DWORD ERROR_OPERATION_ABORTED = 995;
inline constexpr DWORD ERROR_IO_INCOMPLETE = 996;
inline constexpr DWORD ERROR_IO_PENDING = 997;
inline constexpr DWORD ERROR_NOT_FOUND = 1168;
inline constexpr DWORD ERROR_DEVICE_NOT_CONNECTED = 1167;

inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;
inline constexpr DWORD INFINITE = 0xFFFFFFFF;

inline constexpr DWORD DIGCF_PRESENT = 2;
inline constexpr DWORD DIGCF_DEVICEINTERFACE = 16;
inline constexpr DWORD LMEM_FIXED = 0;
inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD FILE_SHARE_READ = 1;
inline constexpr DWORD FILE_SHARE_WRITE = 2;
inline constexpr DWORD OPEN_EXISTING = 3;
inline constexpr DWORD FILE_FLAG_OVERLAPPED = 0x40000000;

inline constexpr DWORD LOAD_LIBRARY_SEARCH_SYSTEM32 = 0x800;
inline constexpr DWORD STD_OUTPUT_HANDLE = 0xFFFFFFF5;
inline constexpr DWORD TOKEN_QUERY = 0x0008;
inline constexpr DWORD CP_UTF8 = 65001;

/// Code of the last failed call of this thread.
DWORD GetLastError();

/// No such restriction here: TRUE without effect.
BOOL SetDefaultDllDirectories(DWORD directoryFlags);
BOOL SetDllDirectoryW(const wchar_t* pathName);

/// Ticks of 100 ns since the start of the system; they never step back.
BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);
BOOL QueryPerformanceCounter(LARGE_INTEGER* count);
/// Milliseconds since the start of the system, modulo 2^32.
DWORD GetTickCount();
void Sleep(DWORD milliseconds);

HANDLE GetStdHandle(DWORD standardHandle);
/// FALSE unless standard output is a terminal.
BOOL GetConsoleScreenBufferInfo(HANDLE consoleOutput, CONSOLE_SCREEN_BUFFER_INFO* info);
/// 10 is bright green, 12 bright red, any other attribute the terminal's own colour. Nothing is
/// written unless standard output is a terminal.
BOOL SetConsoleTextAttribute(HANDLE consoleOutput, WORD attributes);

/// A terminal always takes UTF-8: CP_UTF8, and TRUE without effect.
DWORD GetConsoleOutputCP();
BOOL SetConsoleOutputCP(DWORD codePage);

HANDLE GetCurrentProcess();
BOOL OpenProcessToken(HANDLE process, DWORD desiredAccess, HANDLE* token);
/// Elevated is the superuser, and any other user whom no device refuses.
BOOL GetTokenInformation(HANDLE token, TOKEN_INFORMATION_CLASS informationClass, void* information,
                         DWORD informationLength, DWORD* returnLength);
BOOL CloseHandle(HANDLE object);

// Devices. A device of an interface class is a listening socket (AF_UNIX, SOCK_SEQPACKET) in the
// folder "devices" of the working directory, with the name "{CLASS GUID}.anything". Each packet is
// one kind byte and a payload: 1, a control code of 4 bytes with its input, answered by the output;
// 2, one message in either direction; 3, in place of an answer: the transfer fails with the error
// number in its 4 bytes. Numbers are little-endian. The end of the stream fails a transfer.

/// The present devices of a class in the order of their names; never INVALID_HANDLE_VALUE.
HDEVINFO SetupDiGetClassDevsW(const GUID* interfaceClass, const wchar_t* enumerator, void* window,
                              DWORD flags);
/// FALSE with ERROR_NO_MORE_ITEMS beyond the last device.
BOOL SetupDiEnumDeviceInterfaces(HDEVINFO devices, void* deviceInfo, const GUID* interfaceClass,
                                 DWORD memberIndex, SP_DEVICE_INTERFACE_DATA* interfaceData);
/// The path of a device; ERROR_INSUFFICIENT_BUFFER and the size in bytes if it does not fit.
BOOL SetupDiGetDeviceInterfaceDetailW(HDEVINFO devices, SP_DEVICE_INTERFACE_DATA* interfaceData,
                                      SP_DEVICE_INTERFACE_DETAIL_DATA_W* detail, DWORD detailSize,
                                      DWORD* requiredSize, void* deviceInfo);
BOOL SetupDiDestroyDeviceInfoList(HDEVINFO devices);
HLOCAL LocalAlloc(DWORD flags, std::size_t size);
HLOCAL LocalFree(HLOCAL memory);

/// Connects to a device, and to nothing else; all but the path is taken as given.
HANDLE CreateFileW(const wchar_t* path, DWORD access, DWORD shareMode, void* security,
                   DWORD disposition, DWORD flags, HANDLE pattern);
/// Synchronous: `overlapped` is null. Waits 100 seconds at most.
BOOL DeviceIoControl(HANDLE device, DWORD controlCode, const void* input, DWORD inputSize,
                     void* output, DWORD outputSize, DWORD* returned, OVERLAPPED* overlapped);
/// Always pending: FALSE with ERROR_IO_PENDING. Waiting for the event moves the message; a message
/// that does not fit fails with ERROR_MORE_DATA. `read` and `written` are not set.
BOOL ReadFile(HANDLE device, void* buffer, DWORD size, DWORD* read, OVERLAPPED* overlapped);
BOOL WriteFile(HANDLE device, const void* buffer, DWORD size, DWORD* written,
               OVERLAPPED* overlapped);
BOOL GetOverlappedResult(HANDLE device, OVERLAPPED* overlapped, DWORD* transferred, BOOL wait);
/// Gives up a pending transfer, which then fails with ERROR_OPERATION_ABORTED.
BOOL CancelIoEx(HANDLE device, OVERLAPPED* overlapped);

HANDLE CreateEventW(void* security, BOOL manualReset, BOOL initialState, const wchar_t* name);
BOOL SetEvent(HANDLE event);
BOOL ResetEvent(HANDLE event);
/// WAIT_OBJECT_0, WAIT_TIMEOUT, or WAIT_FAILED for anything but an event.
DWORD WaitForSingleObject(HANDLE event, DWORD milliseconds);

/// One level; ERROR_ALREADY_EXISTS if anything has that name. Backslashes separate folders.
BOOL CreateDirectoryA(const char* pathName, const void* securityAttributes);

}  // namespace tavoren

#endif
