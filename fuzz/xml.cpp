// A document that was read and saved reads back, and is then saved as the same bytes.

#include <algorithm>
#include <stdexcept>

#include "common/Utf8.h"
#include "files/xml/XmlAttribute.h"
#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"
#include "fuzz/Fuzz.h"

namespace tavoren::fuzz {
namespace {

using std::wstring_view;

bool isFreeOf(wstring_view characters, wstring_view text) {
    return text.find_first_of(characters) == wstring_view::npos;
}

/// The writer escapes nothing and indents, so a document must have what it writes to read back: no
/// text beside other children, no character that would end a value, no bare carriage return, no
/// half of a character made by a reference.
bool isWritable(const XmlNode& node) {
    constexpr wstring_view lost(L"\r\0", 2);
    if (!isFreeOf(lost, node.text) || !isFreeOf(lost, node.value) || !isFreeOf(lost, node.name))
        return false;
    const auto& children = node.children();
    if (const auto* const element = dynamic_cast<const XmlElement*>(&node)) {
        const auto fits = [](const auto& attribute) {
            return !attribute->name.empty() && toUtf8(attribute->value) &&
                   isFreeOf({L"\r\0\"=&>", 6}, attribute->value);
        };
        if (node.name.empty() ||
            !std::all_of(element->attributes().begin(), element->attributes().end(), fits))
            return false;
    }
    const auto isText = [](const auto& child) { return child->type == XmlNodeType::text; };
    const bool isTextAlone = children.size() == 1 && node.type == XmlNodeType::element;
    return (isTextAlone || std::none_of(children.begin(), children.end(), isText)) &&
           std::all_of(children.begin(), children.end(),
                       [](const auto& child) { return isWritable(*child); });
}

void check(const std::string& input) {
    const TemporaryFolder& folder = workingFolder();
    folder.write("input.xml", input);
    XmlDocument document;
    try {
        if (document.load(folder / "input.xml") != 0)
            return;
    } catch (const std::invalid_argument&) {
        return;  // "&#F;": told at `XmlAttribute::parse`
    }
    const bool saved = document.save(folder / "first.xml") == 0;
    if (!isWritable(document))
        return;
    require(saved, "a document is saved");
    XmlDocument again;
    require(again.load(folder / "first.xml") == 0, "a saved document reads back");
    require(again.save(folder / "second.xml") == 0, "a document that reads back is saved");
    require(folder.read("second.xml") == folder.read("first.xml"), "it is saved as the same bytes");
}

}  // namespace
}  // namespace tavoren::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavoren::fuzz::check(tavoren::fuzz::Input(data, size).text());
    return 0;
}
