#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Files.h"

namespace tavoren {

/// The lines of a text file, read in pieces: a line end is LF or CR LF, the last line needs none.
class LineReader {
  public:
    static constexpr std::size_t pieceSize = std::size_t{256} * 1024;
    static constexpr std::size_t longestLine = std::size_t{1024} * 1024;  ///< bytes

    explicit LineReader(std::string_view name);

    bool isOpen() const { return reader.isOpen(); }
    const std::string& name() const { return fileName; }
    /// Bytes of the whole file, and of the lines given so far.
    std::uint64_t size() const { return reader.size(); }
    std::uint64_t position() const { return taken; }

    /// Gives the next line, which stays valid until the next call; false at the end of the file.
    /// Throws `CalibrationException` "Line too long at input file ..." or, if the system fails,
    /// "Cannot read input file ...".
    bool next(std::string_view& line);

  private:
    bool findEnd(std::size_t& length) const;
    bool fill();

    std::string fileName;
    FileReader reader;
    std::vector<char> buffer;
    std::size_t start = 0;    // of the bytes not yet given
    std::size_t end = 0;      // of the bytes read
    std::uint64_t taken = 0;  // bytes given
};

}  // namespace tavoren
