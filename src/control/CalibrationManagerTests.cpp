#include "common/CalibrationException.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "control/CalibrationManager.h"
#include "control/Process.h"
#include "files/TestingConfig.h"
#include "frame/Console.h"
#include "frame/Logger.h"
#include "numerics/PlanarEllipseFit.h"
#include "sensors/Gyroscope.h"
#include "sensors/Magnetometer.h"

namespace tavoren {

namespace {

constexpr const char* function = "CalibrationManager::testAll";
constexpr double degreesPerRadian = 57.29577951308232;

/// What a turn of the gyroscope is held against, and how that shows.
struct TurnTest {
    std::wstring_view section;
    std::wstring_view title;
    std::wstring_view comment;
    double threshold;
    Matrix directions;  ///< one row for each step
};

TurnTest gravityTest(const InertialSensor& accelerometer) {
    return {L"Performing_TestCompareRotation_Gyro_Accel", L" Gravity rotation test",
            L"difference between gyro and accel", testingConfig().rotation_agreement_degrees_acc,
            accelerometer.segmentValues};
}

TurnTest magnetometerTest(const InertialSensor& magnetometer) {
    PlanarEllipse ellipse;
    Vector centre(3);
    fitPlanarEllipse(magnetometer.bufferedData, ellipse, centre);
    TurnTest test{L"Performing_TestCompareRotation_Gyro_Mag", L" Magnetometer rotation test",
                  L"difference between gyro and mag",
                  testingConfig().rotation_agreement_degrees_mag, magnetometer.segmentValues};
    for (int i = 0; i < test.directions.rows(); ++i)
        test.directions.setRow(i, row(test.directions, i) - centre);
    return test;
}

bool testTurn(Gyroscope& gyroscope, int step, const TurnTest& test) {
    const std::wstring number = std::to_wstring(step);
    gyroscope.logComment(L"step " + number);
    // The rows of the matrix are the axes of the step before as the device sees them now: the row
    // vector times the matrix is the old value in the new axes.
    const Vector turned = row(test.directions, step - 1) *
                          gyroscope.rotationMatrices[static_cast<std::size_t>(step) - 1];
    const Vector angle{angleBetween(row(test.directions, step), turned) * degreesPerRadian};
    const Vector expected(1);
    const bool passed = InertialSensor::vectorAssert(
        angle, expected, test.threshold,
        widen(gyroscope.displayName()) + L" step " + number + std::wstring(test.title), L"");
    gyroscope.logVector(angle, L"Angles", test.comment);
    gyroscope.logVector(expected, L"Expected",
                        L"The difference that is expected at a perfectly calibrated system");
    gyroscope.logTest(L"threshold", widen(formatNumber(test.threshold)),
                      L"rotation_agreement_degrees");
    gyroscope.logComment(passed ? L": PASSED" : L" FAILED");
    return passed;
}

}  // namespace

void CalibrationManager::testAll() {
    bool passed = true;
    for (const auto& sensor : calibratingSensors)
        passed = testOne(*sensor) && passed;
    if (sequence != SequenceKind::minimal) {
        for (const bool primary : {true, false})
            passed = passed && testRotations(motionSensor("Accelerometer", primary),
                                             motionSensor("Gyroscope", primary),
                                             motionSensor("Magnetometer", primary));
    }
    Logger::write(LogLevel::insane, function, __LINE__, "finished testing");
    writeResultLog();
    if (passed) {
        Console::printLine("----   test pass -----");
        return;
    }
    const std::string text = sensorManager.failureReport();
    if (exportEnabled)
        writeErrorLog(text);
    throw CalibrationException(text);
}

bool CalibrationManager::testOne(Sensor& sensor) {
    try {
        Logger::write(LogLevel::insane, function, __LINE__,
                      "calling testCalibration " + sensor.displayName());
        const bool passed = sensor.testCalibration();
        if (sensor.logNode)
            sensor.setLogAttribute(L"Success", passed ? L"true" : L"false");
        return passed;
    } catch (const CalibrationException& e) {
        Logger::write(LogLevel::debug, function, __LINE__,
                      "sensor " + sensor.displayName() + " " + e.what());
        return false;
    }
}

CalibrationManager::InertialHandle CalibrationManager::motionSensor(std::string_view typeName,
                                                                    bool primary) const {
    InertialHandle found;
    for (const auto& sensor : calibratingSensors)
        if (sensor->isPrimary() == primary &&
            sensor->displayName().find(typeName) != std::string::npos)
            found = std::dynamic_pointer_cast<InertialSensor>(sensor);
    return found;
}

/// Whether the turns of the gyroscope take gravity, or else the horizontal field, from each
/// position to the next.
bool CalibrationManager::testRotations(const InertialHandle& accelerometer,
                                       const InertialHandle& turning,
                                       const InertialHandle& magnetometer) const {
    const auto gyroscope = std::dynamic_pointer_cast<Gyroscope>(turning);
    if (!gyroscope || (!accelerometer && !magnetometer))
        return true;
    const TurnTest test =
        accelerometer ? gravityTest(*accelerometer) : magnetometerTest(*magnetometer);
    const LogSection section(*gyroscope, test.section);
    bool passed = true;
    const auto turns = static_cast<int>(gyroscope->rotationMatrices.size());
    for (int step = 1; step < process->stepCount && step <= turns; ++step)
        passed = testTurn(*gyroscope, step, test) && passed;
    return passed;
}

void CalibrationManager::magTest() {
    const auto magnetometer = std::dynamic_pointer_cast<Magnetometer>(calibratingSensors.front());
    if (!magnetometer)
        throw CalibrationException("Error. NULL referenced.");
    const auto finish = [this] {
        Logger::write(LogLevel::insane, "CalibrationManager::magTest", __LINE__,
                      "finished magnetic environment test");
        writeResultLog();
    };
    try {
        magnetometer->testEnvironment();
    } catch (const CalibrationException& e) {
        finish();
        throw CalibrationException(e.what());
    }
    finish();
}

}  // namespace tavoren
