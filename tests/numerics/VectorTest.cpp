#include "numerics/Vector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tavoren {
namespace {

TEST(VectorTest, CopiesAreDeepAtEverySize) {
    for (const int size : {0, 1, 4, 5, 20}) {
        Vector source(size);
        for (int i = 0; i < size; ++i)
            source[i] = i + 1.0;
        Vector copy = source;
        source = Vector(size);
        EXPECT_DOUBLE_EQ(sum(copy), size * (size + 1) / 2.0);
        const Vector moved = std::move(copy);
        EXPECT_EQ(moved.size(), size);
        EXPECT_DOUBLE_EQ(sum(moved) - sum(source), size * (size + 1) / 2.0);
    }
}

TEST(VectorTest, QuotientsAndDifferences) {
    const Vector v = Vector{5.0, 7.0} / 3.0;
    EXPECT_EQ(v[0], 5.0 * (1.0 / 3.0));
    EXPECT_NE(v[0], 5.0 / 3.0);
    EXPECT_TRUE(std::isnan(normalized(Vector(3))[0]));
    Vector longer = {5.0, 6.0, 7.0};
    longer -= Vector{1.0, 1.0};
    EXPECT_EQ(listText(longer), "4.000000,5.000000;");
}

TEST(VectorTest, LargestElement) {
    for (const auto& [vector, index] : std::vector<std::pair<Vector, int>>{
             {{2.0, -2.0, 0.0}, 0}, {{1.0, -3.0, 3.0}, 1}, {{1.0, -3.0, -4.0}, 2}, {{0.0, 0.0, 0.0}, 0}, {{-5.0, 1.0, 5.0}, 0}}) {
        EXPECT_EQ(indexOfMaxMagnitude(vector), index) << listText(vector);
        EXPECT_EQ(getIndexOfAbsoluteMax(vector), index) << listText(vector);
        EXPECT_EQ(maxAbs(vector), std::abs(vector[index]));
    }
    EXPECT_EQ(indexOfMaxMagnitude(Vector()), 0);
    EXPECT_EQ(maxAbs(Vector()), 0.0);
}

TEST(VectorTest, CrossProductIsOrthogonalAndRightHanded) {
    EXPECT_EQ(listText(vector3CrossProduct({1.0, -2.0, 3.0}, {4.0, 5.0, -6.0})), "-3.000000,18.000000,13.000000;");
}

TEST(VectorTest, AngleStaysInRangeForParallelVectors) {
    const Vector a = {0.1, 0.2, 0.3};
    EXPECT_EQ(angleBetween(a, a * 3.0), 0.0);
    EXPECT_EQ(angleBetween(a, a * -7.0), 3.141593);
    EXPECT_EQ(angleBetween({1.0, 0.0}, {0.0, 2.0}), 1.570796);
}

TEST(VectorTest, Texts) {
    const Vector v = {1.0, -22.5, 123456789.0, std::numeric_limits<double>::quiet_NaN()};
    EXPECT_EQ(logText(v), "  1.000000 -22.500000 123456789.000000        nan \n");
    EXPECT_EQ(wideLogText(v), L"  1.000000 -22.500000 123456789.000000        nan \n");
    EXPECT_EQ(wideListText(v), L"1.000000,-22.500000,123456789.000000,nan;");
    EXPECT_EQ(logText(Vector()), "\n");
    EXPECT_EQ(listText(Vector()), "");
}

}  // namespace
}  // namespace tavoren
