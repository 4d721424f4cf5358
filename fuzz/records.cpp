// A record of the firmware becomes XML and comes back as the same bytes; a record or an XML form
// that is refused leaves the sensor as it was.

#include <array>

#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"
#include "fuzz/Fuzz.h"
#include "fuzz/RecordForm.h"
#include "sensors/createSensor.h"

namespace tavoren::fuzz {
namespace {

std::shared_ptr<Sensor> sensorFor(std::uint8_t choice) {
    constexpr std::array<std::uint16_t, 5> types{115, 118, 527, 113, 65};
    const auto flags = static_cast<std::uint8_t>(choice / types.size() % 4);
    return createSensor({.SensorTypeId = types[choice % types.size()], .Flags = flags});
}

void checkReturn(const Sensor& sensor, std::uint8_t choice) {
    const ByteString& record = sensor.firmwareData;
    XmlElement written(L"CalibrationData");
    if (!accepts([&] { sensor.saveCalibrationXml(written, record); }))
        return;
    XmlDocument document;
    require(document.parseBuffer(written.toString()) == 0, "written XML parses");
    const auto& element = dynamic_cast<const XmlElement&>(*document.firstChild());
    const auto other = sensorFor(choice);
    other->setFirmwareCalibration(record);
    const bool read = accepts([&] { other->loadCalibrationXml(element, record[0], record[1]); });
    require(read || other->calibrationData.empty(), "refused XML leaves the sensor as it was");
    if (!comesBack(sensor, record) || sensor.luid.Flags % 4 == 0)
        return;
    require(read, "the reader takes the writer's form");
    require(other->calibrationData == record, "a record comes back as the same bytes");
}

void check(Input input) {
    const std::uint8_t choice = input.takeByte();
    const auto sensor = sensorFor(choice);
    if (!accepts([&] { sensor->setFirmwareCalibration(input.byteString()); })) {
        require(sensor->firmwareData.empty() && !sensor->hasFirmwareData,
                "a refused record leaves the sensor as it was");
        return;
    }
    if (sensor->firmwareData.empty() || Sensor::isCustomFormat(sensor->firmwareData.front()))
        return;
    checkReturn(*sensor, choice);
    SensorSample sample{0.0, {1.0, -2.0, 3.0}};
    accepts([&] { sensor->calcReverseSdt(); });
    accepts([&] { sensor->reverseStaticCalibration(sample); });
}

}  // namespace
}  // namespace tavoren::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavoren::fuzz::check({data, size});
    return 0;
}
