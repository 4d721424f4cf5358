#include "files/xml/XmlText.h"

#include <algorithm>
#include <utility>

#include "common/Text.h"
#include "files/xml/XmlCode.h"
#include "files/xml/XmlCursor.h"
#include "files/xml/XmlTokens.h"

namespace tavoren {

XmlText::XmlText(std::wstring content) {
    text = std::move(content);
    value = text;
    type = XmlNodeType::text;
}

int XmlText::parse(XmlCursor& cursor) {
    const std::size_t start = cursor.position();
    value = cursor.takeWhile([&cursor](wchar_t c) {
        return c != XmlToken::tagOpen.front() && !cursor.at(XmlToken::emptyTagClose);
    });
    text = value;
    whitespaceOnly = std::all_of(value.begin(), value.end(), [](wchar_t c) { return isSpace(c); });
    setSource(cursor, start);
    return XmlCode::success;
}

void XmlText::write(std::wstring& out, std::size_t /*depth*/) const {
    out += value;
}

}  // namespace tavoren
