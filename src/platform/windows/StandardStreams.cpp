#include "platform/StandardStreams.h"

namespace tavoren {

/// The C library never gives the numbers of the standard streams to another file.
void fillStandardStreams() {}

}  // namespace tavoren
