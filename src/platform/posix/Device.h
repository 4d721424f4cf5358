#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/posix/Event.h"

namespace tavoren {

/// What a device and its client say to each other, by the first byte of a packet.
enum class PacketKind : std::uint8_t {
    control = 1,
    message = 2,
    failure = 3,  ///< from the device: 4 bytes of error number
};

/// The connection to a device.
struct Device final : SystemObject {
    explicit Device(int opened) : socket(opened) {}
    ~Device() override;

    const int socket;
};

/// Sends one packet whole.
class SendTransfer final : public Transfer {
  public:
    SendTransfer(std::shared_ptr<Device> device, PacketKind kind,
                 std::span<const std::uint8_t> payload);
    bool finish(Deadline deadline) override;

  private:
    const std::shared_ptr<Device> device;
    std::vector<std::uint8_t> packet;
};

/// Takes one packet of a kind; any other one fails the transfer, and so does one that is too long.
class ReceiveTransfer final : public Transfer {
  public:
    /// `into` stays the caller's and is written before the transfer ends.
    ReceiveTransfer(std::shared_ptr<Device> device, PacketKind kind, std::span<std::uint8_t> into);
    bool finish(Deadline deadline) override;

  private:
    DWORD take(std::span<const std::uint8_t> packet);

    const std::shared_ptr<Device> device;
    const PacketKind kind;
    const std::span<std::uint8_t> into;
    std::vector<std::uint8_t> packet;
};

}  // namespace tavoren
