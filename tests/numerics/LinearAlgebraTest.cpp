#include "numerics/Matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "common/MathException.h"
#include "numerics/Eigenvalues.h"
#include "numerics/Interpolation.h"
#include "numerics/LookUp.h"
#include "numerics/Rotation.h"
#include "numerics/SingularValues.h"
#include "sensors/ExpectThrow.h"

namespace tavoren {
namespace {

Matrix randomMatrix(int rows, int cols, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> number(-10.0, 10.0);
    Matrix m(rows, cols);
    for (int i = 0; i < rows; ++i)
        for (double& x : m.rowSpan(i))
            x = number(generator);
    return m;
}

double distance(const Matrix& a, const Matrix& b) {
    return std::abs(maxMagnitudeEntry(a - b));
}

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

TEST(VectorTest, AngleStaysInRangeForParallelVectors) {
    const Vector a = {0.1, 0.2, 0.3};
    EXPECT_EQ(angleBetween(a, a * 3.0), 0.0);
    EXPECT_EQ(angleBetween(a, a * -7.0), 3.141593);
    EXPECT_EQ(angleBetween({1.0, 0.0}, {0.0, 2.0}), 1.570796);
}

TEST(VectorTest, Texts) {
    const Vector v = {1.0, -22.5, 123456789.0, std::nan("")};
    EXPECT_EQ(logText(v), "  1.000000 -22.500000 123456789.000000        nan \n");
    EXPECT_EQ(wideLogText(v), L"  1.000000 -22.500000 123456789.000000        nan \n");
    EXPECT_EQ(wideListText(v), L"1.000000,-22.500000,123456789.000000,nan;");
    EXPECT_EQ(logText(Vector()), "\n");
    EXPECT_EQ(listText(Vector()), "");
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
    for (const double x : row(inverse(Matrix(3, 3)), 1))
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
    EXPECT_EQ(listText(vector3CrossProduct({1.0, -2.0, 3.0}, {4.0, 5.0, -6.0})), "-3.000000,18.000000,13.000000;");
}

TEST(MatrixTest, NearlyDiagonal) {
    for (const Vector& elements : {Vector{1.0, 1e-11, -1e-11, 5.0}, {1.0, std::nan(""), 0.0, 5.0}, {0.0, 0.0, 0.0, 0.0}})
        EXPECT_TRUE(isNearlyDiagonal(Matrix(2, 2, elements))) << listText(elements);
    for (const Vector& elements : {Vector{1.0, 0.0, 1e-9, 5.0}, {-1.0, 1e-9, 0.0, 5.0}, {0.0, 1e-300, 0.0, 5.0}})
        EXPECT_FALSE(isNearlyDiagonal(Matrix(2, 2, elements))) << listText(elements);
    EXPECT_FALSE(isNearlyDiagonal(Matrix(2, 3)));
}

TEST(RefusalTest, TextsOfTheNumerics) {
    const std::string product =
        "Wrong matrices. The number of columns in the first matrix should be equal to the number of rows in the second";
    const std::string cross = "Error from vector3CrossProduct, expected vector length was 3";
    const std::string notThree = "Matrix is not 3x3";
    const std::string sine = "Index of the sin_lut is out of range!";
    const std::string arcCosine = "The input value of acos_lut is out of range!";
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Vector v2(2);
    const Vector v3(3);
    const std::vector<Vector> uneven = {v2, v3};
    const Matrix m23(2, 3);
    const Matrix skew(3, 3, {1.0, 3.2e-4, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0});
    const std::vector<std::pair<std::string, std::vector<std::function<void()>>>> cases = {
        {"Error while substructing vector", {[&] { v2 - v3; }}},
        {"Error while adding vector", {[&] { v2 + v3; }}},
        {product, {[&] { m23* m23; }, [&] { v3* m23; }, [&] { m23 - transpose(m23); }}},
        {notThree, {[&] { determinant3(m23); }, [&] { inverse3(m23); }}},
        {notThree, {[&] { symmetricEigenvalues3(identity(2)); }, [&] { updateRotationMatrix(m23, v3); }}},
        {"Matrix is not symmetric", {[&] { symmetricEigenvalues3(skew); }}},
        {"Failed to invert matrix", {[&] { inverse3(Matrix(3, 3)); }}},
        {"Matrix is not square", {[&] { inverse(m23); }, [&] { trace(m23); }}},
        {cross, {[&] { vector3CrossProduct(v3, v2); }, [&] { rotateByQuaternion({}, v2); }}},
        {"Error from getIndexOfAbsoluteMax, expected a 3X1 matrix", {[&] { getIndexOfAbsoluteMax(v2); }}},
        {sine, {[&] { sin_lut(nan); }, [&] { sin_lut(1e300); }}},
        {arcCosine, {[&] { acos_lut(nan); }, [&] { acos_lut(1.0000001); }, [&] { acos_lut(-1.0000001); }}},
        {arcCosine, {[&] { angleBetween(v3, v3); }}},
        {"", {[&] { dot(v3, v2); }, [&] { Matrix(-1, 2); }, [&] { Matrix(2, 2, v3); }, [&] { fromRows(uneven); }}},
        {"", {[&] { subMatrix(m23, 0, 0, 3, 3); }, [&] { interpolate({}, {}, 1.0); }, [&] { Matrix(2, 3).setRow(2, v3); }}},
    };
    for (const auto& [text, calls] : cases) {  // an empty text stands for any
        for (const auto& call : calls) {
            const std::string thrown = textOf<MathException>(call);
            EXPECT_EQ(thrown.substr(0, 12), "Math Error: ") << text;
            EXPECT_TRUE(text.empty() || thrown.substr(12) == text) << thrown;
        }
    }
}

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

TEST(LookUpTest, Entries) {
    for (const auto& [angle, sine] : {std::pair{1.5707963267948966, 1.0}, {0.00019, 0.0001}, {-1e-20, 0.0}})
        EXPECT_EQ(sin_lut(angle), sine);
    EXPECT_EQ(sin_lut(-0.5), sin_lut(5.783185307179586));
    for (const auto& [cosine, angle] : {std::pair{1.0, 0.0}, {-1.0, 3.141593}, {0.0, 1.570796}, {0.99995, 0.014142}})
        EXPECT_EQ(acos_lut(cosine), angle);
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

// Rodrigues' formula with the exact functions.
Matrix exactRotation(const Vector& v) {
    const double angle = norm(v);
    const Vector u = v / angle;
    const Matrix k(3, 3, {0.0, -u[2], u[1], u[2], 0.0, -u[0], -u[1], u[0], 0.0});
    return identity(3) - k * -std::sin(angle) - k * k * -(1.0 - std::cos(angle));
}

const std::vector<Vector> rotations = {{0.3, 0.0, 0.0},   {0.0, -1.2, 0.4}, {0.7, 0.8, -0.9},
                                       {1.5, -1.0, -1.5}, {0.0, 0.0, 3.0},  {-0.01, 0.02, 0.03}};

TEST(RotationTest, RotationVectorComesBackFromItsMatrix) {
    for (const Vector& v : rotations)
        EXPECT_LT(maxAbs(rotationVectorFromMatrix(exactRotation(v)) - v), 3e-3) << listText(v);
    EXPECT_EQ(squaredNorm(rotationVectorFromMatrix(identity(3))), 0.0);
    const Matrix halfTurnAboutZ(3, 3, {-0.9, 0.0, 0.0, 0.0, -0.9, 0.0, 0.0, 0.0, 1.0});
    EXPECT_EQ(rotationVectorFromMatrix(halfTurnAboutZ)[2], 1.5707963267948966);
}

TEST(RotationTest, QuaternionTurnsLikeTheMatrix) {
    const Vector p = {1.0, -2.0, 0.5};
    for (const Vector& v : rotations) {
        const Quaternion q = quaternionFromRotationVector(v);
        EXPECT_LT(maxAbs(rotateByQuaternion(q, p) - exactRotation(v) * p), 1e-3) << listText(v);
        for (const Vector& second : rotations) {
            const Quaternion r = quaternionFromRotationVector(second);
            const Vector stepwise = rotateByQuaternion(q, rotateByQuaternion(r, p));
            EXPECT_LT(maxAbs(rotateByQuaternion(q * r, p) - stepwise), 2e-3);
        }
    }
    EXPECT_EQ(listText(rotateByQuaternion(quaternionFromRotationVector(Vector(3)), p)), listText(p));
}

}  // namespace
}  // namespace tavoren
