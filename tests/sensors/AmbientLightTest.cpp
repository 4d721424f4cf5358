#include <gtest/gtest.h>

#include <algorithm>

#include "common/Text.h"
#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"
#include "sensors/ExpectThrow.h"
#include "sensors/LightRun.h"

namespace tavoren {
namespace {

constexpr Luid lightLuid{65, 0, 0, 0, Luid::staticData};

TEST(AmbientLight, StoresTheMedianOfThree) {
    LightRun run(1);
    const auto sensor = run.add();
    EXPECT_EQ(sensor->measuredRate(), 50.0);
    for (const double value : {10.0, 100.0, 10.0, 7.0, 8.0, 0.0 / 0.0, 9.0})
        run.feed(1, value, value);
    std::vector<double> stored;
    for (const SensorSample& sample : sensor->bufferedData)
        stored.push_back(sample.values[0]);
    EXPECT_EQ(stored, (std::vector<double>{10.0, 10.0, 8.0, 8.0, 9.0}));
    EXPECT_EQ(sensor->bufferedData[0].time, 200.0);
    EXPECT_TRUE(sensor->dataRecieved({610.0, {}}));  // a dump may hold samples without values
    // The first interval begins at time 0 and is lost; each look folds the last one in again.
    EXPECT_EQ(sensor->sampleIntervals, (std::vector<double>{100, 100, 100, 100, 100, 10}));
    EXPECT_EQ(sensor->measuredRate(), 1000.0 / ((5 * 100.0 + 10.0) / 6));
    EXPECT_EQ(sensor->measuredRate(), 1000.0 / ((5 * 85.0 + 10.0) / 6));
}

TEST(AmbientLight, UndoesTheFactorOfTheFirmware) {
    const std::string ok = "(nothing thrown)";
    for (const auto& [record, scale, failure] : std::vector<std::tuple<ByteString, double, std::string>>{
             {{1, 0, 200, 0, 100}, 0.5, ok},
             {{1, 0, 0, 0, 100}, 1.0, ok},
             {{1, 0, 0, 1, 0}, 1.0 / 256.0, ok},
             {{}, 1.0, "No calibration entry exists for AmbientLight. Original entry must exist"},
             {{128, 0, 200, 0, 100}, 1.0, "Custom calibration data format. Cannot reverse SDT static calibration"},
             {{1, 0}, 1.0, "Invalid calibration data size"}}) {
        AmbientLight sensor(lightLuid);
        sensor.firmwareData = record;
        EXPECT_EQ(textOf<CalibrationException>([&] { sensor.calcReverseSdt(); }), failure);
        SensorSample sample{1.0, {300.0}};
        sensor.reverseStaticCalibration(sample);
        EXPECT_EQ(sample.values[0], 300.0 * scale);
    }
}

/// A sensor with one stage of two samples for each pair of level and mean.
struct Measured {
    explicit Measured(const std::vector<std::pair<std::int32_t, double>>& stages) : run(0), sensor(run.add()) {
        for (const auto& [level, mean] : stages) {
            const auto first = static_cast<std::int32_t>(sensor->getDataSize());
            for (const double noise : {-0.5, 0.5})
                sensor->bufferedData.append({0.0, {mean + noise}});
            run.process.stepLevels.insert(run.process.stepLevels.end(), {first, first + 1});
            sensor->addLightLevel(level);
        }
    }

    std::string calibrate() {
        return textOf<CalibrationException>([this] { sensor->calibrate(); });
    }

