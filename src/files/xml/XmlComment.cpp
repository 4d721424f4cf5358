#include "files/xml/XmlComment.h"

#include <utility>

#include "files/xml/XmlCode.h"
#include "files/xml/XmlCursor.h"
#include "files/xml/XmlIndent.h"
#include "files/xml/XmlTokens.h"

namespace tavoren {

XmlComment::XmlComment(std::wstring content) {
    text = std::move(content);
    value = text;
}

int XmlComment::parse(XmlCursor& cursor) {
    const std::size_t start = cursor.position();
    if (!cursor.take(XmlToken::commentOpen))
        return XmlCode::badStart;
    text = cursor.takeUntil(XmlToken::commentClose);
    value = text;
    cursor.take(XmlToken::commentClose);
    setSource(cursor, start);
    return XmlCode::success;
}

void XmlComment::write(std::wstring& out, std::size_t depth) const {
    appendIndent(out, depth);
    out += XmlToken::commentOpen;
    out += text;
    out += XmlToken::commentClose;
    out += XmlToken::lineEnd;
}

}  // namespace tavoren
