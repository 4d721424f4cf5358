#include "files/xml/XmlNode.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "common/Text.h"
#include "files/xml/XmlCode.h"
#include "files/xml/XmlCursor.h"

namespace tavoren {

XmlNode::~XmlNode() {
    clearChildren();
}

int XmlNode::addChild(std::shared_ptr<XmlNode> child) {
    assert(child);
    children_.push_back(std::move(child));
    return XmlCode::success;
}

void XmlNode::clearChildren() {
    while (!children_.empty()) {
        if (children_.back()->parent == this)
            children_.back()->parent = nullptr;
        children_.pop_back();
    }
}

std::shared_ptr<XmlNode> XmlNode::findChild(std::wstring_view childName) const {
    const auto found = std::find_if(
        children_.begin(), children_.end(),
        [childName](const auto& child) { return equalsIgnoringCase(child->name, childName); });
    return found == children_.end() ? nullptr : *found;
}

int XmlNode::parse(XmlCursor& /*cursor*/) {
    return XmlCode::noParser;
}

void XmlNode::write(std::wstring& /*out*/, std::size_t /*depth*/) const {}

std::wstring XmlNode::toString(std::size_t depth) const {
    std::wstring out;
    write(out, depth);
    return out;
}

void XmlNode::setSource(const XmlCursor& cursor, std::size_t start) {
    parsedText = cursor.text();
    source = cursor.since(start);
}

}  // namespace tavoren
