#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

#include "common/Utf8.h"
#include "files/TemporaryFolder.h"
#include "files/xml/XmlCode.h"
#include "files/xml/XmlCursor.h"
#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"

namespace tavoren {
namespace {

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

const std::string sample =
    "\xEF\xBB\xBF<?xml version=\"1.0\"?>\r\n<TVN><!-- note -->\r\n<Calibration a='1' b=\"&#65;&lt;\">"
    "\r\n <Sensor id=\"\xC3\xA9\"><X>1</X><Y/>tail</Sensor>\r\n</Calibration></TVN>";

/// The code of what can be decoded; a parsed document always has a serialised form.
int parseBytes(std::string_view bytes) {
    const auto wide = fromUtf8(bytes);
    if (!wide)
        return XmlCode::fileFailure;
    XmlDocument document;
    const int code = document.parseBuffer(*wide);
    EXPECT_TRUE(toUtf8(document.innerSource));
    document.toString();
    return code;
}

TEST(XmlHostile, EveryTruncationIsAcceptedOrRefused) {
    const std::size_t accent = sample.find('\xC3') + 1;
    for (std::size_t size = 0; size <= sample.size(); ++size) {
        const bool cutCharacter = size == 1 || size == 2 || size == accent;
        const auto endsIn = [end = sample.substr(0, size)](const std::string& cut) {
            return end.size() > cut.size() && end.compare(end.size() - cut.size(), 4, cut) == 0;
        };
        const int expected = cutCharacter                    ? XmlCode::fileFailure
                             : endsIn("<!") || endsIn("<!-") ? XmlCode::unsupported
                             : endsIn("<Y/")                 ? XmlCode::badName
                                                             : XmlCode::success;
        EXPECT_EQ(parseBytes(sample.substr(0, size)), expected) << sample.substr(0, size);
    }
}

TEST(XmlHostile, RandomDamageNeverBreaksTheParser) {
    std::mt19937 random(20240607);
    const std::string tokens = "<>/!?-='\"&#x;[ \n\x80\xC3" + std::string(1, '\0');
    for (int round = 0; round < 20'000; ++round) {
        std::string bytes = sample;
        for (auto edits = 1 + random() % 6; edits > 0; --edits) {
            const std::size_t at = random() % bytes.size();
            if (random() % 3 == 0)
                bytes.erase(at, random() % 20);
            else
                bytes.insert(at, 1, tokens[random() % tokens.size()]);
        }
        try {
            const int code = parseBytes(bytes);
            EXPECT_TRUE(code == 0 || code == 2 || code == 5 || code == 6 || code == 9) << bytes;
        } catch (const std::invalid_argument&) {
            EXPECT_NE(bytes.find("&#"), std::string::npos);
        }
    }
}

}  // namespace
}  // namespace tavoren
