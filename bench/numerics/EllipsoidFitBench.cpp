#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <random>
#include <span>
#include <vector>

#include "BesideFloor.h"
#include "numerics/Ellipsoid.h"
#include "numerics/Vector.h"

namespace tavoren::bench {
namespace {

// Random directions on a skewed ellipsoid of a radius near 0.5, with noise.
std::vector<SensorSample> samplesOnEllipsoid(std::size_t count) {
    std::mt19937 generator(1);
    std::normal_distribution<double> number(0.0, 1.0);
    std::vector<SensorSample> samples(count);
    for (SensorSample& sample : samples) {
        const Vector d =
            normalized(Vector{number(generator), number(generator), number(generator)});
        sample.values = {0.2 + 0.5 * d[0] + 0.02 * d[1] + 0.003 * number(generator),
                         -0.3 + 0.45 * d[1] + 0.01 * d[2] + 0.003 * number(generator),
                         0.15 + 0.55 * d[2] + 0.003 * number(generator)};
    }
    return samples;
}

/// What any direct fit must do, in plain loops: the sums of its normal equations.
void sumNormalEquations(std::span<const SensorSample> samples) {
    std::array<double, 54> sums{};
    for (const SensorSample& sample : samples) {
        const double x = sample.values[0];
        const double y = sample.values[1];
        const double z = sample.values[2];
        const std::array<double, 10> row = {x,      y,      z,      -x * y, -x * z,
                                            -y * z, -y * y, -z * z, 1.0,    x * x};
        std::size_t k = 0;
        for (std::size_t i = 0; i < 9; ++i) {
            for (std::size_t j = i; j < 10; ++j)
                sums[k++] += row[i] * row[j];
        }
    }
    benchmark::DoNotOptimize(sums);
}

void fit(benchmark::State& state) {
    const auto samples = samplesOnEllipsoid(static_cast<std::size_t>(state.range(0)));
    const auto fitted = [&samples] {
        return secondsOf([&samples] {
            Ellipsoid ellipsoid;
            ellipsoid.fit(samples);
            benchmark::DoNotOptimize(ellipsoid);
        });
    };
    const auto floor = [&samples] {
        return secondsOf([&samples] { sumNormalEquations(samples); });
    };
    const Comparison row{"fit an ellipsoid to " + grouped(state.range(0)) + " points",
                         "plain sums of its normal equations", "points"};
    runBesideFloor(state, row, samples.size(), fitted, floor);
}
BENCHMARK(fit)->RangeMultiplier(10)->Range(1000, 1000000)->Iterations(15)->UseManualTime();

}  // namespace
}  // namespace tavoren::bench
