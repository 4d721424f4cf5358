#include "files/CsvParser.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "files/AlsConfig.h"
#include "files/LineReader.h"
#include "sensors/createSensor.h"
#include "sensors/ExpectThrow.h"
#include "sensors/Sensor.h"
#include "TemporaryFolder.h"

namespace tavoren {
namespace {

using Samples = std::vector<SensorSample>;
using Case = std::pair<std::string, std::string>;
using Cases = std::vector<Case>;

const std::string header = "time[ms],Accelerometer_X[g0],Accelerometer_Y[g0],Accelerometer_Z[g0]\n";

std::shared_ptr<Sensor> accelerometer(std::uint8_t instance = 0) {
    return createSensor({115, 0, 0, instance, 2});
}
std::shared_ptr<Sensor> lightSensor() {
    return createSensor({65, 0, 0, 0, 2});
}

class CsvParserTest : public testing::Test {
  protected:
    SampleBuffer readText(const std::string& content, const std::shared_ptr<Sensor>& sensor = accelerometer()) const {
        folder.write("d" + sensor->displayName() + ".csv", content);
        return CsvParser().readFromFile(folder / "d.csv", std::vector{sensor}, true).at(sensor);
    }
    /// The samples as the writer prints them, a blank behind each; or the failure.
    std::string outcomeOf(const std::string& content, const std::shared_ptr<Sensor>& sensor = accelerometer()) const {
        std::string rows;
        const std::string failure = textOf<std::runtime_error>([&] {
            for (const SensorSample& sample : readText(content, sensor)) {
                CsvParser::formatRow(rows, sample);
                rows += ' ';
            }
        });
        return failure == "(nothing thrown)" ? rows : failure;
    }
    void check(const Cases& cases) const {
        for (const auto& [content, outcome] : cases)
            EXPECT_EQ(outcomeOf(content), outcome) << content.substr(0, 200);
    }

