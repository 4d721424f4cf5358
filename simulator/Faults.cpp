#include "simulator/Faults.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "simulator/SensorKind.h"

namespace tavoren::simulator {

namespace {

constexpr std::array requests{"list",         "get-record",   "platform", "set-record", "reset",
                              "get-property", "set-property", "start",    "stop",       "unknown"};

enum class Argument { none, request, sensor };

struct FaultRow {
    const char* name;
    FaultKind kind;
    Argument argument;
    const char* text;
};

constexpr std::array faultTable{
    FaultRow{"status", FaultKind::status, Argument::request, "answers with status N (1)"},
    FaultRow{"short", FaultKind::shortReply, Argument::request, "half of the answer"},
    FaultRow{"empty", FaultKind::emptyReply, Argument::request, "an answer of no bytes"},
    FaultRow{"no-reply", FaultKind::noReply, Argument::request, "no answer at all"},
    FaultRow{"error", FaultKind::transferError, Argument::request, "the transfer fails"},
    FaultRow{"error-at", FaultKind::errorAt, Argument::none,
             "the transfer of answer N since the hub began fails"},
    FaultRow{"short-at", FaultKind::shortAt, Argument::none, "half of answer N"},
    FaultRow{"break-at", FaultKind::breakAt, Argument::none,
             "the connection breaks in place of answer N"},
    FaultRow{"zero-record", FaultKind::zeroRecord, Argument::none,
             "buffers end in a sample of length zero"},
    FaultRow{"long-record", FaultKind::longRecord, Argument::none,
             "buffers end in a sample longer than the buffer"},
    FaultRow{"unknown-sensor", FaultKind::unknownSensor, Argument::none,
             "buffers hold samples of a sensor that nobody knows"},
    FaultRow{"foreign-message", FaultKind::foreignMessage, Argument::none,
             "messages of another kind between the buffers"},
    FaultRow{"left-over", FaultKind::leftOver, Argument::none,
             "a session of an earlier process is still open at first"},
    FaultRow{"silent-sensor", FaultKind::silentSensor, Argument::sensor,
             "it never reports (the last one that should)"},
    FaultRow{"silence", FaultKind::silence, Argument::none, "no sensor ever reports"},
    FaultRow{"disconnect", FaultKind::disconnect, Argument::none,
             "the session's connection breaks after five seconds of samples"},
    FaultRow{"late-buffers", FaultKind::lateBuffers, Argument::none,
             "more buffers come between the stop and its answer"},
    FaultRow{"deaf", FaultKind::deaf, Argument::none,
             "a stop is not heard: buffers go on for ever"},
    FaultRow{"forgetful", FaultKind::forgetful, Argument::none,
             "records that are set are praised and forgotten"},
    FaultRow{"refuse-client", FaultKind::refuseClient, Argument::none,
             "the device refuses to be opened by the tool"},
};

Request requestOf(const std::string& name) {
    const auto* const found = std::find(requests.begin(), requests.end() - 1, name);
    if (found == requests.end() - 1)
        throw std::invalid_argument("unknown request \"" + name + "\" of a fault");
    return static_cast<Request>(found - requests.begin());
}

bool takesValue(FaultKind kind) {
    return kind == FaultKind::status || kind == FaultKind::errorAt || kind == FaultKind::shortAt ||
           kind == FaultKind::breakAt;
}

std::uint8_t valueOf(const std::string& text) {
    if (text.empty() || text.size() > 3 || text.find_first_not_of("0123456789") != text.npos ||
        parseInteger(text) < 1 || parseInteger(text) > 255)
        throw std::invalid_argument("bad value \"" + text + "\" of a fault: 1 to 255 expected");
    return static_cast<std::uint8_t>(parseInteger(text));
}

}  // namespace

std::string requestName(Request request) {
    return requests.at(static_cast<std::size_t>(request));
}

void Faults::add(const std::string& text) {
    const std::size_t equals = text.find('=');
    const std::string front = text.substr(0, equals);
    const std::size_t colon = front.find(':');
    const std::string name = front.substr(0, colon);
    const auto* const entry = std::find_if(faultTable.begin(), faultTable.end(),
                                           [&name](const FaultRow& r) { return r.name == name; });
    if (entry == faultTable.end())
        throw std::invalid_argument("unknown fault \"" + name + "\"");
    const bool hasArgument = colon != std::string::npos;
    if (hasArgument != (entry->argument == Argument::request) &&
        entry->argument != Argument::sensor)
        throw std::invalid_argument("fault " + name + (hasArgument ? " takes no" : " needs a") +
                                    " request");
    Fault fault;
    fault.kind = entry->kind;
    if (entry->argument == Argument::request)
        fault.request = requestOf(front.substr(colon + 1));
    else if (hasArgument)
        fault.sensor = sensorKind(front.substr(colon + 1)).luid;
    if (equals != std::string::npos) {
        if (!takesValue(fault.kind))
            throw std::invalid_argument("fault " + name + " takes no value");
        fault.value = valueOf(text.substr(equals + 1));
    }
    list.push_back(fault);
}

const Fault* Faults::find(FaultKind kind) const {
    const auto found =
        std::find_if(list.begin(), list.end(), [kind](const Fault& f) { return f.kind == kind; });
    return found == list.end() ? nullptr : &*found;
}

const Fault* Faults::find(FaultKind kind, Request request) const {
    const auto found = std::find_if(list.begin(), list.end(), [kind, request](const Fault& f) {
        return f.kind == kind && f.request == request;
    });
    return found == list.end() ? nullptr : &*found;
}

std::vector<HelpRow> Faults::all() {
    std::vector<HelpRow> rows;
    for (const FaultRow& entry : faultTable) {
        constexpr std::array arguments{"", ":REQUEST", "[:SENSOR]"};
        rows.push_back({std::string(entry.name) +
                            arguments.at(static_cast<std::size_t>(entry.argument)) +
                            (takesValue(entry.kind) ? "[=N]" : ""),
                        entry.text});
    }
    return rows;
}

std::vector<std::string> Faults::requestNames() {
    return {requests.begin(), requests.end() - 1};
}

}  // namespace tavoren::simulator
