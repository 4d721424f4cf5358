#include <gtest/gtest.h>

#include "common/MathException.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"
#include "sensors/createSensor.h"
#include "sensors/ExpectThrow.h"
#include "sensors/FakeRun.h"
#include "sensors/Gyroscope.h"
#include "sensors/StaticRecord.h"

namespace tavoren {
namespace {

const std::string nothing = "(nothing thrown)";

/// The `CalibrationData` element with this content.
std::shared_ptr<XmlElement> dataElement(const std::string& content) {
    XmlDocument document;
    EXPECT_EQ(document.parseBuffer(widen("<CalibrationData>" + content + "</CalibrationData>")), 0);
    return std::dynamic_pointer_cast<XmlElement>(document.children().front());
}

TEST(FirmwareRecord, ScaleUsesTheWholeRangeOfItsNumerators) {
    const auto scaled = [](double diagonal, double other) {
        return InertialSensor::convertScaling(Matrix(3, 3, {diagonal, other, 0.0, 0.0, diagonal, 0.0, 0.0, 0.0, diagonal}));
    };
    using Row = std::tuple<double, double, int, int, int>;
    for (const auto& [diagonal, other, divider, first, second] :
         {Row{1.0, 0.0, 1, 1, 0}, Row{-3.0, 2.0, 1, -3, 2}, Row{1.02, 0.0, 32124, 32766, 0}, Row{0.5, 0.0, 32767, 16383, 0},
          Row{0.5, -2.5, 13106, 6553, -32765}, Row{0.9, -0.0001, 32767, 29490, -3}}) {  // cut toward zero
        const auto scale = scaled(diagonal, other);
        EXPECT_EQ((std::tuple{scale.divider, scale.numerators[0], scale.numerators[1]}), (std::tuple{divider, first, second}));
    }
    for (const double bad : {40000.0, 1.0 / 0.0, 0.0 / 0.0})
        EXPECT_EQ(textOf<CalibrationException>([&] { scaled(1.0, bad); }), "Internal error. Invalid operation was performed");
}

TEST(FirmwareRecord, MappingFieldsAreSignExtendedPairsOfBits) {
    EXPECT_EQ(InertialSensor::compressAxisMapping(identity(3)), 0x00010101U);
    const Matrix mapping(3, 3, {0, 0, -1, 0, 1, 0, 1, 0, 0});
    EXPECT_EQ(InertialSensor::compressAxisMapping(mapping), 3U << 4 | 1U << 8 | 1U << 12);
    EXPECT_EQ(InertialSensor::expandAxisMapping(2U)(0, 0), -2.0);
    for (std::uint32_t k = 0; k < 9; ++k)
        for (const std::uint32_t bits : {0U, 1U, 3U})
            EXPECT_EQ(InertialSensor::compressAxisMapping(InertialSensor::expandAxisMapping(bits << 2 * k)), bits << 2 * k);
    EXPECT_EQ(textOf<MathException>([] { InertialSensor::compressAxisMapping(Matrix(3, 2)); }),
              "Math Error: Error from compressAxisMapping, expected a 3X3 matrix");
}

TEST(FirmwareRecord, KeepsTheVendorDataOfTheFirmware) {
    const std::string size = "Invalid calibration data size";
    const auto record = [](std::uint8_t vendorLength, std::uint8_t format) {
        ByteString bytes(43);
        bytes[0] = format;
        bytes[38] = vendorLength;
        bytes[40] = 0xAA;
        bytes[42] = 0xCC;
        return bytes;
    };
    using Case = std::pair<ByteString, std::string>;
    for (const auto& [firmware, text] : {Case{{}, nothing}, Case{record(3, 0), nothing}, Case{record(4, 0), size},
                                         Case{record(3, 1), size}, Case{ByteString(39), size}, Case{{200, 1, 2}, size}}) {
        InertialSensor sensor(Luid{113, 0, 0, 0, 2});
        sensor.dataUnit = sensor.firmwareUnit = Unit::g0;
        sensor.firmwareData = firmware;
        sensor.offset = {1.9, -2.9, 3e300};
        sensor.scaleMatrix = sensor.axisMapping = identity(3);
        EXPECT_EQ(textOf<CalibrationException>([&sensor] { sensor.convertToFWForamt(); }), text);
        if (text != nothing)
            continue;
        const ByteString& built = sensor.calibrationData;
        EXPECT_EQ(built.size(), std::max<std::size_t>(40, firmware.size()));
        EXPECT_EQ(toHex({built.begin(), built.begin() + 14}), "000001000000feffffffffffff7f");
        EXPECT_EQ(built.back(), firmware.empty() ? 0 : 0xCC);
    }
}

TEST(FirmwareRecord, DynamicRecordTakesANewNoise) {
    Gyroscope dynamic({118, 0, 0, 0, 1});
    EXPECT_EQ(textOf<CalibrationException>([&] { dynamic.setDynamicWhiteNoise(1.0); }),
              "Error. No original scaling for dynamic sensor Gyroscope");
    ByteString firmware(71, 9);
    firmware[0] = 2;
    dynamic.setFirmwareCalibration(firmware);
    dynamic.setDynamicWhiteNoise(-2.9);
    EXPECT_EQ(readLittleEndian<std::int32_t>(dynamic.calibrationData, 2), -2);
    EXPECT_EQ(dynamic.calibrationData[6], 9);
    EXPECT_EQ(textOf<CalibrationException>([&] { dynamic.meanWhiteNoise(); }), "Internal error. Invalid operation was performed");
    Gyroscope fixed(staticGyroscope);
    fixed.whiteNoise = {0.1, 0.2, 0.3};
    EXPECT_NEAR(fixed.meanWhiteNoise(), 20000.0, 1e-6);
    EXPECT_THROW(fixed.setDynamicWhiteNoise(1.0), CalibrationException);
}

TEST(FirmwareRecord, ImportedNoiseWaitsForTheFirmware) {
    ByteString firmware(12, 7);
    firmware[0] = 1;
    for (const bool firmwareFirst : {true, false}) {
        InertialSensor sensor(Luid{115, 0, 0, 0, 1});
        if (firmwareFirst)
            sensor.setFirmwareCalibration(firmware);
        sensor.loadCalibrationXml(*dataElement("<WhiteNoise>100</WhiteNoise>"), 1, 0);
        EXPECT_EQ(sensor.calibrationData.empty(), !firmwareFirst);
        if (!firmwareFirst)
            sensor.setFirmwareCalibration(firmware);
        EXPECT_EQ(readLittleEndian<std::int32_t>(sensor.calibrationData, 2), 100);
    }
    InertialSensor outdated(Luid{115, 0, 0, 0, 1});
    outdated.name = "Some";
    testing::internal::CaptureStdout();
    outdated.setFirmwareCalibration({2, 0, 0});
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Warning: Dynamic sensor calibration data is outdated. Ignoring the dynamic Some\n");
    EXPECT_FALSE(outdated.hasFirmwareData);
}

TEST(FirmwareRecord, MissingPartsKeepTheDefault) {
    const auto sensor = createSensor(staticAccelerometer);
    sensor->loadCalibrationXml(*dataElement("<Matrix><Mat11>5</Mat11></Matrix><AxisMapping><XX>-1</XX></AxisMapping>"), 0, 9);
    const ByteString& record = sensor->calibrationData;
    EXPECT_EQ(record[1], 9);
    EXPECT_EQ(StaticRecord::numerator(record, 0), 5);
    EXPECT_EQ(StaticRecord::numerator(record, 8), 1);
    EXPECT_EQ(StaticRecord::mapping(record), 3U);
}

TEST(FirmwareRecord, EveryFaultOfAnXmlPayloadHasItsText) {
    const Luid fixed = staticAccelerometer;
    const Luid dynamic{115, 0, 0, 0, 1};
    const std::string xml = "XML parsing error. ";
    const std::string unexpected = xml + "Unexpected element ";
    const auto notANumber = [](const std::string& text) { return "Conversion error. Value " + text + " is not a valid number"; };
    std::string elements;
    for (const char* const name : {"Mat11", "Mat12", "Mat13", "Mat21", "Mat22", "Mat23", "Mat31", "Mat32", "Mat33"})
        elements += std::string("<") + name + ">1</" + name + ">";
    std::string axes;
    for (const char* const name : {"XX", "XY", "XZ", "YX", "YY", "YZ", "ZX", "ZY", "ZZ", "ZZ"})
        axes += std::string("<") + name + ">1</" + name + ">";
    using Row = std::tuple<Luid, std::uint8_t, std::string, std::string>;
    for (const auto& [luid, id, content, text] : {
             Row{fixed, 1, "", xml + "Unsupported format of calibration data. Line: CalibrationData"},
             Row{{115, 0, 0, 0, 0}, 0, "", xml + "Unknown format of calibration data. Line: CalibrationData"},
             Row{dynamic, 1, "", xml + "Missing white noise value."},
             Row{dynamic, 1, "<WhiteNoise>1x</WhiteNoise>", notANumber("1x")},
             Row{fixed, 0, "<AxisMapping><XX>2</XX></AxisMapping>", xml + "Invalid value for axis element "},
             Row{fixed, 0, "<AxisMapping><XX>-2</XX></AxisMapping>", xml + "Invalid value for axis element "},
             Row{fixed, 0, "<AxisMapping><XY>1</XY></AxisMapping>", unexpected},
             Row{fixed, 0, "<AxisMapping><xx>1</xx></AxisMapping>", unexpected},
             Row{fixed, 0, "<AxisMapping>12</AxisMapping>", unexpected + "12"},
             Row{fixed, 0, "<AxisMapping>" + axes + "</AxisMapping>", unexpected},
             Row{fixed, 0, "<Matrix><Mat12>1</Mat12></Matrix>", unexpected + "Mat12"},
             Row{fixed, 0, "<Matrix><ScaleFactor>1</ScaleFactor></Matrix>", unexpected + "ScaleFactor"},
             Row{fixed, 0, "<Matrix><Mat11>32768</Mat11></Matrix>", xml + "Invalid value for element Mat11. name: Mat11"},
             Row{fixed, 0, "<Matrix><Mat11>-32769</Mat11></Matrix>", xml + "Invalid value for element Mat11. name: Mat11"},
             Row{fixed, 0, "<Matrix>" + elements + "<ScaleFactor>32768</ScaleFactor></Matrix>",
                 xml + "Invalid value for element ScaleFactor"},
             Row{fixed, 0, "<Offset><OffsetY>1</OffsetY></Offset>", unexpected + "OffsetY. Line: OffsetY"},
             Row{fixed, 0, "<Offset><OffsetX>1 </OffsetX></Offset>", notANumber("1 ")},
             Row{fixed, 0, "<VendorData DataLength=\"\">00</VendorData>", xml + "Missing field DataLength. Line: VendorData"},
             Row{fixed, 0, "<VendorData DataLength=\"3\">00112</VendorData>",
                 xml + "VendorData size does not match declared length. Line: VendorData"},
             Row{{999, 0, 0, 0, 2}, 0, "", "Error. No calibration data format is available"},
         }) {
        const auto sensor = createSensor(luid);
        const auto data = dataElement(content);
        const auto load = [&sensor, &data, format = id] { sensor->loadCalibrationXml(*data, format, 0); };
        EXPECT_EQ(textOf<CalibrationException>(load), text) << content;
        EXPECT_TRUE(sensor->calibrationData.empty());
    }
}

}  // namespace
}  // namespace tavoren
