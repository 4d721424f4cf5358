#pragma once

namespace tavoren {

/// An event that one thread waits for and another sets.
class SyncObject {
  public:
    SyncObject() = default;
    SyncObject(const SyncObject&) = delete;
    SyncObject& operator=(const SyncObject&) = delete;
    virtual ~SyncObject() = default;

    /// Blocks until the event is set, without a limit.
    virtual void wait() = 0;
    virtual void reset() = 0;
    virtual void set() = 0;
};

}  // namespace tavoren
