#pragma once

#include "numerics/Matrix.h"

namespace tavoren {

/// Singular value decomposition of a 3 by 3 matrix: m = left * singular * transpose(right).
/// For any other shape the fields are zero. Throws the `MathException` of `eigenvalues3Sorted`.
class SingularValues {
  public:
    explicit SingularValues(const Matrix& m);

    Matrix left;
    Matrix right;
    Matrix singular;  ///< diagonal

  private:
    void decompose(const Matrix& m);
};

}  // namespace tavoren
