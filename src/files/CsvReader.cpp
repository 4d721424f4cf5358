#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>
#include <utility>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "files/CsvParser.h"
#include "files/LineReader.h"
#include "frame/Logger.h"
#include "sensors/Sensor.h"

namespace tavoren {

namespace {

constexpr const char* readFunction = "CsvParser::readFromFile";
constexpr std::string_view luidPrefix = "LUID=";
constexpr std::string_view formFactorPrefix = "FORMFACTOR=";
constexpr std::string_view hingePrefix = "HINGE=";

bool isComment(std::string_view line) {
    return !line.empty() && line.front() == '#';
}

std::string_view nextLine(LineReader& lines) {
    std::string_view line;
    if (!lines.next(line))
        throw CalibrationException("Unexpected end of input file " + lines.name());
    return line;
}

/// The LUID whose bytes, low ones first, are the pairs of digits in text order. The text of
/// `luidToString` has the high byte of each 16-bit field first, so those come out exchanged.
void readLuid(std::string_view text, Luid& luid) {
    Logger::write(LogLevel::info, readFunction, __LINE__, "LUID is " + std::string(text));
    constexpr std::size_t byteCount = 8;
    const std::vector<std::uint8_t> bytes = scanHex(text.substr(0, 2 * byteCount));
    if (text.size() < 2 * byteCount) {
        Logger::write(LogLevel::warning, readFunction, __LINE__,
                      "LUID is too short and was ignored: " + std::string(text));
        return;
    }
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < byteCount; ++i)
        value |= std::uint64_t{bytes[i]} << 8 * i;
    luid = Luid::fromValue(value);
}

constexpr auto isDigit = [](char c) { return c >= '0' && c <= '9'; };

/// The value of a digit in any base up to 16; 16 for another character.
std::uint32_t digitValue(char c) {
    if (isDigit(c))
        return static_cast<std::uint32_t>(c - '0');
    const char lower = toLower(c);
    return lower >= 'a' && lower <= 'f' ? static_cast<std::uint32_t>(lower - 'a' + 10) : 16;
}

/// What the C `strtoul` with base 0 and a 32-bit `unsigned long` gives: leading 0 is octal, leading
/// 0x hexadecimal, too large a number is the largest one, a minus negates modulo 2^32.
std::uint32_t leadingUnsigned(std::string_view text) {
    const auto* at = std::find_if_not(text.begin(), text.end(), [](char c) {
        return isSpace(static_cast<wchar_t>(static_cast<unsigned char>(c)));
    });
    const bool negative = at != text.end() && *at == '-';
    if (at != text.end() && (*at == '-' || *at == '+'))
        ++at;
    std::uint32_t base = 10;
    if (at != text.end() && *at == '0') {
        const bool prefixed =
            text.end() - at > 2 && toLower(at[1]) == 'x' && digitValue(at[2]) < 16;
        base = prefixed ? 16 : 8;
        at += prefixed ? 2 : 1;
    }
    constexpr std::uint64_t beyond = std::uint64_t{1} << 32;
    std::uint64_t value = 0;
    for (; at != text.end() && digitValue(*at) < base; ++at)
        value = std::min(beyond, value * base + digitValue(*at));
    if (value == beyond)
        return std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(negative ? beyond - value : value);
}

/// True for a number such as "12" or "12.345000": digits that start an integer in base 10.
bool isPlainTime(std::string_view text) {
    if (text.empty() || text[0] < '1' || text[0] > '9')
        return false;
    const auto* const point = std::find_if_not(text.begin(), text.end(), isDigit);
    return point == text.end() || (*point == '.' && std::all_of(point + 1, text.end(), isDigit));
}

double parseTime(std::string_view text) {
    if (!isPlainTime(text)) {
        double value = 0.0;
        try {
            value = parseDouble(text);
        } catch (const CalibrationException&) {
            throw CalibrationException("CSV parsing error. Invalid timestamp value " +
                                       std::string(text));
        }
        if (value < 0.0)
            throw CalibrationException("CSV parsing error. Negative timestamp is invalid. " +
                                       std::string(text));
    }
    return leadingUnsigned(text);
}

/// The number of a text such as "-12.345000", if it has at most 15 digits: they and the power of
/// ten are exact doubles, so that their quotient is the double nearest to the text (the fast path
/// of Clinger's "How to Read Floating Point Numbers Accurately").
std::optional<double> parsePlainNumber(std::string_view text) {
    constexpr std::array powersOfTen{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                     1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const bool negative = text.starts_with('-');
    if (negative)
        text.remove_prefix(1);
    if (text.size() > powersOfTen.size())
        return std::nullopt;
    std::int64_t digits = 0;
    std::size_t point = text.size();
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isDigit(text[i]))
            digits = digits * 10 + (text[i] - '0');
        else if (text[i] == '.' && point == text.size())
            point = i;
        else
            return std::nullopt;
    }
    const bool hasPoint = point < text.size();
    const std::size_t digitCount = text.size() - (hasPoint ? 1 : 0);
    if (digitCount == 0 || digitCount >= powersOfTen.size())
        return std::nullopt;
    const double value =
        static_cast<double>(digits) / powersOfTen[hasPoint ? digitCount - point : 0];
    return negative ? -value : value;
}

