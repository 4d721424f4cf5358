#pragma once

#include "numerics/Matrix.h"

namespace tavoren::simulator {

/// How a rigid device stands in the world. The world's axes are east, north and up; at first the
/// device's x, y and z lie along them, so that its screen faces up and its y axis points north.
class Attitude {
  public:
    /// After a turn about an axis of the device (0 to 2), counterclockwise as seen against it.
    Attitude turned(int axis, double degrees) const;
    /// A vector of the world in the axes of the device.
    Vector seen(const Vector& world) const { return axes * world; }

  private:
    Matrix axes = identity(3);  // one row for each axis of the device, in the world's axes
};

}  // namespace tavoren::simulator
