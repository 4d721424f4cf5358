#include "sensors/Sensor.h"

#include <algorithm>
#include <array>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "firmware/SDT.h"

namespace tavoren {

namespace {

constexpr std::array<std::string_view, 6> formFactorNames{"2IN1",   "KICKSTAND", "SWIVEL",
                                                          "TABLET", "CLAMSHELL", "MID"};
constexpr std::array<std::string_view, 4> hingeNames{"BOTTOM", "TOP", "LEFT", "RIGHT"};

template <typename Names>
void lookUp(const Names& names, std::string_view text, std::uint8_t& number) {
    const auto found = std::find_if(names.begin(), names.end(), [text](std::string_view name) {
        return equalsIgnoringCase(name, text);
    });
    if (found != names.end())
        number = static_cast<std::uint8_t>(found - names.begin());
}

template <typename Names>
std::string nameAt(const Names& names, std::uint8_t number) {
    return number < names.size() ? std::string(names[number]) : std::string();
}

}  // namespace

Sensor::Sensor(const Luid& id) : luid(id) {}

void Sensor::calibrate() {}

bool Sensor::testCalibration() {
    return true;
}

bool Sensor::dataRecieved(const SensorSample&) {
    return true;
}

void Sensor::calcReverseSdt() {}

bool Sensor::isLightSensor() const {
    return false;
}

void Sensor::reverseStaticCalibration(SensorSample&) const {}

std::string Sensor::resultText() const {
    return {};
}

std::size_t Sensor::getDataSize() const {
    return bufferedData.size();
}

Luid Sensor::getLuid() const {
    return luid;
}

bool Sensor::supportsRunMode(RunMode) const {
    return false;
}

bool Sensor::canCalibrate() const {
    return calibratable && luid.hasStaticData();
}

bool Sensor::hasStaticCalibration() const {
    return luid.hasStaticData();
}

void Sensor::setFirmwareCalibration(ByteString bytes) {
    validateCalibrationData(bytes);
    hasFirmwareData = true;
    firmwareData = std::move(bytes);
}

void Sensor::validateCalibrationData(const ByteString& bytes) const {
    const std::uint8_t format = formatOf(bytes);
    if (isCustomFormat(format))
        return;
    if (format != formatId)
        throw CalibrationException("Unsupported format of " + name + " Sensor calibration data");
    checkDataSize(bytes);
}

void Sensor::setSensorManager(SensorRun& manager) {
    sensorManager = &manager;
}

bool Sensor::isPrimary() const {
    return luid.InstanceId == 0;
}

void Sensor::userInput(const std::string&) {}

void Sensor::startMagPreTest() {}

// NOLINTNEXTLINE(performance-unnecessary-value-param): sensors that check take the list over
bool Sensor::checkMagPreTest_threeRotations(std::vector<std::int32_t>) {
    return true;
}

bool Sensor::checkMagPreTest_singleRotation(std::int32_t, std::int32_t, std::int32_t&) {
    return true;
}

bool Sensor::checkMagPreTest_translation() {
    return true;
}

void Sensor::getCalibrationData() {
    setFirmwareCalibration(SDT().getCalibrationData(luid));
}

void Sensor::setCheckVsOriginalAxis(bool) {}

void Sensor::setNoGyroRotation(bool) {}

std::string Sensor::displayName() const {
    return isPrimary() ? name : name + "_2";
}

bool Sensor::holdsName(std::string_view typeName) const {
    return displayName().find(typeName) != std::string::npos;
}

void Sensor::setCalibrationData(ByteString bytes) {
    validateCalibrationData(bytes);
    calibrationData = std::move(bytes);
}

void Sensor::setFormFactor(std::string_view text) {
    lookUp(formFactorNames, text, formFactor);
}

void Sensor::setHinge(std::string_view text) {
    lookUp(hingeNames, text, hinge);
}

std::string Sensor::formFactorName() const {
    return nameAt(formFactorNames, formFactor);
}

std::string Sensor::hingeName() const {
    return nameAt(hingeNames, hinge);
}

std::uint8_t Sensor::formatOf(const ByteString& bytes) {
    if (bytes.empty())
        throw CalibrationException("Invalid calibration data size");
    return bytes.front();
}

void Sensor::checkDataSize(const ByteString& bytes) const {
    const bool tooSmall = minDataSize != 0 && bytes.size() < minDataSize;
    const bool tooLarge = maxDataSize != 0 && bytes.size() > maxDataSize;
    if (tooSmall || tooLarge)
        throw CalibrationException("Invalid calibration data size");
}

}  // namespace tavoren
