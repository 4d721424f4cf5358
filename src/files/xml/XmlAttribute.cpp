#include "files/xml/XmlAttribute.h"

#include <utility>

#include "common/Text.h"
#include "files/xml/XmlCode.h"
#include "files/xml/XmlCursor.h"
#include "files/xml/XmlReferences.h"
#include "files/xml/XmlTokens.h"

namespace tavoren {

namespace {

bool isQuote(wchar_t c) {
    return c == L'"' || c == L'\'';
}

}  // namespace

XmlAttribute::XmlAttribute(std::wstring attributeName, std::wstring content) {
    name = std::move(attributeName);
    value = std::move(content);
}

int XmlAttribute::parse(XmlCursor& cursor) {
    const auto inTag = [&cursor](wchar_t c) {
        return c != XmlToken::tagClose.front() && !cursor.at(XmlToken::emptyTagClose);
    };
    const std::size_t start = cursor.position();
    bool inValue = false;
    collect(cursor.takeWhile([inTag](wchar_t c) { return inTag(c) && !isSpace(c) && !isQuote(c); }),
            inValue);
    if (const wchar_t quote = cursor.current(); isQuote(quote)) {
        cursor.advance();
        collect(cursor.takeWhile([inTag, quote](wchar_t c) { return inTag(c) && c != quote; }),
                inValue);
        if (cursor.current() == quote)
            cursor.advance();
    }
    setSource(cursor, start);
    value = decodeReferences(std::move(value));
    return XmlCode::success;
}

void XmlAttribute::collect(std::wstring_view part, bool& inValue) {
    for (const wchar_t c : part) {
        if (c == L'=')
            inValue = true;
        else
            (inValue || isSpace(c) || isQuote(c) ? value : name) += c;
    }
}

void XmlAttribute::write(std::wstring& out, std::size_t /*depth*/) const {
    out += name;
    out += L"=\"";
    out += value;
    out += L'"';
}

}  // namespace tavoren
