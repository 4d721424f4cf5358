#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/Luid.h"
#include "simulator/HelpRow.h"

namespace tavoren::simulator {

/// What a request asks for, as faults and trace name it.
enum class Request {
    list,
    getRecord,
    platform,
    setRecord,
    reset,
    getProperty,
    setProperty,
    start,
    stop,
    unknown,
};

/// "list", "get-record" and so on.
std::string requestName(Request request);

/// The ways in which the hub can misbehave.
enum class FaultKind {
    // of the reply to one kind of request
    status,
    shortReply,
    emptyReply,
    noReply,
    transferError,
    // of the N-th answer since the hub began
    errorAt,
    shortAt,
    breakAt,
    // of a session
    zeroRecord,
    longRecord,
    unknownSensor,
    foreignMessage,
    leftOver,
    silentSensor,
    silence,
    disconnect,
    lateBuffers,
    deaf,
    // of the store
    forgetful,
    // of opening the device
    refuseClient,
};

struct Fault {
    FaultKind kind = FaultKind::status;
    Request request = Request::unknown;  ///< whose reply is spoilt
    std::uint8_t value = 1;              ///< status to answer with, or number of the answer
    std::optional<Luid> sensor;          ///< that stays silent; empty: the last one that reports
};

/// The faults of a run of the hub.
class Faults {
  public:
    /// Adds a fault by its text, "name[:argument][=value]"; throws `std::invalid_argument`.
    void add(const std::string& text);

    const Fault* find(FaultKind kind) const;
    const Fault* find(FaultKind kind, Request request) const;
    bool has(FaultKind kind) const { return find(kind) != nullptr; }

    /// Every fault with its arguments.
    static std::vector<HelpRow> all();
    /// The requests that a fault can name.
    static std::vector<std::string> requestNames();

  private:
    std::vector<Fault> list;
};

}  // namespace tavoren::simulator
