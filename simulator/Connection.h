#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "firmware/Wire.h"
#include "platform/posix/Device.h"

namespace tavoren::simulator {

/// A client's connection to the hub. Packets that the client does not take yet wait their turn.
class Connection {
  public:
    struct Packet {
        PacketKind kind;
        ByteString payload;
    };

    explicit Connection(int opened) : socket(opened) {}
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    int descriptor() const { return socket; }
    /// False once the client is gone.
    bool isOpen() const { return open; }
    bool isSending() const { return !waiting.empty(); }

    /// A packet that has arrived; empty if there is none.
    std::optional<Packet> receive();
    void send(PacketKind kind, ByteSpan payload);
    /// Sends what waits, as far as the client takes it.
    void flush();
    /// Ends the connection; what waits is lost.
    void shutDown();

    bool isBound = false;  ///< it has opened the firmware client

  private:
    const int socket;
    bool open = true;
    std::deque<ByteString> waiting;
};

}  // namespace tavoren::simulator
