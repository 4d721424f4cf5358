#include "platform/Interrupt.h"

#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <thread>

namespace tavoren {

namespace {

sigset_t interruptSet() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    return set;
}

[[noreturn]] void awaitInterrupt(void (*handler)(int)) {
    const sigset_t set = interruptSet();
    int signal = SIGINT;
    while (sigwait(&set, &signal) != 0)
        continue;
    std::signal(SIGINT, SIG_DFL);
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    handler(signal);
    _exit(signal);
}

}  // namespace

void installInterruptHandler(void (*handler)(int)) {
    const sigset_t set = interruptSet();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);  // later threads inherit the mask
    std::thread(awaitInterrupt, handler).detach();
}

}  // namespace tavoren