    const TemporaryFolder folder;
    const std::string file = "input file " + folder / "dAccelerometer.csv";
};

TEST_F(CsvParserTest, DamagedFilesAreNamed) {
    const std::string atEnd = "Unexpected end of " + file;
    const std::string columns = "Unexpected number of columns at " + file;
    const std::string rowLength = "Unexpected number of values at " + file;
    check({{"", "I" + file.substr(1) + " is empty"},
           {"# nothing\n", atEnd},
           {"\n\n", atEnd},
           {"FORMFACTOR=TABLET\n", atEnd},
           {"HINGE=TOP\nFORMFACTOR=TABLET\n" + header, columns},
           {header + "1,2,3,\n", rowLength},
           {header + "1,2,3,4,5\n", rowLength},
           {header + std::string(1000000, ','), rowLength},
           {header + std::string(std::size_t{3} << 20, ','), "Line too long at " + file},
           {header + "100,1,1,1\n99.9,1,1,1\n", "Invalid order of data at " + file}});
}

TEST_F(CsvParserTest, AbsentFilesAndFoldersDoNotExist) {
    EXPECT_FALSE(CsvParser::fileExists(folder.path.string(), "d", "Accelerometer"));
    std::filesystem::create_directory(folder.path / "dAccelerometer.csv");
    EXPECT_FALSE(CsvParser::fileExists(folder.path.string(), "d", "Accelerometer"));
    EXPECT_EQ(outcomeOf(""), "Sensor data file " + file.substr(11) + " does not exist");
}

TEST_F(CsvParserTest, Headers) {
    const auto columns = [](const char* x, const char* y, const char* z) {
        return std::string("TIME[MS],Accelerometer_") + x + ",2Accelerometer_" + y + ",Accelerometer_" + z + "\n0,1000,0,-500\n";
    };
    const std::string format = "Invalid header format";
    check({{columns("X[g0]", "Y[g0]", "Z[g0]]"), "0.000000,1000.000000,0.000000,-500.000000 "},
           {columns("X[mg0]", "Y[mg0]", "Z[mg0]"), "0.000000,1.000000,0.000000,-0.500000 "},
           {columns("X[tesla]", "Y[tesla]", "Z[tesla]"), "0.000000,0.000000,0.000000,0.000000 "},
           {columns("X[G0]", "Y[G0]", "Z[G0]"), "Math Error: Unsupported unit"},
           {" " + header, "Invalid header timestamp"},
           {columns("X[g0]", "Z[g0]", "Y[g0]"), "Invalid header"},
           {columns("X[g0]", "Y", "Z[g0]"), format},
           {columns("X[g0]", "Y[g0]", "Z]g0["), format},
           {columns("X[]", "Y[g0]", "Z[g0]"), format + ", unit is not specified"},
           {columns("X[g0]", "Y[g0]", "Z[mg0]"), format + ". All columns should have the same unit"}});
    EXPECT_EQ(outcomeOf("any,text\n1,2\n", lightSensor()), "1.000000,2.000000 ");
}

TEST_F(CsvParserTest, TimesAreWholeMilliseconds) {
    const std::string largest = "4294967295";
    for (const auto& [text, time] :
         {Case{"12.75", "12"}, Case{"0100.0", "64"}, Case{"08.5", "0"}, Case{"0x1F", "31"}, Case{"0x.8", "0"}, Case{"1e3", "1"},
          Case{" +7.9", "7"}, Case{"nan", "0"}, Case{largest + ".9", largest}, Case{"4294967296", largest},
          Case{"99999999999999999999", largest}, Case{"-0.5e-999", "0"}, Case{"-1e-400", largest}, Case{"1e300", "1"}})
        EXPECT_EQ(outcomeOf(header + text), time + ".000000 ") << text;
    for (const char* const text : {" ", "1 ", "1.5.2", "1e", "0x"})
        EXPECT_EQ(outcomeOf(header + text + ",1,2,3"), std::string("CSV parsing error. Invalid timestamp value ") + text);
    EXPECT_EQ(outcomeOf(header + "-1"), "CSV parsing error. Negative timestamp is invalid. -1");
}

TEST_F(CsvParserTest, ValuesAreTheNearestDoubles) {
    for (const char* const text : {"-0", ".5", "5.", "-0.000001", "0.3", "999999999999999", "-99999999999.9999", " 1.5",
                                   "9007199254740993", "0.30000000000000004", "1e-320", "+2", "-0x10", "inf", "1e999"}) {
        const double value = readText(header + "0," + text + ",1,2")[0].values[0];
        EXPECT_EQ(value, std::strtod(text, nullptr)) << text;
        EXPECT_EQ(std::signbit(value), text[0] == '-') << text;
    }
    for (const char* const text : {"1 ", "x", "-", ".", "1.2.3", "--1"})
        EXPECT_EQ(outcomeOf(header + "0,1,2," + text), std::string("CSV parsing error. Invalid value ") + text);
}

TEST_F(CsvParserTest, LineFormsThatPass) {
    const auto sensor = accelerometer();
    const std::string lines = "#\r\nLUID=\r\n\r\n#\r\nFORMFACTOR=tablet\r\nHINGE=left\r\n" + header +
                              "\r\n# between\r\n5.5,1,2,3,\r\n5,4,5,6\r\n5\r\n6,7,8,9";
    EXPECT_EQ(outcomeOf(lines, sensor),
              "5.000000,1.000000,2.000000,3.000000 5.000000,4.000000,5.000000,6.000000 5.000000 "
              "6.000000,7.000000,8.000000,9.000000 ");
    EXPECT_EQ(sensor->formFactorName() + sensor->hingeName(), "TABLETLEFT");
    EXPECT_EQ(sensor->luid, accelerometer()->luid);
}

TEST_F(CsvParserTest, NamesOfTheWriter) {
    for (const auto& [path, name] :
         {Case{"a.csv", "aA.csv"}, Case{"a.csv2", "aA.csv2"}, Case{"a.CSV", "a.CSVA"}, Case{"a.b\\c", "a.b\\cA"}})
        EXPECT_EQ(CsvParser::sensorFileName(path, "A"), name);
}

TEST_F(CsvParserTest, RoundTrip) {
    const auto first = accelerometer(), second = accelerometer(1), light = lightSensor();
    second->formFactor = second->hinge = 99;
    const SensorDataMap data{{first, SampleBuffer(Samples{{0.75, {1, -2.1234567, 3}}, {10, {}}})},
                             {second, SampleBuffer(Samples{{20, {4e20, 5, 6}}})},
                             {light, SampleBuffer(Samples{{30, {7}}})}};
    CsvParser().writeToFile(folder / "d.csv", data, std::vector{light, second});
    EXPECT_EQ(folder.read("dAccelerometer.csv"), "LUID=0073000000000002\nFORMFACTOR=2IN1\nHINGE=BOTTOM\n" + header +
                                                     "0.750000,1.000000,-2.123457,3.000000\n10.000000\n");
    EXPECT_TRUE(folder.read("dAccelerometer_2.csv")
                    .starts_with("LUID=0073000000000102\nFORMFACTOR=\nHINGE=\ntime[ms],Accelerometer_2_X[g0],"));
    EXPECT_TRUE(CsvParser::fileExists(folder / "d", "", "AmbientLightSensor"));
    const auto back = CsvParser().readFromFile(folder / "d.csv", std::vector{first, second, light}, true);
    EXPECT_EQ(back.at(first)[0], (SensorSample{0, {1, -2.123457, 3}}));
    EXPECT_EQ(back.at(second)[0], (SensorSample{20, {4e20, 5, 6}}));
    EXPECT_EQ(back.at(light)[0], (SensorSample{30, {7}}));
    EXPECT_EQ(second->luid, (Luid{0x7300, 0, 0, 1, 2}));
    EXPECT_EQ(second->formFactor, 99);
}

TEST_F(CsvParserTest, LongRecordingsCrossPieceBorders) {
    const auto sensor = accelerometer();
    Samples samples(40000);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = {static_cast<double>(10 * i), {static_cast<double>(i % 1000) / 8.0, 0, -1}};
    CsvParser().writeToFile(folder / "d.csv", {{sensor, SampleBuffer(samples)}}, {});
    const std::string content = folder.read("dAccelerometer.csv");
    ASSERT_GT(content.size(), 4 * LineReader::pieceSize);
    const SampleBuffer back = readText(content);
    EXPECT_TRUE(std::equal(samples.begin(), samples.end(), back.begin(), back.end()));
}

/// What reading the file gives: "levels / delay", or the failure.
std::string levelsOf(const std::string& path) {
    AlsConfig config{7, {}};
    std::string text = textOf<CalibrationException>([&] { CsvParser().readAlsConfig(path, config); });
    if (text != "(nothing thrown)")
        return text;
    text.clear();
    for (const std::int32_t level : config.values)
        text += std::to_string(level) + " ";
    return text + "/ " + std::to_string(config.delayTime);
}

TEST(AlsConfigTest, Files) {
    const TemporaryFolder folder;
    const std::string path = folder / "light.txt";
    const std::string nothing = "Invalid configuration file " + path;
    const std::string format =
        "Invalid value in the configuration file. The format should be "
        "\"values=list of comma separated values\" or \"delay_time=value\"";
    const std::string order = "Invalid values in configuration file. Values should be in ascending or descending order";
    const std::string step = "Invalid delta between values in configuration file. Minimum delta should be 300";
    for (const auto& [content, outcome] : Cases{
             {"values=100,500,1000\ndelay_time=3\n", "100 500 1000 / 3"},
             {"# note\r\n\r\n values =\t1000 , 500,100\r\ndelay_time= 50 \r\n", "1000 500 100 / 50"},
             {"values=1\nvalues=400,100\na=b=c\nvalues=\n", "400 100 / 7"},
             {"values=500,+900,", "500 900 / 7"},
             {"delay_time=10\n", nothing},
             {"Values=100", format},
             {"# values=100", format},
             {"values==", "Invalid number of values in configuration file. Minimum number of values is 1"},
             {"values=-99999999999", "Invalid light value in configuration file -2147483648. value should be bigger than 1"},
             {"values=100,5x", "Conversion error. Value 5x is not a valid number"},
             {"values=100,1000,1000", order},
             {"values=100,399", step},
             {"values=9\ndelay_time=2", "Invalid delay time. Minimum delay time is 3 seconds."},
             {"delay_time=51", "Invalid delay time. Maximum delay time is 50 seconds."},
             {std::string(std::size_t{2} << 20, '#'), "Line too long at input file " + path},
         }) {
        folder.write("light.txt", content);
        EXPECT_EQ(levelsOf(path), outcome) << content.substr(0, 80);
    }
    for (const std::string& name : {folder / "absent.txt", folder.path.string()})
        EXPECT_EQ(levelsOf(name), "Cannot read input file " + name);
}

}  // namespace
}  // namespace tavoren
