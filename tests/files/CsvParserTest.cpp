#include "files/CsvParser.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "files/LineReader.h"
#include "sensors/createSensor.h"
#include "sensors/ExpectThrow.h"
#include "sensors/Sensor.h"
#include "TemporaryFolder.h"

namespace tavoren {
namespace {

using Samples = std::vector<SensorSample>;
using Cases = std::vector<std::pair<std::string, std::string>>;

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
    for (const auto& [text, time] : Cases{{"12.75", "12"},
                                          {"0100.0", "64"},
                                          {"08.5", "0"},
                                          {"0x1F", "31"},
                                          {"0x.8", "0"},
                                          {"1e3", "1"},
                                          {" +7.9", "7"},
                                          {"nan", "0"},
                                          {largest + ".9", largest},
                                          {"4294967296", largest},
                                          {"99999999999999999999", largest},
                                          {"-0.5e-999", "0"},
                                          {"-1e-400", largest},
                                          {"1e300", "1"}})
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
    for (const auto& [basePath, name] :
         Cases{{"a.csv", "aA.csv"}, {"a.csv2", "aA.csv2"}, {"a.CSV", "a.CSVA"}, {"a.b\\c", "a.b\\cA"}})
        EXPECT_EQ(CsvParser::sensorFileName(basePath, "A"), name);
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

TEST_F(CsvParserTest, TruncationEndsInATextOrInSamples) {
    const std::string dump =
        "LUID=0073000000000002\nFORMFACTOR=SWIVEL\nHINGE=TOP\n" + header + "0.000000,0.995427,-0.045492,-0.008361\n";
    for (std::size_t length = 0; length < dump.size(); ++length) {
        const std::string outcome = outcomeOf(dump.substr(0, length));
        const bool wholeHeader = length >= dump.find("0.000000") - 1;
        EXPECT_TRUE(wholeHeader ? outcome.empty() || outcome.starts_with("0.000000") ||
                                      outcome.starts_with("Unexpected number of values") ||
                                      outcome == "CSV parsing error. Invalid value -"
                                : outcome.starts_with("Unexpected") || outcome.starts_with("Invalid header") ||
                                      outcome.ends_with(" is empty"))
            << length << ": " << outcome;
    }
}

TEST_F(CsvParserTest, UnwritableDumpsLeaveNothing) {
    const SensorDataMap data{{accelerometer(), SampleBuffer(Samples{{0, {1, 2, 3}}})}};
    std::filesystem::create_directories(folder.path / "dAccelerometer.csv");
    for (const char* const basePath : {"absent\\d.csv", "d.csv"})
        CsvParser().writeToFile(folder / basePath, data, {});
    const std::filesystem::directory_iterator entries(folder.path);
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

}  // namespace
}  // namespace tavoren
