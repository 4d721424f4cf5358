// Tool and simulated hub as two processes: whole live runs, and what each fault leads to.

#include <gtest/gtest.h>

#include <map>
#include <sstream>

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
    const ProgramRun replay = runProgram(folder, "-CalibrateOffline AGM -UseRawData out -ExportAllFiles again");
    EXPECT_EQ(replay.exitCode, 0) << replay.shown;
    for (const std::string& shown : {run.shown, replay.shown})
        for (const char* sensor : {"Accelerometer", "Gyroscope", "Magnetometer"})
            expectTruth(shown, truth, sensor);
    const ProgramRun after = runProgram(folder, test);
    EXPECT_EQ(after.exitCode, 0) << after.shown;
    EXPECT_TRUE(contains(after.shown, "----   test pass -----\n"));
    EXPECT_EQ(hub.stop(SIGINT), 0);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path / "devices"));
}

TEST(LiveRun, ATestFindsARecordThatTheFirmwareDidNotKeep) {
    const TemporaryFolder folder;
    const HubProcess hub(folder, "--sequence four-steps --fault forgetful");
    EXPECT_EQ(runProgram(folder, "-Calibrate AG -FourSteps -UpdateTVN -NoEnter 1").exitCode, 0);
    EXPECT_EQ(runProgram(folder, "-TestCalibration AG -FourSteps").exitCode, reportedFailure);
}

const std::string success = "Calibration process completed successfully\n";

struct SequenceRow {
    std::string name;
    std::string hubOptions;
    std::string toolOptions;
    std::vector<std::string> sensors;  ///< whose errors are found
    std::string shown = success;       ///< at the end
};

class LiveSequences : public testing::TestWithParam<SequenceRow> {};

TEST_P(LiveSequences, FindWhatTheSensorsWereBuiltAs) {
    const TemporaryFolder folder;
    folder.write("levels.txt", "values=100,500,1000\n");
    const HubProcess hub(folder, GetParam().hubOptions + " --truth truth.txt");
    const ProgramRun run = runProgram(folder, GetParam().toolOptions + " -ExportAllFiles out");
    EXPECT_EQ(run.exitCode, 0) << run.shown << hub.shown();
    EXPECT_TRUE(contains(run.shown, GetParam().shown)) << run.shown;
    for (const std::string& sensor : GetParam().sensors)
        expectTruth(run.shown, folder.read("truth.txt"), sensor);
}

const std::vector<std::string> inertial{"Accelerometer", "Gyroscope"};

INSTANTIATE_TEST_SUITE_P(
    All, LiveSequences,
    testing::Values(
        SequenceRow{"AccelerometerOnly", "--sequence accelerometer", "-Calibrate A -NoEnter 1", {"Accelerometer"}},
        SequenceRow{"FourSteps", "--sequence four-steps --errors diagonal", "-Calibrate AG -FourSteps -NoEnter 1", inertial},
        SequenceRow{"Minimal", "--sequence minimal --errors offset", "-Calibrate AG -Minimal -NoEnter 1", inertial},
        SequenceRow{"WithoutAccelerometer", "--sequence full", "-Calibrate GM -NoEnter 1", {"Gyroscope", "Magnetometer"}},
        SequenceRow{
            "CompassTest", "--sequence mag-accuracy --errors none", "-TestCalibration M -MagAccuracyTest", {}, "test pass"},
        SequenceRow{"Light", "--sequence light", "-Calibrate ALS -Auto levels.txt", {}, "Stage 3 multiplier is 1.0058"},
        SequenceRow{"LidAndPartners",
                    "--sensors A,G,M,A2,G2,M2,AD,GD,MD,X --form-factor 2IN1 --hinge LEFT",
                    "-Calibrate AGM -UpdateTVN -NoEnter 1",
                    {"Accelerometer", "Gyroscope", "Magnetometer"}}),
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
    for (const auto& [hubOptions, exitCode, shown] :
         {std::tuple{"", 0, "Test passed. You are good to go!\n"},
          {"--disturbance 300", reportedFailure,
           "Data collected during translation phase in mag environment test is abnormal."}}) {
        const TemporaryFolder folder;
        // A rest of 30 s is more than the link holds, so that the tool has the movement before it.
        const HubProcess hub(folder, "--sequence mag-test --rest 30 --wait " + std::string(hubOptions));
        BackgroundProcess tool(folder, "\"" TAVOREN_PROGRAM "\" -MagTest -ExportAllFiles out", "console.txt");
        for (int step = 0; step < 5; ++step) {
            ASSERT_TRUE(step == 0 || hub.waitFor(step < 4 ? "Press Enter" : "end of the movement", step < 4 ? step + 1 : 1));
            tool.pressEnter();
            if (step < 4) {
                ASSERT_TRUE(step == 0 ? hub.waitFor("Press Enter") : tool.waitFor("PASSED", step));
                hub.pressEnter();
            }
        }
        EXPECT_EQ(tool.wait(), exitCode) << tool.shown();
        EXPECT_TRUE(contains(tool.shown(), shown)) << tool.shown();
    }
}

