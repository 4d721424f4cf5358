// What a script tells of attitude, rate, place and light must be one and the same movement.

#include "simulator/Script.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "sensors/MagneticField.h"
#include "simulator/World.h"

namespace tavoren::simulator {
namespace {

class Scripts : public testing::TestWithParam<std::string> {
  protected:
    const Script script = Script::of(GetParam(), {.rest = 1.0, .fullTurn = 3.0, .levels = {5, 900}});
};

TEST_P(Scripts, GravityAndFieldTurnAsTheRateSays) {
    constexpr double step = 0.002;
    const World world;
    Vector up = World::gravity(), north = world.fieldAt(0.0);
    for (int k = 0; k * step < script.seconds(); ++k) {
        const Moment middle = script.at((k + 0.5) * step);
        const double rate = norm(middle.rate);
        const int axis = indexOfMaxMagnitude(middle.rate);
        const double degrees = middle.rate[axis] * step;
        EXPECT_EQ(rate, std::abs(middle.rate[axis]));  // about one axis of the device
        up = afterTurn(up, axis, degrees);
        north = afterTurn(north, axis, degrees);
        const Attitude now = script.at((k + 1) * step).attitude;
        ASSERT_LT(maxAbs(now.seen(World::gravity()) - up), 1e-5) << "at " << k * step;
        ASSERT_LT(maxAbs(now.seen(world.fieldAt(0.0)) - north), 1e-2) << "at " << k * step;
    }
}

TEST_P(Scripts, RestsAreStillAndMovementsBeginAndEndStill) {
    for (std::size_t i = 0; i < script.size(); ++i) {
        const Movement& movement = script.movement(i);
        EXPECT_EQ(movement.isRest(), i % 2 == 0);
        const double begin = script.startOf(i);
        EXPECT_EQ(script.indexAt(begin), i);
        for (const double part : {0.0, 0.25, 0.5, 0.9999}) {
            const Moment moment = script.at(begin + part * movement.seconds);
            const bool still = movement.isRest() || part == 0.0 || part == 0.9999;
            if (movement.degrees != 0.0)
                EXPECT_EQ(norm(moment.rate) < 1e-3, still) << movement.text << " at " << part;
            else
                EXPECT_EQ(norm(moment.rate), 0.0);
        }
    }
    EXPECT_EQ(script.indexAt(script.seconds()), script.size());
    EXPECT_EQ(norm(script.at(script.seconds() + 60.0).rate), 0.0);
}

INSTANTIATE_TEST_SUITE_P(All, Scripts, testing::ValuesIn(Script::names()), [](const auto& name) {
    std::string text = name.param;
    std::erase(text, '-');
    return text;
});

TEST(ScriptPositions, AreThoseOfTheInstructions) {
    struct Row {
        std::string sequence;
        std::vector<Vector> up;  // in each rest, in the axes of the device
    };
    const Vector x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};
    for (const Row& row : {
             Row{"full", {z, z, y, y, x, x, y * -1.0}},
             Row{"accelerometer", {z, y, x, y * -1.0}},
             Row{"four-steps", {z, x * -1.0, y, z}},
             Row{"mag-accuracy", {z, z, z, z}},
             Row{"minimal", {z}},
             Row{"mag-test", {z, z, z, z, z}},
         }) {
        const Script script = Script::of(row.sequence, {});
        ASSERT_EQ(script.size(), 2 * row.up.size() - 1) << row.sequence;
        for (std::size_t i = 0; i < row.up.size(); ++i) {
            const Moment rest = script.at(script.startOf(2 * i) + 0.1);
            EXPECT_LT(maxAbs(rest.attitude.seen(World::gravity()) - row.up[i]), 1e-12) << row.sequence << " rest " << i;
        }
    }
    // The magnetometer's positions: north lies along y, x, -y and -x of the device.
    const Script compass = Script::of("mag-accuracy", {});
    const std::vector<Vector> north{y, x, y * -1.0, x * -1.0};
    for (std::size_t i = 0; i < north.size(); ++i)
        EXPECT_LT(maxAbs(compass.at(compass.startOf(2 * i)).attitude.seen({0, 1, 0}) - north[i]), 1e-12);
    const Script light = Script::of("light", {.levels = {100, 500, 50}});
    EXPECT_EQ(light.at(0.0).lux, 100.0);
    EXPECT_EQ(light.at(light.startOf(2)).lux, 500.0);
    EXPECT_EQ(light.at(1000.0).lux, 50.0);
    EXPECT_THROW(Script::of("dance", {}), std::invalid_argument);
}

}  // namespace
}  // namespace tavoren::simulator
