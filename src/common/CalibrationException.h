#pragma once

#include <stdexcept>
#include <string>

namespace tavoren {

/// A failure of a run or of a file; the text is for the operator.
class CalibrationException : public std::runtime_error {
  public:
    explicit CalibrationException(const std::string& text) : std::runtime_error(text) {}
};

}  // namespace tavoren
