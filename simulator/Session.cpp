#include "simulator/Session.h"

#include <algorithm>

#include "firmware/SmhiPublishBuffer.h"

namespace tavoren::simulator {

namespace {

constexpr std::uint64_t firstStamp = 3ULL << 32U;  // of a hub that has run for some hours
constexpr double breakAfter = 5.0;                 // seconds
constexpr std::size_t longestRecord = 255;
constexpr std::uint8_t foreignCommand = 33;
constexpr Luid nobody{900, 1, 2, 3, 0};

}  // namespace

Session::Session(Device& ofDevice, const Reporting& whoReports, Script script,
                 const Faults& withFaults)
    : device(ofDevice), reporting(whoReports), played(std::move(script)), faults(withFaults) {}

bool Session::isBroken() const {
    return faults.has(FaultKind::disconnect) && seconds() >= breakAfter;
}

bool Session::isSilent(const Luid& luid) const {
    const Fault* const fault = faults.find(FaultKind::silentSensor);
    if (faults.has(FaultKind::silence))
        return true;
    if (!fault)
        return false;
    if (fault->sensor)
        return luid == *fault->sensor;
    const auto& all = device.sensors();
    const auto last = std::find_if(all.rbegin(), all.rend(), [this](const SensorModel& model) {
        return reporting.contains(model.luid().value());
    });
    return last != all.rend() && last->luid() == luid;
}

std::vector<Session::Due> Session::dueUntil(std::uint64_t end) {
    std::vector<Due> list;
    for (SensorModel& sensor : device.sensors()) {
        const auto found = reporting.find(sensor.luid().value());
        if (found == reporting.end() || isSilent(sensor.luid()))
            continue;
        const std::uint64_t interval = found->second;
        for (std::uint64_t t = (now + interval - 1) / interval * interval; t < end; t += interval)
            list.push_back({t, &sensor});
    }
    std::stable_sort(list.begin(), list.end(),
                     [](const Due& a, const Due& b) { return a.time < b.time; });
    return list;
}

void Session::append(ByteString& payload, const Due& due, bool isHeld) {
    const double time = isHeld ? seconds() : static_cast<double>(due.time - held) * 1e-6;
    const Moment moment = played.at(time);
    const std::vector<std::int32_t> values = due.sensor->publish(moment, device.world());
    const std::uint64_t stamp = firstStamp + due.time;
    if (faults.has(FaultKind::unknownSensor))
        SmhiSampleRecord::append(payload, nobody, stamp, values);
    SmhiSampleRecord::append(payload, due.sensor->luid(), stamp, values);
}

ByteString Session::finish(ByteString& payload) const {
    if (faults.has(FaultKind::zeroRecord))
        payload.insert(payload.end(), SmhiSampleRecord::fixedSize, 0);
    if (faults.has(FaultKind::longRecord))
        payload.insert(payload.end(), SmhiSampleRecord::fixedSize, longestRecord);
    ByteString message = SmhiPublishBuffer{payload}.encode();
    payload.clear();
    return message;
}

std::vector<ByteString> Session::next(bool isHeld) {
    constexpr auto step = static_cast<std::uint64_t>(window.count());
    std::vector<ByteString> messages;
    if (faults.has(FaultKind::foreignMessage))
        messages.push_back(SmhiHeader{.command = foreignCommand}.encode());
    ByteString payload;
    for (const Due& due : dueUntil(now + step)) {
        append(payload, due, isHeld);
        if (payload.size() + 2 * longestRecord + SmhiSampleRecord::fixedSize >
            SmhiPublishBuffer::maximumPayload)
            messages.push_back(finish(payload));
    }
    if (!payload.empty())
        messages.push_back(finish(payload));
    now += step;
    held += isHeld ? step : 0;
    return messages;
}

}  // namespace tavoren::simulator
