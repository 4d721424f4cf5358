#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "common/GuardedBy.h"
#include "common/RunMode.h"
#include "common/SequenceKind.h"
#include "control/CollectionStatus.h"
#include "control/Elevation.h"
#include "control/SensorManager.h"
#include "frame/CommandLine.h"

namespace tavoren {

class InertialSensor;
class Matrix;
class Process;
class SDT;
class Sensor;

/// One whole run of the tool, from the command line to the verdict. There is one in the process; it
/// lives to the end.
///
/// Everything runs on the main thread but `abort`, which the interrupt calls.
class CalibrationManager {
  public:
    /// Creates the export folder. `elevated` tells whether the process may use the device.
    explicit CalibrationManager(const CommandLine& arguments,
                                std::function<bool()> elevated = processIsElevated);

    /// The folder of `-ExportAllFiles` with a backslash behind it; empty without.
    std::string exportFolder() const;
    /// The run. Throws `CalibrationException` and the other failures of the system.
    void start();
    /// Stops sampling and saves what was collected; the way out of an interrupted run.
    void abort();

    std::uint32_t userWaitSeconds = 0;  ///< whole seconds spent waiting for the operator

    // What a run knows once it is set up.

    std::vector<std::shared_ptr<Sensor>> physicalSensors;     ///< in firmware or file order
    std::vector<std::shared_ptr<Sensor>> calibratingSensors;  ///< those that the run works on
    /// For a primary sensor the one that carries its dynamic calibration.
    std::map<std::shared_ptr<Sensor>, std::shared_ptr<Sensor>> dynamicSensors;
    std::shared_ptr<Process> process;
    SensorManager sensorManager;

  private:
    using InertialHandle = std::shared_ptr<InertialSensor>;
    struct CrossCheck;

    // The order of a run.
    void prepare();
    void setUp();
    void run();
    void finishFailedRun(const std::string& text);
    bool isOffline() const;
    bool isReplay() const;
    void printSensors() const;
    void configureSampling();
    void saveFirmwareData();
    void createExportDirectory(const std::string& path) const;

    // Sensors and sequence.
    void initProcess();
    void initPhysicalSensors();
    void matchImportedSensors(const std::vector<std::string>& platformLuids);
    void initOfflineSensors();
    void initCalibratingSensors();
    bool isCandidate(const Sensor& sensor) const;
    bool isChosen(const Sensor& sensor) const;
    void refuseSecondSensor() const;
    void checkDumpsExist() const;
    void pairDynamicSensors();
    struct DumpLocation {
        std::string folder;
        std::string prefix;
    };
    DumpLocation dumpLocation() const;

    // Data collection.
    void collectData();
    void collectLive();
    void runStep(std::int32_t step, std::int32_t waitMs);
    void waitForOperator();
    void finishFailedCollection();
    void stopQuietly();
    void collectReplay();
    void stopSampling();

    // Firmware.
    void loadSensorsData();
    void loadSensorData(Sensor& sensor);
    void flushCalibrationData();
    void restartKlv();

    // Verdicts.
    void calibrateAll();
    void calibrateOne(const std::shared_ptr<Sensor>& sensor);
    InertialHandle calibrated(std::string_view displayName) const;
    std::vector<CrossCheck> crossChecks() const;
    void checkCalibration();
    static double dipAngleSpread(const InertialHandle& magnetometer,
                                 const InertialHandle& accelerometer);
    double rotationDifference(const InertialHandle& gyroscope, const InertialHandle& other,
                              const Matrix& rotation) const;
    void magTest();
    void testAll();
    bool testOne(Sensor& sensor);
    InertialHandle motionSensor(std::string_view typeName, bool primary) const;
    bool testRotations(const InertialHandle& accelerometer, const InertialHandle& turning,
                       const InertialHandle& magnetometer) const;

    // Files.
    void writeDump();
    void writeCalibratedDump();
    void writeDumpFiles(std::string_view baseName, const SensorDataMap& data);
    void writeResultLog();
    void writeErrorLog(const std::string& text) const;
    std::string resultLogType() const;
    std::string resultLogName() const;

    const CommandLine commandLine;
    const std::function<bool()> isElevated;
    std::shared_ptr<SDT> smhi;
    std::string exportFolder_;
    bool exportEnabled = false;
    SequenceKind sequence = SequenceKind::full;
    RunMode mode = RunMode::none;
    bool calibrating = false;
    bool testing = false;
    bool magneticTest = false;
    bool flushing = false;
    /// Set under `statusLock` by sampling, under `dumpLock` by the dump writers; read without
    /// either.
    std::atomic<CollectionStatus> status{CollectionStatus::neverStarted};
    std::mutex statusLock TAVOREN_ACQUIRED_BEFORE(dumpLock);
    std::mutex dumpLock;  ///< around the writing of a dump
    bool wantAccelerometer = false;
    bool wantGyroscope = false;
    bool wantMagnetometer = false;
};

}  // namespace tavoren
