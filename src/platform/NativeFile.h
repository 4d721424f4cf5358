#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>

namespace tavoren {

/// An open file of the system, in binary mode; closed with the object. Used by `Files.h` alone.
class NativeFile {
  public:
    NativeFile() = default;
    ~NativeFile() { close(); }
    NativeFile(NativeFile&& other) noexcept : descriptor(other.release()) {}
    NativeFile& operator=(NativeFile&& other) noexcept;

    /// Opens a regular file for reading; anything else gives a file that is not open.
    static NativeFile openForReading(const std::filesystem::path& path);
    /// Makes a new file for writing; not open if the name is taken or cannot be made.
    static NativeFile createNew(const std::filesystem::path& path);
    /// Whether the rights of an existing file allow writing.
    static bool isWritable(const std::filesystem::path& path);

    bool isOpen() const { return descriptor >= 0; }
    std::uint64_t size() const;
    /// Gives the open file itself these rights, whatever its name has come to stand for.
    void setRights(std::filesystem::perms rights);
    /// Bytes read, 0 at the end, empty on a failure.
    std::optional<std::size_t> read(std::span<char> into);
    /// Writes all bytes or fails.
    bool write(std::string_view bytes);
    /// Waits until the disk has what was written.
    bool sync();
    /// False if the system reports a late failure.
    bool close();

  private:
    explicit NativeFile(int opened) : descriptor(opened) {}
    int release();

    int descriptor = -1;
};

}  // namespace tavoren
