#pragma once

#include "common/ByteString.h"
#include "numerics/Matrix.h"
#include "sensors/Sensor.h"

namespace tavoren::simulator {

/// What the firmware makes of a raw reading: matrix x (raw - offset).
struct Correction {
    Matrix matrix = identity(3);
    Vector offset = Vector(3);

    Vector apply(const Vector& raw) const { return matrix * (raw - offset); }
};

/// The correction that a record asks for, in the unit of the sensor's data; none for a record of
/// another format. Throws `CalibrationException` for a record that is too short.
Correction correctionOf(const Sensor& sensor, const ByteString& record);

/// The record of a hub that was never calibrated. Static ones carry vendor data, which has to
/// survive every calibration.
ByteString factoryRecord(const Sensor& sensor);

}  // namespace tavoren::simulator
