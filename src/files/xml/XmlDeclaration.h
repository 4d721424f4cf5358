#pragma once

#include <string>

#include "files/xml/XmlNode.h"

namespace tavoren {

/// "<?target content?>". Only a blank ends the target.
class XmlDeclaration : public XmlNode {
  public:
    explicit XmlDeclaration(std::wstring target = {}, std::wstring content = {});

    int parse(XmlCursor& cursor) override;
    void write(std::wstring& out, std::size_t depth) const override;
};

}  // namespace tavoren
