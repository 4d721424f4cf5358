#include "files/xml/CreateXmlNode.h"

#include "files/xml/XmlComment.h"
#include "files/xml/XmlCursor.h"
#include "files/xml/XmlDeclaration.h"
#include "files/xml/XmlElement.h"
#include "files/xml/XmlText.h"
#include "files/xml/XmlTokens.h"

namespace tavoren {

namespace {

template <typename Node>
std::shared_ptr<XmlNode> make(XmlNodeType type) {
    auto node = std::make_shared<Node>();
    node->type = type;
    return node;
}

}  // namespace

std::shared_ptr<XmlNode> createXmlNode(const XmlCursor& cursor) {
    if (cursor.at(XmlToken::declarationOpen))
        return make<XmlDeclaration>(XmlNodeType::declaration);
    if (cursor.at(XmlToken::commentOpen))
        return make<XmlComment>(XmlNodeType::comment);
    if (cursor.at(XmlToken::cdataOpen) || cursor.at(XmlToken::markupOpen))
        return nullptr;
    if (cursor.at(XmlToken::tagOpen))
        return make<XmlElement>(XmlNodeType::element);
    return make<XmlText>(XmlNodeType::text);
}

}  // namespace tavoren
