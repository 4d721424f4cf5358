#include <gtest/gtest.h>

#include <stdexcept>

#include "files/xml/XmlAttribute.h"
#include "files/xml/XmlCode.h"
#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"
#include "files/xml/XmlReferences.h"
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
    expectTrees({{L"<1a/>", L""}, {L"<a<b/>", L""}, {L"</a>", L""}}, XmlCode::badName);
    expectTrees({{L"<a></b>", L""}, {L"<a></a >", L""}, {L"<a/><b></c>", L"[a]"}}, XmlCode::endTagMismatch);
    expectTrees({{L"<a/><![CDATA[x]]>", L"[a]"}, {L"<a><!DOCTYPE a></a>", L""}, {L"/>", L""}, {L"<a>x/>", L""}},
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
    EXPECT_EQ(a->text, L" x ");
    EXPECT_EQ(a->value, L"");
    EXPECT_EQ(a->innerSource, inner);
    EXPECT_EQ(a->source, L"<A>" + inner + L"</a>");
    EXPECT_EQ(document.innerSource, L"<?d e?><A>" + inner + L"</a>");
    EXPECT_EQ(document.text, L"e x ");
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
    const auto a = document->findChild(L"A");
    document.reset();
    EXPECT_EQ(a->source, L"<a><b>text</b></a>");
    EXPECT_EQ(a->parent, nullptr);
    const auto b = a->findChild(L"b");
    a->clearChildren();
    EXPECT_EQ(a->lastChild(), nullptr);
    EXPECT_EQ(b->innerSource, L"text");
    EXPECT_EQ(b->parent, nullptr);
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

}  // namespace
}  // namespace tavoren
