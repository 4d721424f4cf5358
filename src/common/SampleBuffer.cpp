#include "common/SampleBuffer.h"

#include <algorithm>
#include <utility>

namespace tavoren {

namespace {

bool isBefore(double time, const SensorSample& sample) {
    return time < sample.time;
}

}  // namespace

SampleBuffer::SampleBuffer(std::vector<SensorSample> samples)
    : storage(std::make_shared<std::vector<SensorSample>>(std::move(samples))),
      count(storage->size()),
      ascending(std::is_sorted(storage->begin(), storage->end(),
                               [](const auto& a, const auto& b) { return a.time < b.time; })) {}

SampleBuffer SampleBuffer::startOf(const SampleBuffer& recording) {
    SampleBuffer start;
    start.storage = recording.storage;
    return start;
}

void SampleBuffer::append(const SensorSample& sample) {
    const bool inOrder = count == 0 || sample.time >= back().time;
    if (storage && count < storage->size() && &sample == storage->data() + count) {
        ++count;
    } else {
        const SensorSample added = sample;  // it may lie in the storage that is about to move
        if (!storage || storage.use_count() > 1 || storage->size() > count)
            storage = std::make_shared<std::vector<SensorSample>>(begin(), end());
        storage->push_back(added);
        ++count;
    }
    ascending = ascending && inOrder;
}

std::size_t SampleBuffer::countUpTo(double time) const {
    if (ascending)
        return static_cast<std::size_t>(std::upper_bound(begin(), end(), time, isBefore) - begin());
    std::size_t length = count;
    while (length > 0 && !((*this)[length - 1].time <= time))
        --length;
    return length;
}

std::size_t SampleBuffer::firstAfter(double time) const {
    if (ascending)
        return countUpTo(time);
    const auto* const found =
        std::find_if(begin(), end(), [time](const auto& sample) { return sample.time > time; });
    return static_cast<std::size_t>(found - begin());
}

}  // namespace tavoren
