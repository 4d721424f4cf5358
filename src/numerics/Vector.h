#pragma once

#include <cassert>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>

#include "numerics/NumberBuffer.h"

namespace tavoren {

/// A list of doubles with the arithmetic of a vector; copies are deep.
class Vector {
  public:
    Vector() = default;
    /// Zeros. Throws `MathException` for a negative size.
    explicit Vector(int size);
    Vector(std::initializer_list<double> values)
        : numbers(std::span(values.begin(), values.size())) {}
    explicit Vector(std::span<const double> values) : numbers(values) {}

    int size() const { return static_cast<int>(numbers.size()); }
    bool empty() const { return numbers.size() == 0; }

    /// REQUIRES: 0 <= index < size().
    double operator[](int index) const {
        assert(index >= 0 && index < size());
        return numbers.data()[index];
    }
    double& operator[](int index) {
        assert(index >= 0 && index < size());
        return numbers.data()[index];
    }

    const double* begin() const { return numbers.data(); }
    const double* end() const { return begin() + numbers.size(); }
    double* begin() { return numbers.data(); }
    double* end() { return begin() + numbers.size(); }

  private:
    NumberBuffer<4> numbers;
};

// No operation changes an operand but `+=` and `-=`. Sums run from 0.0 over ascending indices.

/// Of the size of `b`; throws `MathException` when `a` is shorter, its further elements are
/// dropped.
Vector operator-(const Vector& a, const Vector& b);
/// Throws `MathException` for different sizes.
Vector operator+(const Vector& a, const Vector& b);
Vector operator*(const Vector& a, double s);
/// Every element times the reciprocal 1.0 / `s`.
Vector operator/(const Vector& a, double s);
/// a = a + b, with the same refusal.
Vector& operator+=(Vector& a, const Vector& b);
/// a = a - b, with the same refusal.
Vector& operator-=(Vector& a, const Vector& b);

/// Every element minus `s`.
Vector subtractScalar(const Vector& a, double s);
double squaredNorm(const Vector& a);
double norm(const Vector& a);
/// `a` / norm; a zero vector gives non-finite elements.
Vector normalized(const Vector& a);
double sum(const Vector& a);
/// Over the size of `a`; throws `MathException` when `b` is shorter.
double dot(const Vector& a, const Vector& b);
/// a x b, right-handed; throws `MathException` unless both have 3 elements.
Vector vector3CrossProduct(const Vector& a, const Vector& b);
/// Of the size of `a`; throws `MathException` when `b` is shorter.
Vector elementProduct(const Vector& a, const Vector& b);
Vector elementSqrt(const Vector& a);
Vector elementAbs(const Vector& a);
/// The largest absolute value, 0.0 for an empty vector.
double maxAbs(const Vector& a);
/// Index of the largest square, the first of equal ones; 0 for zeros and for an empty vector.
int indexOfMaxMagnitude(const Vector& a);
/// Axis 0, 1 or 2 of the largest absolute value, the first of equal ones; throws `MathException`
/// unless there are 3 elements.
int getIndexOfAbsoluteMax(const Vector& a);
/// Radians, with the grain of `acos_lut`; throws `MathException` when either vector is zero.
double angleBetween(const Vector& a, const Vector& b);
/// (1, 1, 1).
Vector ones3();

/// Log form: each element right-aligned in 10 columns and a blank behind it, then a line end.
std::string logText(const Vector& a);
std::wstring wideLogText(const Vector& a);
/// File form: "1.000000,2.000000;", empty for an empty vector.
std::string listText(const Vector& a);
std::wstring wideListText(const Vector& a);

}  // namespace tavoren
