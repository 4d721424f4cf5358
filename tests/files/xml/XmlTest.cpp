#include <gtest/gtest.h>

#include <stdexcept>

#include "files/TemporaryFolder.h"
#include "files/xml/XmlAttribute.h"
#include "files/xml/XmlCode.h"
#include "files/xml/XmlCursor.h"
#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"
#include "files/xml/XmlName.h"
#include "files/xml/XmlReferences.h"
#include "files/xml/XmlText.h"
#include "platform/Files.h"
#include "sensors/ExpectThrow.h"

namespace tavoren {
namespace {

/// The tree below a node on one line: name {attribute=value} 'value' [children], each if present.
std::wstring outline(const XmlNode& node) {
    std::wstring out = node.name;
    if (const auto* const element = dynamic_cast<const XmlElement*>(&node)) {
        for (const auto& attribute : element->attributes())
            out += L"{" + attribute->name + L"=" + attribute->value + L"}";
    }
    if (!node.value.empty())
        out += L"'" + node.value + L"'";
    for (const auto& child : node.children())
        out += L"[" + outline(*child) + L"]";
    return out;
}

void expectTrees(const std::vector<std::pair<const wchar_t*, const wchar_t*>>& cases, int code) {
    for (const auto& [input, tree] : cases) {
        XmlDocument document;
        EXPECT_EQ(document.parseBuffer(input), code) << testing::PrintToString(input);
        EXPECT_EQ(outline(document), tree);
    }
}

TEST(XmlParse, GivesTheTreeAndTheCode) {
    expectTrees({{L" \t\r\n\f\v", L""}, {L"\xFEFF<a/>", L"[a]"}, {L"<a></A>", L"[a]"}}, XmlCode::success);
    expectTrees({{L"<a>x</b/>", L"[a['x']]"}, {L"<_:-.9\xB7/>", L"[_:-.9\xB7]"}, {L"<></>", L"[]"}}, XmlCode::success);
    expectTrees({{L"<a b=\"1\"c='2'/>", L"[a{b=1}{c=2}]"}, {L"<a b=\"x=y\"/>", L"[a{b=xy}]"}}, XmlCode::success);
    expectTrees({{L"<a b=\"x>y\"</a>", L"[a{b=x}['y\"']]"}, {L"<a b=\"x/>", L"[a{b=x}]"}}, XmlCode::success);
    expectTrees({{L"<a b=\"it's  so\" c='\"'/>", L"[a{b=it's  so}{c=\"}]"}}, XmlCode::success);
    expectTrees({{L"<a  b=1 >t</a>", L"[a{=}{b=1}{=}['t']]"}, {L"<a b=/c=='d'e>", L"[a{b=/cd}{e=}]"}}, XmlCode::success);
    expectTrees({{L"<a 'b \"'='c=d'/>", L"[a{b= \"}{=cd}]"}}, XmlCode::success);
    expectTrees({{L"<a b='&#x41;&lt;' c='&#38;lt;'>&lt;</a>", L"[a{b=A<}{c=<}['&lt;']]"}}, XmlCode::success);
    expectTrees({{L"<a> x </a>", L"[a[' x ']]"}, {L"<a>x<!-- y --><b/> z</a>", L"[a['x'][' y '][b][' z']]"}}, XmlCode::success);
    expectTrees({{L"x<a/>y", L"['x'][a]['y']"}, {L"<?xml version='1'?><a/>", L"[xml'version='1''][a]"}}, XmlCode::success);
    expectTrees({{L"<?xml?><a b?>", L"[xml?><a'b']"}, {L"<!--->--><a/>", L"['->'][a]"}}, XmlCode::success);
    // An input that stops early is accepted as far as it goes; a zero character ends it.
    expectTrees({{L"<", L"[]"}, {L"<a", L"[a]"}, {L"<a b='", L"[a{b=}]"}}, XmlCode::success);
    expectTrees({{L"<a>x<b>y", L"[a['x'][b['y']]]"}, {L"<!-- x", L"[' x']"}, {L"<?x y?", L"[x'y?']"}}, XmlCode::success);
    expectTrees({{L"<1a/>", L""}, {L"<a<b/>", L""}, {L"</a>", L""}, {L"<a><Y/", L""}}, XmlCode::badName);
    expectTrees({{L"<a></b>", L""}, {L"<a></a >", L""}, {L"<a/><b></c>", L"[a]"}}, XmlCode::endTagMismatch);
    expectTrees({{L"<a/><![CDATA[x]]>", L"[a]"},
                 {L"<a><!DOCTYPE a></a>", L""},
                 {L"/>", L""},
                 {L"<a>x/>", L""},
                 {L"<!", L""},
                 {L"<!-", L""}},
                XmlCode::unsupported);
    XmlDocument document;
    EXPECT_EQ(document.parseBuffer(std::wstring(L"<a>x\0</b>", 9)), XmlCode::success);
    EXPECT_EQ(outline(document), L"[a['x']]");
}

TEST(XmlParse, KeepsTextValueAndSourcesApart) {
    const std::wstring inner = L" x<B c='1'>y</B><!--z--> ";
    XmlDocument document;
    ASSERT_EQ(document.parseBuffer(L"<?d e?>\n<A>" + inner + L"</a >"), XmlCode::endTagMismatch);
    ASSERT_EQ(document.parseBuffer(L"<?d e?>\n<A>" + inner + L"</a>\n"), XmlCode::success);
    const auto a = document.findChild(L"a");
    ASSERT_TRUE(a);
    EXPECT_EQ(std::tie(a->text, a->value, a->innerSource), std::tuple(L" x ", L"", inner));
    EXPECT_EQ(a->source, L"<A>" + inner + L"</a>");
    EXPECT_EQ(std::tie(document.innerSource, document.text), std::tuple(L"<?d e?><A>" + inner + L"</a>", L"e x "));
    const auto b = a->findChild(L"b");
    EXPECT_EQ(b->innerSource, L"y");
    EXPECT_EQ(b->parent, a.get());
    EXPECT_EQ(static_cast<XmlElement&>(*b).attributes()[0]->source, L"c='1'");
    EXPECT_EQ(a->lastChild()->source, L"<!--z-->");
    EXPECT_EQ(a->findChild(L""), a->children()[0]);
}

TEST(XmlParse, NodesOutliveTheirDocument) {
    auto document = std::make_unique<XmlDocument>();
    ASSERT_EQ(document->parseBuffer(L"<a><b>text</b></a>"), XmlCode::success);
    const auto a = document->findChild(L"A"), b = a->findChild(L"b");
    document.reset();
    EXPECT_EQ(a->source, L"<a><b>text</b></a>");
    a->clearChildren();
    EXPECT_EQ(a->lastChild(), nullptr);
    EXPECT_EQ(b->innerSource, L"text");
    EXPECT_TRUE(a->parent == nullptr && b->parent == nullptr);
}

// The two patterns as ranges, first and last character in turn.
constexpr std::u32string_view startPairs =
    U"::AZ__az\u00C0\u00D6\u00D8\u00F6\u00F8\u02FF\u0370\u037D\u037F\u1FFF\u200C\u200D\u2070\u218F"
    U"\u2C00\u2FEF\u3001\uD7FF\uF900\uFDCF\uFDF0\uFFFD";
constexpr std::u32string_view laterPairs = U"--..09\u00B7\u00B7\u0300\u036F\u203F\u2040";

bool inPairs(std::u32string_view pairs, char32_t c) {
    bool found = false;
    for (; !pairs.empty(); pairs.remove_prefix(2))
        found = found || (c >= pairs[0] && c <= pairs[1]);
    return found;
}

TEST(XmlName, AcceptsExactlyThePatterns) {
    for (char32_t c = 0; c <= 0x10FFFF; c += c < 0x10000 ? 1 : 0x101) {
        const auto wide = static_cast<wchar_t>(c);
        const bool start = inPairs(startPairs, c);
        ASSERT_EQ(isXmlNameStart(wide), start) << std::hex << std::uint32_t{c};
        ASSERT_EQ(isXmlNameCharacter(wide), start || inPairs(laterPairs, c)) << std::hex << std::uint32_t{c};
    }
}

TEST(XmlReferences, AreDecodedInTwoPasses) {
    using Case = std::pair<const wchar_t*, const wchar_t*>;
    for (const auto& [text, decoded] : {
             Case{L"&#65;&#x41;&#X6a;", L"AAj"},
             Case{L"&#1F600;", L"\x1"},
             Case{L"&#x1F600;", L"\xF600"},
             Case{L"&#65601;", L"A"},
             Case{L"&#38;lt;&#38;#65;", L"<&#65;"},
             Case{L"&quot;&gt;&lt;&amp;&apos;", L"\"><&'"},
             Case{L"&amp;lt;&&lt;;", L"&lt;&<;"},
             Case{L"&LT; &lt &#; &#x; &#123456; &#xg; &#65 &", L"&LT; &lt &#; &#x; &#123456; &#xg; &#65 &"},
         })
        EXPECT_STREQ(decodeReferences(text).c_str(), decoded);
    for (const wchar_t* const text : {L"&#F;", L"a&#af1;"})
        EXPECT_EQ(textOf<std::invalid_argument>([&] { decodeReferences(text); }), "invalid stoi argument");
}

std::wstring repeated(std::wstring_view text, std::size_t count) {
    std::wstring all;
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

TEST(XmlHostile, NestingEndsAtTheLimit) {
    constexpr std::size_t limit = XmlCursor::maxNesting;
    XmlDocument document;
    const std::wstring legal = repeated(L"<a>", limit) + L"x" + repeated(L"</a>", limit);
    EXPECT_EQ(document.parseBuffer(legal + legal), XmlCode::success);
    EXPECT_EQ(document.firstChild()->source, legal);
    EXPECT_EQ(document.parseBuffer(repeated(L"<a>", limit + 1)), XmlCode::unsupported);
    EXPECT_EQ(document.parseBuffer(repeated(L"<a>", 100'000)), XmlCode::unsupported);
    EXPECT_TRUE(document.children().empty());
}

TEST(XmlHostile, LongInputsAreReadInOneWalk) {
    const std::wstring name(1'000'000, L'n');
    const std::wstring blanks(100'000, L' ');
    XmlDocument document;
    ASSERT_EQ(document.parseBuffer(L"<" + name + L"></" + name + L">"), XmlCode::success);
    EXPECT_EQ(document.firstChild()->name, name);
    ASSERT_EQ(document.parseBuffer(L"<a" + blanks + L"/>" + blanks), XmlCode::success);
    EXPECT_EQ(static_cast<XmlElement&>(*document.firstChild()).attributes().size(), 100'000u);
    EXPECT_EQ(document.parseBuffer(L"<a>" + repeated(L"<b/>", 70'000)), XmlCode::success);
    EXPECT_EQ(document.firstChild()->children().size(), 70'000u);
    const std::wstring openings = repeated(L"<!--", 250'000);
    ASSERT_EQ(document.parseBuffer(openings), XmlCode::success);
    EXPECT_EQ(document.text.size(), openings.size() - 4);
    ASSERT_EQ(document.parseBuffer(L"<a b='" + repeated(L"&#x", 300'000) + L"'/>"), 0);
}

TEST(XmlHostile, AFileIsReadUpToItsLimit) {
    const TemporaryFolder folder;
    XmlDocument document;
    for (const std::size_t beyond : {0U, 1U}) {
        folder.write("f.xml", std::string(XmlDocument::largestFile + beyond, ' '));
        EXPECT_EQ(document.load(folder / "f.xml"), beyond == 0 ? XmlCode::success : XmlCode::fileFailure);
    }
}

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
    const std::string laidOut =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<Log Type=\"new\" b=\"\xF0\x9F\x98\x80\">\r\n    <!--\xC3\xA9 "
        "\xE2\x82\xAC-->\r\n"
        "    <Empty/>\r\n    <Offset>1.0 & 2</Offset>\r\n    <d>\r\n        <e/>\r\n    </d>\r\n</Log>\r\n";
    std::string flat = laidOut;
    for (std::size_t at = 0; (at = flat.find("\r\n", at)) != std::string::npos;)
        flat.erase(at, flat.find('<', at) - at);
    for (const std::string& bytes : {flat, laidOut}) {
        XmlDocument document;
        ASSERT_EQ(loadBytes(document, bytes), XmlCode::success);
        ASSERT_EQ(document.save(path), XmlCode::success);
        EXPECT_EQ(*readFile(path), laidOut);
        ASSERT_EQ(document.load(path), XmlCode::success);
        EXPECT_EQ(document.children().size(), 2u) << "a second load starts anew";
        EXPECT_EQ(static_cast<const XmlNode&>(document).toString(), L"");
    }
    XmlElement element(L"Mixed");
    element.setAttribute(L"Type", L"old");
    element.setAttribute(L"TYPE", L"&\"");
    element.addChild(std::make_shared<XmlText>(L"text"));
    element.addChild(std::make_shared<XmlElement>(L"In"));
    EXPECT_EQ(element.toString(1), L"    <Mixed Type=\"&\"\">text        <In/>\r\n    </Mixed>\r\n");
}

TEST_F(XmlFile, ThatCannotBeReadOrWrittenGivesItsCode) {
    XmlDocument document;
    EXPECT_EQ(document.load(""), XmlCode::emptyPath);
    for (const char* const name : {"missing.xml", "."})
        EXPECT_EQ(document.load(folder / name), XmlCode::fileFailure);
    EXPECT_EQ(loadBytes(document, ""), XmlCode::success);
    EXPECT_EQ(loadBytes(document, "<a>\r\r\nx\r</a>"), XmlCode::success);
    EXPECT_EQ(document.firstChild()->text, L"\r\nx\r");
    for (const char* const malformed : {"<a>\x80</a>", "<a>\xC0\x80</a>", "<a>\xED\xA0\x80", "\xFF\xFE"})
        EXPECT_EQ(loadBytes(document, malformed), XmlCode::fileFailure);

    for (const std::string& place : {folder / "no\\such\\file.xml", std::string()})
        EXPECT_EQ(document.save(place), XmlCode::fileFailure);
    document.addChild(std::make_shared<XmlText>(std::wstring(1, static_cast<wchar_t>(0xD800))));
    const std::string before = *readFile(path);
    EXPECT_EQ(document.save(path), XmlCode::fileFailure);
    EXPECT_EQ(*readFile(path), before);
}

}  // namespace
}  // namespace tavoren
