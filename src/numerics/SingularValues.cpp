#include "numerics/SingularValues.h"

#include <cmath>

#include "numerics/Eigenvalues.h"

namespace tavoren {

SingularValues::SingularValues(const Matrix& m)
    : left(m.cols(), m.cols()), right(m.rows(), m.rows()), singular(m.rows(), m.cols()) {
    if (m.rows() == 3 && m.cols() == 3)
        decompose(m);
}

void SingularValues::decompose(const Matrix& m) {
    const Matrix g = m * transpose(m);
    const Vector e = eigenvalues3Sorted(g);
    left = identity(3);
    if (!isNearlyDiagonal(g)) {
        for (int k = 0; k < 3; ++k)
            left.setRow(k, rowToVector(eigenvector3(g, e[k])));
        left = transpose(left);
    }
    singular = identity(3);
    for (int k = 0; k < 3; ++k)
        singular(k, k) = e[k] <= 0.0 ? 0.0 : 1.0 / std::sqrt(e[k]);
    right = transpose(m) * left * singular;
    for (int k = 0; k < 3; ++k)
        singular(k, k) = std::sqrt(e[k]);
}

}  // namespace tavoren
