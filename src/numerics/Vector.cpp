#include "numerics/Vector.h"

#include <algorithm>
#include <cmath>

#include "common/MathException.h"
#include "numerics/LookUp.h"

namespace tavoren {

namespace {

std::size_t checkedSize(int size) {
    if (size < 0)
        throw MathException("Negative size of a vector");
    return static_cast<std::size_t>(size);
}

void refuseShorter(const Vector& b, const Vector& a) {
    if (b.size() < a.size())
        throw MathException("Error while multiplying vectors");
}

template <typename Operation>
Vector mapped(const Vector& a, Operation operation) {
    Vector result(a.size());
    std::transform(a.begin(), a.end(), result.begin(), operation);
    return result;
}

}  // namespace

Vector::Vector(int size) : numbers(checkedSize(size)) {}

Vector operator-(const Vector& a, const Vector& b) {
    if (a.size() < b.size())
        throw MathException("Error while substructing vector");
    Vector result(b.size());
    for (int i = 0; i < b.size(); ++i)
        result[i] = a[i] - b[i];
    return result;
}

Vector operator+(const Vector& a, const Vector& b) {
    Vector result = a;
    result += b;
    return result;
}

Vector operator*(const Vector& a, double s) {
    return mapped(a, [s](double x) { return x * s; });
}

Vector operator/(const Vector& a, double s) {
    return a * (1.0 / s);
}

Vector& operator+=(Vector& a, const Vector& b) {
    if (a.size() != b.size())
        throw MathException("Error while adding vector");
    for (int i = 0; i < a.size(); ++i)
        a[i] += b[i];
    return a;
}

Vector& operator-=(Vector& a, const Vector& b) {
    return a = a - b;
}

Vector subtractScalar(const Vector& a, double s) {
    return mapped(a, [s](double x) { return x - s; });
}

double squaredNorm(const Vector& a) {
    return dot(a, a);
}

double norm(const Vector& a) {
    return std::sqrt(squaredNorm(a));
}

Vector normalized(const Vector& a) {
    return a / norm(a);
}

double sum(const Vector& a) {
    double total = 0.0;
    for (const double x : a)
        total += x;
    return total;
}

double dot(const Vector& a, const Vector& b) {
    refuseShorter(b, a);
    double total = 0.0;
    for (int i = 0; i < a.size(); ++i)
        total += a[i] * b[i];
    return total;
}

Vector vector3CrossProduct(const Vector& a, const Vector& b) {
    if (a.size() != 3 || b.size() != 3)
        throw MathException("Error from vector3CrossProduct, expected vector length was 3");
    return {a[1] * b[2] - b[1] * a[2], a[2] * b[0] - b[2] * a[0], b[1] * a[0] - a[1] * b[0]};
}

Vector elementProduct(const Vector& a, const Vector& b) {
    refuseShorter(b, a);
    Vector result(a.size());
    for (int i = 0; i < a.size(); ++i)
        result[i] = a[i] * b[i];
    return result;
}

Vector elementSqrt(const Vector& a) {
    return mapped(a, [](double x) { return std::sqrt(x); });
}

Vector elementAbs(const Vector& a) {
    return mapped(a, [](double x) { return std::abs(x); });
}

double maxAbs(const Vector& a) {
    double largest = 0.0;
    for (const double x : a)
        largest = std::max(largest, std::abs(x));
    return largest;
}

int indexOfMaxMagnitude(const Vector& a) {
    int index = 0;
    double largest = 0.0;
    for (int i = 0; i < a.size(); ++i) {
        if (a[i] * a[i] > largest) {
            largest = a[i] * a[i];
            index = i;
        }
    }
    return index;
}

int getIndexOfAbsoluteMax(const Vector& a) {
    if (a.size() != 3)
        throw MathException("Error from getIndexOfAbsoluteMax, expected a 3X1 matrix");
    const int candidate = std::abs(a[1]) > std::abs(a[0]) ? 1 : 0;
    return std::abs(a[2]) > std::abs(a[candidate]) ? 2 : candidate;
}

double angleBetween(const Vector& a, const Vector& b) {
    const double cosine = dot(a, b) / (norm(a) * norm(b));
    return acos_lut(std::clamp(cosine, -1.0, 1.0));
}

Vector ones3() {
    return {1.0, 1.0, 1.0};
}

}  // namespace tavoren
