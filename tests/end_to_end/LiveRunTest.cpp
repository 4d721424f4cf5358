// Tool and simulated hub as two processes: whole live runs, and what each fault leads to.

#include <gtest/gtest.h>

#include <cstdio>

#include "end_to_end/BackgroundProcess.h"
#include "end_to_end/RunProgram.h"
#include "end_to_end/Truth.h"

namespace tavoren {
namespace {

constexpr int reportedFailure = 255;
constexpr int interrupted = 2;

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// The record of a sensor in a file of records; empty without one.
std::string recordIn(const std::string& file, const std::string& luid) {
    const std::size_t at = file.find(luid + " ");
    return at == std::string::npos ? "" : file.substr(at, file.find('\n', at) - at);
}

TEST(LiveRun, CalibratesFlushesAndThenPassesTheTest) {
    const TemporaryFolder folder;
    HubProcess hub(folder, "--sequence four-steps,full,four-steps --truth truth.txt");
    const std::string test = "-TestCalibration AG -FourSteps -ExportAllFiles out";
    EXPECT_EQ(runProgram(folder, test).exitCode, reportedFailure);
    const ProgramRun run = runProgram(folder, "-Calibrate AGM -UpdateTVN -ExportAllFiles out -NoEnter 1");
    ASSERT_EQ(run.exitCode, 0) << run.shown;
    const std::string truth = folder.read("truth.txt");
    const std::vector<std::pair<std::string, double>> sensors{{"Accelerometer", 1.0}, {"Gyroscope", 1.0}, {"Magnetometer", 50.0}};
    for (const auto& [sensor, unit] : sensors)
        expectTruth(run.shown, truth, sensor, unit);
    const ProgramRun replay = runProgram(folder, "-CalibrateOffline AGM -UseRawData out -ExportAllFiles again");
    EXPECT_EQ(replay.exitCode, 0) << replay.shown;
    for (const auto& [sensor, unit] : sensors)
        expectTruth(replay.shown, truth, sensor, unit);
    const ProgramRun after = runProgram(folder, test);
    EXPECT_EQ(after.exitCode, 0) << after.shown;
    EXPECT_TRUE(contains(after.shown, "----   test pass -----\n"));
    EXPECT_EQ(hub.stop(SIGINT), 0);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path / "devices"));
}

struct SequenceRow {
    std::string name;
    std::string hubOptions;
    std::string toolOptions;
};

class LiveSequences : public testing::TestWithParam<SequenceRow> {};

TEST_P(LiveSequences, End) {
    const TemporaryFolder folder;
    folder.write("levels.txt", "values=100,500,1000\n");
    const HubProcess hub(folder, GetParam().hubOptions);
    const ProgramRun run = runProgram(folder, GetParam().toolOptions + " -ExportAllFiles out");
    EXPECT_EQ(run.exitCode, 0) << run.shown << hub.shown();
    EXPECT_TRUE(contains(hub.shown(), "end of the movement") || contains(hub.shown(), "rest"));
}

INSTANTIATE_TEST_SUITE_P(
    All, LiveSequences,
    testing::Values(SequenceRow{"AccelerometerOnly", "--sequence accelerometer", "-Calibrate A -NoEnter 1"},
                    SequenceRow{"Minimal", "--sequence minimal --errors offset", "-Calibrate AG -Minimal -NoEnter 1"},
                    SequenceRow{"WithoutAccelerometer", "--sequence full", "-Calibrate GM -NoEnter 1"},
                    SequenceRow{"CompassTest", "--sequence mag-accuracy --errors none", "-TestCalibration M -MagAccuracyTest"},
                    SequenceRow{"Light", "--sequence light", "-Calibrate ALS -Auto levels.txt"},
                    SequenceRow{"LidAndPartners", "--sensors A,G,M,A2,G2,M2,AD,GD,MD,X --form-factor 2IN1 --hinge LEFT",
                                "-Calibrate AGM -UpdateTVN -NoEnter 1"}),
    [](const auto& row) { return row.param.name; });

TEST(LiveRun, WritesWhatItExportedIntoAnotherHub) {
    const TemporaryFolder folder;
    {
        const HubProcess hub(folder, "--sequence four-steps --records first.txt");
        EXPECT_EQ(runProgram(folder, "-Calibrate AG -FourSteps -UpdateTVN -NoEnter 1").exitCode, 0);
        EXPECT_EQ(runProgram(folder, "-ExportXml all.xml").exitCode, 0);
    }
    const HubProcess other(folder, "--records second.txt --seed 2");
    const ProgramRun run = runProgram(folder, "-ImportXml all.xml");
    EXPECT_EQ(run.exitCode, 0) << run.shown;
    for (const char* luid : {"0073000000000002", "0076000000000002", "020f000000000002"}) {
        const std::string record = recordIn(folder.read("first.txt"), luid);
        EXPECT_EQ(recordIn(folder.read("second.txt"), luid), record) << luid;
        EXPECT_GT(record.size(), 90U);
    }
}

