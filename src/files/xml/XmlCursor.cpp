#include "files/xml/XmlCursor.h"

#include <algorithm>
#include <utility>

namespace tavoren {

XmlCursor::XmlCursor(std::shared_ptr<const std::wstring> text)
    : shared(std::move(text)), length(std::min(shared->find(L'\0'), shared->size())) {}

bool XmlCursor::take(std::wstring_view token) {
    if (!at(token))
        return false;
    advance(token.size());
    return true;
}

std::wstring_view XmlCursor::takeUntil(std::wstring_view token) {
    const std::wstring_view taken = rest().substr(0, rest().find(token));
    advance(taken.size());
    return taken;
}

}  // namespace tavoren
