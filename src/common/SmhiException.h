#pragma once

#include <stdexcept>
#include <string>

namespace tavoren {

/// A failure of the firmware link; the text carries the prefix "SMHI Error: ".
class SmhiException : public std::runtime_error {
  public:
    explicit SmhiException(const std::string& text) : std::runtime_error("SMHI Error: " + text) {}
};

}  // namespace tavoren
