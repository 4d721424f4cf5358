#pragma once

#include <cstddef>

#include "common/ByteString.h"

namespace tavoren {

/// The message channel to the firmware. One thread at a time uses it; all failures are
/// `SmhiException`. A failed transfer ends the connection.
class BraxBase {
  public:
    BraxBase() = default;
    BraxBase(const BraxBase&) = delete;
    BraxBase& operator=(const BraxBase&) = delete;
    virtual ~BraxBase() = default;

    /// A channel that is connected stays so.
    virtual void Connect() = 0;
    /// Sends one message.
    virtual void Write(const ByteString& message) = 0;
    /// The next message, exactly as long as it arrived.
    virtual ByteString Read(std::size_t maximumLength) = 0;
    /// Does nothing on a closed channel.
    virtual void Close() = 0;
};

}  // namespace tavoren
