#include "simulator/DeviceEntry.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace tavoren::simulator {

namespace {

constexpr const char* folder = "devices";
constexpr const char* interfaceClass = "{AA1DCD67-308F-4DAA-A2B9-2782D4703C5D}";
constexpr int backlog = 8;
// A client reads at most a few messages behind the hub, so that the hub's pace is its own.
constexpr int sendBuffer = 16384;

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        throw std::runtime_error("the name of the device is too long");
    std::copy(path.begin(), path.end(), &address.sun_path[0]);
    return address;
}

// The socket calls take every family's address by a pointer to the general one.
const sockaddr* general(const sockaddr_un& address) {
    return static_cast<const sockaddr*>(static_cast<const void*>(&address));
}

bool isServed(const sockaddr_un& address) {
    const int probe = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    const bool served = ::connect(probe, general(address), sizeof address) == 0;
    ::close(probe);
    return served;
}

}  // namespace

DeviceEntry::DeviceEntry(const std::string& name)
    : entryPath(std::string(folder) + "/" + interfaceClass + "." + name) {
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    const sockaddr_un address = addressOf(entryPath);
    if (isServed(address))
        throw std::runtime_error("another hub serves " + entryPath);
    ::unlink(entryPath.c_str());
    socket = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (socket < 0 || ::bind(socket, general(address), sizeof address) != 0 ||
        ::listen(socket, backlog) != 0) {
        if (socket >= 0)
            ::close(socket);
        throw std::runtime_error("cannot make the device " + entryPath);
    }
}

DeviceEntry::~DeviceEntry() {
    ::close(socket);
    ::unlink(entryPath.c_str());
}

std::unique_ptr<Connection> DeviceEntry::accept() const {
    const int client = ::accept4(socket, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (client < 0)
        return nullptr;
    ::setsockopt(client, SOL_SOCKET, SO_SNDBUF, &sendBuffer, sizeof sendBuffer);
    return std::make_unique<Connection>(client);
}

}  // namespace tavoren::simulator
