#pragma once

#include "firmware/SyncObject.h"
#include "platform/Platform.h"

namespace tavoren {

/// An event of the system that stays set until it is reset. Construction and `wait` throw
/// `std::runtime_error` with the system's error number as its text.
class SyncObjectWin final : public SyncObject {
  public:
    SyncObjectWin();
    ~SyncObjectWin() override;

    void wait() override;
    void reset() override;
    void set() override;

  private:
    HANDLE event;
};

}  // namespace tavoren
