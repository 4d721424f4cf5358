#pragma once

namespace tavoren {

/// Gives each standard stream that the process was started without the null device. Otherwise the
/// first files of the run would take the numbers of those streams, and with them what is printed.
/// REQUIRES: called by `main` before anything is opened.
void fillStandardStreams();

}  // namespace tavoren
