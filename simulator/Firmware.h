#pragma once

#include <optional>
#include <vector>

#include "firmware/Wire.h"
#include "simulator/Options.h"
#include "simulator/Session.h"

namespace tavoren::simulator {

/// The firmware client: takes requests and answers them, whatever they come over.
class Firmware {
  public:
    /// What goes back for one request: nothing, or messages, or a failed transfer, or the end.
    struct Answer {
        std::vector<ByteString> messages;
        bool fails = false;
        bool breaks = false;  ///< the connection ends
    };

    /// Loads the records of an earlier run, if the options name a file. Both outlive this object.
    Firmware(Device& device, const Options& options);

    /// Throws `CalibrationException` if changed records cannot be saved.
    Answer answer(ByteSpan message);
    /// Null without a session.
    Session* session() { return running ? &*running : nullptr; }
    /// The connection of the session is gone: the session stays open until somebody stops it.
    void abandonSession();

    /// What a request asks for.
    static Request requestOf(ByteSpan message);

  private:
    struct Handled {
        ByteString reply;
        std::vector<ByteString> before;  // messages in front of it
    };
    Handled handle(Request request, ByteSpan message);
    Handled handleGet(Request request, ByteSpan message);
    std::uint8_t setRecord(ByteSpan message);
    std::uint8_t setProperty(ByteSpan message);
    std::uint8_t reset();
    std::uint8_t start();
    Handled stop();
    Answer spoilt(Request request, Handled handled);

    Device& device;
    const Options& options;
    Reporting reporting;
    Reporting intervals;  // that were set
    std::optional<Session> running;
    bool abandoned = false;
    std::size_t sessionCount = 0;
    std::size_t answerCount = 0;
};

}  // namespace tavoren::simulator
