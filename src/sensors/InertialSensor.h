#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/SequenceKind.h"
#include "numerics/Matrix.h"
#include "numerics/Statistics.h"
#include "sensors/Sensor.h"

namespace tavoren {

class Process;

/// The common ground of the three-axis sensors, and by itself every three-axis sensor without an
/// algorithm.
///
/// The model of a calibrated reading, here and in the firmware, is
///     calibrated = scaleMatrix x axisMapping x (raw - offset)
/// with raw in the sensor's own axes and in `dataUnit`, and calibrated in the axes of the device.
class InertialSensor : public Sensor {
  public:
    explicit InertialSensor(const Luid& id);

    bool testCalibration() override;
    void calcReverseSdt() override;
    void reverseStaticCalibration(SensorSample& sample) const override;
    std::string resultText() const override;
    std::size_t getDataSize() const override;
    bool supportsRunMode(RunMode mode) const override;
    /// As `Sensor`; for a sensor with dynamic data, data of another format is dropped with a
    /// warning on the console.
    void setFirmwareCalibration(ByteString bytes) override;
    /// As `Sensor`; a record with vendor data behind it passes too.
    void validateCalibrationData(const ByteString& bytes) const override;
    void loadCalibrationXml(const XmlElement& element, std::uint8_t id,
                            std::uint8_t version) override;
    void setNoGyroRotation(bool reduce) override;
    void saveCalibrationXml(XmlElement& element, const ByteString& record) const override;

    /// Whether the turn that began at `since` (ms) is complete.
    virtual bool isRotationDone(double since);
    /// Whether the device has left the position of `referenceValue`.
    virtual bool hasMovedFromReference() const;
    /// Remembers the rate of the resting device.
    virtual void captureRestRate();
    virtual void setReference(Vector value);
    /// Fills `segmentValues` with the medians of the calibration positions, raw axes.
    virtual void computePositions();
    /// Judges the calibration by the elements of its results; `measured` holds N rows of raw
    /// values. Throws `CalibrationException` with all reasons.
    virtual void checkSuccess(const Matrix& measured);
    /// Row `index` of `segmentValues` in calibrated axes.
    virtual Vector calibratedValue(int index) const;

    // Segments. Each step s of the process is the samples from index[2s] up to, not including,
    // index[2s + 1].

    /// Sample indices of the segment times; throws `CalibrationException` where a segment has no
    /// samples.
    std::vector<std::int64_t> findIndex() const;
    /// Adds the mean of each step to its row of `segmentValues`.
    void ComputeStaticSegmentsMeans();
    /// Adds the standard deviation of each step to its row of `segmentDeviations`.
    void ComputeStaticSegmentsStds();
    /// The noise of the norm over the first segments, the same in all three elements.
    Vector calcWhiteNoise() const;
    /// For each row of a 3 by 3 matrix the sign of its largest element, at its place.
    static Matrix calcAxisMapping(const Matrix& matrix);
    /// Splits the computed `scaleMatrix` into `scaleMatrix` x `axisMapping`; `reduce` keeps of the
    /// scale its singular values only.
    void splitScaleAndMapping(bool reduce);

    // The stability test, on the thread that delivers samples.

    /// The samples from `time` to `time` + `length` (ms).
    IndexRange findBufferRange(double time, double length) const;
    /// Whether the newest window lies still; `adapt` first narrows the limits to its own noise.
    bool hasSettled(bool adapt);
    /// Medians of the newest window, raw axes.
    Vector recentMedian() const;
    /// For how many milliseconds behind `time` the window stays as still as it is there.
    double stableTimeAfter(double time) const;

    // The calibration in one position: only the offset changes.

    void accumulateSample(const SensorSample& sample);
    void calibrateOnePosition();

    // Judging a calibration, and testing a calibrated sensor.

