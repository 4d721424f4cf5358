#pragma once

#include <string>

#include "files/xml/XmlNode.h"

namespace tavoren {

/// Character data of an element, blanks kept, references not decoded.
class XmlText : public XmlNode {
  public:
    explicit XmlText(std::wstring content = {});

    int parse(XmlCursor& cursor) override;
    void write(std::wstring& out, std::size_t depth) const override;

    bool whitespaceOnly = true;  ///< no other character was parsed
};

}  // namespace tavoren
