#include "simulator/Options.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "end_to_end/RunProgram.h"
#include "end_to_end/Truth.h"
#include "firmware/SmhiRequests.h"
#include "platform/Files.h"
#include "sensors/ExpectThrow.h"
#include "sensors/MagneticField.h"
#include "simulator/Firmware.h"
#include "simulator/Script.h"
#include "simulator/World.h"

namespace tavoren::simulator {
namespace {

Options parsed(const std::string& line) {
    std::istringstream words(line);
    std::vector<std::string> arguments;
    for (std::string word; words >> word;)
        arguments.push_back(word == "''" ? "" : word);
    return Options::parse(arguments);
}

// The live tests use all others.
TEST(HubOptions, SetWhatTheyName) {
    const Options options = parsed(
        "--sensors a,g2 --noise 0.5 --field 450 --form-factor mid --hinge LEFT --rest 2.5 --levels 5,900 --interval 20 --hold 80 "
        "--speed real --name n --fault status:set-record=5 --fault silent-sensor:G2");
    EXPECT_EQ(Device(options.device).listed(), (std::vector<Luid>{{115, 0, 0, 0, 2}, {118, 0, 0, 1, 2}}));
    EXPECT_EQ((std::tuple{options.device.noiseFactor, options.device.world.field, options.timing.rest, options.speed}),
              (std::tuple{0.5, 450.0, 2.5, 1.0}));
    EXPECT_EQ((std::tuple{options.device.formFactor, options.device.hinge, options.interval, options.hold, options.name}),
              (std::tuple{5, 2, 20U, 80U, "n"}));
    EXPECT_EQ(options.timing.levels, (std::vector<int>{5, 900}));
    EXPECT_EQ(options.faults.find(FaultKind::status, Request::setRecord)->value, 5);
    EXPECT_EQ(options.faults.find(FaultKind::status, Request::reset), nullptr);
    EXPECT_EQ(options.faults.find(FaultKind::silentSensor)->sensor, (Luid{118, 0, 0, 1, 2}));
}

TEST(HubOptions, RefuseWhatTheyDoNotKnow) {
    for (const auto& [line, text] : {
             std::pair{"--dance", "unknown option \"--dance\""},
             {"full", "unknown option \"full\""},
             {"--seed", "--seed needs a value"},
             {"--seed x", "--seed: \"x\" is not a number from 0 to 1e+06"},
             {"--seed ''", "--seed: \"\" is not a number from 0 to 1e+06"},
             {"--seed nan", "--seed: \"nan\" is not a number from 0 to 1e+06"},
             {"--seed 1.5", "--seed: \"1.5\" is not a whole number"},
             {"--hold -1", "--hold: \"-1\" is not a number from 0 to 60000"},
             {"--sequence full,", "--sequence: unknown sequence \"\""},
             {"--sensors A,Q", "--sensors: unknown sensor \"Q\""},
             {"--errors some", "--errors: \"some\" is not one of none, offset, diagonal, full"},
             {"--speed fast", "--speed: \"fast\" is not a number from 0.01 to 100000"},
             {"--levels 5,,7", "--levels: \"\" is not a number from 1 to 100000"},
             {"--name a/b", "--name: \"a/b\" is not a name of 1 to 40 characters without \"/\""},
             {"--record ''", "--record: \"\" is not the name of a file or folder"},
             {"--fault rain", "--fault: unknown fault \"rain\""},
             {"--fault status", "--fault: fault status needs a request"},
             {"--fault status:x", "--fault: unknown request \"x\" of a fault"},
             {"--fault status:list=0", "--fault: bad value \"0\" of a fault: 1 to 255 expected"},
             {"--fault short:list=2", "--fault: fault short takes no value"},
             {"--fault silence:list", "--fault: fault silence takes no request"},
         })
        EXPECT_EQ(textOf<std::invalid_argument>([line = line] { parsed(line); }), text);
}

TEST(SimulatedFirmware, RefusesBadRecordsAndFiles) {
    const TemporaryFolder folder;
    const std::string records = folder / "records.txt";
    const Options options = Options::parse(std::vector<std::string>{"--sequence", "minimal", "--records", records});
    Device device(options.device);
    Firmware firmware(device, options);
    const auto setRecord = [&firmware](const Luid& luid, const ByteString& data) {
        const ByteString request = SmhiSetCalibrationRequest{.luid = luid, .calibrationData = data}.encode();
        return SmhiHeader::decode(firmware.answer(request).messages.back())->status;
    };
    constexpr Luid accelerometer{115, 0, 0, 0, 2};
    const ByteString good = *device.records().find(accelerometer);
    EXPECT_EQ(setRecord({115, 0, 0, 7, 2}, good), 5);
    for (const ByteString& bad : {ByteString{}, ByteString{0}, ByteString(40, 9), ByteString(good.begin(), good.end() - 1)})
        EXPECT_EQ(setRecord(accelerometer, bad), 5);
    EXPECT_FALSE(isRegularFile(records));
    EXPECT_EQ(setRecord(accelerometer, good), 0);
    EXPECT_TRUE(isRegularFile(records));
    for (const char* bad : {"0073000000000002 zz", "0073000000000002 00", "0073000000000002 0"}) {
        folder.write("records.txt", bad);
        EXPECT_THROW(device.records().load(records), CalibrationException) << bad;
    }
}

TEST(Scripts, GravityAndFieldTurnAsTheRateSays) {
    constexpr double step = 0.002;
    const Vector gravity = World::gravity(), field = World().fieldAt(0.0);
    for (const std::string& name : Script::names()) {
        const Script script = Script::of(name, {.rest = 1.0, .fullTurn = 3.0, .levels = {5, 900}});
        Vector up = gravity, north = field;
        for (int k = 0; k * step < script.seconds(); ++k) {
            const Vector rate = script.at((k + 0.5) * step).rate;  // about one axis of the device
            const int axis = indexOfMaxMagnitude(rate);
            up = afterTurn(up, axis, rate[axis] * step);
            north = afterTurn(north, axis, rate[axis] * step);
            const Attitude now = script.at((k + 1) * step).attitude;
            ASSERT_LT(maxAbs(now.seen(gravity) - up), 1e-5) << name << " at " << k * step;
            ASSERT_LT(maxAbs(now.seen(field) - north), 1e-2) << name << " at " << k * step;
        }
    }
}

// The live tests calibrate all other sequences.
TEST(Recordings, CalibrateToTheTruth) {
    struct Row {
        std::string hubOptions, toolOptions;
        std::vector<std::string> sensors;  ///< to compare with the truth
    };
    for (const Row& row : {
             Row{"full --seed 29 --dip 65 --rest 4", "-CalibrateOffline AGM", {"Accelerometer", "Gyroscope", "Magnetometer"}},
             Row{"mag-accuracy --errors none", "-TestCalibration M -MagAccuracyTest", {}},
             Row{"light", "-CalibrateOffline ALS -Auto levels.txt", {"AmbientLightSensor"}},
         }) {
        const TemporaryFolder folder;
        folder.write("levels.txt", "values=100,500,1000\n");
        const ProgramRun hub = runProgram(folder, "--record dumps --truth truth.txt --sequence " + row.hubOptions, TAVOREN_HUB);
        ASSERT_EQ(hub.exitCode, 0) << hub.shown;
        const ProgramRun run = runProgram(folder, row.toolOptions + " -UseRawData dumps -ExportAllFiles out");
        EXPECT_EQ(run.exitCode, 0) << run.shown;
        const std::string truth = folder.read("truth.txt");
        const std::size_t multiplier = run.shown.find("Multiplier/Divider: ");
        for (const std::string& sensor : row.sensors)
            if (multiplier == std::string::npos)
                expectTruth(run.shown, truth, sensor);
            else  // two decimals
                EXPECT_NEAR(std::stod(run.shown.substr(multiplier + 20)), truthOf(truth).at(sensor + ".scale").at(0), 0.011);
    }
}

TEST(HubProgram, EndsWithAMessageAndACode) {
    for (const auto& [options, exitCode, shown] : {
             std::tuple{"--sequence dance", 2, "tavoren-hub: --sequence: unknown sequence \"dance\"; try --help\n"},
             {"--record console.txt/x", 1, "tavoren-hub: cannot make the folder console.txt/x\n"},
             {"--record d --truth none/t", 1, "Dumps written to d\ntavoren-hub: cannot write the truth file none/t\n"},
         }) {
        const TemporaryFolder folder;
        const ProgramRun run = runProgram(folder, options, TAVOREN_HUB);
        EXPECT_EQ(run.exitCode, exitCode) << options;
        EXPECT_EQ(run.shown, shown);
    }
}

}  // namespace
}  // namespace tavoren::simulator
