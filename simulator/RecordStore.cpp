#include "simulator/RecordStore.h"

#include <algorithm>
#include <sstream>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "platform/Files.h"
#include "sensors/createSensor.h"
#include "sensors/Sensor.h"

namespace tavoren::simulator {

namespace {

bool fits(const Luid& luid, const ByteString& record) {
    try {
        createSensor(luid)->validateCalibrationData(record);
        return true;
    } catch (const CalibrationException&) {
        return false;
    }
}

bool isHex(const std::string& text) {
    return text.size() % 2 == 0 && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

}  // namespace

void RecordStore::add(const Luid& luid, const ByteString& record) {
    entries.push_back({luid, record});
}

const ByteString* RecordStore::find(const Luid& luid) const {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&luid](const Entry& entry) { return entry.luid == luid; });
    return found == entries.end() ? nullptr : &found->record;
}

bool RecordStore::set(const Luid& luid, const ByteString& record) {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&luid](const Entry& entry) { return entry.luid == luid; });
    if (found == entries.end() || record.size() < 2 || !fits(luid, record))
        return false;
    found->record = record;
    return true;
}

void RecordStore::save(const std::string& path) const {
    std::string text;
    for (const Entry& entry : entries)
        text.append(luidToString(entry.luid)).append(" ").append(toHex(entry.record)).append("\n");
    if (!replaceFile(path, text, LineEnds::asWritten))
        throw CalibrationException("cannot write the records file " + path);
}

void RecordStore::load(const std::string& path) {
    const std::optional<std::string> text = readFile(path);
    if (!text)
        return;
    std::istringstream lines(*text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t blank = line.find(' ');
        const std::string luid = line.substr(0, blank);
        const auto known = std::find_if(entries.begin(), entries.end(), [&luid](const Entry& e) {
            return luidToString(e.luid) == luid;
        });
        if (known == entries.end() || blank == std::string::npos)
            continue;  // a sensor that this run leaves out
        const std::string hex = line.substr(blank + 1);
        if (!isHex(hex) || !set(known->luid, scanHex(hex)))
            throw CalibrationException("bad record of " + luid + " in the records file " + path);
    }
}

}  // namespace tavoren::simulator
