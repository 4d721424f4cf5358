#include "numerics/Matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace tavoren {
namespace {

Matrix randomMatrix(int rows, int cols, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> number(-10.0, 10.0);
    Matrix m(rows, cols);
    for (int i = 0; i < rows; ++i) {
        for (double& x : m.rowSpan(i))
            x = number(generator);
    }
    return m;
}

double distance(const Matrix& a, const Matrix& b) {
    return std::abs(maxMagnitudeEntry(a - b));
}

TEST(MatrixTest, InverseTimesSelfIsIdentity) {
    for (int n = 1; n <= 12; ++n) {
        for (unsigned seed = 0; seed < 20; ++seed) {
            const Matrix m = randomMatrix(n, n, seed);
            EXPECT_LT(distance(inverse(m) * m, identity(n)), 1e-8) << n << ' ' << seed;
            EXPECT_TRUE(n != 3 || distance(inverse3(m), inverse(m)) < 1e-10) << seed;
        }
    }
    const Matrix permutation(3, 3, {0.0, 0.0, 1.0, 1.0, 0.0, 0.0, 0.0, 1.0, 0.0});
    EXPECT_EQ(distance(inverse(permutation), transpose(permutation)), 0.0);
}

TEST(MatrixTest, SingularMatrixInvertsToNonFiniteElements) {
    const Matrix zeros = inverse(Matrix(3, 3));
    for (const double x : row(zeros, 1))
        EXPECT_FALSE(std::isfinite(x));
    EXPECT_EQ(inverse(Matrix()).rows(), 0);
}

TEST(MatrixTest, ProductsAgree) {
    const Matrix a = randomMatrix(7, 4, 1);
    const Matrix b = randomMatrix(4, 5, 2);
    const Vector v = row(b, 2) / 3.0;
    EXPECT_EQ(distance(columnMatrix(a * (b * v)), a * columnMatrix(b * v)), 0.0);
    EXPECT_EQ(distance(transpose(columnMatrix(v * transpose(b))), fromRows({b * v})), 0.0);
    EXPECT_LT(distance(transpose(a * b), transpose(b) * transpose(a)), 1e-12);
    EXPECT_EQ(distance(gramMatrix(a), transpose(a) * a), 0.0);
    const Matrix square = randomMatrix(3, 3, 3);
    EXPECT_NEAR(determinant3(square * square), determinant3(square) * determinant3(square), 1e-6);
    EXPECT_EQ(trace(square), sum({square(0, 0), square(1, 1), square(2, 2)}));
}

TEST(MatrixTest, RowsComeBackWhenTheMatrixGrowsAgain) {
    for (const int rows : {2, 40}) {
        Matrix m = randomMatrix(rows, 3, 4);
        const Vector last = row(m, rows - 1);
        m.setRows(1);
        EXPECT_EQ(m.rows(), 1);
        EXPECT_THROW(row(m, 1), std::runtime_error);
        m.setRows(rows + 2);
        EXPECT_EQ(listText(row(m, rows - 1)), listText(last));
        EXPECT_EQ(squaredNorm(row(m, rows + 1)), 0.0);
    }
}

TEST(MatrixTest, BlocksAndTexts) {
    const Matrix m(3, 2, {1.0, 2.0, 3.0, 4.0, 5.0, -6.0});
    EXPECT_EQ(wideListText(subMatrix(m, 1, 0, 3, 2)), L"3.000000,4.000000;5.000000,-6.000000;");
    EXPECT_EQ(logText(subMatrix(m, 0, 1, 2, 2)), "  2.000000 \n  4.000000 \n");
    EXPECT_EQ(listText(rowToVector(transpose(m))), "1.000000,3.000000,5.000000;");
    EXPECT_EQ(indexOfMaxMagnitude(m), 5);
    EXPECT_EQ(maxMagnitudeEntry(m), -6.0);
    EXPECT_EQ(maxMagnitudeEntry(Matrix()), 0.0);
}

TEST(MatrixTest, NearlyDiagonal) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const Vector& elements : {Vector{1.0, 1e-11, -1e-11, 5.0}, {1.0, nan, 0.0, 5.0}, {0.0, 0.0, 0.0, 0.0}})
        EXPECT_TRUE(isNearlyDiagonal(Matrix(2, 2, elements))) << listText(elements);
    for (const Vector& elements : {Vector{1.0, 0.0, 1e-9, 5.0}, {-1.0, 1e-9, 0.0, 5.0}, {0.0, 1e-300, 0.0, 5.0}})
        EXPECT_FALSE(isNearlyDiagonal(Matrix(2, 2, elements))) << listText(elements);
    EXPECT_FALSE(isNearlyDiagonal(Matrix(2, 3)));
}

}  // namespace
}  // namespace tavoren
