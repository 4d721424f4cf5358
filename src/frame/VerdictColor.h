#pragma once

#include <cstdint>

namespace tavoren {

// The colours by which the operator tells a pass from a failure. Main thread only.

/// Remembers the console's text attribute and sets another one.
void setConsoleColor(std::uint16_t attribute);
/// Sets the remembered attribute back.
void restoreConsoleColor();
/// Bright green if `good`, else bright red.
void setVerdictColor(bool good);

/// The verdict's colour for the text printed in its scope.
class VerdictColor {
  public:
    explicit VerdictColor(bool good) { setVerdictColor(good); }
    ~VerdictColor() { restoreConsoleColor(); }
    VerdictColor(const VerdictColor&) = delete;
    VerdictColor& operator=(const VerdictColor&) = delete;
};

}  // namespace tavoren