struct InterruptRow {
    std::string name;
    std::string hubOptions;
    std::string toolOptions;
    std::string hubShows;   ///< before the interrupt
    std::string toolShows;  ///< before the interrupt
    bool hasSampled;        ///< then the firmware is told to stop, and a dump is due
};

class LiveInterrupts : public testing::TestWithParam<InterruptRow> {};

TEST_P(LiveInterrupts, StopTheFirmwareAndKeepTheDump) {
    const InterruptRow& row = GetParam();
    const TemporaryFolder folder;
    const HubProcess hub(folder, "--trace --records records.txt " + row.hubOptions);
    BackgroundProcess tool(folder, "\"" TAVOREN_PROGRAM "\" " + row.toolOptions + " -ExportAllFiles out", "console.txt");
    ASSERT_TRUE(tool.waitFor(row.toolShows));
    if (row.hasSampled)
        tool.pressEnter();
    ASSERT_TRUE(hub.waitFor(row.hubShows));
    tool.signal(SIGINT);
    EXPECT_EQ(tool.wait(), interrupted) << tool.shown();
    EXPECT_TRUE(contains(tool.shown(), "Interrupt signal (2) received.\n")) << tool.shown();
    EXPECT_TRUE(contains(tool.shown(), "Abort request\n"));
    const std::string dump = row.toolOptions[1] == 'M' ? "out/dataDumpMagnetometer.csv" : "out/dataDumpAccelerometer.csv";
    EXPECT_EQ(std::filesystem::exists(folder.path / dump), row.hasSampled);
    EXPECT_EQ(contains(hub.shown(), "reporting start"), row.hasSampled);
    EXPECT_TRUE(!row.hasSampled || hub.waitFor("reporting stop"));
    // A record that was sent is the firmware's, answered or not.
    EXPECT_EQ(std::filesystem::exists(folder.path / "records.txt"), row.name == "InTheFlush");
    EXPECT_FALSE(contains(hub.shown(), "tool: reset"));
}

const std::string calibrate = "-Calibrate AG -FourSteps -UpdateTVN";

INSTANTIATE_TEST_SUITE_P(
    All, LiveInterrupts,
    testing::Values(InterruptRow{"AtTheFirstEnter", "", calibrate, "get-record", "Step 1 out of 4", false},
                    InterruptRow{"BeforeSampling", "", calibrate + " -NoEnter 60000", "get-record", "Step 1 out of 4", false},
                    InterruptRow{"AtRest", "--wait --sequence four-steps", calibrate, "Press Enter", "Step 1 out of 4", true},
                    InterruptRow{"InAMovement", "--sequence four-steps --turn 600 --speed 100", calibrate, "turn 90",
                                 "Step 1 out of 4", true},
                    InterruptRow{"AtTheEnterOfAStep", "--wait --sequence mag-test", "-MagTest", "Press Enter",
                                 "Press Enter to signal", true},
                    InterruptRow{"InTheFlush", "--sequence four-steps --fault no-reply:set-record", calibrate, "set-record",
                                 "Step 1 out of 4", true}),
    [](const auto& row) { return row.param.name; });

