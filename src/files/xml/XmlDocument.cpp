#include "files/xml/XmlDocument.h"

#include <optional>
#include <utility>

#include "common/Text.h"
#include "common/Utf8.h"
#include "files/xml/CreateXmlNode.h"
#include "files/xml/XmlCode.h"
#include "files/xml/XmlCursor.h"
#include "platform/Files.h"

namespace tavoren {

namespace {

constexpr std::wstring_view byteOrderMark = L"\xFEFF";

/// CRLF becomes LF; a carriage return alone stays.
void unifyLineEnds(std::string& bytes) {
    std::size_t kept = 0;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        if (bytes[at] != '\r' || at + 1 == bytes.size() || bytes[at + 1] != '\n')
            bytes[kept++] = bytes[at];
    }
    bytes.resize(kept);
}

std::optional<std::wstring> readText(std::string_view path) {
    std::optional<std::string> bytes = readFile(path, XmlDocument::largestFile);
    if (!bytes)
        return std::nullopt;
    unifyLineEnds(*bytes);
    return fromUtf8(*bytes);
}

}  // namespace

XmlDocument::XmlDocument() {
    type = XmlNodeType::document;
}

void XmlDocument::clear() {
    clearChildren();
    text.clear();
    innerSource = {};
    source = {};
    childSources.clear();
    buffer.reset();
}

int XmlDocument::load(std::string_view path) {
    clear();
    if (path.empty())
        return XmlCode::emptyPath;
    std::optional<std::wstring> content = readText(path);
    return content ? parseBuffer(std::move(*content)) : XmlCode::fileFailure;
}

int XmlDocument::parseBuffer(std::wstring content) {
    clear();
    buffer = std::make_shared<const std::wstring>(std::move(content));
    XmlCursor cursor(buffer);
    cursor.take(byteOrderMark);
    while (!cursor.atEnd()) {
        if (isSpace(cursor.current()))
            cursor.advance();
        else if (const int code = parseChild(cursor); code != XmlCode::success)
            return code;
    }
    return XmlCode::success;
}

int XmlDocument::parseChild(XmlCursor& cursor) {
    const std::shared_ptr<XmlNode> child = createXmlNode(cursor);
    if (!child)
        return XmlCode::unsupported;
    if (const int code = child->parse(cursor); code != XmlCode::success)
        return code;
    if (child->source.empty())
        return XmlCode::unsupported;
    child->parent = this;
    childSources += child->source;
    innerSource = childSources;
    text += child->text;
    return addChild(child);
}

std::wstring XmlDocument::toString() const {
    std::wstring out;
    for (const auto& child : children())
        child->write(out, 0);
    return out;
}

int XmlDocument::save(std::string_view path) const {
    const std::optional<std::string> bytes = toUtf8(toString());
    if (!bytes || !replaceFile(path, *bytes, LineEnds::asWritten))
        return XmlCode::fileFailure;
    return XmlCode::success;
}

}  // namespace tavoren
