#include "common/Text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "common/Extension.h"
#include "common/Luid.h"
#include "common/MathException.h"
#include "common/SampleBuffer.h"
#include "common/Units.h"
#include "common/Utf8.h"
#include "sensors/ExpectThrow.h"

namespace tavoren {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();

template <typename Parser>
std::string failureOf(Parser parser, std::string_view text) {
    return textOf<CalibrationException>([&] { parser(text); });
}

TEST(Text, ParsesIntegers) {
    for (const auto& [text, value] : std::vector<std::pair<std::string, std::int32_t>>{
             {"", 0}, {"42", 42}, {" \t-7", -7}, {"+08", 8}, {"2147483648", largest}, {"-99999999999999999999", smallest}})
        EXPECT_EQ(parseInteger(text), value) << text;
    for (const std::string text : {"1 ", "x", "1.0", "0x10", "--1", " ", "-"})
        EXPECT_EQ(failureOf(parseInteger, text), "Conversion error. Value " + text + " is not a valid number");
    EXPECT_EQ(leadingInteger("12ms"), 12);
    EXPECT_EQ(leadingInteger("ms"), 0);
}

TEST(Text, ParsesDoubles) {
    for (const auto& [text, value] : {std::pair{"-2e3", -2000.0},
                                      {" +.5", 0.5},
                                      {"0x1p4", 16.0},
                                      {"1e999", infinity},
                                      {"1e-999", 0.0},
                                      {"-inf", -infinity},
                                      {"5.", 5.0}})
        EXPECT_EQ(parseDouble(text), value) << text;
    EXPECT_TRUE(std::isnan(parseDouble("nan")));
    for (const std::string text : {"", "1.5 ", "1,5", "1e", "-"})
        EXPECT_EQ(failureOf(parseDouble, text), "Conversion error. Value " + text + " is not a valid double");
    EXPECT_THROW(parseDouble(std::string_view("1\0", 2)), CalibrationException);
}

TEST(Text, FormatsNumbers) {
    for (const auto& [number, text] :
         {std::pair{0.0000005, "0.000000"}, {-0.0, "-0.000000"}, {-infinity, "-inf"}, {-std::nan(""), "nan"}})
        EXPECT_EQ(formatNumber(number), text);
    EXPECT_EQ(formatNumber(-std::numeric_limits<double>::max()).size(), 1U + 309U + 7U);
    for (const auto& [number, whole] : {std::pair{-1.99, -1}, {3e9, largest}, {-infinity, smallest}, {std::nan(""), 0}})
        EXPECT_EQ(truncateToInt32(number), whole);
}

TEST(Text, ScansHexPairs) {
    for (const auto& [text, value] : std::vector<std::pair<std::string, int>>{
             {"1g", 1}, {"g1", 0}, {" 1", 1}, {"-1", 0xff}, {"0x", 0}, {"fF", 0xff}, {"7", 7}, {"", 0}, {"+a", 0x0a}})
        EXPECT_EQ(scanHexByte(text), value) << text;
    EXPECT_EQ(scanHex("0aFf3"), (std::vector<std::uint8_t>{0x0a, 0xff, 0x03}));
    EXPECT_EQ(toHex({0x00, 0x8f, 0xff}), "008fff");
}

TEST(Text, TrimsFoldsAndFindsExtensions) {
    EXPECT_EQ(trim("\t\n\v\f\r a b \x85 "), "a b \x85");
    EXPECT_EQ(trim(" \t"), "");
    EXPECT_EQ(toLower("AZ[\xC4"), "az[\xC4");
    EXPECT_TRUE(equalsIgnoringCase("aBc", "AbC"));
    EXPECT_FALSE(equalsIgnoringCase("abc", "ab"));
    for (const auto& [name, isXml] : {std::pair("a.b\\c.XmL", true), {"xml", true}, {"a.xml.", false}, {"a.xxml", false}})
        EXPECT_EQ(hasExtension(name, "xml"), isXml) << name;
}

TEST(Utf8, TakesTextThereAndBack) {
    const std::wstring text = L"a\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF";
    const auto bytes = toUtf8(text);
    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes->size(), 2U + 2 * 2 + 4 * 3 + 2 * 4);
    EXPECT_EQ(fromUtf8(*bytes), text);
    EXPECT_EQ(toUtf8(std::wstring{wchar_t{0xD83D}, wchar_t{0xDE00}}), "\xF0\x9F\x98\x80");
    const std::wstring lone{L'x', wchar_t{0xD800}, L'y'};
    EXPECT_EQ(toUtf8(lone), std::nullopt);
    EXPECT_EQ(toUtf8Lossy(lone), "x\xEF\xBF\xBDy");
    EXPECT_EQ(widen("\xFF"), std::wstring(1, wchar_t{0xFF}));
}

