#pragma once

#include <atomic>
#include <functional>
#include <mutex>

#include "common/GuardedBy.h"
#include "numerics/Ellipsoid.h"
#include "sensors/InertialSensor.h"
#include "sensors/MedianRange.h"

namespace tavoren {

struct PlanarEllipse;

/// Calibrates a magnetometer without a reference field: an ellipsoid through all samples gives
/// offset and shape, three turns give the axes of the device, and the dip angle of the local field
/// is searched for. Also tests a calibrated magnetometer, and judges the magnetic environment.
///
/// While the environment is tested, samples come in on the recording worker and the checks run on
/// the main thread: `bufferLock` then stands over all samples and dip angles.
class Magnetometer final : public InertialSensor {
  public:
    explicit Magnetometer(const Luid& id);

    /// Throws `CalibrationException` also where the samples determine no ellipsoid.
    void calibrate() override;
    bool testCalibration() override;
    /// In the test phase of the environment test a sample without a direction raises
    /// `MathException`.
    bool dataRecieved(const SensorSample& sample) override;
    std::string resultText() const override;
    /// The raw-data sensor behind this one.
    Luid getLuid() const override;
    bool supportsRunMode(RunMode mode) const override;
    /// Fits the field to the samples of the rotations and begins the test phase; throws as
    /// `findFit`.
    void startMagPreTest() override;
    /// Whether the three rotations that end at these sample counts were made about three axes.
    bool checkMagPreTest_threeRotations(std::vector<std::int32_t> stageIndices) override;
    /// Whether the device turned and came back in samples `first` to `last`; `axis` gets the one
    /// that it turned about. Throws `CalibrationException` for samples that there are not.
    bool checkMagPreTest_singleRotation(std::int32_t first, std::int32_t last,
                                        std::int32_t& axis) override;
    /// Whether the device was moved and came back in the test phase; throws `CalibrationException`
    /// if there are no samples of it.
    bool checkMagPreTest_translation() override;
    void getCalibrationData() override;
    /// Whether the smoothed field has changed enough since `since` (ms).
    bool isRotationDone(double since) override;
    bool hasMovedFromReference() const override;
    /// Judges the size of the field before all else.
    void checkSuccess(const Matrix& measured) override;

    /// Fits the ellipsoid of the environment; throws `CalibrationException` when it is no good.
    void findFit();
    /// The limits of the running sequence, in `dataUnit`.
    void setDefaultLimits();
    /// The samples that lie further than `distance` from the one kept before them, the first one
    /// included; throws `MathException` if there are none.
    static std::vector<SensorSample> decimateSamples(std::span<const SensorSample> samples,
                                                     double distance);
    /// Fills `offset`, `scaleMatrix` (raw axes to those of the device) and `expectedValues`.
    void calcFromEllipsoid(const Ellipsoid& ellipsoid);
    /// The field of `size` that dips by `dip` (radians) at each position of the full sequence, in
    /// calibrated axes; by form factor and hinge for a second sensor. Throws
    /// `CalibrationException` outside the tables.
    void buildExpectedValues(double dip, double size);
    /// The first of `count` equidistant angles (radians) from `low` up to, not including, `high`
    /// with the least `meanAngleError` of the field vectors `positions`.
    double findDipAngle(int count, double size, const std::vector<Vector>& positions, double low,
                        double high);
    /// Mean angle (radians) between the turned vectors and `expectedValues`.
    double meanAngleError(const std::vector<Vector>& positions, const Matrix& rotation) const;
    /// The unit axis that the device turned about: the field stays on a cone around it, and points
    /// away from it. Throws `MathException` if the samples span no cone.
    static Vector rotationAxisOf(std::span<const SensorSample> samples, const Ellipsoid& ellipsoid);

    // The tests of a calibrated sensor, in four positions a quarter turn apart. `centre` is that of
    // the circle that the samples draw. Each writes a section of the result log.

    /// The noise in each position.
    bool TestMagSTD();
    /// One axis must stay still.
    bool TestStaticValues();
    /// Headings a quarter turn apart.
    bool TestMagValues(const Vector& centre);
    /// Headings north, then clockwise.
    bool TestDirection(const Vector& centre);
    /// Roundness of the circle.
    bool TestMagScale(const PlanarEllipse& ellipse);
    /// The heading of each position in degrees, 0 to 360. Throws `CalibrationException` outside
    /// the tables of second sensors.
    Vector headingAngles(const Vector& centre) const;
    /// One turn added below 0 degrees or taken off above 360, once.
    static Vector wrapDegrees(Vector degrees);

    /// Degrees between the fitted field and the third axis.
    double dipAngleOf(const SensorSample& sample) const;
    /// The verdict on the environment; throws `CalibrationException` if it is no good.
    void testEnvironment();

    /// Degrees, one for each sample of the test phase.
    std::vector<double> dipAngles TAVOREN_GUARDED_BY(bufferLock);
    Ellipsoid fittedEllipsoid;  ///< of `findFit`
    double sinDip = -1.0;       ///< of the last dip angle tried or found
    double cosDip = -1.0;
    double maxMagneticField = 650.0;
    double minMagneticField = 200.0;
    std::atomic<bool> testPhase{false};
    double defaultDecimationDistance = 1.0;  ///< stands in for a noise that is not a number
    std::mutex bufferLock;
    double findFitDistance = 0.0;
    double movementRangeLimit = 200.0;
    double displacementLimit = 300.0;
    std::vector<SensorSample> testPhaseData TAVOREN_GUARDED_BY(bufferLock);

  private:
    void calibrateFull();
    std::vector<Vector> correctedPositions(const Ellipsoid& ellipsoid) const;
    /// Fits the environment; the mean error as a fraction of the field.
    double fitEnvironment();
    /// Whether the device turned far enough and came back in samples `first` to `last`; needs
    /// `bufferLock`.
    bool hasTurned(std::int32_t first, std::int32_t last, std::int32_t& axis) const;

    struct Quantity;
    /// Runs a test in its section of the log and enters its failure.
    bool runTest(std::wstring_view section, const std::function<bool()>& test);
    bool compare(const Quantity& quantity, const Vector& measured, const Vector& expected,
                 double threshold);

    MedianRange turned;
};

}  // namespace tavoren
