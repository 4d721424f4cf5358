// Loaded before the system's library: the n-th call that changes a file fails, writes half, or ends
// the process. FRAGILE_AT is n, FRAGILE_HOW one of error, short, kill.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <string_view>

namespace {

std::string_view how() {
    const char* const text = std::getenv("FRAGILE_HOW");
    return text ? text : "";
}

/// Counts a call; true if it is the one to spoil.
bool isDue() {
    static std::atomic<int> calls = 0;
    const char* const at = std::getenv("FRAGILE_AT");
    const bool due = at && ++calls == std::atoi(at);
    if (due && how() == "kill")
        ::kill(::getpid(), SIGKILL);
    if (due)
        errno = ENOSPC;
    return due;
}

template <typename Function>
Function* original(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    if ((flags & O_CREAT) != 0 && isDue())
        return -1;
    return original<int(const char*, int, ...)>("open")(path, flags, mode);
}

ssize_t write(int file, const void* bytes, size_t size) {
    const auto real = original<ssize_t(int, const void*, size_t)>("write");
    if (file <= STDERR_FILENO || !isDue())
        return real(file, bytes, size);
    return how() == "short" && size > 1 ? real(file, bytes, size / 2) : -1;
}

int fsync(int file) {
    return isDue() ? -1 : original<int(int)>("fsync")(file);
}

int rename(const char* from, const char* to) {
    return isDue() ? -1 : original<int(const char*, const char*)>("rename")(from, to);
}

int mkdir(const char* path, mode_t mode) {
    return isDue() ? -1 : original<int(const char*, mode_t)>("mkdir")(path, mode);
}
}
