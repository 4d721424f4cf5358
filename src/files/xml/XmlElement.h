#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "files/xml/XmlNode.h"

namespace tavoren {

class XmlAttribute;

/// An element with its attributes. `text` collects the values of its text children, also of those
/// that are blank and therefore no children.
class XmlElement : public XmlNode {
  public:
    explicit XmlElement(std::wstring elementName = {});
    ~XmlElement() override;

    /// In order of appearance.
    const std::vector<std::unique_ptr<XmlAttribute>>& attributes() const { return attributes_; }
    /// The first attribute of this name in any case; null for none.
    XmlAttribute* attribute(std::wstring_view attributeName);
    const XmlAttribute* attribute(std::wstring_view attributeName) const;
    /// Changes the attribute of this name in any case, or appends one.
    void setAttribute(std::wstring_view attributeName, std::wstring_view content);

    /// An element that the input leaves open is accepted as far as it goes.
    int parse(XmlCursor& cursor) override;
    void write(std::wstring& out, std::size_t depth) const override;

  private:
    enum class State { start, name, attributes, content, endTag, done };

    XmlAttribute* findAttribute(std::wstring_view attributeName) const;
    int parseStep(State& state, XmlCursor& cursor);
    int parseName(State& state, XmlCursor& cursor);
    void parseAttribute(State& state, XmlCursor& cursor);
    int parseContent(State& state, XmlCursor& cursor);
    int parseEndTag(State& state, XmlCursor& cursor) const;
    void adopt(std::shared_ptr<XmlNode> child);

    std::vector<std::unique_ptr<XmlAttribute>> attributes_;
};

}  // namespace tavoren
