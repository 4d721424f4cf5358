#include "sensors/OemCustomData.h"

#include "common/Text.h"
#include "common/Utf8.h"
#include "files/xml/XmlElement.h"
#include "files/xml/XmlText.h"

namespace tavoren {

void addOemCustomData(XmlElement& calibrationData, const ByteString& record) {
    constexpr std::size_t headerSize = 2;
    if (record.size() < headerSize)
        throw CalibrationException("Invalid calibration data size");
    const ByteString opaque(record.begin() + headerSize, record.end());
    auto element = std::make_shared<XmlElement>(L"OEMCustomData");
    element->setAttribute(L"DataLength", std::to_wstring(opaque.size()));
    element->addChild(std::make_shared<XmlText>(widen(toHex(opaque))));
    calibrationData.addChild(std::move(element));
}

}  // namespace tavoren
