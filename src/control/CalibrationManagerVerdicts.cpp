#include <algorithm>
#include <cmath>
#include <limits>

#include "common/CalibrationException.h"
#include "control/CalibrationManager.h"
#include "control/Process.h"
#include "frame/Logger.h"
#include "sensors/InertialSensor.h"

namespace tavoren {

namespace {

constexpr double dipAngleLimit = 6.0;              // degrees
constexpr double magnetometerDifference = 1000.0;  // in the magnetometer's unit
constexpr double accelerometerDifference = 1.0;    // in the accelerometer's unit
constexpr double radiansPerDegree = 0.017453292519943295;
constexpr const char* failedForAll = "Calibration failed for all sensors. ";

std::vector<Vector> rowsOf(const Matrix& matrix) {
    std::vector<Vector> rows;
    for (int i = 0; i < matrix.rows(); ++i)
        rows.push_back(row(matrix, i));
    return rows;
}

}  // namespace

/// One comparison of two sensors, and how it shows when it fails.
struct CalibrationManager::CrossCheck {
    bool runs;
    std::function<double()> value;
    double limit;
    InertialHandle logged;
    std::wstring_view parameter;
    std::wstring_view element;
    std::wstring_view comment;
    std::string_view reason;
};

void CalibrationManager::calibrateAll() {
    constexpr const char* function = "CalibrationManager::calibrateAll";
    bool ok = true;
    std::string errorText;
    for (const auto& sensor : calibratingSensors) {
        try {
            calibrateOne(sensor);
        } catch (const CalibrationException& e) {
            ok = false;
            const std::string text = e.what();
            if (text.find(failedForAll) != std::string::npos) {
                errorText = text;
                break;
            }
            errorText += (errorText.empty() ? "" : "\n") + text;
            if (!sensor->isPrimary())
                errorText +=
                    " To calibrate only the primary sensor, you can use the primary sensors only "
                    "option";
        }
    }
    if (ok && sequence == SequenceKind::full) {
        try {
            checkCalibration();
        } catch (const CalibrationException& e) {
            ok = false;
            errorText = e.what();
        }
    }
    Logger::write(LogLevel::insane, function, __LINE__, "finished calibration");
    writeResultLog();
    if (!ok)
        throw CalibrationException(errorText);
}

void CalibrationManager::calibrateOne(const std::shared_ptr<Sensor>& sensor) {
    Logger::write(LogLevel::insane, "CalibrationManager::calibrateAll", __LINE__,
                  "calling calibrate " + sensor->displayName());
    sensor->calibrate();
    const auto found = dynamicSensors.find(sensor);
    if (sequence == SequenceKind::minimal || sensor->category != Sensor::inertial ||
        found == dynamicSensors.end())
        return;
    const auto dynamic = std::dynamic_pointer_cast<InertialSensor>(found->second);
    const auto inertial = std::dynamic_pointer_cast<InertialSensor>(sensor);
    if (dynamic && inertial && !dynamic->firmwareData.empty())
        dynamic->setDynamicWhiteNoise(inertial->meanWhiteNoise());
}

CalibrationManager::InertialHandle CalibrationManager::calibrated(
    std::string_view displayName) const {
    InertialHandle found;
    for (const auto& sensor : calibratingSensors)
        if (sensor->displayName() == displayName)
            found = std::dynamic_pointer_cast<InertialSensor>(sensor);
    return found;
}

std::vector<CalibrationManager::CrossCheck> CalibrationManager::crossChecks() const {
    const InertialHandle a1 = calibrated("Accelerometer");
    const InertialHandle g1 = calibrated("Gyroscope");
    const InertialHandle m1 = calibrated("Magnetometer");
    const InertialHandle a2 = calibrated("Accelerometer_2");
    const InertialHandle g2 = calibrated("Gyroscope_2");
    const InertialHandle m2 = calibrated("Magnetometer_2");
    const bool am = wantAccelerometer && wantMagnetometer;
    const bool mg = wantMagnetometer && wantGyroscope;
    const bool ag = wantAccelerometer && wantGyroscope;
    const auto dip = [](const InertialHandle& m, const InertialHandle& a) {
        return [m, a] { return dipAngleSpread(m, a); };
    };
    const auto turned = [this](const InertialHandle& g, const InertialHandle& s) {
        return [this, g, s] { return rotationDifference(g, s, identity(3)); };
    };
    const auto turnedAcross = [this, g1, a1, a2] {
        return rotationDifference(g1, a2, a1->bestRotation(rowsOf(a2->expectedValues)));
    };
    return {
        {am && a1 && m1, dip(m1, a1), dipAngleLimit, m1, L"Dip Angle", L"DipAngle",
         L"Dip angle value", "Calculated dip angle is too high, check magnetic environment.\n"},
        {am && a2 && m2, dip(m2, a2), dipAngleLimit, m2, L"Dip Angle", L"DipAngle",
         L"Dip angle value acc_2 mag_2",
         "Calculated dip angle by acc_2 and mag_2 is too high, check magnetic environment.\n"},
        {mg && g1 && m1, turned(g1, m1), magnetometerDifference, m1, L"Mag-Gyro Diff",
         L"Gyro-Mag diff", L"Gyro & Magnetometer difference",
         "Disagreement between magnetometer and gyroscope - check magnetic environment.\n"},
        {mg && g2 && m2, turned(g2, m2), magnetometerDifference, m2, L"Mag-Gyro Diff",
         L"Gyro-Mag diff", L"Gyro_2 & Magnetometer_2 difference",
         "Disagreement between magnetometer_2 and gyroscope_2 - check magnetic environment.\n"},
        {ag && a1 && g1, turned(g1, a1), accelerometerDifference, a1, L"Gyro-Accel Diff",
         L"Gyro-Accel diff", L"Gyro & Accelerometer difference",
         "Disagreement between accelerometer and gyroscope.\n"},
        {ag && a2 && g2, turned(g2, a2), accelerometerDifference, a2, L"Gyro-Accel Diff",
         L"Gyro-Accel diff", L"Gyro_2 & Accelerometer_2 difference",
         "Disagreement between accelerometer_2 and gyroscope_2.\n"},
        {ag && a1 && a2 && g1, turnedAcross, accelerometerDifference, a2, L"Gyro-Accel_2 Diff",
         L"Gyro-Accel_2 diff", L"Gyro & Accelerometer_2 difference",
         "Disagreement between accelerometer_2 and gyroscope.\n"},
    };
}

void CalibrationManager::checkCalibration() {
    bool failed = false;
    std::string reasons;
    for (const CrossCheck& check : crossChecks()) {
        if (!check.runs)
            continue;
        const double value = check.value();
        if (!(value > check.limit))
            continue;
        if (!failed) {  // the log shows the first disagreement
            check.logged->setLogAttribute(L"Success", L"false");
            check.logged->setLogAttribute(L"FailureParameter", check.parameter);
            check.logged->logValue(value, check.element, check.comment);
        }
        failed = true;
        reasons += check.reason;
    }
    if (failed)
        throw CalibrationException("Calibration failed. Reason: " + reasons);
    Logger::write(LogLevel::insane, "CalibrationManager::checkCalibration", __LINE__,
                  "Finished CalibrationManager::checkCalibration");
}

double CalibrationManager::dipAngleSpread(const InertialHandle& magnetometer,
                                          const InertialHandle& accelerometer) {
    if (!magnetometer || !accelerometer)
        return 0.0;
    std::vector<double> angles;
    for (int i = 0; i < accelerometer->positionCount; ++i)
        angles.push_back(
            angleBetween(accelerometer->modelValue(i, true), magnetometer->modelValue(i, true)));
    return standardDeviation(angles) / radiansPerDegree;
}

double CalibrationManager::rotationDifference(const InertialHandle& gyroscope,
                                              const InertialHandle& other,
                                              const Matrix& rotation) const {
    if (!gyroscope || !other)
        return 0.0;
    const std::vector<double>& times = process->segmentTimes;
    const std::size_t stride = sequence == SequenceKind::full ? 4 : 2;
    std::vector<double> errors;
    const auto compare = [&](std::size_t from, int position) {
        if (from + 1 >= times.size())
            return;
        const double error =
            other->compareRotation(times[from], times[from + 1], *gyroscope, position, rotation);
        // A movement that cannot be compared is no agreement.
        errors.push_back(std::isnan(error) ? std::numeric_limits<double>::infinity() : error);
    };
    for (int i = 0; i < gyroscope->positionCount; ++i) {
        const std::size_t k = (static_cast<std::size_t>(i) + 1) * stride;
        compare(k - 1, i);
        if (other->displayName() == "Magnetometer")
            compare(stride * static_cast<std::size_t>(i) + 1, i);
    }
    const auto largest = std::max_element(errors.begin(), errors.end());
    return largest == errors.end() ? 0.0 : *largest;
}

}  // namespace tavoren
