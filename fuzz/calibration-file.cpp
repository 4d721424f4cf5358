// A calibration file is refused or gives sensors that are written, read back and written again as
// the same bytes. A hub that knows every sensor stands behind the link, as an import needs one.

#include <algorithm>
#include <thread>

#include "common/NeverDestroyed.h"
#include "files/CalibrationFile.h"
#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"
#include "firmware/DeviceSocket.h"
#include "firmware/SmhiRequests.h"
#include "firmware/SmhiResponses.h"
#include "fuzz/Fuzz.h"
#include "fuzz/RecordForm.h"
#include "sensors/createSensor.h"

namespace tavoren::fuzz {
namespace {

/// What the firmware holds for a sensor: a plain record, with vendor data for some.
ByteString firmwareRecord(const Luid& luid) {
    const auto sensor = createSensor(luid);
    const std::size_t vendorLength = luid.VendorId % 4U;
    ByteString record(std::max<std::size_t>(sensor->minDataSize, 2));
    record[0] = sensor->formatId;
    if (sensor->category == Sensor::ambientLight) {
        record.resize(LightRecord::sizeFor(LightRecord::mostSteps));
        record[LightRecord::stepCountAt] = LightRecord::mostSteps;
        record.resize(record.size() + LightRecord::lengthSize);
        record[record.size() - LightRecord::lengthSize] = static_cast<std::uint8_t>(vendorLength);
    } else if (luid.hasStaticData() && sensor->category == Sensor::inertial) {
        StaticRecord::setVendorLength(record, static_cast<std::uint16_t>(vendorLength));
    } else {
        return record;
    }
    record.resize(record.size() + vendorLength);
    return record;
}

ByteString answerTo(const ByteString& message) {
    const auto request = SmhiGetRequest::decode(message);
    if (!request)
        return SmhiHeader{.is_response = true, .status = 1}.encode();
    if (request->selector == SmhiSelector::pdt)
        return SmhiPdtResponse{}.encode();
    return SmhiCalibrationResponse{.calibrationData = firmwareRecord(request->luid)}.encode();
}

void serve(DeviceSocket& device) {
    const ByteString opened{1, 0, 0, 0, 0, 0};
    for (;;) {
        device.accept(opened);
        for (ByteString packet = device.receive(); !packet.empty(); packet = device.receive()) {
            ByteString answer = answerTo({packet.begin() + 1, packet.end()});
            answer.insert(answer.begin(), packet[0]);
            device.send(answer);
        }
        device.hangUp();
    }
}

/// Puts the hub into the working directory, where it stays as long as the process.
void startHub() {
    workingFolder();
    static NeverDestroyed<std::unique_ptr<DeviceSocket>> device;
    device.object = std::make_unique<DeviceSocket>("hub");
    std::thread([] { serve(*device.object); }).detach();
}

using Sensors = std::vector<std::shared_ptr<Sensor>>;

/// The reader refuses static data of a sensor that has dynamic data as well.
bool isOrdinary(const Sensors& sensors) {
    return std::all_of(sensors.begin(), sensors.end(), [](const auto& sensor) {
        const bool hasBoth = sensor->luid.hasStaticData() && sensor->luid.hasDynamicData();
        return sensor->calibrationData.empty() ||
               (!hasBoth && comesBack(*sensor, sensor->calibrationData));
    });
}

/// Data of a file over a sensor that has some.
void checkRefusal(const XmlElement& element) {
    for (const Luid luid : {Luid{115, 0, 0, 0, 2}, Luid{118, 0, 0, 0, 1}, Luid{65, 0, 0, 0, 2}}) {
        const auto sensor = createSensor(luid);
        sensor->setFirmwareCalibration(firmwareRecord(luid));
        const auto format = sensor->formatId;
        if (!accepts([&] { sensor->loadCalibrationXml(element, format, 0); }))
            require(sensor->calibrationData.empty(), "refused data leaves the sensor as it was");
    }
}

void checkRefusals(const XmlNode& node) {
    for (const auto& child : node.children()) {
        const auto element = std::dynamic_pointer_cast<XmlElement>(child);
        if (element && element->name == L"CalibrationData")
            checkRefusal(*element);
        checkRefusals(*child);
    }
}

void check(const std::string& input) {
    [[maybe_unused]] static const bool started = (startHub(), true);
    const TemporaryFolder& folder = workingFolder();
    folder.write("input.xml", input);
    XmlDocument document;
    try {
        if (document.load("input.xml") != 0)
            return;
    } catch (const std::invalid_argument&) {
        return;  // told at `XmlAttribute::parse`
    }
    checkRefusals(document);
    Sensors sensors;
    Sensors again;
    if (!accepts([&] { sensors = readCalibrationFile("input.xml"); }))
        return;
    const bool isWritten = accepts([&] { writeCalibrationFile("first.xml", sensors, false); });
    const bool readsBack = isWritten && accepts([&] { again = readCalibrationFile("first.xml"); });
    if (!isOrdinary(sensors))
        return;
    require(readsBack, "an accepted file is written and reads back");
    writeCalibrationFile("second.xml", again, false);
    require(folder.read("second.xml") == folder.read("first.xml"),
            "it is written as the same bytes");
}

}  // namespace
}  // namespace tavoren::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavoren::fuzz::check(tavoren::fuzz::Input(data, size).text());
    return 0;
}