    LightRun run;
    std::shared_ptr<AmbientLight> sensor;
};

TEST(AmbientLight, CalibratesToTwoDecimals) {
    for (const auto& [stages, outcome, multiplier] :
         std::vector<std::tuple<std::vector<std::pair<std::int32_t, double>>, std::string, double>>{
             {{{1000, 800.0}}, "(nothing thrown)", 125.0},
             {{{1000, 1000.0}, {2998, 1000.0}}, "(nothing thrown)", 199.0},  // cut, not rounded
             {{{800, 4.0}}, "(nothing thrown)", 20000.0},
             {{{1000, 4.0}}, "Invalid multiplier 250.000000 was calculated", 0.0},
             {{{100, 0.0}}, "Invalid light level of 0 was measured", 0.0},
             {{{100, -50.0}}, "Invalid multiplier -2.000000 was calculated", 0.0},
             {{}, "Invalid multiplier nan was calculated", 0.0}}) {
        Measured light(stages);
        EXPECT_EQ(light.calibrate(), outcome);
        EXPECT_EQ(light.sensor->multiplier, multiplier);
        EXPECT_EQ(light.sensor->calibrationData.size(), multiplier == 0.0 ? 0U : 66U);
    }
    using Span = std::vector<std::int32_t>;
    for (const Span& span : {Span{}, {-1, 1}, {0, 2}, {1, 0}, {2147483647, 2147483647}}) {
        Measured light({{1000, 800.0}});
        light.run.process.stepLevels = span;
        EXPECT_EQ(light.calibrate(), "Internal error");
    }
}

TEST(AmbientLight, ResultKeepsWhatTheFirmwareHolds) {
    Measured light({{10000, 100.0}});
    ByteString record{1, 9, 1, 1, 1, 3, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 1, 0, 77};
    light.sensor->firmwareData = record;
    light.calibrate();
    record[2] = 0x10, record[3] = 0x27, record[4] = 100;  // 10000 by 100
    EXPECT_EQ(light.sensor->calibrationData, record);
    EXPECT_EQ(light.sensor->resultText(), "Multiplier: 10000.000000\nDivider: 100.000000\nMultiplier/Divider: 100.000000\n");
    EXPECT_EQ(light.sensor->calibrated(std::vector<SensorSample>{{5.0, {3.0}}, {6.0, {}}}),
              (std::vector<SensorSample>{{5.0, {300.0}}, {6.0, {}}}));
}

/// A record of this many steps, all bytes different, and with `more` behind it.
ByteString recordOf(std::uint8_t steps, const ByteString& more = {}) {
    ByteString record{1, 4, 0x34, 0x12, 100, steps};
    for (int k = 0; k < 4 * steps; ++k)
        record.push_back(static_cast<std::uint8_t>(190 + k));
    record.insert(record.end(), more.begin(), more.end());
    return record;
}

TEST(AmbientLightRecord, Sizes) {
    using Records = std::vector<ByteString>;
    const ByteString manySteps{1, 0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    for (const auto& [outcome, records] : std::vector<std::pair<std::string, Records>>{
             {"(nothing thrown)", {recordOf(3), recordOf(15, {2, 0, 7, 8}), {200}}},
             {"Invalid Ambient Light Sensor calibration data size", {{}, recordOf(2), recordOf(3, {2, 0, 7}), manySteps}},
             {"Unsupported format of AmbientLightSensor Sensor calibration data", {{2, 0}}},
             {"Invalid Ambient Light Sensor calibration data: not enough ALR steps", {recordOf(2, ByteString(4))}}})
        for (const ByteString& record : records) {
            AmbientLight sensor(lightLuid);
            EXPECT_EQ(textOf<CalibrationException>([&] { sensor.setCalibrationData(record); }), outcome);
        }
}

/// What a sensor makes of an XML payload: its record in hexadecimal, or the failure. Format and
/// version are the first two bytes of `header`.
std::string loaded(AmbientLight& sensor, std::wstring text, const ByteString& header) {
    XmlDocument document;
    std::replace(text.begin(), text.end(), L'\'', L'"');
    EXPECT_EQ(document.parseBuffer(text), 0);
    const std::string failure = textOf<CalibrationException>(
        [&] { sensor.loadCalibrationXml(dynamic_cast<XmlElement&>(*document.firstChild()), header[0], header[1]); });
    return failure == "(nothing thrown)" ? toHex(sensor.calibrationData) : failure;
}

TEST(AmbientLightRecord, XmlRoundTrips) {
    const ByteString vendor{3, 0, 0, 0xAB, 9};
    const auto roundTrip = [](AmbientLight& sensor, const ByteString& record) {
        XmlElement data(L"Data");
        sensor.saveCalibrationXml(data, record);
        return loaded(sensor, data.toString(), record);
    };
    AmbientLight sensor(lightLuid);
    EXPECT_EQ(roundTrip(sensor, recordOf(4, vendor)), toHex(recordOf(4)));
    sensor.firmwareData = recordOf(4);  // vendor data is told by this size alone
    for (std::uint8_t steps = 3; steps <= 15; ++steps)
        for (const ByteString& more : {ByteString{}, ByteString{0, 0}, vendor})
            EXPECT_EQ(roundTrip(sensor, recordOf(steps, more)), toHex(recordOf(steps, more == vendor ? vendor : ByteString{})));
    EXPECT_EQ(roundTrip(sensor, recordOf(3, {2, 0, 8, 9})), toHex(recordOf(3)));
    for (const ByteString& bad : {ByteString{}, {1, 0, 0, 0, 0, 3}, recordOf(3, {5, 0, 1})})
        EXPECT_EQ(textOf<CalibrationException>([&] { roundTrip(sensor, bad); }), "Invalid calibration data size");
}

TEST(AmbientLightRecord, XmlPayloads) {
    const std::wstring step = L"<Step><Scale value='1'/><Lux value='2'/></Step>";
    const std::wstring good = L"<Data><Multiplier Divider='99'>258</Multiplier><Steps NumOfSteps='3'>" + step + step + step +
                              L"</Steps><VendorData DataLength='2'>0fzz</VendorData></Data>";
    const std::string steps = "03010002000100020001000200";
    const std::string xml = "XML parsing error. ";
    const std::string range = " value in XML input file. Value should be between ";
    const std::string multiplier = "Invalid multiplier" + range + "0 and 65535. Line: Multiplier";
    const std::string divider = "Invalid divider" + range + "1 and 255. Node: Multiplier";
    const std::string number = "Invalid Scale" + range + "0 and 65535. Line: ";
    const std::string count = xml + "Invalid value for NumOfSteps. Line: Steps";
    const std::string noCount = xml + "Missing field NumOfSteps. Line: ";
    const std::vector<std::tuple<std::wstring, std::wstring, std::string>> rows{
        {L"", L"", "0109020163" + steps + "02000f00"},
        {L"Divider='99'>258", L"divider='255'>65535", "0109ffffff" + steps + "02000f00"},
        {L"'99'", L"'0'", "0109020101" + steps + "02000f00"},
        {L"'99'", L"'256'", divider},
        {L"'99'", L"'-1'", divider},
        {L"258", L"65536", multiplier},
        {L"258", L"", multiplier},
        {L"<Multiplier Divider='99'>258</Multiplier>", L"", xml + "Missing Ambient Light multiplier node. Line: Data"},
        {L"<Steps NumOfSteps='3'>", L"<Data><Steps NumOfSteps='3'>", "Calibration data node is NULL."},
        {L"NumOfSteps='3'", L"", noCount + "Steps"},
        {L"NumOfSteps='3'", L"NumOfSteps='2'", count},
        {L"NumOfSteps='3'", L"NumOfSteps='16'", count},
        {L"</Steps>", L"<step/></Steps>", noCount + "step"},
        {L"<Scale value='1'/>", L"", "scale node is NULL."},
        {L"Scale", L"scale", xml + "Unexpected element , Line: scale"},
        {L"value='1'", L"value='-1'", number + "Scale"},
        {L"<Lux value='2'/>", L"", "lux node is NULL."},
        {L"value='2'", L"value='99999999999'", number + "Lux"},
        {L"DataLength='2'", L"", xml + "Missing field DataLength. Line: VendorData"},
        {L"DataLength='2'", L"DataLength='0'", "0109020163" + steps},
        {L"0fzz", L"0fz", xml + "BinData size does not match declared length. Line: VendorData"},
        {L"DataLength='2'>0fzz", L"DataLength='65536'>" + std::wstring(131072, L'0'),
         "Invalid Ambient Light Sensor calibration data size"}};
    const std::string warning = "Warning: Ambient Light divider value is set to 0. Changing it to 1. Line: Multiplier\n";
    for (const auto& [part, replacement, outcome] : rows) {
        AmbientLight sensor(lightLuid);
        std::wstring text = good;
        text.replace(text.find(part), part.size(), replacement);
        testing::internal::CaptureStdout();
        EXPECT_EQ(loaded(sensor, text, {1, 9}), outcome);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), replacement == L"'0'" ? warning : "");
    }
    AmbientLight sensor(lightLuid);
    EXPECT_EQ(loaded(sensor, good, {2, 0}),
              "Format ID of ALS calibration structure is not supported. Only supported format is 1. Line: Data");
}

}  // namespace
}  // namespace tavoren
