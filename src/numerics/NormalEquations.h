#pragma once

#include <array>
#include <cstddef>

#include "numerics/Matrix.h"
#include "numerics/Vector.h"

namespace tavoren {

/// Linear least squares over `n` unknowns by the normal equations, summed row by row so that the
/// design matrix D is never kept. Every digit is that of `gramMatrix`(D) and of the right-hand side
/// times D.
template <std::size_t n>
class NormalEquations {
  public:
    /// One row of D with its right-hand side.
    void add(const std::array<double, n>& row, double rightHandSide) {
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = i; j < n; ++j)
                products[i][j] += row[i] * row[j];
            moments[i] += rightHandSide * row[i];
        }
    }

    /// transpose(D) * D.
    Matrix gram() const {
        Matrix result(static_cast<int>(n), static_cast<int>(n));
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = i; j < n; ++j) {
                result(static_cast<int>(i), static_cast<int>(j)) = products[i][j];
                result(static_cast<int>(j), static_cast<int>(i)) = products[i][j];
            }
        }
        return result;
    }

    /// The unknowns; non-finite when the rows do not determine them.
    Vector solve() const { return Vector(moments) * inverse(gram()); }

  private:
    std::array<std::array<double, n>, n> products{};  ///< upper triangle and diagonal
    std::array<double, n> moments{};
};

}  // namespace tavoren
