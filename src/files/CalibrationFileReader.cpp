#include <limits>
#include <string>

#include "common/CalibrationException.h"
#include "common/Utf8.h"
#include "files/CalibrationFile.h"
#include "files/xml/XmlAttribute.h"
#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"
#include "files/XmlImport.h"
#include "platform/Files.h"
#include "sensors/createSensor.h"
#include "sensors/Sensor.h"

namespace tavoren {

namespace {

[[noreturn]] void refuseFile(const std::string& reason) {
    throw CalibrationException("Failed to load XML input file" + reason);
}

std::int32_t attributeNumber(const XmlElement& element, const char* attribute,
                             const std::string& line) {
    const XmlAttribute* const found = element.attribute(widen(attribute));
    if (!found)
        refuseXml(std::string(attribute) + " has invalid value. Line: " + line);
    return integerOf(found->value);
}

template <typename Integer>
Integer boundedNumber(const XmlElement& element, const char* attribute) {
    const std::string line = narrow(element.name);
    const auto number = static_cast<std::uint32_t>(attributeNumber(element, attribute, line));
    if (number > std::numeric_limits<Integer>::max())
        refuseXml(std::string(attribute) + " has invalid value. Line: " + line);
    return static_cast<Integer>(number);
}

/// Which kinds of content stand below a `CalibrationData` element.
struct DataShape {
    explicit DataShape(const XmlElement& data)
        : scale(data.findChild(L"AxisMapping") || data.findChild(L"Matrix") ||
                data.findChild(L"Scale") || data.findChild(L"ScaleFactor")),
          offset(data.findChild(L"Offset") != nullptr),
          noise(data.findChild(L"WhiteNoise") != nullptr),
          steps(data.findChild(L"Steps") != nullptr),
          opaque(childElement(data, L"OEMCustomData")) {}

    bool isInertial() const { return scale || offset || noise; }

    bool scale;  ///< a part of the static record
    bool offset;
    bool noise;
    bool steps;
    std::shared_ptr<XmlElement> opaque;
};

void checkShape(const DataShape& shape, const Sensor& sensor, const std::string& line) {
    const std::string id = luidToString(sensor.luid);
    if (shape.isInertial() && sensor.category != Sensor::inertial)
        refuseXml("Sensor " + id +
                  " was not recognized as Inertial sensor. Invalid calibration format");
    const bool unfitStatic = !shape.noise && shape.scale && sensor.luid.hasDynamicData();
    const bool unfitDynamic = shape.noise && !shape.scale && sensor.luid.hasStaticData();
    if (unfitStatic || unfitDynamic || (shape.noise && shape.scale))
        refuseXml("Sensor " + id + " has invalid format");
    if (shape.steps && sensor.category != Sensor::ambientLight)
        refuseXml(
            "Sensor " + id +
            " was not recognized as Ambient Light sensor. Invalid calibration format. Line: " +
            line);
}

ByteString opaqueBytes(const XmlElement& element) {
    constexpr const char* elementName = "OEMCustomData";
    const std::int64_t length = attributeNumber(element, "DataLength", elementName);
    if (length < 1)
        return {};
    const std::string text = narrow(element.text);
    if (static_cast<std::int64_t>(text.size()) != 2 * length)
        refuseXml(std::string("BinData size does not match declared length. Line: ") + elementName);
    return scanHex(text);
}

void readData(Sensor& sensor, const XmlElement& element, const XmlElement& data) {
    const std::string line = narrow(element.name);
    const auto version = boundedNumber<std::uint8_t>(data, "Version");
    const auto format = boundedNumber<std::uint8_t>(data, "FormatId");
    const DataShape shape(data);
    checkShape(shape, sensor, narrow(data.name));
    const bool known = shape.isInertial() || shape.steps;
    const std::string id = luidToString(sensor.luid);
    if (!shape.opaque) {
        if (!known)
            refuseXml("No calibration data was specified for sensor " + id + ". Line: " + line);
        sensor.getCalibrationData();  // completes what the file holds
        sensor.loadCalibrationXml(data, format, version);
        return;
    }
    if (known)
        refuseXml("Multiple data for sensor " + id + ". Line: " + line);
    ByteString record{format, version};
    const ByteString opaque = opaqueBytes(*shape.opaque);
    record.insert(record.end(), opaque.begin(), opaque.end());
    sensor.setCalibrationData(std::move(record));
}

}  // namespace

std::vector<std::shared_ptr<Sensor>> readCalibrationFile(std::string_view path) {
    if (!FileReader(path).isOpen())
        throw CalibrationException("Failed to open XML input file");
    XmlDocument document;
    if (document.load(path) != 0)
        refuseFile("");
    const auto root = document.findChild(L"TVN");
    if (!root)
        refuseFile(". TVN root node could not be located");
    const auto calibration = root->findChild(L"Calibration");
    if (!calibration)
        refuseFile(". Calibration node could not be located");
    std::vector<std::shared_ptr<Sensor>> sensors;
    for (const auto& child : calibration->children()) {
        const auto element = std::dynamic_pointer_cast<XmlElement>(child);
        if (!element)
            refuseFile(". Invalid Sensor node name: " + narrow(child->name));
        sensors.push_back(readSensorNode(*element));
    }
    return sensors;
}

std::shared_ptr<Sensor> readSensorNode(const XmlElement& element) {
    if (element.name != L"Sensor")
        refuseFile(". Invalid Sensor node name: " + narrow(element.name));
    Luid luid;
    luid.SensorTypeId = boundedNumber<std::uint16_t>(element, "SensorTypeId");
    luid.SubTypeId = boundedNumber<std::uint16_t>(element, "SubTypeId");
    luid.VendorId = boundedNumber<std::uint16_t>(element, "VendorId");
    luid.InstanceId = boundedNumber<std::uint8_t>(element, "InstanceId");
    luid.Flags = boundedNumber<std::uint8_t>(element, "Flags");
    auto sensor = createSensor(luid);
    const auto data = childElement(element, L"CalibrationData");
    if (!data)
        refuseFile(". Invalid CalibrationData node name.");
    readData(*sensor, element, *data);
    return sensor;
}

}  // namespace tavoren
