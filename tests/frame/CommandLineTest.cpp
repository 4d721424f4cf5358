#include "frame/CommandLine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <sstream>

#include "common/CmdLineException.h"
#include "files/TemporaryFolder.h"
#include "platform/Files.h"
#include "sensors/ExpectThrow.h"

namespace tavoren {
namespace {

const std::string accepted = "(nothing thrown)";

/// What `parse` says to the arguments.
std::string verdict(CommandLine& line, const std::string& arguments) {
    std::istringstream text(arguments);
    const std::vector<std::string> words(std::istream_iterator<std::string>(text), {});
    std::vector<const char*> argv{"C:\\tools\\tool.exe"};
    for (const std::string& word : words)
        argv.push_back(word == "''" ? "" : word.c_str());
    return textOf<CmdLineException>([&] { line.parse(static_cast<int>(argv.size()), argv.data()); });
}

void expectVerdicts(const std::vector<std::pair<std::string, std::string>>& cases) {
    for (const auto& [arguments, message] : cases) {
        CommandLine line;
        EXPECT_EQ(verdict(line, arguments), message.empty() ? accepted : message) << arguments;
    }
}

std::string cannotJoin(const std::string& first, const std::string& second) {
    return "Invalid combination of commands. The " + first + " argument cannot be used together with " + second;
}

/// A folder with the files that `-Auto` and `-ImportXml` want to open.
class CommandLineTest : public testing::Test {
  protected:
    CommandLineTest() {
        EXPECT_TRUE(makeDirectoryTree(folder / "folder.xml"));
        for (const char* const name : {"a.txt", "b.Csv", "c.xml", "d.XMLX"})
            folder.write(name, "1");
    }

