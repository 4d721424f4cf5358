#pragma once

#include <string>

#include "files/xml/XmlNode.h"

namespace tavoren {

class XmlComment : public XmlNode {
  public:
    explicit XmlComment(std::wstring content = {});

    int parse(XmlCursor& cursor) override;
    void write(std::wstring& out, std::size_t depth) const override;
};

}  // namespace tavoren
