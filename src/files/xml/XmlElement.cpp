#include "files/xml/XmlElement.h"

#include <algorithm>
#include <utility>

#include "common/Text.h"
#include "files/xml/CreateXmlNode.h"
#include "files/xml/XmlAttribute.h"
#include "files/xml/XmlCode.h"
#include "files/xml/XmlCursor.h"
#include "files/xml/XmlIndent.h"
#include "files/xml/XmlName.h"
#include "files/xml/XmlText.h"
#include "files/xml/XmlTokens.h"

namespace tavoren {

namespace {

bool isText(const XmlNode& node) {
    return node.type == XmlNodeType::text;
}

bool endsWith(std::wstring_view text, std::wstring_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

XmlElement::XmlElement(std::wstring elementName) {
    name = std::move(elementName);
}

XmlElement::~XmlElement() = default;

XmlAttribute* XmlElement::findAttribute(std::wstring_view attributeName) const {
    const auto found = std::find_if(attributes_.begin(), attributes_.end(),
                                    [attributeName](const auto& candidate) {
                                        return equalsIgnoringCase(candidate->name, attributeName);
                                    });
    return found == attributes_.end() ? nullptr : found->get();
}

XmlAttribute* XmlElement::attribute(std::wstring_view attributeName) {
    return findAttribute(attributeName);
}

const XmlAttribute* XmlElement::attribute(std::wstring_view attributeName) const {
    return findAttribute(attributeName);
}

void XmlElement::setAttribute(std::wstring_view attributeName, std::wstring_view content) {
    if (XmlAttribute* const present = attribute(attributeName))
        present->value = content;
    else
        attributes_.push_back(
            std::make_unique<XmlAttribute>(std::wstring(attributeName), std::wstring(content)));
}

int XmlElement::parse(XmlCursor& cursor) {
    const XmlCursor::Level level(cursor);
    if (level.tooDeep())
        return XmlCode::unsupported;
    const std::size_t start = cursor.position();
    State state = State::start;
    int code = XmlCode::success;
    while (code == XmlCode::success && state != State::done && !cursor.atEnd())
        code = parseStep(state, cursor);
    setSource(cursor, start);
    return code;
}

int XmlElement::parseStep(State& state, XmlCursor& cursor) {
    switch (state) {
        case State::start:
            state = State::name;
            return cursor.take(XmlToken::tagOpen) ? XmlCode::success : XmlCode::unsupported;
        case State::name:
            return parseName(state, cursor);
        case State::attributes:
            parseAttribute(state, cursor);
            return XmlCode::success;
        case State::content:
            return parseContent(state, cursor);
        case State::endTag:
            return parseEndTag(state, cursor);
        case State::done:
            break;
    }
    return XmlCode::success;
}

int XmlElement::parseName(State& state, XmlCursor& cursor) {
    if (isXmlNameStart(cursor.current()))
        name = cursor.takeWhile(isXmlNameCharacter);
    if (cursor.atEnd())
        return XmlCode::success;
    if (cursor.take(XmlToken::emptyTagClose)) {
        state = State::done;
    } else if (cursor.take(XmlToken::tagClose)) {
        state = State::content;
    } else if (isSpace(cursor.current())) {
        cursor.advance();
        state = State::attributes;
    } else {
        return XmlCode::badName;
    }
    return XmlCode::success;
}

/// One attribute, which is empty where blanks stand without one, and what follows it.
void XmlElement::parseAttribute(State& state, XmlCursor& cursor) {
    attributes_.push_back(std::make_unique<XmlAttribute>());
    attributes_.back()->type = XmlNodeType::attribute;
    attributes_.back()->parse(cursor);
    if (isSpace(cursor.current()))
        cursor.advance();
    else if (cursor.at(XmlToken::emptyTagClose))
        state = State::endTag;
    else if (cursor.take(XmlToken::tagClose))
        state = State::content;
}

/// One child, or the start of the end tag. All content is one range of the input.
int XmlElement::parseContent(State& state, XmlCursor& cursor) {
    if (cursor.take(XmlToken::endTagOpen)) {
        state = State::endTag;
        return XmlCode::success;
    }
    const std::size_t start = cursor.position() - innerSource.size();
    const std::shared_ptr<XmlNode> child = createXmlNode(cursor);
    if (!child)
        return XmlCode::unsupported;
    if (const int code = child->parse(cursor); code != XmlCode::success)
        return code;
    if (child->source.empty())
        return XmlCode::unsupported;
    innerSource = cursor.since(start);
    adopt(child);
    return XmlCode::success;
}

void XmlElement::adopt(std::shared_ptr<XmlNode> child) {
    child->parent = this;
    if (isText(*child)) {
        text += child->value;
        if (static_cast<const XmlText&>(*child).whitespaceOnly)
            return;
    }
    addChild(std::move(child));
}

/// The name in the end tag runs to the closing bracket, blanks included; "/>" closes any element.
int XmlElement::parseEndTag(State& state, XmlCursor& cursor) const {
    const std::wstring_view endName = cursor.takeWhile([&cursor](wchar_t c) {
        return c != XmlToken::tagClose.front() && !cursor.at(XmlToken::emptyTagClose);
    });
    if (cursor.at(XmlToken::tagClose) && !equalsIgnoringCase(endName, name))
        return XmlCode::endTagMismatch;
    if (!cursor.take(XmlToken::emptyTagClose))
        cursor.take(XmlToken::tagClose);
    state = State::done;
    return XmlCode::success;
}

void XmlElement::write(std::wstring& out, std::size_t depth) const {
    appendIndent(out, depth);
    out += XmlToken::tagOpen;
    out += name;
    for (const auto& each : attributes_) {
        out += L' ';
        each->write(out, depth);
    }
    if (children().empty()) {
        out += XmlToken::emptyTagClose;
        out += XmlToken::lineEnd;
        return;
    }
    out += XmlToken::tagClose;
    if (!isText(*firstChild()))
        out += XmlToken::lineEnd;
    for (const auto& child : children())
        child->write(out, depth + 1);
    if (endsWith(out, XmlToken::lineEnd))
        appendIndent(out, depth);
    out += XmlToken::endTagOpen;
    out += name;
    out += XmlToken::tagClose;
    out += XmlToken::lineEnd;
}

}  // namespace tavoren
