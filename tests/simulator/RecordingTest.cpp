// Recordings of the simulated device: an offline calibration must find what it was built as.

#include <gtest/gtest.h>

#include "end_to_end/RunProgram.h"
#include "end_to_end/Truth.h"

namespace tavoren {
namespace {

int runHub(const TemporaryFolder& folder, const std::string& options) {
    const std::string command = "cd \"" + folder.path.string() + "\" && \"" TAVOREN_HUB "\" " + options + " >hub.txt 2>&1";
    const int status = std::system(command.c_str());  // NOLINT(cert-env33-c): the test's own words
    return WIFEXITED(status) ? WEXITSTATUS(status) : -status;
}

struct RecordingRow {
    std::string name;
    std::string hubOptions;
    std::string toolOptions;
    std::vector<std::string> sensors;  ///< to compare with the truth
};

class Recordings : public testing::TestWithParam<RecordingRow> {};

TEST_P(Recordings, CalibrateToTheTruth) {
    const TemporaryFolder folder;
    folder.write("levels.txt", "values=100,500,1000\n");
    ASSERT_EQ(runHub(folder, "--record dumps --truth truth.txt " + GetParam().hubOptions), 0) << folder.read("hub.txt");
    const ProgramRun run = runProgram(folder, GetParam().toolOptions + " -UseRawData dumps -ExportAllFiles out");
    EXPECT_EQ(run.exitCode, 0) << run.shown;
    const std::string truth = folder.read("truth.txt");
    for (const std::string& sensor : GetParam().sensors)
        expectTruth(run.shown, truth, sensor);
    if (GetParam().name == "Light") {
        const std::size_t at = run.shown.find("Multiplier/Divider: ");
        ASSERT_NE(at, std::string::npos);
        EXPECT_NEAR(std::stod(run.shown.substr(at + 20)), truthOf(truth).at("AmbientLightSensor.scale").at(0),
                    0.011);  // two decimals
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, Recordings,
    testing::Values(
        RecordingRow{"Full", "--sequence full", "-CalibrateOffline AGM", {"Accelerometer", "Gyroscope", "Magnetometer"}},
        RecordingRow{"FullOfAnotherDevice",
                     "--sequence full --seed 29 --dip 65 --rest 4",
                     "-CalibrateOffline AGM",
                     {"Accelerometer", "Gyroscope", "Magnetometer"}},
        RecordingRow{"FourSteps",
                     "--sequence four-steps --errors diagonal",
                     "-CalibrateOffline AG -FourSteps",
                     {"Accelerometer", "Gyroscope"}},
        RecordingRow{
            "Lid", "--sensors A,G,A2,G2 --form-factor MID --hinge RIGHT", "-CalibrateOffline AG", {"Accelerometer", "Gyroscope"}},
        RecordingRow{"AccelerometerOnly", "--sequence accelerometer", "-CalibrateOffline A", {"Accelerometer"}},
        RecordingRow{"Light", "--sequence light", "-CalibrateOffline ALS -Auto levels.txt", {}},
        RecordingRow{"PerfectFourStepsPassTheTest", "--sequence four-steps --errors none", "-TestCalibration AG -FourSteps", {}},
        RecordingRow{
            "PerfectCompassPassesTheTest", "--sequence mag-accuracy --errors none", "-TestCalibration M -MagAccuracyTest", {}}),
    [](const auto& row) { return row.param.name; });

TEST(HubProgram, EndsWithAMessageAndACode) {
    struct Row {
        const char* options;
        int exitCode;
        const char* shown;
    };
    for (const Row& row : {
             Row{"--sequence dance", 2, "tavoren-hub: --sequence: unknown sequence \"dance\"; try --help\n"},
             Row{"--record hub.txt/x", 1, "tavoren-hub: cannot make the folder hub.txt/x\n"},
             Row{"--record d --truth none/t", 1, "Dumps written to d\ntavoren-hub: cannot write the truth file none/t\n"},
         }) {
        const TemporaryFolder folder;
        EXPECT_EQ(runHub(folder, row.options), row.exitCode) << row.options;
        EXPECT_EQ(folder.read("hub.txt"), row.shown);
    }
    const TemporaryFolder folder;
    EXPECT_EQ(runHub(folder, "--help"), 0);
    for (const char* word : {"--record", "four-steps", "silent-sensor", "A2", "Examples:"})
        EXPECT_NE(folder.read("hub.txt").find(word), std::string::npos) << word;
}

void PrintTo(const RecordingRow& row, std::ostream* out) {
    *out << row.name;
}

}  // namespace
}  // namespace tavoren
