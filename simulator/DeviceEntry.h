#pragma once

#include <memory>
#include <string>

#include "simulator/Connection.h"

namespace tavoren::simulator {

/// The hub's entry in the folder of devices: a listening socket, removed at the end.
class DeviceEntry {
  public:
    /// Makes the folder if need be; takes the place of an entry that nobody serves. Throws
    /// `std::runtime_error` if the entry is in use or cannot be made.
    explicit DeviceEntry(const std::string& name);
    DeviceEntry(const DeviceEntry&) = delete;
    DeviceEntry& operator=(const DeviceEntry&) = delete;
    ~DeviceEntry();

    const std::string& path() const { return entryPath; }
    int descriptor() const { return socket; }
    /// A client that waits; null if there is none.
    std::unique_ptr<Connection> accept() const;

  private:
    std::string entryPath;
    int socket = -1;
};

}  // namespace tavoren::simulator
