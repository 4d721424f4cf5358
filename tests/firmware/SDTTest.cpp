#include "firmware/SDT.h"

#include <gtest/gtest.h>

#include "firmware/ScriptedBrax.h"
#include "firmware/SmhiRequests.h"
#include "firmware/SmhiResponses.h"
#include "sensors/ExpectThrow.h"

namespace tavoren {
namespace {

constexpr Luid accelerometer{115, 0, 0, 0, Luid::staticData};
constexpr Luid gyroscope{118, 0, 0, 0, Luid::staticData};

std::shared_ptr<ScriptedBrax> answering(std::optional<ByteString> answer) {
    return std::make_shared<ScriptedBrax>([answer](const ByteString&) { return ScriptedBrax::Answers{answer}; });
}

struct Command {
    std::function<void(SDT&)> run;
    ByteString request;
    std::string failure;  ///< "#" stands for the status
};

std::vector<Command> commands() {
    const auto get = [](Luid luid, std::uint16_t selector) {
        return SmhiGetRequest{.luid = luid, .selector = selector}.encode();
    };
    const auto set = [](SDT& sdt) { sdt.setCalibrationData(accelerometer, {1, 2}); };
    const std::string pdt = "Set PDT command  failed, status: #";
    return {
        {[](SDT& sdt) { sdt.resetTvn(); }, {2, 0, 0, 0}, "Reset TVN command failed"},
        {set, SmhiSetCalibrationRequest{.luid = accelerometer, .calibrationData = {1, 2}}.encode(),
         "Set calibration data command failed"},
        {[](SDT& sdt) { sdt.getCalibrationData(accelerometer); }, get(accelerometer, 0x0000),
         "Get calibration data command failed"},
        {[](SDT& sdt) { sdt.enumerateSensors(); }, get({}, 0x0200), "Enumerate sensors command failed"},
        {[](SDT& sdt) { sdt.getFormFactor(); }, get({}, 0x0400), pdt},
        {[](SDT& sdt) { sdt.getHinge(); }, get({}, 0x0400), pdt},
        {[](SDT& sdt) { sdt.getMinReportInterval(gyroscope); },
         SmhiGetRequest{.header = {.command = 9}, .luid = gyroscope, .selector = 0x0304}.encode(), pdt},
        {[](SDT& sdt) { sdt.stopSampling({gyroscope}); },
         SmhiSetPropertyRequest{.luid = gyroscope, .property = 0x0316, .value = {1}}.encode(),
         "Set sampling configuration data command failed"},
    };
}

TEST(SDT, EveryRefusalHasTheTextOfItsCommand) {
    for (const Command& command : commands()) {
        const bool headerIsAll = command.failure.starts_with("Reset") || command.failure.starts_with("Set calibration") ||
                                 command.failure.starts_with("Set sampling");
        for (const auto& [answer, status] : std::vector<std::pair<ByteString, std::string>>{
                 {responseHeader(1, 7), "7"}, {{}, "0"}, {{0x80, 0, 0}, "0"}, {responseHeader(1), "0"}}) {
            const bool succeeds = headerIsAll && answer.size() == 4 && status == "0";
            std::string expected = command.failure;
            if (expected.back() == '#')
                expected.replace(expected.size() - 1, 1, status);
            const auto transport = answering(answer);
            SDT sdt(transport);
            EXPECT_EQ(textOf<SmhiException>([&] { command.run(sdt); }),
                      succeeds ? "(nothing thrown)" : "SMHI Error: " + expected);
            EXPECT_EQ(transport->takeWritten(), (std::vector<ByteString>{command.request}));
            EXPECT_FALSE(transport->connected);
        }
        SDT cut(answering(std::nullopt));
        EXPECT_EQ(textOf<SmhiException>([&] { command.run(cut); }), "SMHI Error: Failed to read from device, timed out");
    }
}

TEST(SDT, ResultsComeFromTheAnswers) {
    const SmhiSensorListResponse list{.groups = {{accelerometer}, {}, {gyroscope, accelerometer}}};
    EXPECT_EQ(SDT(answering(list.encode())).enumerateSensors(), (std::vector{accelerometer, gyroscope, accelerometer}));
    EXPECT_EQ(SDT(answering(SmhiPropertyResponse{.value = 20999}.encode())).getMinReportInterval(gyroscope), 20U);
}

TEST(SDT, RecordsThatCannotBeSentAreToldApart) {
    const auto none = answering(responseHeader(5));
    SDT(none).setCalibrationData(gyroscope, {});
    const std::string refused = "SMHI Error: Set calibration data command failed due to invalid parameter";
    const auto send = [](const auto& transport, std::size_t size) {
        return textOf<SmhiException>([&] { SDT(transport).setCalibrationData(gyroscope, ByteString(size)); });
    };
    EXPECT_EQ(send(none, 65532), refused);
    EXPECT_EQ(none->connects, 0);
    EXPECT_EQ(send(none, 65531), "(nothing thrown)");
    EXPECT_EQ(send(answering(responseHeader(5, 5)), 1), refused);
}

TEST(SDT, SamplingSetsThreePropertiesOfEachSensorOnOneConnection) {
    const auto set = [](Luid luid, std::uint16_t property, ByteString value) {
        return SmhiSetPropertyRequest{.luid = luid, .property = property, .value = std::move(value)}.encode();
    };
    const auto transport = answering(responseHeader(10));
    SDT sdt(transport);
    sdt.startSampling({{accelerometer, "A"}, {gyroscope, "G"}}, 10, 0.0);
    std::vector<ByteString> expected;
    for (const Luid luid : {accelerometer, gyroscope}) {
        expected.push_back(set(luid, 0x030E, {0x10, 0x27, 0, 0}));
        expected.push_back(set(luid, 0x0316, {2}));
        expected.push_back(set(luid, 0x030F, {0, 0, 0, 0}));
    }
    EXPECT_EQ(transport->takeWritten(), expected);
    sdt.startSampling({}, 10, 0.0);
    EXPECT_EQ(transport->connects, 2);
    EXPECT_FALSE(transport->connected);
}

TEST(SDT, ASensorThatCannotBeSampledIsNamed) {
    int requests = 0;
    const auto transport = std::make_shared<ScriptedBrax>(
        [&](const ByteString&) { return ScriptedBrax::Answers{responseHeader(10, ++requests == 5 ? 1 : 0)}; });
    const auto start = [&] { SDT(transport).startSampling({{accelerometer, "A"}, {gyroscope, "G"}}, 1, 0); };
    EXPECT_EQ(textOf<CalibrationException>(start), "Failed to sample sensor G");
    EXPECT_EQ(requests, 5);
    EXPECT_FALSE(transport->connected);
}

}  // namespace
}  // namespace tavoren
