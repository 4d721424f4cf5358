#include "numerics/EllipsoidFit.h"

#include "numerics/NormalEquations.h"
#include "numerics/SampleAxes.h"

namespace tavoren {

Vector ellipsoidCoefficients(std::span<const SensorSample> samples) {
    NormalEquations<9> equations;
    for (const SensorSample& sample : samples) {
        const auto [x, y, z] = axesOf(sample);
        equations.add({x, y, z, -x * y, -x * z, -y * z, -y * y, -z * z, 1.0}, x * x);
    }
    return equations.solve();
}

}  // namespace tavoren
