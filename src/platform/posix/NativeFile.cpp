#include "platform/NativeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace tavoren {

NativeFile NativeFile::openForReading(const std::filesystem::path& path) {
    // Without O_NONBLOCK the open of a pipe would wait for its writer.
    NativeFile file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (file.isOpen() && (fstat(file.descriptor, &status) != 0 || !S_ISREG(status.st_mode)))
        file.close();
    return file;
}

NativeFile NativeFile::createNew(const std::filesystem::path& path) {
    return NativeFile(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
}

bool NativeFile::isWritable(const std::filesystem::path& path) {
    return access(path.c_str(), W_OK) == 0;
}

std::uint64_t NativeFile::size() const {
    struct stat status {};
    return fstat(descriptor, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

void NativeFile::setRights(std::filesystem::perms rights) {
    fchmod(descriptor, static_cast<mode_t>(rights & std::filesystem::perms::all));
}

std::optional<std::size_t> NativeFile::read(std::span<char> into) {
    ssize_t count = 0;
    do {
        count = ::read(descriptor, into.data(), into.size());
    } while (count < 0 && errno == EINTR);
    if (count < 0)
        return std::nullopt;
    return static_cast<std::size_t>(count);
}

bool NativeFile::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            return false;
        if (count > 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool NativeFile::sync() {
    return fsync(descriptor) == 0;
}

bool NativeFile::close() {
    return !isOpen() || ::close(release()) == 0;
}

}  // namespace tavoren
