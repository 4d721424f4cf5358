#pragma once

#include "numerics/Matrix.h"
#include "numerics/Vector.h"

namespace tavoren {

/// Eigenvalues of a symmetric 3 by 3 matrix by the trigonometric closed form (O. K. Smith, 1961),
/// good to four to six digits. Ascending, but a matrix with exactly zero elements above the
/// diagonal gives its diagonal in matrix order. Throws `MathException` for another shape, for an
/// asymmetry of a squared size above 1e-7, and for non-finite elements off the diagonal.
Vector symmetricEigenvalues3(const Matrix& m);

/// The same for a symmetric positive matrix, without a check of symmetry: a nearly diagonal matrix
/// gives its diagonal in matrix order, any other ascending eigenvalues. Rounding may drive the
/// arc cosine out of its range, which raises its `MathException`.
Vector eigenvalues3Sorted(const Matrix& m);

/// Unit eigenvector, 1 by 3, of a symmetric 3 by 3 matrix for its eigenvalue `e`. The first
/// component is taken as 1 before scaling, so one without a first component comes out non-finite.
/// Throws `MathException` for another shape.
Matrix eigenvector3(const Matrix& m, double e);

}  // namespace tavoren
