#pragma once

#include <span>

#include "common/SensorSample.h"
#include "numerics/Matrix.h"
#include "numerics/Vector.h"

namespace tavoren {

/// The ellipsoid that samples of a turned magnetometer lie on: its centre is the hard-iron offset,
/// its shape the soft-iron distortion. Units are those of the samples.
class Ellipsoid {
  public:
    /// The unit sphere around zero.
    Ellipsoid() = default;
    /// Fits the samples and scales the result so that they map on a sphere of `radius`. The scale
    /// matrix leaves them in the frame of the principal axes. Throws as `fit`.
    Ellipsoid(std::span<const SensorSample> samples, double radius);

    Vector center = Vector(3);
    Vector principalScales = ones3();   ///< factor of each principal axis that makes it a sphere
    Vector principalLengths = ones3();  ///< reciprocals of `principalScales`
    Matrix scaleMatrix = identity(3);   ///< maps a centred sample on the sphere
    Matrix axes = identity(3);          ///< row k: the unit vector of principal axis k
    double meanScale = 0.0;             ///< mean square root of the eigenvalues of the fit

    /// Everything but `meanScale` as it was made.
    void reset();

    /// Linear least squares on raw samples; the mean of `principalScales` becomes 1 and
    /// `scaleMatrix` symmetric. Throws `MathException` for a hyperboloid and for samples that
    /// determine no ellipsoid.
    void fit(std::span<const SensorSample> samples);

    /// `scaleMatrix` * (values - `center`). Throws `MathException` for fewer than 3 values.
    Vector apply(const Vector& values) const;

    /// Mean distance of the mapped samples from the sphere of `radius`; not-a-number for none.
    double meanRadialError(std::span<const SensorSample> samples, double radius) const;

  private:
    void setShape(const Matrix& form);
};

}  // namespace tavoren
