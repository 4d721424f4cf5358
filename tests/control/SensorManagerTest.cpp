#include "control/SensorManager.h"

#include <gtest/gtest.h>

#include <thread>

#include "control/Replay.h"
#include "sensors/Accelerometer.h"
#include "sensors/ExpectThrow.h"
#include "sensors/FakeRun.h"

namespace tavoren {
namespace {

/// Writes down what it is given; asks for one type of sensor.
class NotingProcess final : public Process {
  public:
    std::string getInstructions(bool) override { return {}; }
    bool needsUserInput() const override { return false; }
    std::string readUserInput() override { return {}; }
    void onSample(const SensorSample& sample) override { times.push_back(sample.time); }
    bool isStageIndicator(const Sensor&) const override { return true; }
    std::vector<std::string> getRequiredSensors() const override { return required; }
    bool addSensor(const std::shared_ptr<Sensor>& sensor) override {
        offered.push_back(sensor->displayName());
        return acceptsAll || offered.back().find(required.front()) != std::string::npos;
    }
    std::vector<std::string> required{"Accelerometer", "Gyroscope"};
    bool acceptsAll = false;
    std::vector<std::string> offered;
    std::vector<double> times;
};

TEST(SensorManager, OffersPrimarySensorsFirst) {
    const Luid a = staticAccelerometer, g = staticGyroscope, a2 = secondOf(a);
    using Row = std::pair<std::vector<Luid>, std::vector<std::string>>;
    for (const auto& [luids, offered] :
         {Row{{a, a2, g}, {"Accelerometer", "Gyroscope", "Accelerometer"}}, Row{{a2, a}, {"Accelerometer_2", "Accelerometer"}},
          Row{{a, a2}, {"Accelerometer"}}, Row{{g}, {"Gyroscope", "Accelerometer"}}}) {
        SensorManager manager;
        const auto process = std::make_shared<NotingProcess>();
        std::vector<std::shared_ptr<Sensor>> sensors;
        for (const Luid& luid : luids)
            sensors.push_back(createSensor(luid));
        manager.setSensors(sensors);
        manager.setProcess(process);
        EXPECT_EQ(process->offered, offered);
        // An accelerometer of its own comes in when the last offer was none.
        EXPECT_EQ(manager.sensors.size(), luids.size() + (luids.back() == g ? 1 : 0));
    }
    SensorManager manager;
    const auto process = std::make_shared<NotingProcess>();
    process->required = {"Magnetometer"};
    EXPECT_EQ(textOf<CalibrationException>([&] { manager.setProcess(process); }),
              "Could not locate sensor Magnetometer for sampling. Magnetometer is mandatory for this calibration process");
}

TEST(SensorManager, FailureTableDecidesTheReport) {
    using Kind = FailureKind;
    using Failures = std::vector<std::pair<std::string, Kind>>;
    const std::string mapping = "2\tA: Check Axis Mapping\n";
    const std::string general = "3\tGeneral: Check Movement or Axis Mapping\n";
    for (const auto& [failures, report] : std::vector<std::pair<Failures, std::string>>{
             {{}, ""},
             {{{"G", Kind::calibration}, {"A", Kind::calibration}}, "1\tA: Check Calibration\n1\tG: Check Calibration\n"},
             {{{"A", Kind::calibration}, {"A", Kind::axisMapping}}, mapping},
             {{{"A", Kind::axisMapping}, {"A", Kind::calibration}}, mapping},
             {{{"A", Kind::axisMapping}, {"G", Kind::calibration}}, mapping + "1\tG: Check Calibration\n"},
             {{{"A", Kind::axisMapping}, {"G", Kind::axisMapping}, {"M", Kind::calibration}}, general}}) {
        SensorManager manager;
        for (const auto& [name, kind] : failures)
            manager.addFailure(name, kind);
        EXPECT_EQ(manager.failureReport(), report);
    }
}

TEST(SensorManager, ReplayMergesByTimeAndTakesTheLaterSensorFirst) {
    Replay replay(SequenceKind::minimal, RunMode::test);
    const auto accelerometer = replay.add(staticAccelerometer, {{0.0, {1, 0, 0}}, {10.0, {1, 0, 0}}, {30.0, {1, 0, 0}}});
    replay.add(staticGyroscope, {{0.0, {2, 0, 0}}, {20.0, {2, 0, 0}}, {3000000000.0, {2, 0, 0}}});
    replay.load();
    const auto process = std::make_shared<NotingProcess>();
    process->type = RunMode::test;
    replay.manager.setProcess(process);
    accelerometer->setSensorManager(replay.manager);
    replay.manager.playData();
    EXPECT_EQ(process->times, (std::vector<double>{0.0, 0.0, 10.0, 20.0, 30.0}));
}

TEST(SensorManager, ReplayThatEndsEarlySaysSo) {
    const std::string tooShort = "Unexpected data dump size. Not enough data for completing the calibration process";
    for (const RunMode mode : {RunMode::calibrate, RunMode::test}) {
        MovedDevice device({}, {});
        device.rest(3.0);
        Replay replay(SequenceKind::full, mode);
        replay.add(staticAccelerometer, device.acceleration);
        replay.add(staticGyroscope, device.rate);
        EXPECT_EQ(textOf<CalibrationException>([&] { replay.play(); }), mode == RunMode::test ? "(nothing thrown)" : tooShort);
        EXPECT_EQ(replay.process->stageIndex, 1);
    }
}

TEST(SensorManager, ReplayHoldsEachSampleOnce) {
    MovedDevice device({}, {});
    device.fourSteps(3.0);
    Replay replay(SequenceKind::fourSteps);
    const auto accelerometer = replay.add(staticAccelerometer, device.acceleration);
    replay.add(staticGyroscope, device.rate);
    replay.play();
    const SensorDataMap raw = replay.manager.rawData();
    ASSERT_GT(accelerometer->bufferedData.size(), 1000U);
    EXPECT_EQ(accelerometer->bufferedData.begin(), raw.at(accelerometer).begin());
}

struct LiveRun {
    LiveRun() : process(std::make_shared<NotingProcess>()) {
        process->type = RunMode::test;
        process->stepCount = 1;
        process->acceptsAll = true;
        manager.setSensors({accelerometer, gyroscope});
        manager.setProcess(process);
        manager.stageTimeLimit = std::chrono::milliseconds(1);
        EXPECT_THROW(manager.startSampling(), CalibrationException);  // forgets earlier stages
    }
    void deliver(const std::shared_ptr<Sensor>& sensor, double time) {
        manager.handleData(sensor, time, std::array{1.0, 2.0, 3.0});
    }
    std::shared_ptr<Sensor> accelerometer = createSensor(staticAccelerometer);
    std::shared_ptr<Sensor> gyroscope = createSensor(staticGyroscope);
    std::shared_ptr<NotingProcess> process;
    SensorManager manager;
};

TEST(SensorManager, LiveTimesBeginBehindTheFirstSampleOfEverySensor) {
    LiveRun run;
    run.manager.handleData(run.accelerometer, 1.0, std::array{1.0});  // of no account
    run.deliver(run.accelerometer, 1000.0);
    run.deliver(run.accelerometer, 6000.0);
    run.deliver(run.gyroscope, 6000.0);  // completes the set, and is dropped itself
    run.deliver(run.gyroscope, 6010.0);
    run.deliver(run.accelerometer, 6005.0);
    run.deliver(run.accelerometer, 6012.5);
    EXPECT_EQ(run.process->times, (std::vector<double>{0.0, 0.0, 2.5}));
}

TEST(SensorManager, AStepEndsByTheWorkerByTimeOrByASilentSensor) {
    const auto failureOf = [](LiveRun& run) {
        return textOf<CalibrationException>([&run] { run.manager.waitForStepFinish(false); });
    };
    LiveRun timeout;
    EXPECT_EQ(failureOf(timeout),
              "DATA COLLECTION FAILED\n Timeout, failed to get stable samples or to detect motion of the required sensors");
    LiveRun waiting;
    waiting.deliver(waiting.accelerometer, 1000.0);
    waiting.deliver(waiting.accelerometer, 6000.1);
    EXPECT_EQ(failureOf(waiting), "Too long time waiting for all sensors data to be ready.");
    LiveRun failed;
    failed.manager.stageDone(false);
    EXPECT_EQ(failureOf(failed), "DATA COLLECTION FAILED\n Failed to get samples from FW");
    LiveRun flooded;
    flooded.manager.mostSamples = 2;
    for (int k = 0; k < 5; ++k)
        for (const auto& sensor : {flooded.accelerometer, flooded.gyroscope})
            flooded.deliver(sensor, 1000.0 + k);
    EXPECT_EQ(failureOf(flooded), "Too many samples from sensor Gyroscope") << "the last failure";
    EXPECT_EQ(flooded.manager.rawData().at(flooded.accelerometer).size(), 2U);
    LiveRun run;
    run.manager.stageTimeLimit = std::chrono::seconds(10);
    std::thread worker([&run] {
        for (int k = 0; k < 3; ++k) {
            run.deliver(run.accelerometer, 1000.0 + k);
            run.deliver(run.gyroscope, 1000.0 + k);
        }
        run.process->stepReady = true;
        run.deliver(run.gyroscope, 1010.0);
    });
    EXPECT_NO_THROW(run.manager.waitForStepFinish(false));
    worker.join();
}

TEST(SensorManager, WithoutADeviceSamplingCannotBegin) {
    LiveRun run;
    EXPECT_EQ(textOf<CalibrationException>([&] { run.manager.startSampling(); }), "Failed to start sampling");
    EXPECT_EQ(textOf<CalibrationException>([&] { run.manager.stopSampling(); }), "Failed to stop sampling");
    SensorManager none;
    EXPECT_EQ(textOf<CalibrationException>([&] { none.stopSampling(); }), "No sensors were set for sampling");
}

}  // namespace
}  // namespace tavoren
