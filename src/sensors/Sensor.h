#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/ByteString.h"
#include "common/Luid.h"
#include "common/RunMode.h"
#include "common/SampleBuffer.h"
#include "common/Units.h"
#include "numerics/Vector.h"

namespace tavoren {

class Matrix;
class SensorRun;
class XmlElement;

/// One firmware sensor: its identity, its samples, what the firmware holds for it and what this run
/// computed, and its place in the result log.
///
/// A sensor serves one run. Samples are taken in on the one thread that delivers them; everything
/// else runs on the main thread, `calibrate` and `testCalibration` after sampling has ended.
class Sensor {
  public:
    /// Values of `category`.
    static constexpr std::uint32_t generic = 0;
    static constexpr std::uint32_t inertial = 1;
    static constexpr std::uint32_t ambientLight = 2;

    /// Values of `formFactor` that know a second sensor.
    static constexpr std::uint8_t formFactor2in1 = 0;
    static constexpr std::uint8_t formFactorMid = 5;

    explicit Sensor(const Luid& id);
    Sensor(const Sensor&) = delete;
    Sensor& operator=(const Sensor&) = delete;

    /// Computes `calibrationData` from the samples; throws `CalibrationException` if the result is
    /// refused, `MathException` if it cannot be computed.
    virtual void calibrate();
    /// Judges the samples of a calibrated sensor; true if all tests passed.
    virtual bool testCalibration();
    /// Takes one sample in, in raw axes and `dataUnit`; false keeps it from the sequence.
    virtual bool dataRecieved(const SensorSample& sample);
    /// Prepares the undoing of the firmware's calibration from `firmwareData`.
    virtual void calcReverseSdt();
    virtual bool isLightSensor() const;
    /// Turns a sample that went through the firmware's static calibration into a raw one.
    virtual void reverseStaticCalibration(SensorSample& sample) const;
    /// The result in words, for the operator.
    virtual std::string resultText() const;
    /// Number of samples taken in.
    virtual std::size_t getDataSize() const;
    virtual Luid getLuid() const;
    virtual bool supportsRunMode(RunMode mode) const;
    virtual bool canCalibrate() const;
    virtual bool hasStaticCalibration() const;
    /// Takes over what the firmware holds; throws `CalibrationException` for data of another shape.
    virtual void setFirmwareCalibration(ByteString bytes);
    /// Throws `CalibrationException` unless the bytes have the shape of this sensor's data or are
    /// opaque vendor data (`FormatId` 128 and above).
    virtual void validateCalibrationData(const ByteString& bytes) const;
    virtual void setSensorManager(SensorRun& manager);
    virtual bool isPrimary() const;
    /// A text typed by the operator.
    virtual void userInput(const std::string& text);
    virtual void startMagPreTest();
    virtual bool checkMagPreTest_threeRotations(std::vector<std::int32_t> stageIndices);
    virtual bool checkMagPreTest_singleRotation(std::int32_t first, std::int32_t last,
                                                std::int32_t& axis);
    virtual bool checkMagPreTest_translation();
    /// Reads the sensor's own children of `CalibrationData` into `calibrationData`; throws
    /// `CalibrationException` with the text of what is wrong.
    virtual void loadCalibrationXml(const XmlElement& element, std::uint8_t id,
                                    std::uint8_t version) = 0;
    /// Reads the firmware's data for this sensor; throws `SmhiException` if the link fails.
    virtual void getCalibrationData();
    virtual void setCheckVsOriginalAxis(bool check);
    virtual void setNoGyroRotation(bool reduce);
    /// Adds the sensor's own children for `record` to a `CalibrationData` element.
    virtual void saveCalibrationXml(XmlElement& element, const ByteString& record) const = 0;

    /// Whether the display name contains a type name.
    bool holdsName(std::string_view typeName) const;
    /// Whether a `FormatId` marks opaque vendor data.
    static bool isCustomFormat(std::uint8_t format) { return format >= 128; }

