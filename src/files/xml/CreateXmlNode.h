#pragma once

#include <memory>

namespace tavoren {

class XmlCursor;
class XmlNode;

/// An empty node of the kind that stands at the cursor; null for CDATA and markup declarations,
/// which the library does not read.
std::shared_ptr<XmlNode> createXmlNode(const XmlCursor& cursor);

}  // namespace tavoren
