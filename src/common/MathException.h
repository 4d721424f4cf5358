#pragma once

#include <stdexcept>
#include <string>

namespace tavoren {

/// A failure of the numerics or an unknown unit; the text carries the prefix "Math Error: ".
class MathException : public std::runtime_error {
  public:
    explicit MathException(const std::string& text) : std::runtime_error("Math Error: " + text) {}
};

}  // namespace tavoren
