#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "numerics/Eigenvalues.h"
#include "numerics/Matrix.h"
#include "numerics/Rotation.h"
#include "numerics/SingularValues.h"

namespace tavoren {
namespace {

Matrix diagonal(const Vector& v) {
    Matrix m(v.size(), v.size());
    for (int i = 0; i < v.size(); ++i)
        m(i, i) = v[i];
    return m;
}

Matrix randomRotation(std::mt19937& generator, const Vector& firstRow) {
    std::uniform_real_distribution<double> number(-1.0, 1.0);
    Matrix rows(3, 3);
    rows.setRow(0, normalized(firstRow));
    rows.setRow(1, {number(generator), number(generator), number(generator)});
    return updateRotationMatrix(rows, Vector(3));
}

// The arc cosine table steps by up to 0.014 near its ends, a third of which passes on to the angle.
TEST(DecompositionTest, EigenvaluesOfGeneratedMatrices) {
    std::mt19937 generator(7);
    const std::vector<Vector> cases = {{1.0, 2.0, 4.0}, {-3.0, 0.5, 9.0}, {0.1, 5.0, 5.5}, {1.0, 1.02, 30.0}};
    for (const Vector& e : cases) {
        for (int i = 0; i < 50; ++i) {
            const Matrix axes = randomRotation(generator, {i - 20.5, 9.0, 5.0});
            const Matrix m = transpose(axes) * diagonal(e) * axes;
            const double grain = 0.006 * (e[2] - e[0]);
            EXPECT_LT(maxAbs(symmetricEigenvalues3(m) - e), grain) << logText(m);
            EXPECT_LT(maxAbs(eigenvalues3Sorted(m) - e), grain) << logText(m);
            const Vector v = rowToVector(eigenvector3(m, e[2]));
            EXPECT_NEAR(norm(v), 1.0, 1e-12);
            EXPECT_LT(maxAbs(m * v - v * e[2]), 1e-6) << logText(m);
        }
    }
}

TEST(DecompositionTest, DiagonalMatricesKeepTheirOrder) {
    for (const Vector& e : {Vector{3.0, 1.0, 2.0}, Vector{0.0, -5.0, 7.0}}) {
        EXPECT_EQ(listText(symmetricEigenvalues3(diagonal(e))), listText(e));
        EXPECT_EQ(listText(eigenvalues3Sorted(diagonal(e))), listText(e));
    }
    Matrix almost = diagonal({3.0, 1.0, 2.0});
    almost(1, 0) = 3e-4;  // tolerated, and only the upper triangle counts
    EXPECT_EQ(listText(symmetricEigenvalues3(almost)), listText({3.0, 1.0, 2.0}));
    almost(0, 1) = 3e-4;
    EXPECT_LT(maxAbs(symmetricEigenvalues3(almost) - Vector{1.0, 2.0, 3.0}), 1e-3);
    EXPECT_FALSE(std::isfinite(eigenvector3(diagonal({1.0, 2.0, 3.0}), 2.0)(0, 1)));
}

TEST(DecompositionTest, SingularValuesReconstructTheMatrix) {
    std::mt19937 generator(11);
    for (int i = 0; i < 200; ++i) {
        // Singular directions without a first component are out of reach.
        const Matrix m =
            randomRotation(generator, ones3()) * diagonal({1.0, 2.0, 4.0}) * randomRotation(generator, {1.0, 2.0, i * 0.1});
        const SingularValues s(m);
        const Matrix product = s.left * s.singular * transpose(s.right);
        EXPECT_LT(std::abs(maxMagnitudeEntry(product - m)), 0.01) << logText(m);
        EXPECT_NEAR(s.singular(2, 2), 4.0, 0.02);
    }
    const SingularValues exact(diagonal({2.0, 0.0, 5.0}));
    EXPECT_EQ(wideListText(exact.left), wideListText(identity(3)));
    EXPECT_EQ(wideListText(exact.right), wideListText(diagonal({1.0, 0.0, 1.0})));
    EXPECT_EQ(wideListText(exact.singular), wideListText(diagonal({2.0, 0.0, 5.0})));
    const SingularValues other(Matrix(2, 3, {1.0, 2.0, 3.0, 4.0, 5.0, 6.0}));
    EXPECT_EQ(std::tuple(other.left.rows(), other.right.rows(), other.singular.rows()), std::tuple(3, 2, 2));
}

}  // namespace
}  // namespace tavoren
