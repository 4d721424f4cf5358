#include "files/LineReader.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "common/CalibrationException.h"

namespace tavoren {

LineReader::LineReader(std::string_view name) : fileName(name), reader(name) {}

bool LineReader::next(std::string_view& line) {
    std::size_t length = 0;
    bool complete = findEnd(length);
    while (!complete && length <= longestLine && fill())
        complete = findEnd(length);
    if (length > longestLine)
        throw CalibrationException("Line too long at input file " + fileName);
    line = {buffer.data() + start, length};
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    const std::size_t consumed = length + (complete ? 1 : 0);
    start += consumed;
    taken += consumed;
    return consumed > 0;
}

/// Looks for a line end behind `length` bytes that hold none; false if there is none yet. `length`
/// grows to what is known of the line.
bool LineReader::findEnd(std::size_t& length) const {
    const std::string_view rest(buffer.data() + start, end - start);
    const std::size_t lineEnd = rest.find('\n', length);
    length = std::min(lineEnd, rest.size());
    return lineEnd != std::string_view::npos;
}

/// Moves the unfinished line to the front and reads on behind it; false at the end of the file.
bool LineReader::fill() {
    const std::size_t unfinished = end - start;
    if (start > 0)
        std::memmove(buffer.data(), buffer.data() + start, unfinished);
    start = 0;
    end = unfinished;
    if (buffer.size() - end < pieceSize / 2)
        buffer.resize(end + pieceSize);
    const std::size_t count = reader.read(std::span(buffer).subspan(end));
    end += count;
    if (reader.hasFailed())
        throw CalibrationException("Cannot read input file " + fileName);
    return count > 0;
}

}  // namespace tavoren