TEST(LiveRun, JudgesTheMagneticEnvironment) {
    struct Row {
        std::string hubOptions;
        int exitCode;
        std::string shown;
    };
    for (const Row& row : {
             Row{"", 0, "Test passed. You are good to go!\n"},
             Row{"--disturbance 300", reportedFailure,
                 "Data collected during translation phase in mag environment test is abnormal."},
         }) {
        const TemporaryFolder folder;
        const HubProcess hub(folder, "--sequence mag-test --hold 100 " + row.hubOptions);
        const std::string command =
            "cd \"" + folder.path.string() + "\" && \"" TAVOREN_PROGRAM "\" -MagTest -ExportAllFiles out >console.txt 2>&1";
        FILE* const keyboard = ::popen(command.c_str(), "w");  // NOLINT(cert-env33-c): own words
        ASSERT_NE(keyboard, nullptr);
        for (int rest = 1; rest <= 5; ++rest) {
            std::fputs("\n", keyboard);
            std::fflush(keyboard);
            EXPECT_TRUE(rest == 5 || hub.waitFor("rest\n", rest + 1));
        }
        const int status = ::pclose(keyboard);
        EXPECT_EQ(WEXITSTATUS(status), row.exitCode) << folder.read("console.txt");
        EXPECT_TRUE(contains(folder.read("console.txt"), row.shown)) << folder.read("console.txt");
    }
}

TEST(LiveRun, AnInterruptStopsTheFirmwareAndKeepsTheDump) {
    const TemporaryFolder folder;
    const HubProcess hub(folder, "--hold 1000 --trace");
    BackgroundProcess tool(folder,
                           "\"" TAVOREN_PROGRAM
                           "\" -Calibrate AG -UpdateTVN -ExportAllFiles out "
                           "-NoEnter 1",
                           "console.txt");
    ASSERT_TRUE(hub.waitFor("turn 360"));
    tool.signal(SIGINT);
    EXPECT_EQ(tool.wait(), interrupted) << tool.shown();
    EXPECT_TRUE(std::filesystem::exists(folder.path / "out/dataDumpAccelerometer.csv"));
    EXPECT_TRUE(hub.waitFor("0076000000000002 reporting stop"));
    EXPECT_FALSE(contains(hub.shown(), "tool: set-record"));
    EXPECT_FALSE(contains(hub.shown(), "tool: reset"));
}

/// What a fault does to a run that calibrates, flushes and resets.
struct FaultRow {
    std::string fault;
    int exitCode;
    std::string shown;
    bool holdsNew;  ///< the firmware has taken the records
};

class LiveFaults : public testing::TestWithParam<FaultRow> {};

TEST_P(LiveFaults, EndAsTheyShould) {
    const FaultRow& row = GetParam();
    const TemporaryFolder folder;
    HubProcess hub(folder, "--sequence four-steps --records records.txt --fault " + row.fault);
    const ProgramRun run = runProgram(folder, "-Calibrate AG -FourSteps -UpdateTVN -ExportAllFiles out -NoEnter 1");
    EXPECT_EQ(run.exitCode, row.exitCode) << run.shown;
    EXPECT_TRUE(contains(run.shown, row.shown)) << run.shown;
    EXPECT_EQ(std::filesystem::exists(folder.path / "records.txt"), row.holdsNew);
    const bool flushed = contains(run.shown, "Saving calibration data to FW\n");
    EXPECT_EQ(std::filesystem::exists(folder.path / "out/resultCalibration.xml"), flushed);
    EXPECT_EQ(hub.stop(SIGTERM), 0);
}

void PrintTo(const SequenceRow& row, std::ostream* out) {
    *out << row.name;
}
void PrintTo(const FaultRow& row, std::ostream* out) {
    *out << row.fault;
}

const std::string success = "Calibration process completed successfully\n";
const std::string link = "SMHI Error: ";

INSTANTIATE_TEST_SUITE_P(
    All, LiveFaults,
    testing::Values(FaultRow{"refuse-client", reportedFailure, link + "Failed to connect to client\n", false},
                    FaultRow{"status:list", reportedFailure, link + "Enumerate sensors command failed\n", false},
                    FaultRow{"short:list", reportedFailure, link + "Enumerate sensors command failed\n", false},
                    FaultRow{"empty:list", reportedFailure, link + "Enumerate sensors command failed\n", false},
                    FaultRow{"error:list", reportedFailure, link + "Failed to read from device, timed out\n", false},
                    FaultRow{"status:set-property", reportedFailure, "Failed to sample sensor Accelerometer\n", false},
                    FaultRow{"short:set-property", reportedFailure, "Failed to sample sensor Accelerometer\n", false},
                    FaultRow{"status:start", reportedFailure, "Failed to start PNRRecord\n", false},
                    FaultRow{"error:start", reportedFailure, "Failed to start sampling\n", false},
                    FaultRow{"silent-sensor", reportedFailure, "Too long time waiting for all sensors data to be ready.\n",
                             false},
                    FaultRow{"disconnect", reportedFailure, "DATA COLLECTION FAILED\n Failed to get samples from FW\n", false},
                    FaultRow{"left-over", 0, success, true}, FaultRow{"late-buffers", 0, success, true},
                    FaultRow{"zero-record", 0, success, true}, FaultRow{"long-record", 0, success, true},
                    FaultRow{"unknown-sensor", 0, success, true}, FaultRow{"foreign-message", 0, success, true},
                    FaultRow{"status:stop", 0, success, true},
                    FaultRow{"status:set-record=5", reportedFailure,
                             link + "Set calibration data command failed due to invalid parameter\n", false},
                    FaultRow{"status:set-record=7", reportedFailure, link + "Set calibration data command failed\n", false},
                    FaultRow{"status:reset", reportedFailure, link + "Reset TVN command failed\n", true},
                    FaultRow{"short:reset", reportedFailure, link + "Reset TVN command failed\n", true}),
    [](const auto& row) {
        std::string name;
        for (const char c : row.param.fault)
            if (std::isalnum(static_cast<unsigned char>(c)) != 0)
                name += c;
        return name;
    });

}  // namespace
}  // namespace tavoren
