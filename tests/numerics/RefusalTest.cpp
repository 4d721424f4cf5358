#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "common/MathException.h"
#include "numerics/Eigenvalues.h"
#include "numerics/Interpolation.h"
#include "numerics/LookUp.h"
#include "numerics/Matrix.h"
#include "numerics/Rotation.h"
#include "sensors/ExpectThrow.h"

namespace tavoren {
namespace {

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

}  // namespace
}  // namespace tavoren
