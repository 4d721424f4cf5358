#include "platform/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace tavoren {

void fillStandardStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) == -1)
            ::open("/dev/null", O_RDWR);  // gets the lowest free number, which is this one
}

}  // namespace tavoren
