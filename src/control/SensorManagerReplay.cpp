#include <limits>

#include "common/CalibrationException.h"
#include "common/SamplingException.h"
#include "control/Process.h"
#include "control/SensorManager.h"
#include "files/CsvParser.h"
#include "frame/Console.h"
#include "frame/Logger.h"
#include "sensors/Sensor.h"

namespace tavoren {

namespace {

constexpr const char* playFunction = "SensorManager::playData";

/// Merges the recordings of several sensors by time.
class Merge {
  public:
    Merge(const std::vector<std::shared_ptr<Sensor>>& sensors, const SensorDataMap& recordings) {
        for (const auto& sensor : sensors) {
            const auto found = recordings.find(sensor);
            tracks.push_back({sensor, found == recordings.end() ? SampleBuffer() : found->second});
        }
    }

    struct Pick {
        std::shared_ptr<Sensor> sensor;
        const SensorSample* sample;  ///< null when the chosen sensor has none left
    };

    /// Among equal times the later sensor of the list comes first.
    Pick next() {
        for (std::size_t i = 0; i < tracks.size(); ++i) {
            const SensorSample* const sample = tracks[i].front();
            if (sample && sample->time >= last && sample->time <= limit) {
                limit = sample->time;
                chosen = i;
            }
        }
        if (tracks.empty() || !tracks[chosen].front())
            return {nullptr, nullptr};
        Track& track = tracks[chosen];
        const SensorSample* const sample = track.front();
        ++track.read;
        last = sample->time;
        limit = 2147483647.0;
        return {track.sensor, sample};
    }

  private:
    struct Track {
        std::shared_ptr<Sensor> sensor;
        SampleBuffer samples;
        std::size_t read = 0;

        const SensorSample* front() const {
            return read < samples.size() ? &samples[read] : nullptr;
        }
    };

    std::vector<Track> tracks;
    double limit = std::numeric_limits<double>::max();
    double last = 0.0;
    std::size_t chosen = 0;
};

}  // namespace

void SensorManager::loadDump(std::string_view folder, std::string_view prefix, bool offline) {
    Console::printLine("Loading data dump, this might take a while...");
    std::string basePath(folder);
    if (!prefix.empty())
        basePath += "\\" + std::string(prefix);
    const std::lock_guard lock(dataLock);
    rawData_ = CsvParser().readFromFile(basePath, sensors, offline);
    for (const auto& [sensor, samples] : rawData_)
        sensor->bufferedData = SampleBuffer::startOf(samples);
}

void SensorManager::playData() {
    const SensorDataMap recording = rawData();
    Merge merge(sensors, recording);
    bool aborted = false;
    while (!stopped && !aborted) {
        const auto [sensor, sample] = merge.next();
        if (!sample)
            break;
        playSample(sensor, *sample, aborted);
    }
    const bool mustComplete =
        process->type == RunMode::calibrate || process->type == RunMode::ambientLight;
    if (!aborted && mustComplete && process->stageIndex != process->stepCount)
        throw CalibrationException(
            "Unexpected data dump size. Not enough data for completing the calibration process");
}

void SensorManager::playSample(const std::shared_ptr<Sensor>& chosen, const SensorSample& sample,
                               bool& aborted) {
    const bool drives = process->isStageIndicator(*chosen);
    try {
        if (chosen->dataRecieved(sample) && drives)
            process->onSample(sample);
    } catch (const SamplingException& e) {
        Logger::write(LogLevel::debug, playFunction, __LINE__,
                      "Caught exception from dataRecieved");
        failStage(e.what());
        throw;
    } catch (const CalibrationException& e) {
        Logger::write(LogLevel::debug, playFunction, __LINE__,
                      "Caught exception from dataRecieved, aborting");
        failStage(e.what());
        aborted = true;
        return;
    }
    if (!takeStepReady(*chosen))
        return;
    stepFinished();
    const std::lock_guard lock(stageLock);
    if (!stageSuccess)
        throw CalibrationException("Unexpected error occurred");
}

}  // namespace tavoren
