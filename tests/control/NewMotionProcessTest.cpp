#include "control/NewMotionProcess.h"

#include <gtest/gtest.h>

#include "common/CalibrationException.h"
#include "sensors/createSensor.h"
#include "sensors/ExpectThrow.h"
#include "sensors/FakeRun.h"

namespace tavoren {
namespace {

TEST(NewMotionProcess, TellsTheOperatorWhatToDo) {
    struct Row {
        SequenceKind kind;
        bool both;  // sensors, else the accelerometer alone
        int step;
        bool noEnter;
        std::string text;
    };
    const std::string hold = "\nHold system in current position";
    const std::string tablet = "\nNOTE:\nDevice should be placed in tablet mode, screen facing up";
    const std::string place = "Place the device screen's ";
    const std::string turn = "Slowly, rotate the device ";
    const std::string end = " axis\nAt the end of this stage, the device's ";
    for (const Row& row : {
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
        NewMotionProcess process(row.kind);
        process.addSensor(createSensor(staticAccelerometer));
        if (row.both)
            process.addSensor(createSensor(staticGyroscope));
        process.prepareSteps();
        process.currentStep = row.step;
        EXPECT_EQ(process.getInstructions(row.noEnter), row.text);
        EXPECT_EQ(process.needsUserInput(), row.step == 0);
        EXPECT_EQ(process.segmentTimes.size(), 2 * static_cast<std::size_t>(process.stepCount));
        EXPECT_TRUE(row.step == 0 || textOf<CalibrationException>([&] { process.readUserInput(); }) == "Internal error");
    }
}

TEST(NewMotionProcess, NeedsItsOwnSensor) {
    const auto accelerometer = createSensor(staticAccelerometer);
    const auto gyroscope = createSensor(staticGyroscope);
    EXPECT_FALSE(NewMotionProcess(SequenceKind::full).addSensor(gyroscope));
    EXPECT_TRUE(NewMotionProcess(SequenceKind::minimal).addSensor(gyroscope));
    NewMotionProcess both(SequenceKind::fourSteps);
    EXPECT_TRUE(both.addSensor(accelerometer));
    EXPECT_TRUE(both.addSensor(gyroscope));
    EXPECT_FALSE(NewMotionProcess(SequenceKind::magAccuracy).addSensor(accelerometer));
    EXPECT_TRUE(both.isStageIndicator(*createSensor(staticGyroscope)));
    EXPECT_FALSE(both.isStageIndicator(*createSensor(secondOf(staticGyroscope))));
    EXPECT_EQ(textOf<CalibrationException>([&] { both.addSensor(createSensor({.InstanceId = 1})); }),
              "_2 is invalid type of stageIndicator");
}

TEST(NewMotionProcess, TheOneStepOfTheMinimalSequenceTakesASecond) {
    NewMotionProcess process(SequenceKind::minimal);
    process.prepareSteps();
    process.onSample({999.0, {}});
    EXPECT_EQ(process.stageIndex, -1);
    process.onSample({1000.0, {}});
    EXPECT_EQ(process.stageIndex, 1);
    EXPECT_TRUE(process.stepReady.exchange(false));
    process.onSample({5000.0, {}});
    EXPECT_FALSE(process.stepReady);
}

}  // namespace
}  // namespace tavoren