/// What faults do to a run.
struct FaultRow {
    std::string mode;
    std::string faults;  ///< one or more, separated by blanks, all with the same end
    int exitCode;
    std::string shown;
    bool holdsNew;  ///< the firmware has taken the records
};

struct Mode {
    std::string hubOptions;
    std::string toolOptions;
};
const std::map<std::string, Mode> modes{
    {"calibrate", {"--sequence four-steps", calibrate + " -ExportAllFiles out -NoEnter 1"}},
    {"light", {"--sequence light", "-Calibrate ALS -Auto levels.txt -UpdateTVN -ExportAllFiles out"}},
    {"test", {"--sequence four-steps --errors none", "-TestCalibration AG -FourSteps -ExportAllFiles out"}},
    {"magtest", {"--sequence mag-test", "-MagTest -ExportAllFiles out"}},
    {"export", {"", "-ExportXml all.xml"}},
    {"import", {"", "-ImportXml all.xml"}},
};

class LiveFaults : public testing::TestWithParam<FaultRow> {};

TEST_P(LiveFaults, EndAsTheyShould) {
    const FaultRow& row = GetParam();
    const Mode& mode = modes.at(row.mode);
    std::istringstream faults(row.faults);
    for (std::string fault; faults >> fault;) {
        const TemporaryFolder folder;
        folder.write("levels.txt", "values=100,500,1000\n");
        if (row.mode == "import") {
            const HubProcess other(folder, "");
            ASSERT_EQ(runProgram(folder, "-ExportXml all.xml").exitCode, 0);
        }
        HubProcess hub(folder, mode.hubOptions + " --records records.txt --fault " + fault);
        const bool isSilent =
            fault[0] == 'n' || fault == "silence" || fault == "deaf" || row.mode + fault == "lightsilent-sensor";
        const ProgramRun run = runProgram(folder, mode.toolOptions, isSilent ? TAVOREN_IMPATIENT : TAVOREN_PROGRAM);
        EXPECT_EQ(run.exitCode, row.exitCode) << fault << run.shown;
        EXPECT_TRUE(contains(run.shown, row.shown)) << fault << run.shown;
        EXPECT_EQ(std::filesystem::exists(folder.path / "records.txt"), row.holdsNew) << fault;
        const bool flushed = contains(run.shown, "Saving calibration data to FW\n") && row.mode != "import";
        EXPECT_EQ(std::filesystem::exists(folder.path / "out/resultCalibration.xml"), flushed) << fault;
        EXPECT_EQ(hub.stop(SIGTERM), 0) << fault;
    }
}

template <typename Row>
requires requires(const Row& row) {
    row.name;
}
void PrintTo(const Row& row, std::ostream* out) {
    *out << row.name;
}
void PrintTo(const FaultRow& row, std::ostream* out) {
    *out << row.mode << " " << row.faults;
}

const std::string link = "SMHI Error: ";

const std::string pnr = "Failed to start PNRRecord\n";
const std::string timeout = link + "Failed to read from device, timed out\n";
const std::string refusedList = link + "Enumerate sensors command failed\n";
const std::string refusedRecord = link + "Set calibration data command failed\n";
const std::string refusedReset = link + "Reset TVN command failed\n";
const std::string noSamples = "DATA COLLECTION FAILED\n Failed to get samples from FW\n";
const std::string noMovement =
    "DATA COLLECTION FAILED\n Timeout, failed to get stable samples or to detect motion of the required sensors\n";
const std::string completed = "Completed successfully\n";
constexpr int failed = reportedFailure;

