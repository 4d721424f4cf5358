#include "simulator/StopSignal.h"

#include <initializer_list>

namespace tavoren::simulator {

namespace {

volatile std::sig_atomic_t signalArrived = 0;

void noteSignal(int) {
    signalArrived = 1;
}

}  // namespace

StopSignal::StopSignal() {
    sigset_t held;
    sigemptyset(&held);
    struct sigaction action {};
    action.sa_handler = noteSignal;
    sigemptyset(&action.sa_mask);
    for (const int number : {SIGINT, SIGTERM}) {
        sigaddset(&held, number);
        sigaction(number, &action, nullptr);
    }
    sigprocmask(SIG_BLOCK, &held, &before);
    sigdelset(&before, SIGINT);
    sigdelset(&before, SIGTERM);
}

StopSignal::~StopSignal() {
    sigprocmask(SIG_SETMASK, &before, nullptr);
}

bool StopSignal::arrived() {
    return signalArrived != 0;
}

}  // namespace tavoren::simulator
