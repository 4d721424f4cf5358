#pragma once

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "common/ByteString.h"
#include "files/TemporaryFolder.h"

namespace tavoren {

/// An empty folder that is the working directory while this lives.
class WorkingFolder {
  public:
    WorkingFolder() { std::filesystem::current_path(folder.path); }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;
    ~WorkingFolder() { std::filesystem::current_path(before); }

  private:
    const std::filesystem::path before = std::filesystem::current_path();
    const TemporaryFolder folder;
};

/// The device's end of the socket, packet by packet.
class DeviceSocket {
  public:
    explicit DeviceSocket(const std::string& name) {
        std::filesystem::create_directories("devices");
        const std::string path = "devices/{AA1DCD67-308F-4DAA-A2B9-2782D4703C5D}." + name;
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::copy(path.begin(), path.end(), &address.sun_path[0]);
        const void* const general = &address;
        ::bind(listener, static_cast<const sockaddr*>(general), sizeof address);
        ::listen(listener, 4);
    }
    DeviceSocket(const DeviceSocket&) = delete;
    DeviceSocket& operator=(const DeviceSocket&) = delete;
    ~DeviceSocket() {
        hangUp();
        ::close(listener);
    }

    /// Takes the next connection and answers its first packet, which it gives back.
    ByteString accept(const ByteString& answer) {
        connection = ::accept(listener, nullptr, nullptr);
        ByteString packet = receive();
        send(answer);
        return packet;
    }
    ByteString receive() const {
        ByteString packet(70000);
        const auto size = ::recv(connection, packet.data(), packet.size(), 0);
        packet.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
        return packet;
    }
    void send(const ByteString& packet) const { ::send(connection, packet.data(), packet.size(), MSG_NOSIGNAL); }
    void hangUp() {
        if (connection >= 0)
            ::close(connection);
        connection = -1;
    }
    bool hasCaller() const {
        pollfd entry{listener, POLLIN, 0};
        return ::poll(&entry, 1, 0) > 0;
    }

  private:
    const int listener = ::socket(AF_UNIX, SOCK_SEQPACKET, 0);
    int connection = -1;
};

}  // namespace tavoren
