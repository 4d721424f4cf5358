#include <gtest/gtest.h>

#include <array>

#include "firmware/SmhiPublishBuffer.h"
#include "firmware/SmhiRequests.h"
#include "firmware/SmhiResponses.h"

namespace tavoren {
namespace {

constexpr Luid accelerometer{0x0073, 0x1234, 0x5678, 1, Luid::staticData};
constexpr Luid gyroscope{118, 0, 0, 0, Luid::staticData};
const ByteString accelerometerBytes{0x73, 0x00, 0x34, 0x12, 0x78, 0x56, 0x01, 0x02};

ByteString joined(std::initializer_list<ByteString> parts) {
    ByteString all;
    for (const ByteString& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

template <typename Record>
class SmhiRecords : public testing::Test {};

/// A record with every field filled, and its bytes.
template <typename Record>
std::pair<Record, ByteString> example();

template <>
std::pair<SmhiHeader, ByteString> example() {
    return {{.command = 12, .is_response = true, .status = 5}, {0x8C, 0, 0, 5}};
}
template <>
std::pair<SmhiResetRequest, ByteString> example() {
    return {{}, {2, 0, 0, 0}};
}
template <>
std::pair<SmhiGetRequest, ByteString> example() {
    return {{.luid = accelerometer, .selector = SmhiSelector::pdt}, joined({{4, 0, 0, 0}, accelerometerBytes, {0x00, 0x04}})};
}
template <>
std::pair<SmhiSetPropertyRequest, ByteString> example() {
    return {{.luid = accelerometer, .property = 0x0316, .value = {2}},
            joined({{10, 0, 0, 0}, accelerometerBytes, {0x16, 0x03, 1, 0, 2}})};
}
template <>
std::pair<SmhiSetCalibrationRequest, ByteString> example() {
    return {{.luid = accelerometer, .calibrationData = {7, 9}},
            joined({{5, 0, 0, 0},
                    accelerometerBytes,
                    {0, 0, 0, 0, 18, 0, 0, 0},
                    accelerometerBytes,
                    {6, 0, 0x00, 0x01, 2, 0, 2, 0, 7, 9}})};
}
template <>
std::pair<SmhiSessionControlRequest, ByteString> example() {
    return {{.state = SmhiSessionControlRequest::stop, .luids = {}}, joined({{12, 0, 0, 0, 1, 1, 0}, ByteString(8)})};
}
template <>
std::pair<SmhiCalibrationResponse, ByteString> example() {
    return {{.calibrationData = {1, 2, 3}}, joined({{0x84, 0, 0, 0}, ByteString(18), {3, 0, 1, 2, 3}})};
}
template <>
std::pair<SmhiSensorListResponse, ByteString> example() {
    return {{.groups = {{accelerometer}, {gyroscope, accelerometer}}},
            joined({{0x84, 0, 0, 0, 0, 0, 0, 0, 2, 0},
                    ByteString(11),
                    {1},
                    accelerometerBytes,
                    ByteString(11),
                    {2, 118, 0, 0, 0, 0, 0, 0, 2},
                    accelerometerBytes})};
}
template <>
std::pair<SmhiPdtResponse, ByteString> example() {
    return {{.formFactor = 3, .hinge = 4}, {0x84, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 4}};
}
template <>
std::pair<SmhiPropertyResponse, ByteString> example() {
    return {{.value = 0x01020304}, {0x89, 0, 0, 0, 0, 0, 0, 0, 4, 3, 2, 1}};
}

using Records = testing::Types<SmhiHeader, SmhiResetRequest, SmhiGetRequest, SmhiSetPropertyRequest, SmhiSetCalibrationRequest,
                               SmhiSessionControlRequest, SmhiCalibrationResponse, SmhiSensorListResponse, SmhiPdtResponse,
                               SmhiPropertyResponse>;
TYPED_TEST_SUITE(SmhiRecords, Records);

TYPED_TEST(SmhiRecords, HaveTheirBytesAndNeedThemAll) {
    const auto& [record, bytes] = example<TypeParam>();
    EXPECT_EQ(record.encode(), bytes);
    EXPECT_EQ(TypeParam::decode(bytes), record);
    EXPECT_EQ(TypeParam::decode(joined({bytes, {1, 2, 3}})), record);
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_FALSE(TypeParam::decode(ByteString(bytes.begin(), bytes.begin() + std::ptrdiff_t(size)))) << size;
}

TEST(SmhiSessionControl, AStartIsSevenBytes) {
    EXPECT_EQ(SmhiSessionControlRequest{}.encode(), (ByteString{12, 0, 0, 0, 1, 0, 0}));
}

TEST(SmhiSetCalibration, LengthsThatContradictAreRefused) {
    const ByteString bytes = example<SmhiSetCalibrationRequest>().second;
    for (const std::size_t at : {16U, 19U, 20U, 28U, 30U, 32U, 34U}) {
        ByteString lying = joined({bytes, ByteString(300)});
        ++lying[at];
        EXPECT_FALSE(SmhiSetCalibrationRequest::decode(lying)) << at;
    }
}

TEST(SmhiPublishBuffer, IsCutToWhatIsThere) {
    const ByteString payload{1, 2, 3};
    const ByteString message = SmhiPublishBuffer{payload}.encode();
    EXPECT_EQ(message, (ByteString{15, 0, 0, 0, 3, 0, 0, 0, 1, 2, 3}));
    const auto sizeFor = [&message](std::uint8_t stated, std::size_t received) {
        ByteString lying(message.begin(), message.begin() + std::ptrdiff_t(received));
        lying[4] = stated;
        lying[7] = stated > 3 ? 0xFF : 0;
        return SmhiPublishBuffer::decode(lying)->payload.size();
    };
    EXPECT_EQ(sizeFor(3, 11), 3U);
    EXPECT_EQ(sizeFor(2, 11), 2U);
    EXPECT_EQ(sizeFor(255, 11), 3U);
    EXPECT_EQ(sizeFor(3, 8), 0U);
    EXPECT_FALSE(SmhiPublishBuffer::decode(ByteSpan(message).first(7)));
}

TEST(SmhiSampleRecord, HasSixtyFourBitTimesAndSignedValues) {
    ByteString payload;
    SmhiSampleRecord::append(payload, accelerometer, 0xFEDCBA9876543210, std::array{-1, 2147483647, -2147483647 - 1});
    ASSERT_EQ(payload.size(), 29U);
    EXPECT_EQ(payload[0], 29);
    ByteSpan rest(payload);
    const auto record = SmhiSampleRecord::takeFrom(rest);
    ASSERT_TRUE(record);
    EXPECT_TRUE(rest.empty());
    EXPECT_EQ(record->luid, accelerometer.value());
    EXPECT_EQ(record->timeStamp, 0xFEDCBA9876543210);
    ASSERT_EQ(record->valueCount(), 3U);
    EXPECT_EQ(record->value(0), -1);
    EXPECT_EQ(record->value(1), 2147483647);
    EXPECT_EQ(record->value(2), -2147483647 - 1);
}

}  // namespace
}  // namespace tavoren
