#pragma once

#include <stdexcept>
#include <string>

namespace tavoren {

/// A command line that asks for something the tool does not do.
class CmdLineException : public std::runtime_error {
  public:
    explicit CmdLineException(const std::string& text) : std::runtime_error(text) {}
};

}  // namespace tavoren