double parseValue(std::string_view text) {
    if (const std::optional<double> plain = parsePlainNumber(text))
        return *plain;
    try {
        return parseDouble(text);
    } catch (const CalibrationException&) {
        throw CalibrationException("CSV parsing error. Invalid value " + std::string(text));
    }
}

/// The text between the first pair of square brackets.
std::string_view unitOfColumn(std::string_view column) {
    const std::size_t open = column.find('[');
    const std::size_t close = column.find(']');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open)
        throw CalibrationException("Invalid header format");
    if (close == open + 1)
        throw CalibrationException("Invalid header format, unit is not specified");
    return column.substr(open + 1, close - open - 1);
}

/// Makes room for the rows of the rest of the file, judged by those read so far, with an eighth to
/// spare, so that the rows need not move. A wrong guess is bounded: the next one knows more rows.
void reserveRows(std::vector<SensorSample>& samples, const LineReader& lines,
                 std::uint64_t firstRow) {
    constexpr std::uint64_t shortestRow = 2;        // bytes
    constexpr std::uint64_t trustedRows = 1 << 20;  // on the word of the first few
    const std::uint64_t bytes = lines.position() - firstRow;
    const std::uint64_t perRow = std::max(shortestRow, bytes / (samples.size() + 1));
    const std::uint64_t rest = lines.size() - std::min(lines.size(), lines.position());
    const std::uint64_t estimate = rest / perRow + rest / perRow / 8 + 64;
    const std::uint64_t most = std::max<std::uint64_t>(trustedRows, 4 * samples.size());
    samples.reserve(samples.size() + static_cast<std::size_t>(std::min(estimate, most)));
}

}  // namespace

SensorDataMap CsvParser::readFromFile(std::string_view basePath,
                                      std::span<const std::shared_ptr<Sensor>> sensors,
                                      bool withLuid) {
    SensorDataMap data;
    for (const std::shared_ptr<Sensor>& sensor : sensors) {
        const std::string name = sensor->displayName();
        Logger::write(LogLevel::debug, readFunction, __LINE__,
                      "Reading sensor dump file for " + name);
        SampleBuffer samples(readDump(readerFileName(basePath, name), *sensor, withLuid));
        Logger::write(LogLevel::info, readFunction, __LINE__,
                      "Data size is " + std::to_string(samples.size()));
        data.insert_or_assign(sensor, std::move(samples));
    }
    return data;
}

std::vector<SensorSample> CsvParser::readDump(const std::string& name, Sensor& sensor,
                                              bool withLuid) {
    if (!isRegularFile(name))
        throw CalibrationException("Sensor data file " + name + " does not exist");
    LineReader lines(name);
    if (!lines.isOpen())
        throw CalibrationException("Cannot read input file " + name);
    try {
        readPreamble(lines, sensor, withLuid);
        std::vector<SensorSample> samples = readRows(lines, sensor);
        fields.clear();  // they point into the reader's text
        return samples;
    } catch (const std::bad_alloc&) {
        throw CalibrationException("Not enough memory for input file " + name);
    }
}

