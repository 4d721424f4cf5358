#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavoren {

class XmlCursor;

enum class XmlNodeType : std::int32_t {
    node = 0,
    element = 1,
    attribute = 2,
    comment = 3,
    text = 4,
    declaration = 5,
    document = 6,
};

/// A node of an XML document. A node shares the ownership of its children; nodes that were parsed
/// also share the text they come from, so that `source` and `innerSource` cost no copy.
/// A document and its nodes belong to one thread at a time.
class XmlNode {
  public:
    XmlNode() = default;
    XmlNode(const XmlNode&) = delete;
    XmlNode& operator=(const XmlNode&) = delete;
    virtual ~XmlNode();

    const std::vector<std::shared_ptr<XmlNode>>& children() const { return children_; }
    XmlNode* firstChild() const { return children_.empty() ? nullptr : children_.front().get(); }
    XmlNode* lastChild() const { return children_.empty() ? nullptr : children_.back().get(); }

    /// Appends a node, which must not be null, and gives 0. Leaves its `parent` alone.
    int addChild(std::shared_ptr<XmlNode> child);
    /// Lets go of all children.
    void clearChildren();
    /// The first child of this name in any case; null for none. Texts and comments have no name.
    std::shared_ptr<XmlNode> findChild(std::wstring_view childName) const;

    /// Reads the node at the cursor, which stays behind what was consumed; gives an `XmlCode`.
    virtual int parse(XmlCursor& cursor);
    /// Appends the node as it stands in a file, indented by `depth` levels. Nothing is escaped.
    virtual void write(std::wstring& out, std::size_t depth) const;
    /// What `write` appends.
    std::wstring toString(std::size_t depth = 0) const;

    std::wstring text;              ///< own content; of an element the values of its text children
    std::wstring_view innerSource;  ///< the children as they were parsed
    std::wstring_view source;       ///< this node as it was parsed
    std::wstring name;              ///< of an element or attribute; the target of a declaration
    std::wstring value;  ///< of an attribute, decoded; content of the others; no element's
    XmlNodeType type = XmlNodeType::node;  ///< set by the parser, and for every `XmlText`
    XmlNode* parent = nullptr;             ///< set by the parser; null when the parent is gone

  protected:
    /// Makes all that was consumed since `start` the `source`.
    void setSource(const XmlCursor& cursor, std::size_t start);

  private:
    std::vector<std::shared_ptr<XmlNode>> children_;
    std::shared_ptr<const std::wstring> parsedText;  // what the sources point into
};

}  // namespace tavoren
