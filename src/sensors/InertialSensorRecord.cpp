#include <algorithm>
#include <cmath>

#include "common/CalibrationException.h"
#include "common/MathException.h"
#include "common/Text.h"
#include "frame/Console.h"
#include "sensors/DynamicRecord.h"
#include "sensors/InertialSensor.h"
#include "sensors/StaticRecord.h"

namespace tavoren {

namespace {

constexpr double largestNumerator = 32767.0;

bool isWhole(double x) {
    return static_cast<double>(truncateToInt32(x)) == x;
}

ByteString bodyOf(const ByteString& record) {
    return {record.begin() + StaticRecord::headerSize, record.end()};
}

}  // namespace

void InertialSensor::convertToFWForamt() {
    const std::uint32_t mapping = compressAxisMapping(axisMapping);
    const std::array<std::int32_t, 3> offsets =
        convertOffset(columnMatrix(offset), dataUnit, firmwareUnit);
    const ScaledMatrix scale = convertScaling(scaleMatrix);
    ByteString record(StaticRecord::size);
    for (int axis = 0; axis < 3; ++axis)
        StaticRecord::setOffset(record, axis, offsets[static_cast<std::size_t>(axis)]);
    for (int k = 0; k < 9; ++k)
        StaticRecord::setNumerator(record, k, scale.numerators[static_cast<std::size_t>(k)]);
    StaticRecord::setDivider(record, scale.divider);
    StaticRecord::setMapping(record, mapping);
    calibrationData = prependFormat(addVendorData(bodyOf(record)));
}

std::array<std::int32_t, 3> InertialSensor::convertOffset(const Matrix& column, Unit source,
                                                          Unit target) {
    std::array<std::int32_t, 3> offsets{};
    for (int axis = 0; axis < 3; ++axis)
        offsets[static_cast<std::size_t>(axis)] =
            truncateToInt32(convertUnit(column(axis, 0), source, target));
    return offsets;
}

InertialSensor::ScaledMatrix InertialSensor::convertScaling(Matrix matrix) {
    bool whole = true;
    for (int i = 0; i < 3; ++i) {
        for (const double element : matrix.rowSpan(i)) {
            if (!(std::abs(element) <= largestNumerator))
                throw CalibrationException("Internal error. Invalid operation was performed");
            whole = whole && isWhole(element);
        }
    }
    ScaledMatrix scaled;
    scaled.divider = 1;
    if (!whole) {
        const double factor =
            std::trunc(largestNumerator / std::max(1.0, std::abs(maxMagnitudeEntry(matrix))));
        matrix = matrix * factor;
        scaled.divider = static_cast<std::uint16_t>(factor);
    }
    for (int k = 0; k < 9; ++k)
        scaled.numerators[static_cast<std::size_t>(k)] =
            static_cast<std::int16_t>(truncateToInt32(matrix(k / 3, k % 3)));
    return scaled;
}

std::uint32_t InertialSensor::compressAxisMapping(const Matrix& matrix) {
    if (matrix.rows() != 3 || matrix.cols() != 3)
        throw MathException("Error from compressAxisMapping, expected a 3X3 matrix");
    std::uint32_t fields = 0;
    for (int k = 0; k < 9; ++k) {
        const double element = matrix(k / 3, k % 3);
        const std::uint32_t bits = element == 1.0 ? 1U : element == -1.0 ? 3U : 0U;
        fields |= bits << (2 * k);
    }
    return fields;
}

Matrix InertialSensor::expandAxisMapping(std::uint32_t fields) {
    constexpr std::array<double, 4> elements{0.0, 1.0, -2.0, -1.0};
    Matrix matrix(3, 3);
    for (int k = 0; k < 9; ++k)
        matrix(k / 3, k % 3) = elements[fields >> (2 * k) & 3U];
    return matrix;
}

ByteString InertialSensor::addVendorData(ByteString body) const {
    if (firmwareData.empty())
        return body;
    const std::uint16_t length = StaticRecord::vendorLength(firmwareData);
    const auto vendor = firmwareData.begin() + StaticRecord::vendorDataAt;
    if (firmwareData.front() != formatId ||
        firmwareData.size() < StaticRecord::vendorDataAt + length)
        throw CalibrationException("Invalid calibration data size");
    writeLittleEndian(body, StaticRecord::vendorLengthAt - StaticRecord::headerSize, length);
    body.insert(body.end(), vendor, vendor + length);
    return body;
}

ByteString InertialSensor::prependFormat(const ByteString& body) const {
    ByteString record{formatId, 0};
    record.insert(record.end(), body.begin(), body.end());
    return record;
}

ByteString InertialSensor::getStaticDefault() const {
    if (!luid.hasStaticData())
        throw CalibrationException("Internal error: not implemented");
    ByteString record(StaticRecord::size);
    for (const int diagonal : {0, 4, 8})
        StaticRecord::setNumerator(record, diagonal, 1);
    StaticRecord::setDivider(record, 1);
    StaticRecord::setMapping(record, compressAxisMapping(identity(3)));
    return bodyOf(record);
}

void InertialSensor::validateCalibrationData(const ByteString& bytes) const {
    try {
        Sensor::validateCalibrationData(bytes);
    } catch (const CalibrationException&) {
        const bool withVendorData =
            bytes.size() >= StaticRecord::size && bytes.front() == formatId &&
            StaticRecord::vendorLength(bytes) + std::size_t{maxDataSize} == bytes.size();
        if (!withVendorData)
            throw;
    }
}

void InertialSensor::setFirmwareCalibration(ByteString bytes) {
    if (luid.hasDynamicData() && formatOf(bytes) != formatId) {
        Console::printLine(
            "Warning: Dynamic sensor calibration data is outdated. Ignoring the dynamic " + name);
        return;
    }
    Sensor::setFirmwareCalibration(std::move(bytes));
    if (luid.hasDynamicData() && hasImportedNoise)
        setImportedNoise();
}

void InertialSensor::setImportedNoise() {
    ByteString record = firmwareData;
    writeLittleEndian(record, DynamicRecord::whiteNoiseAt, importedWhiteNoise);
    calibrationData = std::move(record);
}

double InertialSensor::meanWhiteNoise() const {
    if (!luid.hasStaticData() || whiteNoise.size() != 3)
        throw CalibrationException("Internal error. Invalid operation was performed");
    double total = 0.0;
    for (const double noise : whiteNoise)
        total += convertUnit(noise, dataUnit, firmwareUnit);
    return total / 3.0;
}

void InertialSensor::setDynamicWhiteNoise(double noise) {
    if (luid.Flags == 0)
        throw CalibrationException("Internal error. Invalid operation was performed");
    if (firmwareData.size() < DynamicRecord::sizeUpToNoise)
        throw CalibrationException("Error. No original scaling for dynamic sensor " + name);
    ByteString record = firmwareData;
    writeLittleEndian(record, DynamicRecord::whiteNoiseAt, truncateToInt32(noise));
    calibrationData = std::move(record);
}

}  // namespace tavoren
