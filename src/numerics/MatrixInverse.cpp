#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "numerics/Matrix.h"

namespace tavoren {

namespace {

struct Pivot {
    int row;
    int col;
};

Pivot findPivot(const Matrix& m, int k) {
    const Matrix block = subMatrix(m, k, k, m.rows(), m.cols());
    const int index = indexOfMaxMagnitude(block);
    return {k + index / block.cols(), k + index % block.cols()};
}

void swapRows(Matrix& m, int a, int b) {
    if (a != b)
        std::swap_ranges(m.rowSpan(a).begin(), m.rowSpan(a).end(), m.rowSpan(b).begin());
}

void swapCols(Matrix& m, int a, int b) {
    for (int i = 0; a != b && i < m.rows(); ++i)
        std::swap(m(i, a), m(i, b));
}

// One exchange step of the elimination; the pivot stands at (k, k) and may be zero.
void eliminate(Matrix& m, int k) {
    const double p = 1.0 / m(k, k);
    for (double& x : m.rowSpan(k))
        x *= p;
    for (int i = 0; i < m.rows(); ++i) {
        for (int j = 0; i != k && j < m.cols(); ++j) {
            if (j != k)
                m(i, j) -= m(k, j) * m(i, k);
        }
    }
    for (int i = 0; i < m.rows(); ++i)
        m(i, k) = -(p * m(i, k));
    m(k, k) = p;
}

}  // namespace

Matrix inverse(const Matrix& m) {
    refuseUnlessSquare(m);
    const int n = m.rows();
    Matrix result = m;
    std::vector<Pivot> pivots;
    pivots.reserve(static_cast<std::size_t>(n));
    for (int k = 0; k < n; ++k) {
        pivots.push_back(findPivot(result, k));
        swapRows(result, pivots.back().row, k);
        swapCols(result, pivots.back().col, k);
        eliminate(result, k);
    }
    for (int k = n - 1; k >= 0; --k) {
        const Pivot pivot = pivots[static_cast<std::size_t>(k)];
        swapRows(result, k, pivot.col);
        swapCols(result, k, pivot.row);
    }
    return result;
}

}  // namespace tavoren
