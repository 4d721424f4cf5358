#include "platform/posix/Device.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>

namespace tavoren {

namespace {

constexpr std::size_t errorNumberSize = 4;

bool wouldBlock(int number) {
    return number == EAGAIN || number == EWOULDBLOCK;
}

/// False at the deadline. Any change of the socket, a hang-up among them, ends the wait.
bool waitUntilReady(int socket, short events, Deadline deadline) {
    using Milliseconds = std::chrono::milliseconds;
    for (;;) {
        int limit = -1;
        if (deadline != Deadline::max()) {
            const auto left =
                std::chrono::ceil<Milliseconds>(deadline - std::chrono::steady_clock::now());
            limit = static_cast<int>(
                std::clamp<Milliseconds::rep>(left.count(), 0, std::numeric_limits<int>::max()));
        }
        pollfd entry{socket, events, 0};
        const int ready = ::poll(&entry, 1, limit);
        if (ready > 0)
            return true;
        if (ready == 0 || errno != EINTR)
            return false;
    }
}

DWORD errorNumber(std::span<const std::uint8_t> payload) {
    if (payload.size() < errorNumberSize)
        return ERROR_GEN_FAILURE;
    DWORD number = 0;
    for (std::size_t k = 0; k < errorNumberSize; ++k)
        number |= DWORD{payload[k]} << (8 * k);
    return number == 0 ? ERROR_GEN_FAILURE : number;
}

}  // namespace

Device::~Device() {
    ::close(socket);
}

SendTransfer::SendTransfer(std::shared_ptr<Device> to, PacketKind kind,
                           std::span<const std::uint8_t> payload)
    : device(std::move(to)) {
    packet.reserve(payload.size() + 1);
    packet.push_back(static_cast<std::uint8_t>(kind));
    packet.insert(packet.end(), payload.begin(), payload.end());
}

bool SendTransfer::finish(Deadline deadline) {
    for (;;) {
        const auto sent =
            ::send(device->socket, packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        const int number = errno;
        if (sent < 0 && number == EINTR)
            continue;
        if (sent < 0 && wouldBlock(number)) {
            if (!waitUntilReady(device->socket, POLLOUT, deadline))
                return false;
            continue;
        }
        ended = true;
        error = sent < 0 ? ERROR_DEVICE_NOT_CONNECTED : 0;
        transferred = sent < 0 ? 0 : static_cast<DWORD>(packet.size() - 1);
        return true;
    }
}

ReceiveTransfer::ReceiveTransfer(std::shared_ptr<Device> from, PacketKind expected,
                                 std::span<std::uint8_t> target)
    : device(std::move(from)),
      kind(expected),
      into(target),
      packet(std::max(target.size(), errorNumberSize) + 1) {}

bool ReceiveTransfer::finish(Deadline deadline) {
    for (;;) {
        const auto size =
            ::recv(device->socket, packet.data(), packet.size(), MSG_DONTWAIT | MSG_TRUNC);
        const int number = errno;
        if (size < 0 && number == EINTR)
            continue;
        if (size < 0 && wouldBlock(number)) {
            if (!waitUntilReady(device->socket, POLLIN, deadline))
                return false;
            continue;
        }
        ended = true;
        if (size <= 0)
            error = ERROR_DEVICE_NOT_CONNECTED;
        else if (static_cast<std::size_t>(size) > packet.size())
            error = ERROR_MORE_DATA;
        else
            error = take(std::span(packet).first(static_cast<std::size_t>(size)));
        return true;
    }
}

DWORD ReceiveTransfer::take(std::span<const std::uint8_t> received) {
    const auto payload = received.subspan(1);
    if (received[0] == static_cast<std::uint8_t>(PacketKind::failure))
        return errorNumber(payload);
    if (received[0] != static_cast<std::uint8_t>(kind))
        return ERROR_GEN_FAILURE;
    if (payload.size() > into.size())
        return ERROR_MORE_DATA;
    std::copy(payload.begin(), payload.end(), into.begin());
    transferred = static_cast<DWORD>(payload.size());
    return 0;
}

}  // namespace tavoren
