#include "simulator/Connection.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace tavoren::simulator {

namespace {

constexpr std::size_t longestPacket = 70000;  // a record of 64 KiB and its wrapping

bool mayComeLater() {
    return errno == EAGAIN || errno == EINTR;
}

}  // namespace

Connection::~Connection() {
    ::close(socket);
}

std::optional<Connection::Packet> Connection::receive() {
    ByteString bytes(longestPacket);
    const ssize_t count = ::recv(socket, bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (count <= 0) {
        open = open && count < 0 && mayComeLater();
        return std::nullopt;
    }
    bytes.resize(static_cast<std::size_t>(count));
    const auto kind = static_cast<PacketKind>(bytes.front());
    bytes.erase(bytes.begin());
    return Packet{kind, std::move(bytes)};
}

void Connection::send(PacketKind kind, ByteSpan payload) {
    waiting.push_back(WireWriter().number(static_cast<std::uint8_t>(kind)).data(payload).take());
    flush();
}

void Connection::flush() {
    while (open && !waiting.empty()) {
        const ByteString& packet = waiting.front();
        if (::send(socket, packet.data(), packet.size(), MSG_DONTWAIT | MSG_NOSIGNAL) < 0) {
            open = mayComeLater();
            return;
        }
        waiting.pop_front();
    }
}

void Connection::shutDown() {
    ::shutdown(socket, SHUT_RDWR);
    open = false;
    waiting.clear();
}

}  // namespace tavoren::simulator