INSTANTIATE_TEST_SUITE_P(
    All, LiveFaults,
    testing::Values(
        // Whoever asks for the sensors
        FaultRow{"calibrate", "refuse-client", failed, link + "Failed to connect to client\n", false},
        FaultRow{"calibrate", "status:list short:list empty:list", failed, refusedList, false},
        FaultRow{"calibrate", "error:list no-reply:list", failed, timeout, false},
        FaultRow{"test", "status:list", failed, refusedList, false},
        FaultRow{"magtest", "short:list", failed, refusedList, false},
        FaultRow{"light", "empty:list", failed, refusedList, false},
        FaultRow{"export", "status:list", failed, refusedList, false},
        FaultRow{"export", "no-reply:list", failed, timeout, false}, FaultRow{"import", "short:list", failed, refusedList, false},
        // Records and the platform's form
        FaultRow{"calibrate", "status:get-record empty:platform no-reply:platform", 0, success, true},
        FaultRow{"light", "short:get-record", failed, "No calibration entry exists for AmbientLight.", false},
        FaultRow{"light", "status:get-property empty:get-property", 0, "failed to get minimal reporting interval", true},
        FaultRow{"export", "status:get-record error:platform", 0, completed, false},
        FaultRow{"import", "short:get-record", failed, link + "Get calibration data command failed\n", false},
        FaultRow{"import", "status:platform", failed, link + "Set PDT command  failed, status: 1\n", false},
        FaultRow{"import", "empty:platform", failed, link + "Set PDT command  failed, status: 0\n", false},
        // Start and stop
        FaultRow{"calibrate", "status:set-property short:set-property no-reply:set-property", failed,
                 "Failed to sample sensor Accelerometer\n", false},
        FaultRow{"light", "error:set-property", failed, "Failed to sample sensor AmbientLightSensor\n", false},
        FaultRow{"calibrate", "status:start short:start empty:stop", failed, pnr, false},
        FaultRow{"calibrate", "error:start error:stop", failed, "Failed to start sampling\n", false},
        FaultRow{"test", "empty:start", failed, pnr, false}, FaultRow{"light", "short:stop", failed, pnr, false},
        FaultRow{"calibrate", "no-reply:start status:stop deaf left-over late-buffers", 0, success, true},
        FaultRow{"test", "status:stop left-over late-buffers", 0, completed, false},
        // Samples
        FaultRow{"calibrate", "disconnect", failed, noSamples, false}, FaultRow{"test", "disconnect", failed, noSamples, false},
        FaultRow{"light", "disconnect", failed, noSamples, false}, FaultRow{"calibrate", "silence", failed, noMovement, false},
        FaultRow{"light", "silent-sensor", failed, noMovement, false},
        FaultRow{"calibrate", "silent-sensor", failed, "Too long time waiting for all sensors data to be ready.\n", false},
        FaultRow{"calibrate", "zero-record long-record unknown-sensor foreign-message", 0, success, true},
        FaultRow{"test", "zero-record long-record unknown-sensor foreign-message", 0, completed, false},
        FaultRow{"light", "zero-record long-record unknown-sensor foreign-message", 0, success, true},
        // The flush
        FaultRow{"calibrate", "status:set-record=5", failed,
                 link + "Set calibration data command failed due to invalid parameter\n", false},
        FaultRow{"calibrate", "status:set-record=7", failed, refusedRecord, false},
        FaultRow{"calibrate", "no-reply:set-record", failed, timeout, true},
        FaultRow{"calibrate", "status:reset short:reset", failed, refusedReset, true},
        FaultRow{"light", "empty:set-record", failed, refusedRecord, true},
        FaultRow{"light", "no-reply:reset", failed, timeout, true},
        FaultRow{"import", "status:set-record", failed, refusedRecord, false},
        FaultRow{"import", "empty:reset", failed, refusedReset, true}),
    [](const auto& row) {
        std::string name = row.param.mode;
        for (const char c : row.param.faults)
            if (std::isalnum(static_cast<unsigned char>(c)) != 0)
                name += c;
        return name;
    });

}  // namespace
}  // namespace tavoren
