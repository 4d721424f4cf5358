#pragma once

namespace tavoren {

// The only sine, cosine and arc cosine of the system. Steps of 1e-4 (radians, or cosine), values of
// six decimals, no interpolation: all sensor mathematics inherits this grain. Any thread may call.

/// Sine of `x` radians; throws `MathException` for a non-finite `x` or one beyond 1e9 in size.
double sin_lut(double x);
/// Arc cosine in radians; throws `MathException` for an `x` outside of -1 to 1.
double acos_lut(double x);
/// Cosine of `t` radians, as the sine of the complement.
inline double cosineOf(double t) {
    return sin_lut(1.5707963267948966 - t);
}

}  // namespace tavoren
