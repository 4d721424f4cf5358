#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

#include "common/GuardedBy.h"
#include "platform/posix/SystemObject.h"

namespace tavoren {

using Deadline = std::chrono::steady_clock::time_point;

/// The end of a wait of so many milliseconds from now; of INFINITE, the end of time.
Deadline deadlineIn(DWORD milliseconds);

/// A transfer that is under way; the waiting thread moves it on.
class Transfer {
  public:
    Transfer() = default;
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    virtual ~Transfer() = default;

    /// Tries until it has ended, well or not; false at the deadline.
    virtual bool finish(Deadline deadline) = 0;

    bool ended = false;
    DWORD error = 0;        ///< of an ended transfer; 0 is success
    DWORD transferred = 0;  ///< bytes
};

/// An event of the system. One that a transfer was started with is set when the transfer ends.
struct Event final : SystemObject {
    explicit Event(bool manual, bool initially) : manualReset(manual), isSet(initially) {}

    void set();
    void reset();
    bool wait(Deadline deadline);

    const bool manualReset;
    std::shared_ptr<Transfer> transfer;  ///< belongs to the thread that started it

  private:
    std::mutex lock;
    std::condition_variable_any condition;
    bool isSet TAVOREN_GUARDED_BY(lock);
};

}  // namespace tavoren
