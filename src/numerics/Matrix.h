#pragma once

#include <cassert>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>

#include "numerics/NumberBuffer.h"
#include "numerics/Vector.h"

namespace tavoren {

/// A matrix of doubles, row-major; copies are deep.
class Matrix {
  public:
    Matrix() = default;
    /// Zeros. Throws `MathException` for a negative size.
    Matrix(int rows, int cols);
    /// Filled row by row from `values`; throws `MathException` when there are too few.
    Matrix(int rows, int cols, const Vector& values);

    int rows() const { return rowCount; }
    int cols() const { return colCount; }

    /// REQUIRES: 0 <= i < rows(), 0 <= j < cols().
    double operator()(int i, int j) const { return numbers.data()[position(i, j)]; }
    double& operator()(int i, int j) { return numbers.data()[position(i, j)]; }

    /// REQUIRES: 0 <= i < rows().
    std::span<const double> rowSpan(int i) const { return {numbers.data() + start(i), width()}; }
    std::span<double> rowSpan(int i) { return {numbers.data() + start(i), width()}; }
    /// Throws `MathException` unless row `i` exists and `values` has one element for each column.
    void setRow(int i, const Vector& values);
    /// Changes the number of rows. Rows cut off stay stored and come back with their values when
    /// the matrix grows again; rows that never were are zeros.
    void setRows(int rows);

  private:
    std::size_t width() const { return static_cast<std::size_t>(colCount); }
    std::size_t start(int i) const {
        assert(i >= 0 && i < rowCount);
        return static_cast<std::size_t>(i) * width();
    }
    std::size_t position(int i, int j) const {
        assert(j >= 0 && j < colCount);
        return start(i) + static_cast<std::size_t>(j);
    }

    int rowCount = 0;
    int colCount = 0;
    NumberBuffer<9> numbers;
};

/// Throws `MathException` for any other shape.
void refuseUnless3x3(const Matrix& m);
/// Throws `MathException` for any other shape.
void refuseUnlessSquare(const Matrix& m);

Matrix identity(int n);
/// `v` as the only column.
Matrix columnMatrix(const Vector& v);
/// One row for each vector; throws `MathException` unless all have the size of the first.
Matrix fromRows(std::span<const Vector> rows);
Matrix fromRows(std::initializer_list<Vector> rows);
/// Row `i`; throws `MathException` if there is none.
Vector row(const Matrix& m, int i);
/// The first row; throws `MathException` if there is none.
Vector rowToVector(const Matrix& m);
/// Rows r0 up to before r1, columns c0 up to before c1; throws `MathException` outside of `m`.
Matrix subMatrix(const Matrix& m, int r0, int c0, int r1, int c1);
Matrix transpose(const Matrix& m);

// Sums of products run from 0.0 over ascending indices. Operands of sizes that do not fit raise
// `MathException`.

Matrix operator*(const Matrix& a, const Matrix& b);
Vector operator*(const Matrix& m, const Vector& v);
/// `v` as a row vector: element j is the sum over i of v[i] m(i, j).
Vector operator*(const Vector& v, const Matrix& m);
Matrix operator*(const Matrix& m, double s);
/// Every element times the reciprocal 1.0 / `s`.
Matrix operator/(const Matrix& m, double s);
Matrix operator-(const Matrix& a, const Matrix& b);
/// transpose(d) * d.
Matrix gramMatrix(const Matrix& d);

/// Sum of the diagonal; throws `MathException` unless square.
double trace(const Matrix& m);
/// Expansion along the first row; throws `MathException` unless 3 by 3.
double determinant3(const Matrix& m);
/// Adjugate over determinant; throws `MathException` unless 3 by 3 with a determinant other than 0.
Matrix inverse3(const Matrix& m);
/// Gauss-Jordan elimination in place with full pivoting. A singular matrix gives non-finite
/// elements; throws `MathException` unless square.
Matrix inverse(const Matrix& m);
/// Square, and every off-diagonal element smaller than the smallest (signed) diagonal one by 1e10.
bool isNearlyDiagonal(const Matrix& m);
/// Row-major index of the entry with the largest square, the first of equal ones; 0 for zeros.
int indexOfMaxMagnitude(const Matrix& m);
/// The entry of the largest square with its sign; 0.0 for an empty matrix.
double maxMagnitudeEntry(const Matrix& m);

/// The rows in order, each in the log form of a vector.
std::string logText(const Matrix& m);
/// The rows in order, each in the file form of a vector.
std::wstring wideListText(const Matrix& m);

}  // namespace tavoren
