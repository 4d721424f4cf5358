#include "platform/posix/Event.h"

namespace tavoren {

Deadline deadlineIn(DWORD milliseconds) {
    if (milliseconds == INFINITE)
        return Deadline::max();
    return std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
}

void Event::set() {
    const std::scoped_lock hold(lock);
    isSet = true;
    condition.notify_all();
}

void Event::reset() {
    const std::scoped_lock hold(lock);
    isSet = false;
}

bool Event::wait(Deadline deadline) {
    if (transfer && !transfer->ended) {
        if (!transfer->finish(deadline))
            return false;
        set();
    }
    const std::scoped_lock hold(lock);
    const auto signalled = [this]() TAVOREN_REQUIRES(lock) { return isSet; };
    if (deadline == Deadline::max())
        condition.wait(lock, signalled);
    else if (!condition.wait_until(lock, deadline, signalled))
        return false;
    isSet = manualReset;
    return true;
}

HANDLE CreateEventW(void*, BOOL manualReset, BOOL initialState, const wchar_t*) {
    return openObject(std::make_shared<Event>(manualReset != FALSE, initialState != FALSE));
}

BOOL SetEvent(HANDLE event) {
    const auto object = openedAs<Event>(event);
    if (!object)
        return FALSE;
    object->set();
    return TRUE;
}

BOOL ResetEvent(HANDLE event) {
    const auto object = openedAs<Event>(event);
    if (!object)
        return FALSE;
    object->reset();
    return TRUE;
}

DWORD WaitForSingleObject(HANDLE event, DWORD milliseconds) {
    const auto object = openedAs<Event>(event);
    if (!object)
        return WAIT_FAILED;
    return object->wait(deadlineIn(milliseconds)) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

}  // namespace tavoren
