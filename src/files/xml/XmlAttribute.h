#pragma once

#include <string>
#include <string_view>

#include "files/xml/XmlNode.h"

namespace tavoren {

/// An attribute of an element; not among the element's children.
class XmlAttribute : public XmlNode {
  public:
    explicit XmlAttribute(std::wstring attributeName = {}, std::wstring content = {});

    /// Ends behind the closing quote or before an unquoted blank. Every "=" is dropped and ">" ends
    /// the attribute, also inside quotes. Throws `std::invalid_argument` for a decimal reference
    /// without a decimal digit.
    int parse(XmlCursor& cursor) override;
    void write(std::wstring& out, std::size_t depth) const override;

  private:
    /// Sorts characters into name and value. Quoted blanks and quotes always go to the value.
    void collect(std::wstring_view part, bool& inValue);
};

}  // namespace tavoren
