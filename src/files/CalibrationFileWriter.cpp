#include <string>

#include "common/CalibrationException.h"
#include "files/CalibrationFile.h"
#include "files/xml/XmlComment.h"
#include "files/xml/XmlDeclaration.h"
#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"
#include "sensors/OemCustomData.h"
#include "sensors/Sensor.h"

namespace tavoren {

namespace {

const ByteString* dataToWrite(const Sensor& sensor, bool useFirmwareData) {
    if (!useFirmwareData && !sensor.calibrationData.empty())
        return &sensor.calibrationData;
    return sensor.firmwareData.empty() || !sensor.hasFirmwareData ? nullptr : &sensor.firmwareData;
}

void setNumber(XmlElement& element, std::wstring_view attribute, unsigned value) {
    element.setAttribute(attribute, std::to_wstring(value));
}

}  // namespace

void writeCalibrationFile(std::string_view path, const std::vector<std::shared_ptr<Sensor>>& list,
                          bool useFirmwareData) {
    auto calibration = std::make_shared<XmlElement>(L"Calibration");
    for (const auto& sensor : list)
        if (auto element = writeSensorNode(*sensor, useFirmwareData))
            calibration->addChild(std::move(element));
    auto root = std::make_shared<XmlElement>(L"TVN");
    root->addChild(std::move(calibration));
    XmlDocument document;
    document.addChild(
        std::make_shared<XmlDeclaration>(L"xml", L"version=\"1.0\" encoding=\"UTF-8\""));
    document.addChild(std::move(root));
    if (document.save(path) != 0)
        throw CalibrationException("Failed to write to file");
}

std::shared_ptr<XmlElement> writeSensorNode(const Sensor& sensor, bool useFirmwareData) {
    const ByteString* const record = dataToWrite(sensor, useFirmwareData);
    if (!record)
        return nullptr;
    const auto format = readLittleEndian<std::uint8_t>(*record, 0);
    const auto version = readLittleEndian<std::uint8_t>(*record, 1);
    auto element = std::make_shared<XmlElement>(L"Sensor");
    setNumber(*element, L"SensorTypeId", sensor.luid.SensorTypeId);
    setNumber(*element, L"SubTypeId", sensor.luid.SubTypeId);
    setNumber(*element, L"VendorId", sensor.luid.VendorId);
    setNumber(*element, L"InstanceId", sensor.luid.InstanceId);
    setNumber(*element, L"Flags", sensor.luid.Flags);
    element->addChild(std::make_shared<XmlComment>(
        L"Below are the calibration parameters to be applied to raw readings. Note that it is not "
        L"an issue that after calibration, sensor readings might exceed original range."));
    auto data = std::make_shared<XmlElement>(L"CalibrationData");
    setNumber(*data, L"Version", version);
    setNumber(*data, L"FormatId", format);
    element->addChild(data);
    if (!Sensor::isCustomFormat(format))
        sensor.saveCalibrationXml(*data, *record);
    else
        addOemCustomData(*data, *record);
    return element;
}

}  // namespace tavoren
