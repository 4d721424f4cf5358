#pragma once

namespace tavoren {

/// Lets `handler` answer Ctrl-C (`SIGINT`) on a thread of its own, where it may take locks and
/// print. When it returns the process ends at once with the signal number as its exit code, without
/// any clean-up; a second Ctrl-C while it runs ends the process as well.
/// REQUIRES: called once, by `main`, before any other thread exists.
void installInterruptHandler(void (*handler)(int signal));

}  // namespace tavoren
