#pragma once

#include "sensors/InertialSensor.h"

namespace tavoren {

/// Calibrates a gyroscope: the offset from the rest periods, the scale from turns whose angle the
/// sequence knows. `segmentValues` holds angles (degrees, raw axes) and not rates.
class Gyroscope final : public InertialSensor {
  public:
    explicit Gyroscope(const Luid& id);

    void calibrate() override;
    bool testCalibration() override;
    bool dataRecieved(const SensorSample& sample) override;
    /// The raw-data sensor behind this one.
    Luid getLuid() const override;
    void getCalibrationData() override;
    /// Adds the newest rate to the running angle; true, and the angle starts anew, from 200 degrees
    /// in any direction on.
    bool isRotationDone(double since) override;
    void captureRestRate() override;
    void computePositions() override;
    /// Row `index` of `segmentValues` in calibrated axes: an angle, free of `offset` already.
    Vector calibratedValue(int index) const override;

    /// The limits of the running sequence, in `dataUnit`.
    void setDefaultLimits();
    /// The turns that the sequence shows a perfectly calibrated sensor (degrees), by form factor
    /// and hinge for a second sensor. Throws `CalibrationException` outside the tables.
    void buildExpectedValues();
    /// The scale that takes the measured turns to turns of `degrees`; throws
    /// `CalibrationException` if they do not span the three axes.
    void calcScale(double degrees);
    /// The turns of a test run: `rotationAngles`, and `rotationMatrices` in run mode test.
    void integrateRotations();
    /// Compares the measured turns with the expected ones; true if all agree.
    bool Performing_TestIntegration();

    /// One per turn of a test run: the axes before the turn as the device sees them after it.
    std::vector<Matrix> rotationMatrices;
    double rotationDegrees = 0.0;          ///< of one turn in this sequence
    double quarterTurn = 90.0;             ///< degrees
    double fullTurn = 360.0;               ///< degrees
    Matrix rotationAngles = Matrix(6, 3);  ///< degrees per turn of a test run, raw axes
    Vector restRate;                       ///< empty until `captureRestRate`
    double rotationDoneAngle = 200.0;      ///< degrees

  private:
    void integrateTurn(int turn, std::int64_t first, std::int64_t last);
    void measureTurn(int turn, std::int64_t first, std::int64_t last);
    void computeRestDeviation(const std::vector<std::int64_t>& index);
    bool testTurn(int turn, bool& wrongMovement);
};

}  // namespace tavoren
