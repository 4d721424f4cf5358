#include <array>
#include <memory>
#include <string>

#include "files/xml/XmlAttribute.h"
#include "files/xml/XmlComment.h"
#include "files/xml/XmlElement.h"
#include "files/xml/XmlText.h"
#include "files/XmlImport.h"
#include "sensors/DynamicRecord.h"
#include "sensors/InertialSensor.h"
#include "sensors/OemCustomData.h"
#include "sensors/StaticRecord.h"

namespace tavoren {

namespace {

constexpr std::array axisNames{L"XX", L"XY", L"XZ", L"YX", L"YY", L"YZ", L"ZX", L"ZY", L"ZZ"};
constexpr std::array matrixNames{L"Mat11", L"Mat12", L"Mat13", L"Mat21", L"Mat22",
                                 L"Mat23", L"Mat31", L"Mat32", L"Mat33"};
constexpr std::array offsetNames{L"OffsetX", L"OffsetY", L"OffsetZ"};

template <typename Names>
bool hasName(const XmlNode& child, const Names& names, std::size_t index) {
    return index < names.size() && child.name == names[index];
}

void loadAxisMapping(const XmlNode& element, ByteString& record) {
    constexpr std::uint32_t mappingBits = (1U << 18) - 1;
    std::uint32_t fields = 0;
    for (std::size_t i = 0; i < element.children().size(); ++i) {
        const XmlNode& child = *element.children()[i];
        if (!hasName(child, axisNames, i))
            refuseXml("Unexpected element " + narrow(child.value));
        const std::int32_t number = integerOf(child.innerSource);
        if (number < -1 || number > 1)
            refuseXml("Invalid value for axis element " + narrow(child.value));
        fields |= (static_cast<std::uint32_t>(number) & 3U) << (2 * i);
    }
    StaticRecord::setMapping(record, (StaticRecord::mapping(record) & ~mappingBits) | fields);
}

void loadMatrix(const XmlNode& element, ByteString& record) {
    for (std::size_t i = 0; i < element.children().size(); ++i) {
        const XmlNode& child = *element.children()[i];
        const std::string childName = narrow(child.name);
        const bool isDivider = i == matrixNames.size() && child.name == L"ScaleFactor";
        if (!isDivider && !hasName(child, matrixNames, i))
            refuseXml("Unexpected element " + childName);
        const std::int32_t number = integerOf(child.text);
        if (number < -32768 || number > 32767)
            refuseXml("Invalid value for element " + childName +
                      (isDivider ? "" : ". name: " + childName));
        if (isDivider)
            StaticRecord::setDivider(record, static_cast<std::uint16_t>(number));
        else
            StaticRecord::setNumerator(record, static_cast<int>(i),
                                       static_cast<std::int16_t>(number));
    }
}

void loadOffset(const XmlNode& element, ByteString& record) {
    for (std::size_t i = 0; i < element.children().size(); ++i) {
        const XmlNode& child = *element.children()[i];
        if (!hasName(child, offsetNames, i))
            refuseXml("Unexpected element " + narrow(child.name) + ". Line: " + narrow(child.name));
        StaticRecord::setOffset(record, static_cast<int>(i), integerOf(child.text));
    }
}

void loadVendorData(const XmlElement& element, ByteString& record) {
    const XmlAttribute* const length = element.attribute(L"DataLength");
    if (!length || length->value.empty())
        refuseXml("Missing field DataLength. Line: " + narrow(element.name));
    const std::int64_t count = integerOf(length->value);
    const std::string text = narrow(element.text);
    if (static_cast<std::int64_t>(text.size()) != 2 * count)
        refuseXml("VendorData size does not match declared length. Line: " + narrow(element.name));
    const ByteString vendor = scanHex(text);
    StaticRecord::setVendorLength(record, static_cast<std::uint16_t>(count));
    record.insert(record.end(), vendor.begin(), vendor.end());
}

void addNumber(XmlElement& element, std::wstring_view name, std::int64_t number) {
    auto child = std::make_shared<XmlElement>(std::wstring(name));
    child->addChild(std::make_shared<XmlText>(std::to_wstring(number)));
    element.addChild(std::move(child));
}

void addComment(XmlElement& element, std::wstring_view text) {
    element.addChild(std::make_shared<XmlComment>(std::wstring(text)));
}

}  // namespace

void InertialSensor::loadCalibrationXml(const XmlElement& element, std::uint8_t id,
                                        std::uint8_t version) {
    if (id != formatId)
        refuseXml("Unsupported format of calibration data. Line: " + narrow(element.name));
    if (luid.hasStaticData())
        loadStaticXml(element, version);
    else if (luid.hasDynamicData())
        loadDynamicXml(element);
    else
        refuseXml("Unknown format of calibration data. Line: " + narrow(element.name));
}

void InertialSensor::loadStaticXml(const XmlElement& element, std::uint8_t version) {
    ByteString record = prependFormat(getStaticDefault());
    record[1] = version;
    if (const auto mapping = element.findChild(L"AxisMapping"))
        loadAxisMapping(*mapping, record);
    if (const auto matrix = element.findChild(L"Matrix"))
        loadMatrix(*matrix, record);
    if (const auto offsets = element.findChild(L"Offset"))
        loadOffset(*offsets, record);
    if (const auto vendor = childElement(element, L"VendorData"))
        loadVendorData(*vendor, record);
    setCalibrationData(std::move(record));
}

void InertialSensor::loadDynamicXml(const XmlElement& element) {
    const auto noise = element.findChild(L"WhiteNoise");
    if (!noise)
        refuseXml("Missing white noise value.");
    importedWhiteNoise = integerOf(noise->text);
    hasImportedNoise = true;
    if (firmwareData.empty())  // the value goes in when the firmware's data comes
        return;
    validateCalibrationData(firmwareData);
    setImportedNoise();
}

void InertialSensor::saveCalibrationXml(XmlElement& element, const ByteString& record) const {
    if (luid.hasDynamicData() && !luid.hasStaticData() && record.empty())
        throw CalibrationException("Invalid calibration data");
    if (formatOf(record) != formatId)
        refuseXml("Unsupported format of calibration data");
    if (luid.hasStaticData())
        saveStaticXml(element, record);
    else if (luid.hasDynamicData())
        addNumber(element, L"WhiteNoise",
                  readLittleEndian<std::uint32_t>(record, DynamicRecord::whiteNoiseAt));
    else
        addOemCustomData(element, calibrationData.empty() ? record : calibrationData);
}

void InertialSensor::saveStaticXml(XmlElement& element, const ByteString& record) const {
    addComment(element,
               L"Axis mapping matrix maps the raw axes on sensor, towards axis system on device "
               L"after calibration.");
    auto mapping = std::make_shared<XmlElement>(L"AxisMapping");
    const Matrix axes = expandAxisMapping(StaticRecord::mapping(record));
    for (std::size_t k = 0; k < axisNames.size(); ++k)
        addNumber(*mapping, axisNames[k],
                  truncateToInt32(axes(static_cast<int>(k) / 3, static_cast<int>(k) % 3)));
    element.addChild(std::move(mapping));

    addComment(element,
               L"This applies to the raw readings so they will be scaled to get the calibrated "
               L"values. The actual scale is the values in matrix divided by the ScaleFactor.");
    auto matrix = std::make_shared<XmlElement>(L"Matrix");
    for (std::size_t k = 0; k < matrixNames.size(); ++k)
        addNumber(*matrix, matrixNames[k], StaticRecord::numerator(record, static_cast<int>(k)));
    addNumber(*matrix, L"ScaleFactor", StaticRecord::divider(record));
    element.addChild(std::move(matrix));

    addComment(element,
               L"Offset will be removed from the raw readings to achieve the calibration.");
    auto offsets = std::make_shared<XmlElement>(L"Offset");
    for (std::size_t axis = 0; axis < offsetNames.size(); ++axis)
        addNumber(*offsets, offsetNames[axis],
                  StaticRecord::offset(record, static_cast<int>(axis)));
    element.addChild(std::move(offsets));
    saveVendorData(element, record);
}

void InertialSensor::saveVendorData(XmlElement& element, const ByteString& record) {
    const std::uint16_t length = StaticRecord::vendorLength(record);
    if (length == 0)
        return;
    if (record.size() < StaticRecord::vendorDataAt + length)
        throw CalibrationException("Invalid calibration data size");
    const auto first = record.begin() + StaticRecord::vendorDataAt;
    auto vendor = std::make_shared<XmlElement>(L"VendorData");
    vendor->setAttribute(L"DataLength", std::to_wstring(length));
    vendor->addChild(std::make_shared<XmlText>(widen(toHex({first, first + length}))));
    element.addChild(std::move(vendor));
}

}  // namespace tavoren
