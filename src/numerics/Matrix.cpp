#include "numerics/Matrix.h"

#include <algorithm>

#include "common/MathException.h"

namespace tavoren {

namespace {

std::size_t countOf(int rows, int cols) {
    if (rows < 0 || cols < 0)
        throw MathException("Negative size of a matrix");
    return static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols);
}

void refuseMissingRow(const Matrix& m, int i) {
    if (i < 0 || i >= m.rows())
        throw MathException("The matrix has no such row");
}

}  // namespace

Matrix::Matrix(int rows, int cols) : rowCount(rows), colCount(cols), numbers(countOf(rows, cols)) {}

Matrix::Matrix(int rows, int cols, const Vector& values) : Matrix(rows, cols) {
    const auto count = static_cast<std::ptrdiff_t>(numbers.size());
    if (values.end() - values.begin() < count)
        throw MathException("Too few values for the matrix");
    std::copy_n(values.begin(), count, numbers.data());
}

void Matrix::setRow(int i, const Vector& values) {
    refuseMissingRow(*this, i);
    if (values.size() != colCount)
        throw MathException("Wrong length of a matrix row");
    std::copy(values.begin(), values.end(), rowSpan(i).begin());
}

void Matrix::setRows(int rows) {
    numbers.grow(countOf(rows, colCount));
    rowCount = rows;
}

void refuseUnless3x3(const Matrix& m) {
    if (m.rows() != 3 || m.cols() != 3)
        throw MathException("Matrix is not 3x3");
}

void refuseUnlessSquare(const Matrix& m) {
    if (m.rows() != m.cols())
        throw MathException("Matrix is not square");
}

Matrix identity(int n) {
    Matrix result(n, n);
    for (int i = 0; i < n; ++i)
        result(i, i) = 1.0;
    return result;
}

Matrix columnMatrix(const Vector& v) {
    return {v.size(), 1, v};
}

Matrix fromRows(std::span<const Vector> rows) {
    Matrix result(static_cast<int>(rows.size()), rows.empty() ? 0 : rows.front().size());
    for (int i = 0; i < result.rows(); ++i)
        result.setRow(i, rows[static_cast<std::size_t>(i)]);
    return result;
}

Matrix fromRows(std::initializer_list<Vector> rows) {
    return fromRows(std::span(rows.begin(), rows.size()));
}

Vector row(const Matrix& m, int i) {
    refuseMissingRow(m, i);
    return Vector(m.rowSpan(i));
}

Vector rowToVector(const Matrix& m) {
    return row(m, 0);
}

Matrix subMatrix(const Matrix& m, int r0, int c0, int r1, int c1) {
    const bool inside =
        r0 >= 0 && r0 <= r1 && r1 <= m.rows() && c0 >= 0 && c0 <= c1 && c1 <= m.cols();
    if (!inside)
        throw MathException("The block is not inside the matrix");
    Matrix result(r1 - r0, c1 - c0);
    for (int i = r0; i < r1; ++i) {
        for (int j = c0; j < c1; ++j)
            result(i - r0, j - c0) = m(i, j);
    }
    return result;
}

Matrix transpose(const Matrix& m) {
    Matrix result(m.cols(), m.rows());
    for (int i = 0; i < m.rows(); ++i) {
        for (int j = 0; j < m.cols(); ++j)
            result(j, i) = m(i, j);
    }
    return result;
}

std::string logText(const Matrix& m) {
    std::string text;
    for (int i = 0; i < m.rows(); ++i)
        text += logText(row(m, i));
    return text;
}

std::wstring wideListText(const Matrix& m) {
    std::wstring text;
    for (int i = 0; i < m.rows(); ++i)
        text += wideListText(row(m, i));
    return text;
}

}  // namespace tavoren