    /// `name`, with "_2" behind it for a second sensor: the key in all messages.
    std::string displayName() const;
    /// Validates and stores the bytes as `calibrationData`.
    void setCalibrationData(ByteString bytes);

    /// Stores the number of a form factor or hinge name, in any case; other names change nothing.
    void setFormFactor(std::string_view text);
    void setHinge(std::string_view text);
    /// The name of the stored number; empty outside the table.
    std::string formFactorName() const;
    std::string hingeName() const;

    // The result log. Every operation first makes sure that `logNode` exists.

    void ensureLogNode();
    void logElement(const std::shared_ptr<XmlElement>& element, std::wstring_view values,
                    std::wstring_view comment);
    void logComment(std::wstring_view text);
    void logValue(double value, std::wstring_view elementName, std::wstring_view comment);
    void logVector(const Vector& vector, std::wstring_view elementName, std::wstring_view comment);
    void logMatrix(const Matrix& matrix, std::wstring_view elementName, std::wstring_view comment);
    /// Attributes are pairs of name and value; a pair with an empty half is left out.
    void logTest(
        std::wstring_view elementName, std::wstring_view values, std::wstring_view comment,
        std::initializer_list<std::pair<std::wstring_view, std::wstring_view>> attributes = {});
    void beginLogSection(std::wstring_view sectionName);
    void endLogSection();
    /// Sets an attribute of `logNode`, such as `Success` or `FailureParameter`.
    void setLogAttribute(std::wstring_view attribute, std::wstring_view value);
    /// Hands the sensor's element over to the document; a later entry begins a new element.
    std::shared_ptr<XmlElement> releaseLogNode();

    bool dataReady = false;  ///< the first live sample has arrived
    std::shared_ptr<XmlElement> logNode;
    std::shared_ptr<XmlElement> logParent;  ///< the element to return to after a section
    std::uint32_t category = generic;
    Luid luid;
    ByteString calibrationData;         ///< computed or imported in this run
    ByteString firmwareData;            ///< what the firmware held when the sensor was loaded
    std::string name;                   ///< the type name; empty for sensors without an algorithm
    Unit dataUnit = Unit::unknown;      ///< of the values in memory
    Unit firmwareUnit = Unit::unknown;  ///< of the offsets in the firmware's record
    SampleBuffer bufferedData;
    bool calibratable = false;
    bool hasFirmwareData = false;
    std::uint32_t valueCount = 0;  ///< values per sample
    std::uint8_t formFactor = 0;
    std::uint8_t hinge = 0;
    std::uint32_t minDataSize = 0;  ///< bytes; 0 is no limit
    std::uint32_t maxDataSize = 0;  ///< bytes; 0 is no limit
    std::uint8_t formatId = 0;
    Vector sampleSum = Vector(3);        ///< per axis, over `sampleCount` samples
    Vector sampleSquareSum = Vector(3);  ///< of the squares
    std::uint32_t sampleCount = 0;
    Vector expectedAverage = Vector(3);  ///< what a perfectly calibrated sensor shows at rest
    double maxOffset = 0.0;              ///< limit of the one-position calibration
    std::int32_t rawDivisor = 100000;    ///< a live value is the raw integer divided by this

  protected:
    virtual ~Sensor() = default;

    /// The first byte of data that must not be empty; throws "Invalid calibration data size".
    static std::uint8_t formatOf(const ByteString& bytes);
    /// The two size bounds; throws "Invalid calibration data size".
    void checkDataSize(const ByteString& bytes) const;

    SensorRun* sensorManager = nullptr;
};

/// Keeps a section of a sensor's result log open; leaving the scope closes it.
class LogSection {
  public:
    LogSection(Sensor& owner, std::wstring_view sectionName) : sensor(owner) {
        sensor.beginLogSection(sectionName);
    }
    LogSection(const LogSection&) = delete;
    LogSection& operator=(const LogSection&) = delete;
    ~LogSection() { sensor.endLogSection(); }

  private:
    Sensor& sensor;
};

}  // namespace tavoren
