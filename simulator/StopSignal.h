#pragma once

#include <csignal>

namespace tavoren::simulator {

/// Turns Ctrl-C and SIGTERM into a question. While it exists both are held back but during a wait
/// with its mask, which they end. One object at a time.
class StopSignal {
  public:
    StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;
    ~StopSignal();

    static bool arrived();
    /// The mask of a wait that lets the signals in.
    const sigset_t& openMask() const { return before; }

  private:
    sigset_t before{};
};

}  // namespace tavoren::simulator
