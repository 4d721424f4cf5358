#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/NativeFile.h"

namespace tavoren {

/// What separates the names of a path as an operator types it.
#ifdef _WIN32
inline constexpr std::string_view pathSeparators = "\\";
#else
inline constexpr std::string_view pathSeparators = "\\/";
#endif

// Every file access of the tool. Paths of the tool separate folders by backslashes; they turn into
// the system's own form here and nowhere else.

std::filesystem::path nativePath(std::string_view path);

bool isRegularFile(std::string_view path);
bool isDirectory(std::string_view path);

/// Makes a folder with its parents, without any shell; true also if it was there.
bool makeDirectoryTree(std::string_view path);

/// All bytes of a regular file; empty for anything that cannot be read as one and for a file of
/// more than `largest` bytes.
std::optional<std::string> readFile(
    std::string_view path, std::uint64_t largest = std::numeric_limits<std::uint64_t>::max());

/// Reads a regular file in pieces. Anything else (folder, device, pipe) does not open.
class FileReader {
  public:
    explicit FileReader(std::string_view path);

    bool isOpen() const { return file.isOpen(); }
    /// Size in bytes when the file was opened.
    std::uint64_t size() const { return fileSize; }
    /// The number of bytes read into the front of `into`; 0 at the end and after a failure.
    std::size_t read(std::span<char> into);
    /// A read has failed, so that the end was not reached.
    bool hasFailed() const { return failed; }

  private:
    NativeFile file;
    std::uint64_t fileSize = 0;
    bool failed = false;
};

enum class LineEnds {
    asWritten,
    platform,  ///< "\n" leaves as CRLF on Windows
};

/// A file that is complete or absent: it is written beside its target and takes the target's place
/// on `commit`. Without that, or after a failure, the target is as before and nothing is left. A
/// target that exists must be a regular file that may be written.
class FileReplacement {
  public:
    FileReplacement(std::string_view path, LineEnds ends);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// False if this or an earlier step has failed; `commit` then fails as well.
    bool write(std::string_view bytes);
    /// Brings the bytes to the disk and puts the file in place. No writes follow it.
    bool commit();

  private:
    void open();
    void append(std::string_view bytes);
    void flush();
    void abandon();

    std::filesystem::path target;
    std::filesystem::path temporary;  ///< empty when there is nothing to remove
    NativeFile file;
    std::string pending;  ///< bytes on their way to `file`
    bool convertsLineEnds;
};

/// Writes a whole file through a `FileReplacement`.
bool replaceFile(std::string_view path, std::string_view content, LineEnds ends);

}  // namespace tavoren
