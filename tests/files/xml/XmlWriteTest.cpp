#include <gtest/gtest.h>

#include "files/TemporaryFolder.h"
#include "files/xml/XmlCode.h"
#include "files/xml/XmlComment.h"
#include "files/xml/XmlDeclaration.h"
#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"
#include "files/xml/XmlText.h"
#include "platform/Files.h"

namespace tavoren {
namespace {

std::shared_ptr<XmlElement> elementWith(std::wstring name, std::shared_ptr<XmlNode> child) {
    auto element = std::make_shared<XmlElement>(std::move(name));
    element->addChild(std::move(child));
    return element;
}

/// Every kind of node and every layout.
void fill(XmlDocument& document) {
    document.addChild(std::make_shared<XmlDeclaration>(L"xml", L"version=\"1.0\""));
    auto root = elementWith(L"Log", std::make_shared<XmlComment>(L"note"));
    root->setAttribute(L"Type", L"old");
    root->setAttribute(L"TYPE", L"new");
    root->setAttribute(L"b", L"&\"");
    root->addChild(std::make_shared<XmlElement>(L"Empty"));
    root->addChild(elementWith(L"Offset", std::make_shared<XmlText>(L"1.0 & 2")));
    auto mixed = elementWith(L"Mixed", std::make_shared<XmlText>(L"text"));
    mixed->addChild(elementWith(L"In", std::make_shared<XmlElement>(L"Deep")));
    root->addChild(std::move(mixed));
    document.addChild(std::move(root));
}

const std::string filled =
    "<?xml version=\"1.0\"?>\r\n<Log Type=\"new\" b=\"&\"\">\r\n    <!--note-->\r\n"
    "    <Empty/>\r\n    <Offset>1.0 & 2</Offset>\r\n"
    "    <Mixed>text        <In>\r\n            <Deep/>\r\n        </In>\r\n    </Mixed>\r\n</Log>\r\n";

class XmlFile : public testing::Test {
  protected:
    int loadBytes(XmlDocument& document, std::string_view bytes) const {
        EXPECT_TRUE(replaceFile(path, bytes, LineEnds::asWritten));
        return document.load(path);
    }

    const TemporaryFolder folder;
    const std::string path = folder / "file.xml";
};

TEST_F(XmlFile, HasTheLayoutOfEveryNode) {
    XmlDocument document;
    fill(document);
    ASSERT_EQ(document.save(path), XmlCode::success);
    EXPECT_EQ(*readFile(path), filled);
    EXPECT_EQ(static_cast<const XmlNode&>(document).toString(), L"");
    EXPECT_EQ(document.lastChild()->firstChild()->toString(2), L"        <!--note-->\r\n");
}

TEST_F(XmlFile, IsWrittenAgainAsItWasRead) {
    const std::string bytes =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<TVN>\r\n    <!--\xC3\xA9 \xE2\x82\xAC-->\r\n"
        "    <a b=\"1\" c=\"\xF0\x9F\x98\x80\">text</a>\r\n    <d>\r\n        <e/>\r\n    </d>\r\n"
        "</TVN>\r\n";
    XmlDocument document;
    ASSERT_EQ(loadBytes(document, bytes), XmlCode::success);
    ASSERT_EQ(document.save(path), XmlCode::success);
    EXPECT_EQ(*readFile(path), bytes);
    ASSERT_EQ(document.load(path), XmlCode::success);
    EXPECT_EQ(document.children().size(), 2u) << "a second load starts anew";
    EXPECT_EQ(document.findChild(L"tvn")->text, L"\n    \n    \n    \n");
}

TEST_F(XmlFile, ThatCannotBeReadOrWrittenGivesItsCode) {
    XmlDocument document;
    EXPECT_EQ(document.load(""), XmlCode::emptyPath);
    EXPECT_EQ(document.load(folder / "missing.xml"), XmlCode::fileFailure);
    EXPECT_EQ(document.load(folder / "."), XmlCode::fileFailure);
    EXPECT_EQ(loadBytes(document, ""), XmlCode::success);
    EXPECT_EQ(loadBytes(document, "<a>\r\r\nx\r</a>"), XmlCode::success);
    EXPECT_EQ(document.firstChild()->text, L"\r\nx\r");
    for (const char* const malformed : {"<a>\x80</a>", "<a>\xC0\x80</a>", "<a>\xED\xA0\x80", "\xFF\xFE"})
        EXPECT_EQ(loadBytes(document, malformed), XmlCode::fileFailure);

    EXPECT_EQ(document.save(folder / "no\\such\\file.xml"), XmlCode::fileFailure);
    EXPECT_EQ(document.save(""), XmlCode::fileFailure);
    document.addChild(std::make_shared<XmlText>(std::wstring(1, static_cast<wchar_t>(0xD800))));
    const std::string before = *readFile(path);
    EXPECT_EQ(document.save(path), XmlCode::fileFailure);
    EXPECT_EQ(*readFile(path), before);
}

}  // namespace
}  // namespace tavoren
