#include "platform/Files.h"

#include <algorithm>
#include <atomic>
#include <random>

namespace tavoren {

namespace {

constexpr bool backslashIsNative = std::filesystem::path::preferred_separator == '\\';
constexpr std::size_t pieceSize = std::size_t{1} << 16;

/// The file that a write to `path` would change: a symbolic link to a file is followed.
std::filesystem::path resolveTarget(const std::filesystem::path& path) {
    std::error_code error;
    const auto resolved = std::filesystem::canonical(path, error);
    return error ? path : resolved;
}

bool isAcceptableTarget(const std::filesystem::path& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found)
        return path.has_filename();
    return std::filesystem::is_regular_file(status) && NativeFile::isWritable(path);
}

/// A name that no other run and no other file of this run uses at the same time. It does not grow
/// with the target's name, which may be as long as the system allows.
std::string temporaryName() {
    static const unsigned run = std::random_device()();
    static std::atomic<unsigned> count = 0;
    return ".tavoren-" + std::to_string(run) + "-" + std::to_string(count++) + ".tmp";
}

}  // namespace

bool isRegularFile(std::string_view path) {
    std::error_code error;
    return std::filesystem::is_regular_file(nativePath(path), error);
}

bool isDirectory(std::string_view path) {
    std::error_code error;
    return std::filesystem::is_directory(nativePath(path), error);
}

bool makeDirectoryTree(std::string_view path) {
    std::error_code error;
    std::filesystem::create_directories(nativePath(path), error);
    return !error && isDirectory(path);
}

FileReader::FileReader(std::string_view path) : file(NativeFile::openForReading(nativePath(path))) {
    if (file.isOpen())
        fileSize = file.size();
}

std::size_t FileReader::read(std::span<char> into) {
    if (!isOpen() || failed)
        return 0;
    const auto count = file.read(into);
    failed = !count;
    return count.value_or(0);
}

std::optional<std::string> readFile(std::string_view path, std::uint64_t largest) {
    FileReader reader(path);
    if (!reader.isOpen() || reader.size() > largest)
        return std::nullopt;
    // The size is a hint: the file may have grown, and some report none at all.
    std::string content(static_cast<std::size_t>(reader.size()) + 1, '\0');
    std::size_t length = 0;
    while (const std::size_t count = reader.read(std::span(content).subspan(length))) {
        length += count;
        if (length > largest)
            return std::nullopt;
        if (length == content.size())
            content.resize(length + pieceSize);
    }
    if (reader.hasFailed())
        return std::nullopt;
    content.resize(length);
    return content;
}

FileReplacement::FileReplacement(std::string_view path, LineEnds ends)
    : target(resolveTarget(nativePath(path))),
      convertsLineEnds(backslashIsNative && ends == LineEnds::platform) {
    if (isAcceptableTarget(target))
        open();
}

FileReplacement::~FileReplacement() {
    abandon();
}

void FileReplacement::open() {
    constexpr int attempts = 16;
    for (int attempt = 0; attempt < attempts && !file.isOpen(); ++attempt) {
        temporary = target.parent_path() / temporaryName();
        file = NativeFile::createNew(temporary);
    }
    if (!file.isOpen()) {
        temporary.clear();
        return;
    }
    std::error_code error;
    const auto old = std::filesystem::status(target, error);
    if (std::filesystem::exists(old))
        file.setRights(old.permissions());
}

bool FileReplacement::write(std::string_view bytes) {
    if (!convertsLineEnds)
        append(bytes);
    for (std::size_t at = 0; convertsLineEnds && at < bytes.size();) {
        const std::size_t end = std::min(bytes.find('\n', at), bytes.size());
        append(bytes.substr(at, end - at));
        if (end < bytes.size())
            append("\r\n");
        at = end + 1;
    }
    return file.isOpen();
}

void FileReplacement::append(std::string_view bytes) {
    if (pending.size() + bytes.size() >= pieceSize)
        flush();
    if (bytes.size() < pieceSize)
        pending += bytes;
    else if (file.isOpen() && !file.write(bytes))
        abandon();
}

void FileReplacement::flush() {
    if (file.isOpen() && !file.write(pending))
        abandon();
    pending.clear();
}

bool FileReplacement::commit() {
    flush();
    if (!file.isOpen() || !file.sync() || !file.close()) {
        abandon();
        return false;
    }
    std::error_code error;
    std::filesystem::rename(temporary, target, error);
    if (error)
        abandon();
    temporary.clear();
    return !error;
}

void FileReplacement::abandon() {
    file.close();
    if (temporary.empty())
        return;
    std::error_code error;
    std::filesystem::remove(temporary, error);
    temporary.clear();
}

bool replaceFile(std::string_view path, std::string_view content, LineEnds ends) {
    FileReplacement file(path, ends);
    return file.write(content) && file.commit();
}

}  // namespace tavoren