    /// Judges the calibration by its singular values, rotation and calibrated positions; throws
    /// `CalibrationException` with all reasons.
    void checkSuccessFull();
    /// Tests mean, noise and spikes of every rest step against the three thresholds (`dataUnit`).
    bool Performing_TestAverage(double averageThreshold, double noiseThreshold,
                                double spikeThreshold);
    /// Tests noise, spikes and mean of a single position.
    bool testOnePosition();
    /// Jumps above `threshold` between neighbouring samples of a step; a jump hides the next one.
    std::int32_t countSpikes(int step, double threshold) const;

    // The asserts print what is wrong on the console and write no log.

    static bool vectorAssert(const Vector& value, const Vector& expected, double threshold,
                             std::wstring_view testName, std::wstring_view comment);
    /// For values in degrees.
    static bool angleAssert(const Vector& value, const Vector& expected, double threshold,
                            std::wstring_view testName, std::wstring_view comment);
    static bool doubleAssert(double value, double expected, double threshold,
                             std::wstring_view testName, std::wstring_view comment);
    static bool spikeAssert(std::int32_t count, std::wstring_view testName, std::int32_t allowed);

    // Agreement with other sensors.

    /// A value in calibrated axes: row `index` of `segmentValues`, or buffered sample `index`.
    Vector modelValue(std::int64_t index, bool fromPositions) const;
    /// Recorded samples under the new calibration; samples without values stay as they are.
    std::vector<SensorSample> calibrated(std::span<const SensorSample> samples) const;
    /// The mean of `whiteNoise` in `firmwareUnit`.
    double meanWhiteNoise() const;
    /// Makes `calibrationData` of a dynamic sensor: `firmwareData` with a new white noise.
    void setDynamicWhiteNoise(double noise);
    /// Turns this sensor's position value by what `gyroscope` measured from `start` to `end` (ms)
    /// and gives the mean distance (`dataUnit`) from what this sensor measured itself. `rotation`
    /// takes the gyroscope's axes to this sensor's.
    double compareRotation(double start, double end, const InertialSensor& gyroscope, int position,
                           const Matrix& rotation) const;
    /// The rotation that brings the vectors nearest to `expectedValues`: the orthogonal Procrustes
    /// solution (Schoenemann 1966) through the singular values.
    Matrix bestRotation(const std::vector<Vector>& vectors) const;

    // The firmware's record.

    /// Builds `calibrationData` from `offset`, `scaleMatrix` and `axisMapping`.
    void convertToFWForamt();
    static std::array<std::int32_t, 3> convertOffset(const Matrix& column, Unit source,
                                                     Unit target);
    struct ScaledMatrix {
        std::array<std::int16_t, 9> numerators{};  ///< row-major
        std::uint16_t divider = 0;
    };
    static ScaledMatrix convertScaling(Matrix matrix);
    /// Two bits for each element of a 3 by 3 matrix, row-major from the lowest: 0, 1 or -1.
    static std::uint32_t compressAxisMapping(const Matrix& matrix);
    /// The inverse of `compressAxisMapping`; each pair of bits is sign-extended.
    static Matrix expandAxisMapping(std::uint32_t fields);
    /// The body with the vendor data of `firmwareData` behind it.
    ByteString addVendorData(ByteString body) const;
    ByteString prependFormat(const ByteString& body) const;
    /// The body of a record for a sensor without data: no offset, identity scale and mapping.
    ByteString getStaticDefault() const;

