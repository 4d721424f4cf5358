#include "simulator/Hub.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <iostream>

#include "simulator/Trace.h"

namespace tavoren::simulator {

namespace {

constexpr std::uint32_t connectRequest = 0x8000E004;
constexpr std::array<std::uint8_t, 16> client{0x2E, 0x9A, 0x57, 0xBB, 0x54, 0xCC, 0x50, 0x44,
                                              0xB1, 0xD0, 0x5E, 0x75, 0x20, 0xDC, 0xAD, 0x25};
constexpr std::size_t connectReplySize = 5;
constexpr std::uint32_t invalidParameter = 87;
constexpr std::uint32_t generalFailure = 31;

void fail(Connection& connection, std::uint32_t number) {
    connection.send(PacketKind::failure, WireWriter().number(number).take());
}

}  // namespace

Hub::Hub(Device& device, const Options& withOptions)
    : options(withOptions), firmware(device, withOptions), entry(withOptions.name) {}

void Hub::run() {
    show("Serving " + entry.path());
    while (!StopSignal::arrived()) {
        waitForWork();
        accept();
        for (const auto& connection : connections)
            serve(*connection);
        publish();
        dropClosed();
    }
}

void Hub::waitForWork() {
    // A negative descriptor is passed over.
    std::vector<pollfd> entries{{release == Release::awaited ? STDIN_FILENO : -1, POLLIN, 0},
                                {entry.descriptor(), POLLIN, 0}};
    for (const auto& connection : connections)
        entries.push_back({connection->descriptor(),
                           static_cast<short>(connection->isSending() ? POLLIN | POLLOUT : POLLIN),
                           0});
    timespec limit{};
    const auto due = nextPublish();
    if (due) {
        const auto left = std::chrono::duration_cast<std::chrono::nanoseconds>(
            std::max(*due - Pace::Clock::now(), Pace::Clock::duration::zero()));
        limit.tv_sec = left.count() / 1000000000;
        limit.tv_nsec = left.count() % 1000000000;
    }
    const int ready =
        ::ppoll(entries.data(), entries.size(), due ? &limit : nullptr, &stopSignal.openMask());
    if (ready > 0 && entries.front().revents != 0)
        readOperator();
}

/// A line, or the end of all input, lets the next movement begin.
void Hub::readOperator() {
    char typed = '\n';
    if (::read(STDIN_FILENO, &typed, 1) == 1 && typed != '\n')
        return;
    release = Release::given;
    pace->restart(Pace::Clock::now());
}

/// Empty while nothing is to be published, or the reader has not taken what was.
std::optional<Pace::Clock::time_point> Hub::nextPublish() {
    const Session* const session = firmware.session();
    if (!session || !recorder || recorder->isSending())
        return std::nullopt;
    if (release == Release::awaited)
        return restDue;
    return pace->due(session->script(), session->seconds(), Pace::Clock::now());
}

void Hub::accept() {
    while (auto connection = entry.accept())
        connections.push_back(std::move(connection));
}

void Hub::serve(Connection& connection) {
    connection.flush();
    while (const auto packet = connection.receive()) {
        if (packet->kind == PacketKind::control)
            openClient(connection, packet->payload);
        else if (packet->kind == PacketKind::message && connection.isBound)
            answer(connection, packet->payload);
        else
            fail(connection, invalidParameter);
    }
}

void Hub::openClient(Connection& connection, ByteSpan input) const {
    WireReader reader(input);
    const bool isKnown = reader.number<std::uint32_t>() == connectRequest &&
                         std::ranges::equal(reader.remaining(), client);
    connection.isBound = isKnown && !options.faults.has(FaultKind::refuseClient);
    if (connection.isBound)
        connection.send(PacketKind::control, ByteString(connectReplySize));
    else
        fail(connection, isKnown ? generalFailure : invalidParameter);
}

void Hub::answer(Connection& connection, ByteSpan message) {
    if (options.trace)
        show("tool: " + describeRequest(message));
    const bool wasRunning = firmware.session() != nullptr;
    const Firmware::Answer answer = firmware.answer(message);
    for (const ByteString& reply : answer.messages)
        sendMessage(connection, reply);
    if (answer.fails)
        fail(connection, generalFailure);
    if (answer.breaks)
        connection.shutDown();
    if (firmware.session() && !wasRunning) {
        recorder = &connection;
        pace.emplace(options.speed, std::chrono::milliseconds(options.hold));
        shownMovement = static_cast<std::size_t>(-1);
        release = Release::none;
    } else if (!firmware.session()) {
        recorder = nullptr;
    }
}

void Hub::publish() {
    const auto due = nextPublish();
    if (!due || *due > Pace::Clock::now() || !recorder->isOpen())
        return;
    if (release != Release::awaited && pace->movement() != shownMovement)
        beginMovement();
    const bool isHeld = release == Release::awaited;
    restDue = Pace::Clock::now() + Session::window;
    for (const ByteString& message : firmware.session()->next(isHeld))
        sendMessage(*recorder, message);
    if (firmware.session()->isBroken()) {
        show("disconnected");
        std::erase_if(connections, [this](const auto& c) { return c.get() == recorder; });
        recorder = nullptr;
        firmware.abandonSession();
    }
}

void Hub::dropClosed() {
    if (recorder && !recorder->isOpen()) {
        recorder = nullptr;
        firmware.abandonSession();
    }
    std::erase_if(connections, [](const auto& connection) { return !connection->isOpen(); });
}

void Hub::sendMessage(Connection& connection, ByteSpan message) const {
    if (options.trace)
        show("hub:  " + describeReply(message));
    connection.send(PacketKind::message, message);
}

/// Shows the movement that is due, or waits until the operator wants it.
void Hub::beginMovement() {
    const Script& script = firmware.session()->script();
    const std::size_t next = pace->movement();
    const std::string text =
        next == script.size() ? "end of the movement" : script.movement(next).text;
    const bool isRest = next == script.size() || script.movement(next).isRest();
    if (options.wait && !isRest && release != Release::given) {
        release = Release::awaited;
        show("Press Enter for: " + text);
        return;
    }
    release = Release::none;
    shownMovement = next;
    show(text);
}

void Hub::show(const std::string& line) {
    std::cout << line << std::endl;
}

}  // namespace tavoren::simulator
