#pragma once

#include <cstdint>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "common/GuardedBy.h"
#include "sensors/Sensor.h"

namespace tavoren {

/// The ambient light sensor. Its calibration is the factor between its reading and that of a light
/// meter, which the firmware keeps as two whole numbers:
///     final lux = sensor lux x (multiplier / divider)
///
/// Samples come on the thread that delivers them, `userInput` on the main thread; what the two
/// share is under `inputLock`.
class AmbientLight final : public Sensor {
  public:
    explicit AmbientLight(const Luid& id);

    /// Averages the factors of all levels over the spans of the running sequence. Throws
    /// `CalibrationException`; `calibrationData` then stays as it was.
    void calibrate() override;
    /// Stores the median of the last three values; false for the first two samples, and while an
    /// interactive run waits for the operator.
    bool dataRecieved(const SensorSample& sample) override;
    /// Sets `reverseScale`; throws `CalibrationException` without a known record of the firmware.
    void calcReverseSdt() override;
    bool isLightSensor() const override;
    void reverseStaticCalibration(SensorSample& sample) const override;
    std::string resultText() const override;
    bool supportsRunMode(RunMode mode) const override;
    /// Vendor data may take a record past `maxDataSize`.
    void validateCalibrationData(const ByteString& bytes) const override;
    /// A light level in lux; throws `CalibrationException` if the text is no integer.
    void userInput(const std::string& text) override;
    void loadCalibrationXml(const XmlElement& element, std::uint8_t id,
                            std::uint8_t version) override;
    void saveCalibrationXml(XmlElement& element, const ByteString& record) const override;

    /// The level (lux) of the next stage. Not to be called beside `userInput`.
    void addLightLevel(std::int32_t level);
    /// Keeps all further samples out until the operator has entered a level.
    void awaitInput();
    /// Samples per second by the running mean of the intervals. Every call folds the last interval
    /// in; 50 before there is one.
    double measuredRate();
    /// Mean of the stored samples `first` to `last` in lux; throws `CalibrationException` "Internal
    /// error" for an empty range or one beyond the samples.
    double meanOfSpan(std::int64_t first, std::int64_t last) const;
    /// Recorded samples under the new calibration.
    std::vector<SensorSample> calibrated(std::span<const SensorSample> samples) const;

    /// Bytes of the record without vendor data; throws `CalibrationException` for fewer than 3
    /// steps.
    static std::size_t fixedRecordSize(const ByteString& record);
    /// The body of a record with format and version in front.
    static ByteString prependFormat(ByteString body);

    double multiplier = 0.0;                ///< result, a whole number
    double reverseScale = 1.0;              ///< undoes the firmware's factor
    double divider = 0.0;                   ///< result
    std::vector<std::int32_t> lightLevels;  ///< lux, one per stage
    std::mutex inputLock;                   ///< also over `lightLevels` while samples come
    /// The operator has entered a level.
    bool newInput TAVOREN_GUARDED_BY(inputLock) = false;
    /// Samples are dropped until there is `newInput`.
    bool waitForInput TAVOREN_GUARDED_BY(inputLock) = true;
    double lastSampleTime = 0.0;          ///< ms
    std::vector<double> sampleIntervals;  ///< ms, between samples
    std::vector<double> recentValues;     ///< the last values as received, at most 3
    double meanInterval = 0.0;            ///< ms, running mean of `sampleIntervals`

  private:
    bool isWaitingForInput(double value);
    double levelMultiplier(std::size_t stage);
    ByteString resultRecord() const;
};

}  // namespace tavoren
