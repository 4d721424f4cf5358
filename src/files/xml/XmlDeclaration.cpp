#include "files/xml/XmlDeclaration.h"

#include <utility>

#include "common/Text.h"
#include "files/xml/XmlCode.h"
#include "files/xml/XmlCursor.h"
#include "files/xml/XmlIndent.h"
#include "files/xml/XmlTokens.h"

namespace tavoren {

XmlDeclaration::XmlDeclaration(std::wstring target, std::wstring content) {
    name = std::move(target);
    text = std::move(content);
    value = text;
}

int XmlDeclaration::parse(XmlCursor& cursor) {
    const std::size_t start = cursor.position();
    if (!cursor.take(XmlToken::declarationOpen))
        return XmlCode::badStart;
    name = cursor.takeWhile([](wchar_t c) { return !isSpace(c); });
    if (!cursor.atEnd())
        cursor.advance();
    text = cursor.takeUntil(XmlToken::declarationClose);
    value = text;
    cursor.take(XmlToken::declarationClose);
    setSource(cursor, start);
    return XmlCode::success;
}

void XmlDeclaration::write(std::wstring& out, std::size_t depth) const {
    appendIndent(out, depth);
    out += XmlToken::declarationOpen;
    out += name;
    out += L' ';
    out += text;
    out += XmlToken::declarationClose;
    out += XmlToken::lineEnd;
}

}  // namespace tavoren
