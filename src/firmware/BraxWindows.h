#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <string>

#include "firmware/BraxBase.h"
#include "platform/Platform.h"
#include "platform/TimeLimits.h"

namespace tavoren {

/// The channel over the bus driver's device, by overlapped transfers.
class BraxWindows final : public BraxBase {
  public:
    /// `limit` is how long a transfer may take.
    explicit BraxWindows(std::chrono::milliseconds limit = transferLimit) : waitLimit(limit) {}
    /// Leaves the device as it is: who connects closes.
    ~BraxWindows() override = default;

    void Connect() override;
    void Write(const ByteString& message) override;
    ByteString Read(std::size_t maximumLength) override;
    void Close() override;

  private:
    void findDevice();
    void openDevice();
    void connectToClient();
    void closeQuietly() noexcept;

    GUID deviceInterfaceGuid{
        0xAA1DCD67, 0x308F, 0x4DAA, {0xA2, 0xB9, 0x27, 0x82, 0xD4, 0x70, 0x3C, 0x5D}};
    /// {BB579A2E-CC54-4450-B1D0-5E7520DCAD25} in the byte order of the wire.
    std::array<std::uint8_t, 16> clientGuid{0x2E, 0x9A, 0x57, 0xBB, 0x54, 0xCC, 0x50, 0x44,
                                            0xB1, 0xD0, 0x5E, 0x75, 0x20, 0xDC, 0xAD, 0x25};
    std::wstring devicePath;
    HANDLE handle = INVALID_HANDLE_VALUE;
    std::chrono::milliseconds waitLimit;
};

}  // namespace tavoren
