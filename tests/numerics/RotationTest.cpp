#include "numerics/Rotation.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavoren {
namespace {

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

TEST(RotationTest, SmallStepsAddUpToTheInverseTurn) {
    const Vector whole = {0.4, -0.5, 0.6};
    Matrix r = identity(3);
    for (int i = 0; i < 10000; ++i)
        r = updateRotationMatrix(r, whole / 10000.0);
    EXPECT_LT(std::abs(maxMagnitudeEntry(r - exactRotation(whole))), 1e-4) << logText(r);
    EXPECT_LT(std::abs(maxMagnitudeEntry(r * transpose(r) - identity(3))), 1e-12);
}

}  // namespace
}  // namespace tavoren
