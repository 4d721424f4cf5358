#include "platform/NativeFile.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include <algorithm>

namespace tavoren {

namespace {

constexpr std::size_t largestPiece = 1 << 24;  // the calls count in 32 bits

int openFile(const std::filesystem::path& path, int flags) {
    int descriptor = -1;
    _wsopen_s(&descriptor, path.c_str(), flags | _O_BINARY | _O_NOINHERIT, _SH_DENYNO,
              _S_IREAD | _S_IWRITE);
    return descriptor;
}

}  // namespace

NativeFile NativeFile::openForReading(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return {};
    return NativeFile(openFile(path, _O_RDONLY));
}

NativeFile NativeFile::createNew(const std::filesystem::path& path) {
    return NativeFile(openFile(path, _O_WRONLY | _O_CREAT | _O_EXCL));
}

bool NativeFile::isWritable(const std::filesystem::path& path) {
    return _waccess(path.c_str(), 2) == 0;
}

std::uint64_t NativeFile::size() const {
    const auto length = _filelengthi64(descriptor);
    return length < 0 ? 0 : static_cast<std::uint64_t>(length);
}

/// A new file has the rights of its folder, and may be written as the old one.
void NativeFile::setRights(std::filesystem::perms /*rights*/) {}

std::optional<std::size_t> NativeFile::read(std::span<char> into) {
    const auto wanted = static_cast<unsigned>(std::min(into.size(), largestPiece));
    const int count = _read(descriptor, into.data(), wanted);
    if (count < 0)
        return std::nullopt;
    return static_cast<std::size_t>(count);
}

bool NativeFile::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto wanted = static_cast<unsigned>(std::min(bytes.size(), largestPiece));
        const int count = _write(descriptor, bytes.data(), wanted);
        if (count <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool NativeFile::sync() {
    return _commit(descriptor) == 0;
}

bool NativeFile::close() {
    return !isOpen() || _close(release()) == 0;
}

}  // namespace tavoren
