#include <algorithm>
#include <system_error>
#include <utility>

#include "common/CalibrationException.h"
#include "common/NeverDestroyed.h"
#include "common/SmhiException.h"
#include "control/Process.h"
#include "control/SensorManager.h"
#include "firmware/PNRRecordPrivate.h"
#include "firmware/SDT.h"
#include "frame/Console.h"
#include "frame/Logger.h"
#include "sensors/Sensor.h"

namespace tavoren {

namespace {

constexpr double readyTimeLimit = 5000.0;     // ms of sample time
constexpr std::uint32_t motionInterval = 10;  // ms
constexpr std::uint32_t lightInterval = 20;   // ms

// Says that `stageDone` has run since the main thread last looked; guarded by `stageLock`.
bool stageFinished = false;

std::vector<Luid> luidsOf(const std::vector<std::shared_ptr<Sensor>>& sensors) {
    std::vector<Luid> luids;
    for (const auto& sensor : sensors)
        luids.push_back(sensor->luid);
    return luids;
}

std::vector<SampledSensor> sampledSensors(const std::vector<std::shared_ptr<Sensor>>& sensors) {
    std::vector<SampledSensor> list;
    for (const auto& sensor : sensors)
        list.push_back({sensor->luid, sensor->displayName()});
    return list;
}

/// The process-wide recording; there is none before the first start and after a stop. Its life ends
/// with that of the manager it delivers to.
std::unique_ptr<PNRRecordPrivate>& PNRRecord() {
    static NeverDestroyed<std::unique_ptr<PNRRecordPrivate>> handle;
    return handle.object;
}

PNRRecordPrivate& madeRecord() {
    if (!PNRRecord())
        PNRRecord() = std::make_unique<PNRRecordPrivate>();
    return *PNRRecord();
}

}  // namespace

SensorManager::~SensorManager() {
    if (PNRRecord() && PNRRecord()->sensorManager == this)
        PNRRecord().reset();
}

void SensorManager::configureSampling() {
    for (const auto& sensor : sensors) {
        sensorsByLuid[luidToString(sensor->luid)] = sensor;
        sensor->calcReverseSdt();
    }
    if (customIntervalSet)
        reportInterval = customInterval;
    else if (process->type == RunMode::ambientLight)
        askReportInterval();
    else
        reportInterval = motionInterval;
}

void SensorManager::askReportInterval() {
    bool failed = false;
    reportInterval = 0;
    for (const auto& sensor : sensors) {
        try {
            reportInterval = std::max(reportInterval, SDT().getMinReportInterval(sensor->luid));
        } catch (const SmhiException&) {
            failed = true;
        }
    }
    if (failed || reportInterval == 0)
        Console::printLine(
            "failed to get minimal reporting interval from sensor, will use default sampling "
            "interval: 20ms");
    if (failed || reportInterval < lightInterval)
        reportInterval = lightInterval;
}

void SensorManager::startSampling() {
    stopped = false;
    {
        const std::lock_guard lock(stageLock);
        stageFinished = false;
    }
    try {
        SDT().startSampling(sampledSensors(sensors), reportInterval, 0.0);
        Logger::write(LogLevel::debug, "SensorManager::startSampling", __LINE__,
                      "Report Interval is " + std::to_string(reportInterval));
        PNRRecordPrivate& record = madeRecord();
        record.sensorManager = this;
        if (!record.start())
            throw CalibrationException("Failed to start PNRRecord");
    } catch (const SmhiException&) {
        throw CalibrationException("Failed to start sampling");
    } catch (const std::system_error&) {  // no thread to be had
        throw CalibrationException("Failed to start sampling");
    }
}

void SensorManager::stopSampling() {
    constexpr const char* function = "SensorManager::stopSampling";
    Logger::write(LogLevel::insane, function, __LINE__, "Enter SensorManager::stopSampling()");
    if (sensors.empty())
        throw CalibrationException("No sensors were set for sampling");
    bool linkHolds = stopRecording();
    try {
        SDT().stopSampling(luidsOf(sensors));
    } catch (const SmhiException&) {
        linkHolds = false;
    }
    if (!linkHolds)
        throw CalibrationException("Failed to stop sampling");
    Logger::write(LogLevel::insane, function, __LINE__, "Exit SensorManager::stopSampling()");
}

/// Stops twice: the second time, as the recording goes, any session that is left. False if the link
/// failed; whether a session ended in order is of no account.
bool SensorManager::stopRecording() {
    bool linkHolds = true;
    try {
        madeRecord().stop();
    } catch (const std::exception&) {  // the link, or an event or thread of the system
        linkHolds = false;
    }
    PNRRecord().reset();
    return linkHolds;
}

std::shared_ptr<Sensor> SensorManager::findSensor(std::uint64_t luid) const {
    for (const auto& [text, sensor] : sensorsByLuid)
        if (sensor->luid.value() == luid)
            return sensor;
    return nullptr;
}

std::int32_t SensorManager::rawDivisorOf(const Sensor& sensor) const {
    return sensor.rawDivisor;
}

/// Notes which sensors have reported. The sample that completes the set is dropped as well.
void SensorManager::noteReady(const Sensor& sensor, double time) {
    if (time - firstSampleTime > readyTimeLimit) {
        failStage("Too long time waiting for all sensors data to be ready.");
        return;
    }
    allReady = true;
    for (const auto& entry : sensors) {
        entry->dataReady = entry->dataReady || entry->luid == sensor.luid;
        allReady = allReady && entry->dataReady;
    }
}

void SensorManager::handleData(const std::shared_ptr<Sensor>& sensor, double time,
                               std::span<const double> values) {
    if (values.size() != sensor->valueCount)
        return;
    if (firstSampleTime == 0.0)
        firstSampleTime = time;
    if (!allReady) {
        noteReady(*sensor, time);
        return;
    }
    if (!baseTimeSet) {
        baseTime = time;
        baseTimeSet = true;
    }
    SensorSample sample{baseTime > time ? 0.0 : time - baseTime, SampleValues(values)};
    try {
        sensor->reverseStaticCalibration(sample);
        takeSample(sensor, sample);
    } catch (const std::exception& e) {
        Logger::write(LogLevel::debug, "SensorManager::handleData", __LINE__,
                      "Caught exception from dataRecieved, aborting");
        failStage(e.what());
        return;
    }
    if (takeStepReady(*sensor)) {
        Logger::write(LogLevel::debug, "SensorManager::handleData", __LINE__,
                      "SensorManager: Can move next!!");
        stepFinished();
    }
}

void SensorManager::takeSample(const std::shared_ptr<Sensor>& sensor, const SensorSample& sample) {
    const std::lock_guard lock(dataLock);
    SampleBuffer& stored = rawData_[sensor];
    if (stored.size() >= mostSamples)
        throw CalibrationException("Too many samples from sensor " + sensor->displayName());
    stored.append(sample);
    if (sensor->dataRecieved(sample) && process->isStageIndicator(*sensor))
        process->onSample(sample);
}

bool SensorManager::takeStepReady(const Sensor& sensor) {
    return !process->endsByUser() && process->isStageIndicator(sensor) &&
           process->stepReady.exchange(false);
}

void SensorManager::stepFinished() {
    switch (process->type) {
        case RunMode::magneticTest:
            ++process->stageIndex;
            break;
        case RunMode::calibrate:
        case RunMode::ambientLight:
        case RunMode::test:
            if (process->stageIndex == process->stepCount)
                stopped = true;
            stageDone(true);
            break;
        case RunMode::none:
            break;
    }
}

void SensorManager::stageDone(bool status) {
    endStage(status, {});
}

void SensorManager::failStage(const std::string& text) {
    endStage(false, text);
}

void SensorManager::endStage(bool status, const std::string& text) {
    const std::lock_guard lock(stageLock);
    if (!text.empty())
        failureText = text;
    stageFinished = true;
    stageSuccess = status;
    stageCondition.notify_all();
    Logger::write(LogLevel::info, "SensorManager::stageDone", __LINE__,
                  std::string("stageDone with status ") + (status ? "1" : "0"));
}

void SensorManager::waitForStepFinish(bool lastRotation) {
    if (process->endsByUser())
        endStepByUser(lastRotation);
    const std::lock_guard lock(stageLock);
    if (!process->endsByUser())
        waitForWorker();
    stageFinished = false;  // in the hold that saw it: the worker may be ending the next step
    if (stageSuccess)
        return;
    if (failureText.empty())
        failureText = "DATA COLLECTION FAILED\n Failed to get samples from FW";
    throw CalibrationException(failureText);
}

void SensorManager::waitForWorker() {
    const auto deadline = std::chrono::steady_clock::now() + stageTimeLimit;
    if (stageCondition.wait_until(stageLock, deadline, [] { return stageFinished; }))
        return;
    Logger::write(LogLevel::debug, "SensorManager::waitForStepFinish", __LINE__,
                  "finish to wait mutex, timeout");
    stageSuccess = false;
    failureText =
        "DATA COLLECTION FAILED\n Timeout, failed to get stable samples or to detect motion of "
        "the required sensors";
}

std::size_t SensorManager::storedSamples(const std::shared_ptr<Sensor>& sensor) const {
    const std::lock_guard lock(dataLock);
    const auto found = rawData_.find(sensor);
    return found == rawData_.end() ? 0 : found->second.size();
}

void SensorManager::endStepByUser(bool lastRotation) {
    {
        const std::lock_guard lock(stageLock);
        stageSuccess = true;
    }
    Console::readCharacter();
    std::shared_ptr<Sensor> indicator;
    for (const auto& sensor : sensors)
        if (process->isStageIndicator(*sensor))
            indicator = sensor;
    if (!indicator)
        throw CalibrationException("Error. stageIndicatorSensor is NULL");
    stageIndices.push_back(static_cast<std::int32_t>(storedSamples(indicator)));
    if (indicator->holdsName("Magnetometer"))
        checkMovement(*indicator);
    Console::printLine("User pressed to signal end");
    if (lastRotation) {
        indicator->startMagPreTest();
        if (indicator->holdsName("Magnetometer") &&
            !indicator->checkMagPreTest_threeRotations(stageIndices))
            throw CalibrationException(
                "Data collected during three rotation phase in mag environment test is abnormal. "
                "Make sure the movement instructions were followed.");
    }
    stepFinished();
}

void SensorManager::checkMovement(Sensor& indicator) {
    constexpr std::size_t translationStep = 4;
    const std::size_t steps = stageIndices.size();
    if (steps >= translationStep) {
        if (!indicator.checkMagPreTest_translation())
            throw CalibrationException(
                "Data collected during translation phase in mag environment test is abnormal. "
                "Make sure the movement instructions were followed.");
        return;
    }
    std::int32_t axis = 0;
    const std::int32_t first = steps == 1 ? 0 : stageIndices[steps - 2];
    if (!indicator.checkMagPreTest_singleRotation(first, stageIndices.back() - 1, axis))
        throw CalibrationException(
            "Data collected during rotation phase in mag environment test is abnormal. "
            "Make sure the movement instructions were followed.");
}

}  // namespace tavoren
