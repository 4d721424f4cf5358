#include <gtest/gtest.h>

#include "files/xml/XmlElement.h"
#include "sensors/createSensor.h"
#include "sensors/ExpectThrow.h"
#include "sensors/GenericSensor.h"
#include "sensors/SecondSensorLayout.h"

namespace tavoren {
namespace {

TEST(Sensor, ClassFollowsTheTypeNumber) {
    for (const auto& [type, name] : {std::pair<std::uint16_t, const char*>{115, "Accelerometer"}, {118, "Gyroscope"}, {113, ""}})
        EXPECT_EQ(createSensor({.SensorTypeId = type})->name, name);
    for (const std::uint16_t type :
         std::vector<std::uint16_t>{113, 114, 115, 116, 117, 118, 119, 124, 126, 129, 141, 577, 578, 591})
        EXPECT_EQ(createSensor({.SensorTypeId = type})->category, 1U) << type;
    for (const std::uint16_t type : std::vector<std::uint16_t>{0, 112, 127, 128, 142, 576, 579, 592, 65535})
        EXPECT_EQ(createSensor({.SensorTypeId = type})->category, 0U) << type;
    EXPECT_EQ(createSensor({118, 7, 8, 1, 3})->getLuid(), (Luid{0x0241, 7, 8, 1, 0})) << "its raw data";
    EXPECT_EQ(createSensor({115, 7, 8, 1, 3})->getLuid(), (Luid{115, 7, 8, 1, 3}));
}

TEST(Sensor, ValidatesTheShapeOfCalibrationData) {
    const std::string ok = "(nothing thrown)";
    const std::string size = "Invalid calibration data size";
    const auto record = [](std::uint8_t id, std::size_t length, std::uint8_t vendor = 0) {
        ByteString bytes(length);
        bytes[0] = id;
        if (length > 38)
            bytes[38] = vendor;
        return bytes;
    };
    const Luid fixed{115, 0, 0, 0, 2}, dynamic{115, 0, 0, 0, 1}, dynamicGyroscope{118, 0, 0, 0, 1}, unknown{0, 0, 0, 0, 2};
    const auto expectOutcome = [](const Luid& luid, const std::vector<ByteString>& records, const std::string& text) {
        for (const ByteString& bytes : records) {
            const auto sensor = createSensor(luid);
            EXPECT_EQ(textOf<CalibrationException>([&] { sensor->setCalibrationData(bytes); }), text) << bytes.size();
            EXPECT_EQ(sensor->calibrationData, text == "(nothing thrown)" ? bytes : ByteString());
        }
    };
    expectOutcome(fixed, {record(0, 40), record(0, 41, 1), record(200, 2)}, ok);
    expectOutcome(fixed, {record(0, 39), record(0, 41), ByteString()}, size);
    expectOutcome(fixed, {record(5, 40)}, "Unsupported format of Accelerometer Sensor calibration data");
    expectOutcome(dynamic, {record(1, 12), record(1, 66)}, ok);
    expectOutcome(dynamic, {record(1, 11), record(1, 67)}, size);
    expectOutcome(dynamicGyroscope, {record(2, 71)}, ok);
    expectOutcome(dynamicGyroscope, {record(2, 70)}, size);
    expectOutcome(unknown, {record(77, 3)}, ok);
    expectOutcome(unknown, {ByteString()}, size);
}

TEST(Sensor, NamesOfFormFactorAndHinge) {
    GenericSensor sensor(Luid{});
    for (const auto& [form, hinge] : {std::pair{"tablet", "Right"}, {"laptop", ""}}) {  // the latter are unknown
        sensor.setFormFactor(form);
        sensor.setHinge(hinge);
        EXPECT_EQ(sensor.formFactor + sensor.hinge, 6);
        EXPECT_EQ(sensor.formFactorName() + sensor.hingeName(), "TABLETRIGHT");
    }
    sensor.formFactor = 6;
    sensor.hinge = 4;
    EXPECT_EQ(sensor.formFactorName() + sensor.hingeName(), "");
    EXPECT_EQ(GenericSensor(Luid{.InstanceId = 3}).displayName(), "_2");
}

TEST(Sensor, LogsIntoOneElementAndClosesSectionsOnEveryWay) {
    const auto sensor = createSensor({115, 0, 0, 1, 2});
    sensor->logValue(1.5, L"Value", L"a comment");
    EXPECT_THROW(
        {
            const LogSection section(*sensor, L"Performing_Test");
            sensor->logComment(L"step 0");
            throw CalibrationException("within");
        },
        CalibrationException);
    sensor->logTest(L"allowed:", L"", L"", {{L"a", L"1"}, {L"b", L""}});
    const auto node = sensor->releaseLogNode();
    EXPECT_EQ(sensor->logNode, nullptr);
    EXPECT_EQ(node->toString(),
              L"<Sensor LUID=\"0073000000000102\" Type=\"Accelerometer\" SamplingUnit=\"g0\" "
              L"Success=\"false\" IsPrimary=\"false\">\r\n"
              L"    <!--a comment-->\r\n"
              L"    <Value>\r\n        <Values>1.500000</Values>\r\n    </Value>\r\n"
              L"    <Performing_Test>\r\n        <!--step 0-->\r\n    </Performing_Test>\r\n"
              L"    <allowed: a=\"1\">\r\n        <Values></Values>\r\n    </allowed:>\r\n"
              L"</Sensor>\r\n");
}

TEST(Sensor, SecondSensorsExistInTwoFormFactors) {
    const std::string form = "Undefined form factor encountered.";
    const std::string side = "Undefined hinge configuration encountered.";
    for (std::uint8_t formFactor = 0; formFactor < 7; ++formFactor)
        for (std::uint8_t hinge = 0; hinge < 5; ++hinge)
            EXPECT_EQ(textOf<CalibrationException>([&] { secondSensorLayout(formFactor, hinge); }),
                      formFactor != 0 && formFactor != 5 ? form
                      : hinge > 3                        ? side
                                                         : "(nothing thrown)");
}

}  // namespace
}  // namespace tavoren
