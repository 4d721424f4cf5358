#pragma once

#include <stdexcept>
#include <string>

namespace tavoren {

/// A sequence of samples that cannot go on.
class SamplingException : public std::runtime_error {
  public:
    explicit SamplingException(const std::string& text) : std::runtime_error(text) {}
};

}  // namespace tavoren
