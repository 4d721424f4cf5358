#include "files/CalibrationFile.h"

#include <gtest/gtest.h>

#include "common/SmhiException.h"
#include "files/TemporaryFolder.h"
#include "sensors/createSensor.h"
#include "sensors/ExpectThrow.h"
#include "sensors/Sensor.h"

namespace tavoren {
namespace {

const std::string load = "Failed to load XML input file";
const std::string xml = "XML parsing error. ";

std::string sensorText(const std::string& attributes, const std::string& content) {
    return "<TVN><Calibration><Sensor " + attributes + ">" + content + "</Sensor></Calibration></TVN>";
}

/// A sensor of this type and these flags with this content.
std::string fileOf(int type, int flags, const std::string& content,
                   const std::string& attributes = "Version=\"0\" FormatId=\"0\"") {
    return sensorText("SensorTypeId=\"" + std::to_string(type) + "\" SubTypeId=\"0\" VendorId=\"0\" InstanceId=\"0\" Flags=\"" +
                          std::to_string(flags) + "\"",
                      "<CalibrationData " + attributes + ">" + content + "</CalibrationData>");
}

std::string attributesWith(const std::string& name, const std::string& value) {
    std::string text;
    for (const char* attribute : {"SensorTypeId", "SubTypeId", "VendorId", "InstanceId", "Flags"})
        if (attribute != name)
            text += std::string(attribute) + "=\"2\" ";
        else if (value != "missing")
            text += name + "=\"" + value + "\" ";
    return text;
}

using Row = std::pair<std::string, std::string>;  // a file, and the text that it is refused with

std::vector<Row> attributeRows() {
    std::vector<Row> rows;
    for (const auto& [name, above] : std::vector<std::pair<std::string, std::string>>{
             {"SensorTypeId", "65536"}, {"SubTypeId", "65536"}, {"VendorId", "65536"}, {"InstanceId", "256"}, {"Flags", "256"}}) {
        const std::string text = xml + name + " has invalid value. Line: Sensor";
        for (const std::string& value : {above, std::string("-1"), std::string("missing")})
            rows.push_back({sensorText(attributesWith(name, value), ""), text});
        rows.push_back({sensorText(attributesWith(name, "x"), ""), "Conversion error. Value x is not a valid number"});
    }
    for (const std::string name : {"Version", "FormatId"}) {
        const std::string other = name == "Version" ? "FormatId=\"0\"" : "Version=\"0\"";
        const std::string text = xml + name + " has invalid value. Line: CalibrationData";
        rows.push_back({fileOf(115, 2, "", other), text});
        rows.push_back({fileOf(115, 2, "", other + " " + name + "=\"256\""), text});
    }
    return rows;
}

TEST(CalibrationFile, EveryRefusalHasItsText) {
    const std::string a = "0073000000000002";
    const std::string noise = "<WhiteNoise>1</WhiteNoise>";
    const std::string oem = "<OEMCustomData DataLength=\"2\">0102</OEMCustomData>";
    const std::string inertial = " was not recognized as Inertial sensor. Invalid calibration format";
    const std::string light = " was not recognized as Ambient Light sensor. Invalid calibration format. Line: CalibrationData";
    const std::string size = xml + "BinData size does not match declared length. Line: OEMCustomData";
    std::vector<Row> rows = attributeRows();
    rows.insert(
        rows.end(),
        {
            Row{"<TVN><Calibration></TVN>", load},
            Row{"<1a/>", load},
            Row{"", load + ". TVN root node could not be located"},
            Row{"<tvm/>", load + ". TVN root node could not be located"},
            Row{"<TVN></TVN>", load + ". Calibration node could not be located"},
            Row{"<TVN><Calibration><sensor/></Calibration></TVN>", load + ". Invalid Sensor node name: sensor"},
            Row{"<TVN><Calibration><!--c--></Calibration></TVN>", load + ". Invalid Sensor node name: "},
            Row{"<TVN><Calibration>text</Calibration></TVN>", load + ". Invalid Sensor node name: "},
            Row{sensorText(attributesWith("", ""), ""), load + ". Invalid CalibrationData node name."},
            Row{fileOf(115, 2, ""), xml + "No calibration data was specified for sensor " + a + ". Line: Sensor"},
            Row{fileOf(999, 2, "<Matrix/>"), xml + "Sensor 03e7000000000002" + inertial},
            Row{fileOf(999, 2, "<Offset/>"), xml + "Sensor 03e7000000000002" + inertial},
            Row{fileOf(115, 1, "<Matrix/>"), xml + "Sensor 0073000000000001 has invalid format"},
            Row{fileOf(115, 3, "<Scale/>"), xml + "Sensor 0073000000000003 has invalid format"},
            Row{fileOf(115, 2, noise), xml + "Sensor " + a + " has invalid format"},
            Row{fileOf(115, 0, noise + "<AxisMapping/>"), xml + "Sensor 0073000000000000 has invalid format"},
            Row{fileOf(115, 2, "<Steps/>"), xml + "Sensor " + a + light},
            Row{fileOf(115, 2, "<Steps/>" + oem), xml + "Sensor " + a + light},
            Row{fileOf(115, 2, "<Offset/>" + oem), xml + "Multiple data for sensor " + a + ". Line: Sensor"},
            Row{fileOf(999, 2, "<OEMCustomData>01</OEMCustomData>"), xml + "DataLength has invalid value. Line: OEMCustomData"},
            Row{fileOf(999, 2, "<OEMCustomData DataLength=\"1\">012</OEMCustomData>"), size},
            Row{fileOf(999, 2, "<OEMCustomData DataLength=\"1\"> 01</OEMCustomData>"), size},
            Row{fileOf(999, 2, "<OEMCustomData DataLength=\"9999999999\">01</OEMCustomData>"), size},
            Row{fileOf(115, 2, oem), "Invalid calibration data size"},
            Row{fileOf(115, 2, oem, "Version=\"0\" FormatId=\"7\""),
                "Unsupported format of Accelerometer Sensor calibration data"},
        });
    ASSERT_GE(rows.size(), 40U);
    const TemporaryFolder folder;
    for (const auto& [file, text] : rows) {
        folder.write("f.xml", file);
        EXPECT_EQ(textOf<CalibrationException>([&] { readCalibrationFile(folder / "f.xml"); }), text) << file;
    }
    for (const std::string& path : {folder / "none.xml", folder.path.string()})
        EXPECT_EQ(textOf<CalibrationException>([&] { readCalibrationFile(path); }), "Failed to open XML input file");
}

TEST(CalibrationFile, ReadsOpaqueDataWithoutTheFirmware) {
    const TemporaryFolder folder;
    folder.write("f.xml", "<tvn><CALIBRATION></CALIBRATION></tvn>");
    EXPECT_TRUE(readCalibrationFile(folder / "f.xml").empty());
    for (const auto& [attribute, text, bytes] : std::vector<std::tuple<std::string, std::string, ByteString>>{
             {"3", "01g2zz", {200, 9, 1, 0, 0}}, {"0", "", {200, 9}}, {"", "", {200, 9}}, {"-5", "anything", {200, 9}}}) {
        folder.write("f.xml", fileOf(115, 2, "<OEMCustomData DataLength=\"" + attribute + "\">" + text + "</OEMCustomData>",
                                     "version=\"9\" FORMATID=\"200\""));
        const auto sensors = readCalibrationFile(folder / "f.xml");
        ASSERT_EQ(sensors.size(), 1U);
        EXPECT_EQ(sensors[0]->calibrationData, bytes);
        EXPECT_EQ(sensors[0]->displayName(), "Accelerometer");
    }
    folder.write("f.xml", fileOf(115, 2, "<Offset/>"));
    EXPECT_EQ(textOf<SmhiException>([&] { readCalibrationFile(folder / "f.xml"); }),
              "SMHI Error: Failed to enumerate device interfaces");
}

TEST(CalibrationFile, WritesComputedDataFirstAndFirmwareDataOnRequest) {
    const TemporaryFolder folder;
    const auto computed = createSensor({999, 1, 2, 0, 0});
    const auto bare = createSensor({998, 0, 0, 0, 0});
    computed->setFirmwareCalibration({130, 1, 0xAB});
    computed->calibrationData = {131, 2, 0xCD, 0x0E};
    const auto opaque = [&](bool useFirmwareData) {
        writeCalibrationFile(folder / "f.xml", {bare, computed}, useFirmwareData);
        const std::string text = folder.read("f.xml");
        const auto sensors = readCalibrationFile(folder / "f.xml");
        EXPECT_EQ(sensors.size(), 1U);
        EXPECT_NE(text.find("SensorTypeId=\"999\" SubTypeId=\"2\" VendorId=\"1\" InstanceId=\"0\" Flags=\"0\""),
                  std::string::npos);
        writeCalibrationFile(folder / "g.xml", sensors, false);
        EXPECT_EQ(folder.read("g.xml"), text);
        return sensors[0]->calibrationData;
    };
    EXPECT_EQ(opaque(false), computed->calibrationData);
    EXPECT_EQ(opaque(true), computed->firmwareData);
    EXPECT_EQ(writeSensorNode(*bare, true), nullptr);
}

}  // namespace
}  // namespace tavoren
