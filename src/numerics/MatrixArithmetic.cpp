#include <algorithm>
#include <cmath>

#include "common/MathException.h"
#include "numerics/Matrix.h"

namespace tavoren {

namespace {

void refuseUnlessFitting(bool sizesFit) {
    if (!sizesFit)
        throw MathException(
            "Wrong matrices. The number of columns in the first matrix should be equal to the "
            "number of rows in the second");
}

}  // namespace

Matrix operator*(const Matrix& a, const Matrix& b) {
    refuseUnlessFitting(a.cols() == b.rows());
    Matrix result(a.rows(), b.cols());
    for (int i = 0; i < a.rows(); ++i) {
        for (int k = 0; k < a.cols(); ++k) {
            for (int j = 0; j < b.cols(); ++j)
                result(i, j) += a(i, k) * b(k, j);
        }
    }
    return result;
}

Vector operator*(const Matrix& m, const Vector& v) {
    refuseUnlessFitting(m.cols() == v.size());
    Vector result(m.rows());
    for (int i = 0; i < m.rows(); ++i) {
        for (int j = 0; j < m.cols(); ++j)
            result[i] += m(i, j) * v[j];
    }
    return result;
}

Vector operator*(const Vector& v, const Matrix& m) {
    refuseUnlessFitting(v.size() == m.rows());
    Vector result(m.cols());
    for (int i = 0; i < m.rows(); ++i) {
        for (int j = 0; j < m.cols(); ++j)
            result[j] += v[i] * m(i, j);
    }
    return result;
}

Matrix operator*(const Matrix& m, double s) {
    Matrix result(m.rows(), m.cols());
    for (int i = 0; i < m.rows(); ++i) {
        for (int j = 0; j < m.cols(); ++j)
            result(i, j) = m(i, j) * s;
    }
    return result;
}

Matrix operator/(const Matrix& m, double s) {
    return m * (1.0 / s);
}

Matrix operator-(const Matrix& a, const Matrix& b) {
    refuseUnlessFitting(a.rows() == b.rows() && a.cols() == b.cols());
    Matrix result(a.rows(), a.cols());
    for (int i = 0; i < a.rows(); ++i) {
        for (int j = 0; j < a.cols(); ++j)
            result(i, j) = a(i, j) - b(i, j);
    }
    return result;
}

Matrix gramMatrix(const Matrix& d) {
    Matrix result(d.cols(), d.cols());
    for (int k = 0; k < d.rows(); ++k) {
        for (int i = 0; i < d.cols(); ++i) {
            for (int j = i; j < d.cols(); ++j)
                result(i, j) += d(k, i) * d(k, j);
        }
    }
    for (int i = 0; i < d.cols(); ++i) {
        for (int j = i + 1; j < d.cols(); ++j)
            result(j, i) = result(i, j);
    }
    return result;
}

double trace(const Matrix& m) {
    refuseUnlessSquare(m);
    double total = 0.0;
    for (int i = 0; i < m.rows(); ++i)
        total += m(i, i);
    return total;
}

double determinant3(const Matrix& m) {
    refuseUnless3x3(m);
    return m(0, 0) * (m(1, 1) * m(2, 2) - m(1, 2) * m(2, 1)) -
           m(0, 1) * (m(1, 0) * m(2, 2) - m(1, 2) * m(2, 0)) +
           m(0, 2) * (m(1, 0) * m(2, 1) - m(1, 1) * m(2, 0));
}

Matrix inverse3(const Matrix& m) {
    const double determinant = determinant3(m);
    if (determinant == 0.0)
        throw MathException("Failed to invert matrix");
    // Indices that wrap around give the cofactors with their signs.
    const auto cofactor = [&m](int i, int j) {
        const int i1 = (i + 1) % 3;
        const int i2 = (i + 2) % 3;
        const int j1 = (j + 1) % 3;
        const int j2 = (j + 2) % 3;
        return m(i1, j1) * m(i2, j2) - m(i1, j2) * m(i2, j1);
    };
    Matrix adjugate(3, 3);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            adjugate(j, i) = cofactor(i, j);
    }
    return adjugate / determinant;
}

bool isNearlyDiagonal(const Matrix& m) {
    if (m.rows() != m.cols())
        return false;
    double smallest = m.rows() == 0 ? 0.0 : m(0, 0);
    for (int i = 1; i < m.rows(); ++i)
        smallest = std::min(smallest, m(i, i));
    for (int i = 0; i < m.rows(); ++i) {
        for (int j = 0; j < m.cols(); ++j) {
            if (i != j && std::abs(smallest / m(i, j)) < 1e10)
                return false;
        }
    }
    return true;
}

int indexOfMaxMagnitude(const Matrix& m) {
    int index = 0;
    double largest = 0.0;
    for (int i = 0; i < m.rows(); ++i) {
        for (int j = 0; j < m.cols(); ++j) {
            if (m(i, j) * m(i, j) > largest) {
                largest = m(i, j) * m(i, j);
                index = i * m.cols() + j;
            }
        }
    }
    return index;
}

double maxMagnitudeEntry(const Matrix& m) {
    if (m.rows() == 0 || m.cols() == 0)
        return 0.0;
    const int index = indexOfMaxMagnitude(m);
    return m(index / m.cols(), index % m.cols());
}

}  // namespace tavoren
