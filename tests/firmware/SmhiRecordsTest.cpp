#include <gtest/gtest.h>

#include <array>
#include <type_traits>

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

// Each record with every field filled, and its bytes.
std::pair<SmhiHeader, ByteString> example(std::type_identity<SmhiHeader>) {
    return {{.command = 12, .is_response = true, .status = 5}, {0x8C, 0, 0, 5}};
}
std::pair<SmhiResetRequest, ByteString> example(std::type_identity<SmhiResetRequest>) {
    return {{}, {2, 0, 0, 0}};
}
std::pair<SmhiGetRequest, ByteString> example(std::type_identity<SmhiGetRequest>) {
    return {{.luid = accelerometer, .selector = SmhiSelector::pdt}, joined({{4, 0, 0, 0}, accelerometerBytes, {0x00, 0x04}})};
}
std::pair<SmhiSetPropertyRequest, ByteString> example(std::type_identity<SmhiSetPropertyRequest>) {
    return {{.luid = accelerometer, .property = 0x0316, .value = {2}},
            joined({{10, 0, 0, 0}, accelerometerBytes, {0x16, 0x03, 1, 0, 2}})};
}
std::pair<SmhiSetCalibrationRequest, ByteString> example(std::type_identity<SmhiSetCalibrationRequest>) {
    return {{.luid = accelerometer, .calibrationData = {7, 9}},
            joined({{5, 0, 0, 0},
                    accelerometerBytes,
                    {0, 0, 0, 0, 18, 0, 0, 0},
                    accelerometerBytes,
                    {6, 0, 0x00, 0x01, 2, 0, 2, 0, 7, 9}})};
}
std::pair<SmhiSessionControlRequest, ByteString> example(std::type_identity<SmhiSessionControlRequest>) {
    return {{.state = SmhiSessionControlRequest::stop, .luids = {}}, joined({{12, 0, 0, 0, 1, 1, 0}, ByteString(8)})};
}
std::pair<SmhiCalibrationResponse, ByteString> example(std::type_identity<SmhiCalibrationResponse>) {
    return {{.calibrationData = {1, 2, 3}}, joined({{0x84, 0, 0, 0}, ByteString(18), {3, 0, 1, 2, 3}})};
}
std::pair<SmhiSensorListResponse, ByteString> example(std::type_identity<SmhiSensorListResponse>) {
    return {{.groups = {{accelerometer}, {gyroscope, accelerometer}}},
            joined({{0x84, 0, 0, 0, 0, 0, 0, 0, 2, 0},
                    ByteString(11),
                    {1},
                    accelerometerBytes,
                    ByteString(11),
                    {2, 118, 0, 0, 0, 0, 0, 0, 2},
                    accelerometerBytes})};
}
std::pair<SmhiPdtResponse, ByteString> example(std::type_identity<SmhiPdtResponse>) {
    return {{.formFactor = 3, .hinge = 4}, {0x84, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 4}};
}
std::pair<SmhiPropertyResponse, ByteString> example(std::type_identity<SmhiPropertyResponse>) {
    return {{.value = 0x01020304}, {0x89, 0, 0, 0, 0, 0, 0, 0, 4, 3, 2, 1}};
}

using Records = testing::Types<SmhiHeader, SmhiResetRequest, SmhiGetRequest, SmhiSetPropertyRequest, SmhiSetCalibrationRequest,
                               SmhiSessionControlRequest, SmhiCalibrationResponse, SmhiSensorListResponse, SmhiPdtResponse,
                               SmhiPropertyResponse>;
TYPED_TEST_SUITE(SmhiRecords, Records);

// A start has no list of sensors.
TEST(SmhiSessionControl, AStartIsSevenBytes) {
    EXPECT_EQ(SmhiSessionControlRequest{}.encode(), (ByteString{12, 0, 0, 0, 1, 0, 0}));
}

TYPED_TEST(SmhiRecords, HaveTheirBytesAndNeedThemAll) {
    const auto& [record, bytes] = example(std::type_identity<TypeParam>());
    EXPECT_EQ(record.encode(), bytes);
    EXPECT_EQ(TypeParam::decode(bytes), record);
    EXPECT_EQ(TypeParam::decode(joined({bytes, {1, 2, 3}})), record);
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_FALSE(TypeParam::decode(ByteString(bytes.begin(), bytes.begin() + std::ptrdiff_t(size)))) << size;
}

TEST(SmhiSetCalibration, LengthsThatContradictAreRefused) {
    const ByteString bytes = example(std::type_identity<SmhiSetCalibrationRequest>()).second;
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
    EXPECT_EQ(payload, joined({{29}, accelerometerBytes, {0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE, 255, 255,
                                                          255,  255,  255,  255,  255,  127,  0,    0,    0,   128}}));
    ByteSpan rest(payload);
    const auto record = SmhiSampleRecord::takeFrom(rest);
    ASSERT_TRUE(record && rest.empty());
    EXPECT_EQ((std::tuple{record->luid, record->timeStamp, record->valueCount(), record->value(0), record->value(2)}),
              (std::tuple{accelerometer.value(), 0xFEDCBA9876543210U, 3U, -1, -2147483647 - 1}));
}

}  // namespace
}  // namespace tavoren
