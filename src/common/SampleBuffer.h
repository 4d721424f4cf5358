#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "common/SensorSample.h"

namespace tavoren {

/// A list of samples in order of arrival.
///
/// Copies share their samples until one of them appends. In a replay the buffers of the sensors
/// grow along the recording that the samples come from, so that each sample is held once: a buffer
/// made by `startOf` takes over the next sample of its recording without a copy.
/// A buffer is a contiguous range and so a span to its readers; it belongs to one
/// thread at a time.
class SampleBuffer {
  public:
    SampleBuffer() = default;
    explicit SampleBuffer(std::vector<SensorSample> samples);

    /// An empty buffer that is ready to grow along `recording`.
    static SampleBuffer startOf(const SampleBuffer& recording);

    /// Appends a sample; an element of the shared recording is only counted.
    void append(const SensorSample& sample);

    std::size_t size() const { return count; }
    bool empty() const { return count == 0; }
    const SensorSample& operator[](std::size_t index) const { return (*storage)[index]; }
    const SensorSample& back() const { return (*storage)[count - 1]; }
    const SensorSample* begin() const { return storage ? storage->data() : nullptr; }
    const SensorSample* end() const { return begin() + count; }
    /// Whether no sample is older than the one before it.
    bool isAscending() const { return ascending; }

    /// Number of leading samples whose time is not above `time` (ms): for ascending times the index
    /// of the first later sample. A search by halves where the times ascend, else a walk from the
    /// newest sample down.
    std::size_t countUpTo(double time) const;
    /// Index of the first sample with a time above `time` (ms), `size()` if there is none.
    std::size_t firstAfter(double time) const;

  private:
    std::shared_ptr<std::vector<SensorSample>> storage;
    std::size_t count = 0;
    bool ascending = true;
};

}  // namespace tavoren