    /// One row per position or step: the values measured there (raw axes; angles of a gyroscope).
    Matrix segmentValues = Matrix(4, 3);
    double offsetLimit = 0.0;
    double normDeviationLimit = 0.0;
    double expectedErrorLimit = 0.0;
    double whiteNoiseLimit = 0.0;
    double scaleLimit = 0.0;
    double rotationLimit = 0.0;  ///< degrees in the full check, an element in the short one
    double restDeviationLimit = 0.0;
    double referenceMagnitude = 0.0;
    double defaultNoise = 0.0;  ///< stands in for a white noise that is not a number
    std::string failureReasons;
    bool failed = false;  ///< `FailureParameter` names the first failed check
    bool noGyroRotation = false;
    double averageLimit = 0.0;
    double noiseLimit = 0.0;
    double normTolerance = 0.0;
    double expectedNorm = 0.0;
    double spikeLimit = 0.0;
    /// One row per position: what a perfectly calibrated sensor shows there.
    Matrix expectedValues = Matrix(4, 4);
    std::int32_t importedWhiteNoise = 0;
    Matrix scaleMatrix = Matrix(3, 3);
    Vector offset = Vector(3);  ///< raw axes, `dataUnit`
    Matrix axisMapping = Matrix(3, 3);
    Matrix reverseMatrix;  ///< undoes the firmware's scale and mapping; empty at first
    Vector reverseOffset;  ///< undoes the firmware's offset; empty at first
    Matrix segmentDeviations = Matrix(7, 3);  ///< one row per step
    Vector whiteNoise = Vector(3);
    double windowMs = 1000.0;  ///< length of the stability window
    double stableFloor = 0.0;
    double stableDeviationLimit = 0.0;
    double stableRangeLimit = 0.0;
    Vector referenceValue = Vector(3);  ///< also the running angle of a gyroscope
    bool hasImportedNoise = false;
    std::int32_t positionCount = 0;

  protected:
    const Process& process() const;
    bool isSequence(SequenceKind kind) const;
    /// Takes a sample in: a one-position run needs the sums, all but its calibration the samples.
    bool bufferSample(const SensorSample& sample);
    /// Gives `segmentValues` and `segmentDeviations` the rows of this run.
    void resetRows();
    /// The test of the rest steps, or of the one position.
    bool testRest();
    void logVerdict(bool passedTest);
    /// Whether two directions lie 45 degrees apart or more; false where either is no direction.
    static bool isWrongMovement(const Vector& expected, const Vector& measured);
    /// Takes the limits, which are defined in `definedIn`, to `dataUnit`.
    void convertLimits(Unit definedIn);
    /// The firmware's data, then the form factor and hinge of the platform.
    void getCalibrationDataAndPlatform();
    /// Medians of the samples in half-open index ranges; adds their deviations to `whiteNoise`.
    Vector medianAndDeviation(std::span<const std::array<std::int64_t, 2>> ranges);
    /// The values of a sample as a `Vector` of 3.
    Vector sampleVector(std::int64_t index) const;
    double sampleTime(std::int64_t index) const;

  private:
    /// Until when (ms) the stability window from `start` (ms) holds the same samples at least.
    double nextChange(double start) const;
    Matrix invertedRecord(const Matrix& scale, const Matrix& mapping);
    Vector offsetAfterRecord(const Matrix& scale, const Matrix& mapping);
    struct RestStatistics {
        Vector average;
        Vector deviation;
    };
    /// Of all samples taken in; throws `CalibrationException` if there were none.
    RestStatistics restStatistics() const;
    void checkOffset(const Vector& found);
    /// Enters a failed check: the first one names the parameter, every one adds its reason.
    void fail(bool condition, std::wstring_view parameter, std::string_view reason);
    void beginCheck(const Matrix& measured);
    void finishCheck();
    void logCalibratedPositions(const std::vector<Vector>& positions);
    /// Mean distance of calibrated positions from `expectedValues`.
    double expectedError(const std::vector<Vector>& positions) const;
    void checkScaleAndRotation();
    void checkScaleElements();
    static bool isFinite(const Vector& vector);

    std::wstring stepTitle(int step) const;
    bool testMean(int step, double threshold, bool& wrongMovement);
    bool testNoise(int step, double threshold);
    bool testSpikes(int step, double threshold);
    bool testRestNoise(const Vector& deviation);
    bool testRestSpikes(const Vector& average);
    bool testRestAverage(const Vector& average);

    Vector applyModel(const Vector& raw) const;
    std::vector<SensorSample> predictByRotation(double start, double end,
                                                const InertialSensor& gyroscope, int position,
                                                const Matrix& rotation) const;

    void loadStaticXml(const XmlElement& element, std::uint8_t version);
    void loadDynamicXml(const XmlElement& element);
    void saveStaticXml(XmlElement& element, const ByteString& record) const;
    static void saveVendorData(XmlElement& element, const ByteString& record);
    void setImportedNoise();
};

}  // namespace tavoren
