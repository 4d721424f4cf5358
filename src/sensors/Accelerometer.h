#pragma once

#include "sensors/InertialSensor.h"

namespace tavoren {

/// Calibrates an accelerometer from the medians of rest positions, in which gravity points where
/// the movement sequence has it.
class Accelerometer final : public InertialSensor {
  public:
    explicit Accelerometer(const Luid& id);

    void calibrate() override;
    bool testCalibration() override;
    bool dataRecieved(const SensorSample& sample) override;
    void getCalibrationData() override;
    void setCheckVsOriginalAxis(bool check) override;
    bool hasMovedFromReference() const override;

    /// The limits of the running sequence, in `dataUnit`.
    void setDefaultLimits();
    /// The directions of gravity that the sequence shows a perfectly calibrated sensor, by form
    /// factor and hinge for a second sensor. Throws `CalibrationException` outside the tables.
    void buildExpectedValues();

    // The full sequence: expected = scaleMatrix x measured + 0.001 c, twelve unknowns.

    /// 12 by 12, one block of 4 by 4 for each output axis.
    Matrix buildFullSystem() const;
    /// The expected x values of the four positions, then y, then z.
    Vector buildFullTargets() const;
    /// Takes `scaleMatrix` and `offset` out of a solution of 12; ignores any other size.
    void unpackFullSolution(const Vector& solution);

    // Four steps: mapping, offset and a diagonal scale, one after the other.

    void calcAxisMappingFromPositions();
    void calcOffsetFromPositions();
    void calcScaleFromPositions();
    /// Throws `CalibrationException`, for all sensors, if the mapping differs from the firmware's.
    void CheckAxisMappingVsOrig();

    double gravity = 1.0;
    bool checkVsOriginalAxis = false;
    double moveThreshold = 1.0;  ///< g0

  private:
    void calibrateFull();
    void calibrateFourSteps();
};

}  // namespace tavoren
