// The real program on recordings: what it prints, what it leaves, how it ends.

#include <gtest/gtest.h>

#include <cmath>

#include "control/Replay.h"
#include "end_to_end/RunProgram.h"
#include "files/CsvParser.h"
#include "sensors/createSensor.h"

namespace tavoren {
namespace {

const std::string banner = "\nOrvane(R) Tavoren Calibration Tool\nVersion: 3.1.0.4596\n";
const std::string examples = TAVOREN_EXAMPLES;
const std::string logSaved = "[ERROR]: LOG FILE IS SAVED SINCE ERROR OCCURED.\n";
constexpr int reportedFailure = 255;

TEST(OfflineRun, CalibratesTheBundledRecording) {
    const TemporaryFolder folder;
    const ProgramRun run = runProgram(folder, "-CalibrateOffline AG -UseRawData " + examples + "/motion -ExportAllFiles out");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(filesBelow(folder.path), "out/AGMLogFile.xml out/resultCalibration.xml");
    const std::string end = "Calibration process completed successfully\n";
    ASSERT_GT(run.shown.size(), end.size());
    EXPECT_EQ(run.shown.substr(run.shown.size() - end.size()), end);
    EXPECT_NE(run.shown.find("Saving calibration data to file out\\resultCalibration.xml\n"), std::string::npos);
    EXPECT_EQ(run.shown.find('\x1b'), std::string::npos);  // no colours into a file
    EXPECT_NE(folder.read("out/resultCalibration.xml").find("</TVN>\r\n"), std::string::npos);
    const std::string closed = "sh -c 'exec \"$0\" \"$@\" <&- >&- 2>&-' ";
    const ProgramRun unseen = runProgram(
        folder, "-CalibrateOffline AG -UseRawData " + examples + "/motion -ExportAllFiles unseen", TAVOREN_PROGRAM, closed);
    EXPECT_EQ(unseen.exitCode, 0);
    EXPECT_EQ(folder.read("unseen/resultCalibration.xml"), folder.read("out/resultCalibration.xml"));
}

TEST(OfflineRun, JudgesTheBundledTests) {
    for (const bool good : {true, false}) {
        const TemporaryFolder folder;
        const ProgramRun run =
            runProgram(folder, "-TestCalibration AG -FourSteps -UseRawData " + examples +
                                   (good ? "/four-steps-good" : "/four-steps-wrong-mapping") + " -ExportAllFiles out");
        EXPECT_EQ(run.exitCode, good ? 0 : reportedFailure);
        EXPECT_EQ(run.shown.find("----   test pass -----\n") != std::string::npos, good);
        EXPECT_EQ(run.shown.find("TEST FAILED\n" + logSaved + "Error:\n") != std::string::npos, !good);
        EXPECT_EQ(filesBelow(folder.path), good ? "out/LogFile.xml" : "out/LogFile.xml out/error.log out/logfile.txt");
    }
}

TEST(OfflineRun, EveryWayOutHasItsTextAndItsCode) {
    struct Row {
        std::string arguments, shown, files;
    };
    const std::string noSensors = banner + "Error:\nNo sensors to calibrate could be found\n";
    const std::string noDevice = banner + "SMHI Error: Failed to enumerate device interfaces\n";
    const std::string replayFailed =
        "DATA COLLECTION FAILED since there are significant differences in last sample's timestamp "
        "between sensors\nCALIBRATION FAILED\n" +
        logSaved + "Error:\n";
    const std::string toCalibrate = "Sensors to calibrate: \n\t";
    const std::string layout = ", formfactor: 2IN1, hinge configuration: BOTTOM\nLoading data dump, this might take a while...\n";
    const std::string loading = banner + toCalibrate + "0073000000000002, Accelerometer" + layout;
    const std::string tail = " -ExportAllFiles out";
    for (const Row& row : {
             Row{"-CalibrateOffline AG -UseRawData none" + tail, noSensors, ""},
             Row{"-CalibrateOffline A -UseRawData dump -SecondaryOnly" + tail, noSensors, ""},
             Row{"-TestCalibration AG -FourSteps -UseRawData none" + tail, noSensors, ""},
             Row{"-CalibrateOffline A -UseRawData dump -DumpPrefix bad" + tail,
                 loading + replayFailed + "Unexpected number of columns at input file dump\\badAccelerometer.csv\n",
                 "out/logfile.txt"},
             Row{"-CalibrateOffline G -UseRawData dump -DumpPrefix bad" + tail,
                 banner + toCalibrate + "0076000000000002, Gyroscope" + layout +
                     "DATA COLLECTION FAILED:Math Error: Unsupported unit\nCALIBRATION FAILED\n" + logSaved +
                     "Error:\nfailed during sampling sensors\n",
                 "out/logfile.txt"},
             Row{"-CalibrateOffline A -UseRawData dump" + tail,
                 loading + replayFailed + "Unexpected data dump size. Not enough data for completing the calibration process\n",
                 "out/logfile.txt"},
             Row{"-ImportXml given.xml", noDevice, ""},
             Row{"-ExportXml new.xml", noDevice, ""},
             Row{"-MagTest", noDevice, ""},
             Row{"-Calibrate A -UpdateTVN -UseRawData dump", noDevice, ""},
         }) {
        const TemporaryFolder folder;
        std::filesystem::create_directory(folder.path / "dump");
        const std::string header = "time[ms],Accelerometer_X[g0],Accelerometer_Y[g0]";
        folder.write("given.xml", "<TVN/>");
        folder.write("dump/badAccelerometer.csv", header + "\n0,1,2\n");
        folder.write("dump/badGyroscope.csv", "time[ms],Gyroscope_X[rpm],Gyroscope_Y[rpm],Gyroscope_Z[rpm]\n0,1,2,3\n");
        folder.write("dump/dataDumpAccelerometer.csv", header + ",Accelerometer_Z[g0]\n0,0,0,1\n");
        const std::string before = filesBelow(folder.path);
        const ProgramRun run = runProgram(folder, row.arguments);
        EXPECT_EQ(run.exitCode, reportedFailure) << row.arguments;
        EXPECT_EQ(run.shown, row.shown) << row.arguments;
        EXPECT_EQ(filesBelow(folder.path), before + (row.files.empty() ? "" : " ") + row.files) << row.arguments;
    }
}

TEST(OfflineRun, AWrongCommandShowsTheUsage) {
    const TemporaryFolder folder;
    for (const auto& [arguments, text] : {std::pair{"", "No command was specified"}, {"-Fly", "Invalid argument: 'Fly'"}}) {
        const ProgramRun run = runProgram(folder, arguments);
        EXPECT_EQ(run.exitCode, reportedFailure);
        const std::string head = banner + text + "\n\nUsage:\n\n";
        EXPECT_EQ(run.shown.substr(0, head.size()), head);
    }
    EXPECT_EQ(filesBelow(folder.path), "");
}

TEST(OfflineRun, AFullOutputFolderOrAReadOnlyOneIsTold) {
    const TemporaryFolder folder;
    folder.write("out", "a file in the way");
    const ProgramRun run = runProgram(folder, "-CalibrateOffline AG -UseRawData " + examples + "/motion -ExportAllFiles out");
    EXPECT_EQ(run.exitCode, reportedFailure);
    EXPECT_NE(run.shown.find("CALIBRATION FAILED\nCaught saving logfile: "), std::string::npos);
    EXPECT_NE(run.shown.find(logSaved + "Error:\nFailed to write to file\n"), std::string::npos);
    EXPECT_EQ(folder.read("out"), "a file in the way");
}

TEST(OfflineRun, SensorsThatDisagreeAreRefused) {
    // The gyroscope turns the other way in the changes between positions.
    MovedDevice device({}, {});
    device.fullSequence(2.5, 40.0);  // periods of 2.5 + 4 + 2.5 + 40 seconds
    for (SensorSample& sample : device.rate)
        if (std::fmod(sample.time, 49000.0) >= 9000.0)
            for (std::size_t axis = 0; axis < 3; ++axis)
                sample.values[axis] = -sample.values[axis];
    const auto accelerometer = createSensor({115, 0, 0, 0, 2});
    const auto gyroscope = createSensor({118, 0, 0, 0, 2});
    const TemporaryFolder folder;
    const std::vector<std::shared_ptr<Sensor>> sensors{accelerometer, gyroscope};
    CsvParser().writeToFile(folder / "dataDump.csv",
                            {{accelerometer, SampleBuffer(device.acceleration)}, {gyroscope, SampleBuffer(device.rate)}},
                            sensors);
    const ProgramRun run = runProgram(folder, "-CalibrateOffline AG -UseRawData . -ExportAllFiles out");
    EXPECT_EQ(run.exitCode, reportedFailure);
    EXPECT_NE(run.shown.find("Error:\nCalibration failed. Reason: Disagreement between accelerometer and gyroscope.\n"),
              std::string::npos);
    const std::string log = folder.read("out/AGMLogFile.xml");
    EXPECT_NE(log.find("Success=\"false\" IsPrimary=\"true\" FailureParameter=\"Gyro-Accel Diff\""), std::string::npos);
    EXPECT_NE(log.find("<!--Gyro & Accelerometer difference-->"), std::string::npos);
}

}  // namespace
}  // namespace tavoren
