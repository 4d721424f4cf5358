#include "platform/Interrupt.h"

#include <process.h>

#include <csignal>

namespace tavoren {

namespace {

void (*installedHandler)(int) = nullptr;

/// Runs on a thread of its own. The system has put back the default action before the call, so that
/// a second Ctrl-C ends the process.
void answerInterrupt(int signal) {
    installedHandler(signal);
    _exit(signal);
}

}  // namespace

void installInterruptHandler(void (*handler)(int)) {
    installedHandler = handler;
    std::signal(SIGINT, answerInterrupt);
}

}  // namespace tavoren
