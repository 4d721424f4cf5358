#include "numerics/LookUp.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavoren {
namespace {

TEST(LookUpTest, Entries) {
    EXPECT_EQ(sin_lut(1.5707963267948966), 1.0);
    EXPECT_EQ(sin_lut(0.00019), 0.0001);
    EXPECT_EQ(sin_lut(-0.5), sin_lut(5.783185307179586));
    EXPECT_EQ(sin_lut(-1e-20), 0.0);
    EXPECT_EQ(acos_lut(1.0), 0.0);
    EXPECT_EQ(acos_lut(-1.0), 3.141593);
    EXPECT_EQ(acos_lut(0.0), 1.570796);
    EXPECT_EQ(acos_lut(0.99995), 0.014142);
}

TEST(LookUpTest, StaysWithinOneStepOfTheExactFunctions) {
    for (int i = -20000; i <= 20000; ++i) {
        const double angle = i * 0.00123;
        EXPECT_NEAR(sin_lut(angle), std::sin(angle), 1.01e-4) << angle;
        EXPECT_NEAR(cosineOf(angle), std::cos(angle), 1.01e-4) << angle;
        const double cosine = i / 20000.0;
        const double stepBelow = std::acos(std::fmax(cosine - 1e-4, -1.0));
        EXPECT_GE(acos_lut(cosine), std::acos(cosine) - 1e-6) << cosine;
        EXPECT_LE(acos_lut(cosine), stepBelow + 1e-6) << cosine;
    }
    for (const double far : {1e6, -1e9})
        EXPECT_NEAR(sin_lut(far), std::sin(far), 1.1e-4);
}

}  // namespace
}  // namespace tavoren