/// Everything up to the header line.
void CsvParser::readPreamble(LineReader& lines, Sensor& sensor, bool withLuid) {
    std::string_view line;
    if (!lines.next(line))
        throw CalibrationException("Input file " + lines.name() + " is empty");
    while (isComment(line))
        line = nextLine(lines);
    if (line.starts_with(luidPrefix)) {
        if (withLuid)
            readLuid(line.substr(luidPrefix.size()), sensor.luid);
        line = nextLine(lines);
    }
    while (line.empty() || isComment(line))
        line = nextLine(lines);
    if (line.starts_with(formFactorPrefix)) {
        sensor.setFormFactor(line.substr(formFactorPrefix.size()));
        line = nextLine(lines);
    }
    if (line.starts_with(hingePrefix)) {
        sensor.setHinge(line.substr(hingePrefix.size()));
        line = nextLine(lines);
    }
    const std::size_t columns = std::size_t{sensor.valueCount} + 1;
    splitLine(line, ',', columns);
    if (fields.size() != columns)
        throw CalibrationException("Unexpected number of columns at input file " + lines.name());
    convert = false;
    if (sensor.category == Sensor::inertial)
        parseHeader(sensor);
}

std::vector<SensorSample> CsvParser::readRows(LineReader& lines, const Sensor& sensor) {
    constexpr std::size_t rowsToJudge = 16;
    const std::size_t columns = std::size_t{sensor.valueCount} + 1;
    const std::uint64_t firstRow = lines.position();
    std::vector<SensorSample> samples;
    std::string_view line;
    while (lines.next(line)) {
        if (isComment(line))
            continue;
        splitLine(line, ',', columns);
        if (fields.empty())
            continue;
        if (fields.size() != columns && fields.size() != 1)
            throw CalibrationException("Unexpected number of values at input file " + lines.name());
        parseRow();
        if (!samples.empty() && samples.back().time > time)
            throw CalibrationException("Invalid order of data at input file " + lines.name());
        if (samples.size() == samples.capacity() && samples.size() >= rowsToJudge)
            reserveRows(samples, lines, firstRow);
        samples.push_back({time, values});
    }
    if (samples.capacity() / 2 > samples.size())
        samples.shrink_to_fit();
    return samples;
}

void CsvParser::splitLine(std::string_view line, char delimiter, std::size_t mostFields) {
    fields.clear();
    while (!line.empty() && fields.size() <= mostFields) {
        const std::size_t length = std::min(line.find(delimiter), line.size());
        fields.push_back(line.substr(0, length));
        line.remove_prefix(std::min(length + 1, line.size()));
    }
}

void CsvParser::parseHeader(const Sensor& sensor) {
    constexpr std::array axes{"_X", "_Y", "_Z"};
    if (fields.empty() || !equalsIgnoringCase(fields[0], "time[ms]"))
        throw CalibrationException("Invalid header timestamp");
    if (fields.size() != axes.size() + 1)
        throw CalibrationException("Invalid header length");
    const std::string name = sensor.displayName();
    for (std::size_t i = 0; i < axes.size(); ++i)
        if (fields[i + 1].find(name + axes[i]) == std::string_view::npos)
            throw CalibrationException("Invalid header");
    for (std::size_t i = 1; i < fields.size(); ++i)
        fields[i] = unitOfColumn(fields[i]);
    if (fields[2] != fields[1] || fields[3] != fields[1])
        throw CalibrationException("Invalid header format. All columns should have the same unit");
    fileUnit = unitFromString(fields[1]);
    sensorUnit = sensor.dataUnit;
    convert = fileUnit != sensorUnit;
}

void CsvParser::parseRow() {
    values = SampleValues();  // a missing value is 0.0 to whoever reads it
    time = parseTime(fields[0]);
    for (std::size_t i = 1; i < fields.size(); ++i) {
        const double value = parseValue(fields[i]);
        values.push_back(convert ? convertUnit(value, fileUnit, sensorUnit) : value);
    }
}

bool CsvParser::fileExists(std::string_view directory, std::string_view stem,
                           std::string_view sensorName) {
    std::string basePath(directory);
    if (!stem.empty())
        basePath.append("\\").append(stem);
    return FileReader(readerFileName(basePath, sensorName)).isOpen();
}

std::string CsvParser::sensorFileName(std::string_view basePath, std::string_view sensorName) {
    std::string name(basePath);
    const std::size_t dot = basePath.rfind('.');
    const bool isCsv = dot != std::string_view::npos && basePath.substr(dot + 1).starts_with("csv");
    return name.insert(isCsv ? dot : name.size(), sensorName);
}

/// The name of the file to read: ".csv" is added where that is not the extension.
std::string CsvParser::readerFileName(std::string_view basePath, std::string_view sensorName) {
    std::string name = sensorFileName(basePath, sensorName);
    const std::string_view extension = std::string_view(name).substr(name.rfind('.') + 1);
    if (!equalsIgnoringCase(extension, "csv"))
        name += ".csv";
    return name;
}

}  // namespace tavoren
