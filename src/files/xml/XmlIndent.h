#pragma once

#include <cstddef>
#include <string>

#include "files/xml/XmlTokens.h"

namespace tavoren {

/// Appends the blanks before a node that stands `depth` levels deep.
inline void appendIndent(std::wstring& out, std::size_t depth) {
    out.append(depth * XmlToken::indent.size(), L' ');
}

}  // namespace tavoren
