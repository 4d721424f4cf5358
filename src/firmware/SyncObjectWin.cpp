#include "firmware/SyncObjectWin.h"

#include <stdexcept>
#include <string>

namespace tavoren {

namespace {

[[noreturn]] void throwLastError() {
    throw std::runtime_error(std::to_string(GetLastError()));
}

}  // namespace

SyncObjectWin::SyncObjectWin() : event(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    if (!event)
        throwLastError();
}

SyncObjectWin::~SyncObjectWin() {
    CloseHandle(event);
}

void SyncObjectWin::wait() {
    if (WaitForSingleObject(event, INFINITE) != WAIT_OBJECT_0)
        throwLastError();
}

void SyncObjectWin::reset() {
    ResetEvent(event);
}

void SyncObjectWin::set() {
    SetEvent(event);
}

}  // namespace tavoren
