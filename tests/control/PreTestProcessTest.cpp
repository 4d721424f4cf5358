#include "control/PreTestProcess.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "common/CalibrationException.h"
#include "control/SensorManager.h"
#include "files/TemporaryFolder.h"
#include "sensors/ExpectThrow.h"
#include "sensors/MagneticField.h"

namespace tavoren {
namespace {

/// A live environment test without an operator: standard input has ended, so no wait blocks.
struct MagneticRun {
    MagneticRun() {
        folder.write("input", "");
        EXPECT_TRUE(std::freopen((folder.path / "input").string().c_str(), "r", stdin));
        manager.setSensors({second, primary});
        manager.setProcess(process);
        instructions = process->getInstructions(false) + "\n";
        process->readUserInput();
        feed(Vector(3));  // the sample that completes the set is dropped
    }

    void feed(const Vector& field) {
        time += 10.0;
        for (const auto& sensor : {second, primary})
            manager.handleData(sensor, time, std::span(field.begin(), field.end()));
    }

    void turn(int axis, double degrees = 360.0) {
        Vector field(3);
        field[axis] = -380.0;
        field[(axis + 1) % 3] = 240.0;
        for (int k = 0; k <= 100; ++k)
            feed(afterTurn(field, axis, degrees * k / 100.0));
        endStep();
    }

    void endStep() {
        manager.waitForStepFinish(process->isLastRotationStage());
        ++process->currentStep;
        instructions += process->getInstructions(true) + "\n";
    }

    TemporaryFolder folder;
    std::shared_ptr<Magnetometer> primary = std::make_shared<Magnetometer>(staticMagnetometer);
    std::shared_ptr<Magnetometer> second = std::make_shared<Magnetometer>(secondOf(staticMagnetometer));
    std::shared_ptr<PreTestProcess> process = std::make_shared<PreTestProcess>();
    SensorManager manager;
    std::string instructions;
    double time = 1000.0;
};

TEST(PreTestProcess, LeadsThroughTurnsAndAWalkToAVerdict) {
    testing::internal::CaptureStdout();
    MagneticRun run;
    EXPECT_EQ(run.process->magnetometer, run.primary);
    for (const int axis : {0, 1, 2})
        run.turn(axis);
    EXPECT_TRUE(run.primary->testPhase);
    EXPECT_EQ(run.instructions,
              "Slowly rotate the device 360 degrees around X axis\nPress Enter to signal start and finish\n"
              "Slowly rotate the device 360 degrees around Y axis\nPress Enter when done\n"
              "Slowly rotate the device 360 degrees around Z axis\nPress Enter when done\n"
              "Slowly move the device in a rectangle, keeping the same heading all the time\nPress Enter when done\n");
    for (int k = 0; k <= 20; ++k)
        run.feed({0.0, 240.0 + k, -380.0});
    run.endStep();
    EXPECT_EQ(run.process->stageIndex, 3);
    run.primary->testEnvironment();
    EXPECT_EQ(run.primary->resultText(), "Test passed. You are good to go!\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "User pressed for signal start...\nUser pressed to signal end\nUser pressed to signal end\n"
              "User pressed to signal end\nUser pressed to signal end\n");
}

TEST(PreTestProcess, AMovementThatWasNotFollowedEndsTheRun) {
    MagneticRun run;
    EXPECT_EQ(textOf<CalibrationException>([&] { run.turn(0, 180.0); }),
              "Data collected during rotation phase in mag environment test is abnormal. Make sure "
              "the movement instructions were followed.");
}

}  // namespace
}  // namespace tavoren
