#include "control/NewMotionProcess.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "control/PreTestProcess.h"
#include "control/SensorManager.h"
#include "sensors/createSensor.h"
#include "sensors/ExpectThrow.h"
#include "sensors/MagneticField.h"

namespace tavoren {
namespace {

TEST(NewMotionProcess, TellsTheOperatorWhatToDo) {
    using Row = std::tuple<SequenceKind, bool, int, bool, std::string>;
    const std::string hold = "\nHold system in current position";
    const std::string tablet = "\nNOTE:\nDevice should be placed in tablet mode, screen facing up";
    const std::string place = "Place the device screen's ";
    const std::string turn = "Slowly, rotate the device ";
    const std::string end = " axis\nAt the end of this stage, the device's ";
    for (const auto& [kind, both, step, noEnter, text] : {
             // both sensors, else the accelerometer alone
             Row{SequenceKind::full, true, 0, false,
                 "Step 1 out of 7.\n" + place + "Z axis directed UP, Y axis directed to North" + hold + tablet +
                     "\nPress Enter when done"},
             Row{SequenceKind::full, true, 1, true,
                 "Step 2 out of 7.\n" + turn + "360 degrees counterclockwise around Z axis" + hold},
             Row{SequenceKind::full, false, 3, true,
                 "Step 4 out of 4.\n" + place + "Y axis directed DOWN, Z axis directed to South" + hold},
             Row{SequenceKind::minimal, true, 0, true,
                 "Step 1 out of 1.\n" + place + "Z axis directed UP" + hold + tablet + "\n"},
             Row{SequenceKind::fourSteps, true, 1, true,
                 "Step 2 out of 4.\n" + turn + "90 degrees counterclockwise around Y" + end + "X axis directed DOWN" + hold},
             Row{SequenceKind::fourSteps, false, 3, true,
                 "Step 4 out of 4.\n" + turn + "90 degrees clockwise around X" + end +
                     "Z axis is directed UP; device turned 90 degrees vs. initial state" + hold},
             Row{SequenceKind::magAccuracy, false, 2, true,
                 "Step 3 out of 4.\n" + turn + "90 degrees counterclockwise around Z" + end +
                     "Z axis directed UP, Y axis directed to South" + hold},
         }) {
        NewMotionProcess process(kind);
        process.addSensor(createSensor(staticAccelerometer));
        if (both)
            process.addSensor(createSensor(staticGyroscope));
        process.prepareSteps();
        process.currentStep = step;
        EXPECT_EQ(process.getInstructions(noEnter), text);
        EXPECT_EQ(process.needsUserInput(), step == 0);
        EXPECT_EQ(process.segmentTimes.size(), 2 * static_cast<std::size_t>(process.stepCount));
        EXPECT_TRUE(step == 0 || textOf<CalibrationException>([&] { process.readUserInput(); }) == "Internal error");
    }
}

TEST(NewMotionProcess, NeedsItsOwnSensor) {
    EXPECT_FALSE(NewMotionProcess(SequenceKind::full).addSensor(createSensor(staticGyroscope)));
    EXPECT_FALSE(NewMotionProcess(SequenceKind::magAccuracy).addSensor(createSensor(staticAccelerometer)));
    NewMotionProcess process(SequenceKind::minimal);
    EXPECT_TRUE(process.addSensor(createSensor(staticGyroscope)));
    EXPECT_TRUE(process.isStageIndicator(*createSensor(staticGyroscope)));
    EXPECT_FALSE(process.isStageIndicator(*createSensor(secondOf(staticGyroscope))));
    EXPECT_EQ(textOf<CalibrationException>([&] { process.addSensor(createSensor({.InstanceId = 1})); }),
              "_2 is invalid type of stageIndicator");
}

TEST(NewMotionProcess, TheOneStepOfTheMinimalSequenceTakesASecond) {
    NewMotionProcess process(SequenceKind::minimal);
    process.prepareSteps();
    for (const auto& [time, stage] : {std::pair{999.0, -1}, {1000.0, 1}, {5000.0, 1}}) {
        process.onSample({time, {}});
        EXPECT_EQ(process.stageIndex, stage);
        EXPECT_EQ(process.stepReady.exchange(false), time == 1000.0);
    }
}

// The live runs lead to a verdict.
TEST(PreTestProcess, AsksForTurnsAndAWalkAndEndsWithoutThem) {
    SensorManager manager;
    const auto primary = std::make_shared<Magnetometer>(staticMagnetometer);
    const auto second = std::make_shared<Magnetometer>(secondOf(staticMagnetometer));
    const auto process = std::make_shared<PreTestProcess>();
    manager.setSensors({second, primary});
    manager.setProcess(process);
    EXPECT_EQ(process->magnetometer, primary);
    std::string instructions;
    for (process->currentStep = 0; process->currentStep < process->stepCount; ++process->currentStep)
        instructions += process->getInstructions(true) + "\n";
    EXPECT_EQ(instructions,
              "Slowly rotate the device 360 degrees around X axis\nPress Enter to signal start and finish\n"
              "Slowly rotate the device 360 degrees around Y axis\nPress Enter when done\n"
              "Slowly rotate the device 360 degrees around Z axis\nPress Enter when done\n"
              "Slowly move the device in a rectangle, keeping the same heading all the time\nPress Enter when done\n");

    std::istringstream nobody;
    std::streambuf* const keyboard = std::cin.rdbuf(nobody.rdbuf());
    testing::internal::CaptureStdout();
    process->readUserInput();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "User pressed for signal start...\n");
    for (int k = 0; k < 100; ++k)
        for (const auto& sensor : {second, primary})
            manager.handleData(sensor, 1000.0 + 10.0 * k, std::array{1.0, 2.0, 3.0});
    EXPECT_EQ(textOf<CalibrationException>([&] { manager.waitForStepFinish(false); }),
              "Data collected during rotation phase in mag environment test is abnormal. Make sure "
              "the movement instructions were followed.");
    std::cin.rdbuf(keyboard);
    std::cin.clear();
}

}  // namespace
}  // namespace tavoren
