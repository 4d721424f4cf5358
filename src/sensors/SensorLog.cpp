#include "common/Text.h"
#include "common/Utf8.h"
#include "files/xml/XmlComment.h"
#include "files/xml/XmlElement.h"
#include "files/xml/XmlText.h"
#include "numerics/Matrix.h"
#include "sensors/Sensor.h"

namespace tavoren {

namespace {

std::shared_ptr<XmlElement> tableElement(std::wstring_view elementName, int rows, int cols) {
    auto element = std::make_shared<XmlElement>(std::wstring(elementName));
    element->setAttribute(L"Rows", std::to_wstring(rows));
    element->setAttribute(L"Cols", std::to_wstring(cols));
    return element;
}

}  // namespace

void Sensor::ensureLogNode() {
    if (logNode)
        return;
    logNode = std::make_shared<XmlElement>(L"Sensor");
    logNode->setAttribute(L"LUID", widen(luidToString(luid)));
    logNode->setAttribute(L"Type", widen(name));
    logNode->setAttribute(L"SamplingUnit", widen(unitToString(dataUnit)));
    logNode->setAttribute(L"Success", L"false");
    logNode->setAttribute(L"IsPrimary", isPrimary() ? L"true" : L"false");
}

void Sensor::logElement(const std::shared_ptr<XmlElement>& element, std::wstring_view values,
                        std::wstring_view comment) {
    ensureLogNode();
    if (!comment.empty())
        logNode->addChild(std::make_shared<XmlComment>(std::wstring(comment)));
    if (!element)
        return;
    auto content = std::make_shared<XmlElement>(L"Values");
    content->addChild(std::make_shared<XmlText>(std::wstring(values)));
    element->addChild(std::move(content));
    logNode->addChild(element);
}

void Sensor::logComment(std::wstring_view text) {
    logElement(nullptr, {}, text);
}

void Sensor::logValue(double value, std::wstring_view elementName, std::wstring_view comment) {
    logElement(std::make_shared<XmlElement>(std::wstring(elementName)), widen(formatNumber(value)),
               comment);
}

void Sensor::logVector(const Vector& vector, std::wstring_view elementName,
                       std::wstring_view comment) {
    logElement(tableElement(elementName, 1, vector.size()), wideListText(vector), comment);
}

void Sensor::logMatrix(const Matrix& matrix, std::wstring_view elementName,
                       std::wstring_view comment) {
    logElement(tableElement(elementName, matrix.rows(), matrix.cols()), wideListText(matrix),
               comment);
}

void Sensor::logTest(
    std::wstring_view elementName, std::wstring_view values, std::wstring_view comment,
    std::initializer_list<std::pair<std::wstring_view, std::wstring_view>> attributes) {
    auto element = std::make_shared<XmlElement>(std::wstring(elementName));
    for (const auto& [attribute, value] : attributes)
        if (!attribute.empty() && !value.empty())
            element->setAttribute(attribute, value);
    logElement(element, values, comment);
}

void Sensor::beginLogSection(std::wstring_view sectionName) {
    ensureLogNode();
    auto section = std::make_shared<XmlElement>(std::wstring(sectionName));
    logNode->addChild(section);
    logParent = logNode;
    logNode = section;
}

void Sensor::endLogSection() {
    logNode = logParent;
}

void Sensor::setLogAttribute(std::wstring_view attribute, std::wstring_view value) {
    ensureLogNode();
    logNode->setAttribute(attribute, value);
}

std::shared_ptr<XmlElement> Sensor::releaseLogNode() {
    logParent.reset();
    return std::exchange(logNode, nullptr);
}

}  // namespace tavoren