    const TemporaryFolder folder;
    const std::string txt = folder / "a.txt";
    const std::string xml = folder / "c.xml";
};

TEST_F(CommandLineTest, AcceptsWhatFits) {
    const std::string replay = " -UseRawData d -ExportAllFiles e";
    for (const std::string sensors :
         {"A", "gma", "GM", "als", "ALS", "motion", "A -NoEnter 4294967296", "A -SamplingInterval ''", "AG -NoGyroRotation"})
        expectVerdicts({{"-UpdateTVN -Calibrate " + sensors, ""}});
    for (const std::string& line :
         {std::string("-TestCalibration A -Minimal -UseRawData d"), std::string("-TestCalibration M -MagAccuracyTest"),
          std::string("-ExportXml xml"), "-CalibrateOffline AGM -FourSteps" + replay,
          "-CalibrateOffline ALS" + replay + " -Auto " + txt, "-ExportAllFiles " + std::string(255, 'x') + " -MagTest"})
        expectVerdicts({{line, ""}});
}

TEST_F(CommandLineTest, JudgesEachArgumentByItself) {
    const std::string full(255, 'x');
    expectVerdicts({
        {"Calibrate", "Invalid argument: 'Calibrate'"},
        {"-", "Invalid argument: ''"},
        {"--MagTest", "Invalid argument: '-MagTest'"},
        {"-MagTest -bogus -magTEST", "Invalid argument: 'bogus'"},
        {"-MagTest -magTEST", "The 'magTEST' argument was already specified"},
        {"-calibrate", "Could not find value for 'calibrate'"},
        {"-Calibrate -UpdateTVN", "Could not find value for 'Calibrate'"},
        {"-exportallfiles " + full + "?", "Invalid value of: 'exportallfiles', length exceeds 255"},
        {"-ImportXml none.bad", "Invalid value of: 'ImportXml', file does not exist."},
        {"-ImportXml " + (folder / "folder.xml"), "Invalid value of: 'ImportXml', file does not exist."},
        {"-noEnter 1.5", "Invalid value of: 'noEnter', only positive integer is accepted."},
        {"-SamplingInterval +5", "Invalid value of: 'SamplingInterval', only positive integer is accepted."},
        {"-DumpPrefix a/b", "Invalid value of: 'DumpPrefix', prefix ought not contain directory"},
        {"-DumpPrefix a\\b", "Invalid value of: 'DumpPrefix', prefix ought not contain directory"},
    });
    for (const char c : std::string("<>|?*"))
        expectVerdicts(
            {{std::string("-ExportAllFiles a") + c, "Invalid value of: 'ExportAllFiles', forbidden character found."}});
}

TEST_F(CommandLineTest, JudgesExtensionsAndCombinations) {
    const std::string noCommand = "No command was specified";
    const auto badExtension = [](const std::string& file, const std::string& list) {
        return "Invalid extension for file " + file + ". Valid extension is only " + list;
    };
    const std::string odd = folder / "d.XMLX";
    expectVerdicts({
        {"", noCommand},
        {"-UpdateTVN -ExportAllFiles d", noCommand},
        {"-Auto " + (folder / "b.Csv"), noCommand},
        {"-ExportXml dir.xml\\name", badExtension("dir.xml\\name", "xml")},
        {"-Auto " + xml + " -ImportXml " + odd, badExtension(odd, "xml")},
        {"-ExportXml a.b -Auto " + xml, badExtension(xml, "txt, or csv")},
        {"-MagTest -UseRawData d", cannotJoin("MagTest", "UseRawData")},
        {"-SamplingInterval 10 -CalibrateOffline AG", cannotJoin("CalibrateOffline", "SamplingInterval")},
        {"-TestCalibration A -Calibrate A", cannotJoin("TestCalibration", "Calibrate")},
        {"-ExportResult -ImportXml " + xml, cannotJoin("ExportResult", "ImportXml")},
        {"-ImportXml " + xml + " -ExportXml e.xml", cannotJoin("ExportXml", "ImportXml")},
    });
}

TEST_F(CommandLineTest, JudgesWhatBelongsTogether) {
    const std::string result = "-ExportResult argument can only be used together with ";
    const std::string prefix = "Invalid calibration argument, ";
    expectVerdicts({
        {"-Calibrate AGM", "Missing export or update command"},
        {"-CalibrateOffline AG -ExportAllFiles d", "Missing sensors data source"},
        {"-CalibrateOffline AG -UseRawData d", "Missing export command"},
        {"-ExportResult", result + "-ExportAllFiles"},
        {"-ExportAllFiles d -MagTest -ExportResult", result + "-Calibrate or -CalibrateOffline"},
        {"-TestCalibration A", "Need to type -FourSteps or -Minimal"},
        {"-Calibrate A -UpdateTVN -Minimal -FourSteps", "Two contradicting movement sequences asked for"},
        {"-Calibrate A -UpdateTVN -CheckVsOriginalAxis",
         "CheckVsOriginalAxis: this option is supported only for FourSteps calibration"},
        {"-Calibrate A -Minimal -UseRawData d -UpdateTVN", cannotJoin("UseRawData", "Minimal")},
        {"-TestCalibration A -FourSteps -NoEnter 5", "Currently -NoEnter option is supported only for Face Up testing"},
        {"-Calibrate A -UpdateTVN -NoEnter ''",
         "Currently -NoEnter should come with non empty integer argument representing milliseconds to wait"},
        {"-Calibrate A -UpdateTVN -NoEnter 000",
         "Currently -NoEnter should come with positive integer argument representing milliseconds to wait"},
        {"-Calibrate A -UpdateTVN -DumpPrefix p", prefix + "data dump prefix can come only when loading a data dump"},
        {"-Calibrate A -UpdateTVN -PrimaryOnly -SecondaryOnly", prefix + "-PrimaryOnly and -SecondaryOnly ought to be exclusive"},
        {"-Calibrate A -UpdateTVN -UseRawData d -SamplingInterval 10",
         prefix + "-SamplingInterval is not applied for offline calibration."},
    });
}

TEST_F(CommandLineTest, JudgesTheSensors) {
    const std::string invalid = "Invalid value for calibrate command. Valid values are AGM(can be partial) and ALS";
    const std::string onlyAg = "Only A, G can be tested with this flow";
    const std::string rotation = "Only if you perform full calibration of gyroscope, you can use the NoGyroRotation command";
    const std::string prefix = "Invalid calibration argument, ";
    const std::string replay = " -UseRawData d -ExportAllFiles e";
    for (const char* const bad : {"AA", "AGX", "MOTION", "Motion", "Als", "xyz", "''"})
        expectVerdicts({{std::string("-UpdateTVN -Calibrate ") + bad, invalid}});
    expectVerdicts({
        {"-Calibrate AM -UpdateTVN -FourSteps", "Only A, G can be calibrated with this flow"},
        {"-Calibrate motion -UpdateTVN -Minimal", "Magnetometer is not applied to 1 step calibration"},
        {"-TestCalibration M -Minimal", onlyAg},
        {"-TestCalibration AM -FourSteps -MagAccuracyTest", onlyAg},
        {"-TestCalibration AG -MagAccuracyTest", "Only M can be tested with this flow"},
        {"-TestCalibration ALS -Minimal", "Invalid value for test command. Valid values are AGM(can be partial)"},
        {"-Calibrate AM -UpdateTVN -NoGyroRotation", rotation},
        {"-Calibrate G -UpdateTVN -NoGyroRotation -FourSteps", rotation},
        {"-Calibrate als -UpdateTVN -Minimal", "These options are only for motion sensors: Minimal, Foursteps"},
        {"-CalibrateOffline ALS" + replay, "If ALS runs offline light levels file must be supplied"},
        {"-Calibrate A -UpdateTVN -Auto " + txt,
         "Invalid automatic calibration argument, automatic calibration parameter is applicable "
         "only for Ambient Light sensor calibration"},
        {"-Calibrate ALS -UpdateTVN -UseRawData d",
         prefix + "automatic calibration parameter is required when loading a data dump"},
    });
}

TEST(CommandLine, RefusesMissingArgumentsAndOptions) {
    CommandLine line({{"Must", false, "", true, false, "", 1}, {"Do", false, "", false, true, "", 1}});
    EXPECT_EQ(verdict(line, "-Do"), "The mandatory argument: 'Must' is not specified");
    const std::array<const char*, 1> argv{"tool"};
    EXPECT_EQ(textOf<CmdLineException>([&] { line.parse(-1, nullptr); }), "No Command line arguments");
    EXPECT_EQ(textOf<CmdLineException>([&] { line.parse(-1, argv.data()); }), "Negative number of arguments");
}

TEST(CommandLine, AnswersQueries) {
    CommandLine line;
    ASSERT_EQ(verdict(line, "-calibrate AG -updateTVN -NOENTER 20"), accepted);
    const CommandLine copy = line;
    EXPECT_TRUE(copy.isSet("UPDATEtvn") && !copy.isSet("Calibrat"));
    for (const auto& [name, value] : {std::pair{"Calibrate", "AG"}, {"calibrate", ""}, {"NoEnter", "20"}, {"UpdateTVN", ""}})
        EXPECT_EQ(copy.value(name), value);
    EXPECT_NE(verdict(line, "-MagTest -Minimal"), accepted);
    EXPECT_FALSE(line.isSet("Calibrate")) << "a second parse starts anew";
}

TEST(CommandLine, UsageNamesTheProgramAndAlignsTheTable) {
    const std::string usage = CommandLine().usage("C:\\x\\t.exe");
    const std::string start =
        "\nUsage:\n\nt.exe [-ImportXml <filename>] [-ExportXml <filename>]\nt.exe -Calibrate "
        "<sensors> [-ExportAllFiles <folder>] [-UpdateTVN] [-UseRawData <dump-folder-path> "
        "[-DumpPrefix <dump-file-prefix>]] [-Minimal | -FourSteps] [-CheckVsOriginalAxis] "
        "[-noGyroRotation] [-PrimaryOnly | -SecondaryOnly] [-SamplingInterval <sampling_interval_ms>]\nt.exe";
    EXPECT_EQ(usage.substr(0, start.size()), start);
    // " -SamplingInterval <sampling_interval_ms>" is the longest: 16 + 22 letters.
    const std::string gap(15, ' ');
    for (const std::string& part : std::vector<std::string>{
             "\nt.exe -MagTest [-ExportAllFiles <folder>]\n\nDescription:\n\n",
             "\n\n -ImportXml <xml-file-path>" + gap + ":  Import calibration data from XML file\n",
             " -MagTest  " + gap + gap + " :  Test the environment magnetic noise level\n",
             " -SamplingInterval <sampling_interval_ms> :  Assign specific sampling interval of sensors, unit is "
             "ms\n\nExamples:\n\n",
             "\tt.exe -Calibrate AGM -UpdateTVN -ExportAllFiles results\n\tt.exe -Calibrate", "[-FourSteps]  [-PrimaryOnly",
             "<folder>]  [-Minimal | ", "-MagAccuracyTest\n\tt.exe -ExportXml filename.xml\n\tt.exe -ImportXml filename.xml\n"})
        EXPECT_NE(usage.find(part), std::string::npos) << part;
    EXPECT_EQ(std::count(usage.begin(), usage.end(), '\n'), 3 + 10 + 4 + 21 + 3 + 9);
    EXPECT_NE(CommandLine().usage("./t").find("\n./t -MagTest"), std::string::npos);
}

}  // namespace
}  // namespace tavoren
