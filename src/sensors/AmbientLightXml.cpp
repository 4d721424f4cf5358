#include <limits>
#include <string>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "files/xml/XmlAttribute.h"
#include "files/xml/XmlComment.h"
#include "files/xml/XmlElement.h"
#include "files/xml/XmlText.h"
#include "files/XmlImport.h"
#include "frame/Console.h"
#include "sensors/AmbientLight.h"
#include "sensors/LightRecord.h"

namespace tavoren {

namespace {

constexpr std::uint32_t largestWord = std::numeric_limits<std::uint16_t>::max();
constexpr std::uint32_t largestDivider = std::numeric_limits<std::uint8_t>::max();

[[noreturn]] void refuse(const std::string& reason, const XmlNode& at) {
    throw CalibrationException(reason + " Line: " + narrow(at.name));
}

/// Negative numbers are beyond every limit.
std::uint32_t numberOf(std::wstring_view text) {
    return static_cast<std::uint32_t>(integerOf(text));
}

/// The attribute's text, empty for a missing one.
std::wstring_view attributeText(const XmlElement& element, std::wstring_view attribute) {
    const XmlAttribute* const found = element.attribute(attribute);
    return found ? std::wstring_view(found->value) : std::wstring_view();
}

void appendWord(ByteString& record, std::uint32_t number) {
    const std::size_t at = record.size();
    record.resize(at + sizeof(std::uint16_t));
    writeLittleEndian(record, at, static_cast<std::uint16_t>(number));
}

std::uint32_t loadDivider(const XmlElement& element) {
    const std::wstring_view text = attributeText(element, L"Divider");
    if (text.empty())
        return 1;
    const std::uint32_t divider = numberOf(text);
    if (divider == 0) {
        Console::printLine(
            "Warning: Ambient Light divider value is set to 0. Changing it to 1. Line: " +
            narrow(element.name));
        return 1;
    }
    if (divider > largestDivider)
        throw CalibrationException(
            "Invalid divider value in XML input file. Value should be "
            "between 1 and 255. Node: " +
            narrow(element.name));
    return divider;
}

void loadMultiplier(const XmlElement& data, ByteString& record) {
    const auto element = childElement(data, L"Multiplier");
    if (!element)
        refuse("XML parsing error. Missing Ambient Light multiplier node.", data);
    const std::uint32_t multiplier = numberOf(element->text);
    if (element->text.empty() || multiplier > largestWord)
        refuse("Invalid multiplier value in XML input file. Value should be between 0 and 65535.",
               *element);
    appendWord(record, multiplier);
    record.push_back(static_cast<std::uint8_t>(loadDivider(*element)));
}

/// One number of a step, `Scale` or `Lux`.
void loadStepValue(const XmlNode& step, std::wstring_view name, const std::string& missing,
                   ByteString& record) {
    const auto element = childElement(step, name);
    if (!element)
        throw CalibrationException(missing);
    if (element->name != name)
        refuse("XML parsing error. Unexpected element ,", *element);
    const XmlAttribute* const value = element->attribute(L"value");
    const std::uint32_t number = value ? numberOf(value->value) : largestWord + 1;
    if (number > largestWord)
        refuse("Invalid Scale value in XML input file. Value should be between 0 and 65535.",
               *element);
    appendWord(record, number);
}

void loadSteps(const XmlElement& data, ByteString& record) {
    const auto steps = childElement(data, L"Steps");
    if (!steps)
        throw CalibrationException("Calibration data node is NULL.");
    const std::wstring_view text = attributeText(*steps, L"NumOfSteps");
    if (text.empty())
        refuse("XML parsing error. Missing field NumOfSteps.", *steps);
    const std::uint32_t count = numberOf(text);
    constexpr const char* wrongCount = "XML parsing error. Invalid value for NumOfSteps.";
    if (count < LightRecord::fewestSteps || count > LightRecord::mostSteps)
        refuse(wrongCount, *steps);
    record.push_back(static_cast<std::uint8_t>(count));
    for (const auto& step : steps->children()) {
        if (step->name != L"Step")
            refuse("XML parsing error. Missing field NumOfSteps.", *step);
        loadStepValue(*step, L"Scale", "scale node is NULL.", record);
        loadStepValue(*step, L"Lux", "lux node is NULL.", record);
    }
    if (steps->children().size() != count)  // a curve with lost or invented steps
        refuse(wrongCount, *steps);
}

void loadVendorData(const XmlElement& data, ByteString& record) {
    const auto element = childElement(data, L"VendorData");
    if (!element)
        return;
    const std::wstring_view lengthText = attributeText(*element, L"DataLength");
    if (lengthText.empty())
        refuse("XML parsing error. Missing field DataLength.", *element);
    const std::int64_t length = parseInteger(narrow(lengthText));
    if (length < 1)
        return;
    const std::string text = narrow(element->text);
    if (static_cast<std::int64_t>(text.size()) != 2 * length)
        refuse("XML parsing error. BinData size does not match declared length.", *element);
    const ByteString vendor = scanHex(text);
    appendWord(record, static_cast<std::uint32_t>(length));
    record.insert(record.end(), vendor.begin(), vendor.end());
}

std::shared_ptr<XmlElement> addChild(XmlElement& parent, std::wstring_view name,
                                     std::wstring_view attribute, std::uint32_t number) {
    auto child = std::make_shared<XmlElement>(std::wstring(name));
    child->setAttribute(attribute, std::to_wstring(number));
    parent.addChild(child);
    return child;
}

void saveSteps(XmlElement& element, const ByteString& record) {
    const std::uint8_t count = LightRecord::stepCount(record);
    const auto steps = addChild(element, L"Steps", L"NumOfSteps", count);
    for (std::size_t i = 0; i < count; ++i) {
        auto step = std::make_shared<XmlElement>(L"Step");
        addChild(*step, L"Scale", L"value", LightRecord::scale(record, i));
        addChild(*step, L"Lux", L"value", LightRecord::lux(record, i));
        steps->addChild(std::move(step));
    }
}

void saveVendorData(XmlElement& element, const ByteString& record) {
    const std::size_t at = LightRecord::sizeFor(LightRecord::stepCount(record));
    if (record.size() <= at)
        return;
    const auto length = readLittleEndian<std::uint16_t>(record, at);
    const std::size_t first = at + LightRecord::lengthSize;
    if (record.size() < first + length)
        throw CalibrationException("Invalid calibration data size");
    const auto begin = record.begin() + static_cast<std::ptrdiff_t>(first);
    const auto vendor = addChild(element, L"VendorData", L"DataLength", length);
    vendor->addChild(std::make_shared<XmlText>(widen(toHex({begin, begin + length}))));
}

}  // namespace

void AmbientLight::loadCalibrationXml(const XmlElement& element, std::uint8_t id,
                                      std::uint8_t version) {
    if (id != formatId)
        refuse(
            "Format ID of ALS calibration structure is not supported. Only supported format is "
            "1.",
            element);
    ByteString record{id, version};
    loadMultiplier(element, record);
    loadSteps(element, record);
    loadVendorData(element, record);
    setCalibrationData(std::move(record));
}

void AmbientLight::saveCalibrationXml(XmlElement& element, const ByteString& record) const {
    if (formatOf(record) != formatId)
        throw CalibrationException("Unsupported format of calibration data");
    element.addChild(std::make_shared<XmlComment>(
        L"The following represents the scale the sensor data will be multiplied by. The scale is a "
        L"floating number is represented by multiplier/divider. The final result is Lux value read "
        L"from sensor * (multiplier/divider)"));
    const auto factor = addChild(element, L"Multiplier", L"Divider", LightRecord::divider(record));
    factor->addChild(std::make_shared<XmlText>(std::to_wstring(LightRecord::multiplier(record))));
    saveSteps(element, record);
    if (!firmwareData.empty() && record.size() != fixedRecordSize(firmwareData))
        saveVendorData(element, record);
}

}  // namespace tavoren