TEST(Utf8, RefusesMalformedBytes) {
    for (const std::string bytes :
         {"\x80", "\xC3", "\xC3(", "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xE2\x82", "\xED\xA0\x80", "\xED\xBF\xBF",
          "\xF0\x80\x80\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "a\xF0\x9F\x98"})
        EXPECT_EQ(fromUtf8(bytes), std::nullopt) << testing::PrintToString(bytes);
}

TEST(Units, NamesAndCodesAgree) {
    int unknown = 0;
    for (std::uint32_t code = 0; code < 30; ++code)
        if (textOf<MathException>([&] { EXPECT_EQ(unitFromString(unitToString(Unit{code})), Unit{code}); }) ==
            "Math Error: Unsupported unit")
            ++unknown;
    EXPECT_EQ(unknown, 13);
    EXPECT_EQ(unitToString(Unit::mdegPerSec), "mdeg__sec");
    EXPECT_THROW(unitFromString("G0"), MathException);
}

TEST(Units, ConvertsWithinAFamilyOnly) {
    using Case = std::tuple<double, Unit, Unit, double>;
    constexpr double degrees = 180.0 / 3.141592653589793;
    for (const auto& [value, source, target, expected] :
         {Case{2.0, Unit::g0, Unit::meterPerSec2, 19.6133}, Case{1.0, Unit::meterPerSec2, Unit::mg0, 1000.0 / 9.80665},
          Case{180.0, Unit::degPerSec, Unit::radian, 3.141592653589793},
          Case{1.0, Unit::radPerSec, Unit::degSec5, degrees * 100000.0}, Case{5.0, Unit::microTesla, Unit::milliGauss, 50.0},
          Case{5.0, Unit::milliGauss, Unit::microTesla, 0.5}, Case{3.0, Unit::g0, Unit::degree, 0.0},
          Case{3.0, Unit::lux, Unit::milliGauss, 0.0}, Case{3.0, Unit::unknown, Unit::g0, 0.0}})
        EXPECT_EQ(convertUnit(value, source, target), expected) << unitToString(source) << unitToString(target);
}

TEST(Luid, TextAndNumberHoldTheFields) {
    const Luid luid{527, 0x8086, 1, 2, Luid::staticData};
    EXPECT_EQ(luidToString(luid), "020f808600010202");
    EXPECT_EQ(luid.value(), 0x020200018086020FU);
    EXPECT_EQ(Luid::fromValue(luid.value()), luid);
}

TEST(SampleBuffer, GrowsAlongItsRecordingWithoutCopies) {
    const SampleBuffer recording({{1.0, {1.0}}, {2.0, {2.0}}, {3.0, {3.0}}});
    SampleBuffer replay = SampleBuffer::startOf(recording);
    replay.append(recording[0]);
    replay.append(recording[1]);
    EXPECT_EQ(replay.begin(), recording.begin());
    EXPECT_EQ(replay.size(), 2U);
    const SampleBuffer copy = replay;
    replay.append({9.0, {9.0}});
    EXPECT_EQ(replay.back(), (SensorSample{9.0, {9.0}}));
    EXPECT_EQ(recording[2], (SensorSample{3.0, {3.0}})) << "the recording stays";
    EXPECT_EQ(copy.size(), 2U);
    SampleBuffer self = replay;
    self.append(self[0]);
    EXPECT_EQ(self.back(), recording[0]);
    EXPECT_EQ(replay.size(), 3U);
}

TEST(SampleBuffer, FindsTimes) {
    const SampleBuffer ascending({{1.0, {}}, {2.0, {}}, {2.0, {}}, {5.0, {}}});
    SampleBuffer mixed = ascending;
    mixed.append({3.0, {}});
    for (const auto& [time, count, mixedCount] :
         {std::tuple(0.0, 0U, 0U), {1.0, 1U, 1U}, {2.0, 3U, 3U}, {3.0, 3U, 5U}, {9.0, 4U, 5U}}) {
        EXPECT_EQ(ascending.countUpTo(time), count);
        EXPECT_EQ(mixed.countUpTo(time), mixedCount);
    }
    EXPECT_EQ(ascending.firstAfter(2.0), 3U);
    EXPECT_EQ(mixed.firstAfter(3.0), 3U);
    EXPECT_EQ(SampleBuffer().firstAfter(0.0), 0U);
}

}  // namespace
}  // namespace tavoren
