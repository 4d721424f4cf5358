#include "common/CalibrationException.h"
#include "common/Extension.h"
#include "common/Text.h"
#include "control/AlsProcess.h"
#include "control/CalibrationManager.h"
#include "control/Process.h"
#include "frame/Clock.h"
#include "frame/Console.h"
#include "frame/Logger.h"
#include "frame/VerdictColor.h"
#include "platform/Files.h"
#include "platform/Platform.h"
#include "sensors/AmbientLight.h"
#include "sensors/Sensor.h"

namespace tavoren {

namespace {

/// In a replay the levels come from the configuration file, not from the operator.
void addLightLevels(const AlsProcess& process,
                    const std::vector<std::shared_ptr<Sensor>>& sensors) {
    for (const auto& sensor : sensors)
        if (const auto light = std::dynamic_pointer_cast<AmbientLight>(sensor))
            for (const std::int32_t level : process.lightLevels)
                light->addLightLevel(level);
}

}  // namespace

void CalibrationManager::collectData() {
    if (isReplay())
        collectReplay();
    else
        collectLive();
}

void CalibrationManager::collectLive() {
    std::int32_t waitMs = 0;
    const bool noEnter = commandLine.isSet("NoEnter");
    if (noEnter) {
        waitMs = leadingInteger(commandLine.value("NoEnter"));
        if (waitMs == 0)
            throw CalibrationException("Error. atoi() returned 0.");
    }
    Console::printLine(process->getInstructions(noEnter));
    try {
        for (std::int32_t step = 0; step < process->stepCount; ++step)
            runStep(step, waitMs);
    } catch (const CalibrationException&) {
        finishFailedCollection();
        throw;
    }
    stopSampling();
    if (mode == RunMode::ambientLight)
        process->finish();
}

void CalibrationManager::runStep(std::int32_t step, std::int32_t waitMs) {
    if (process->needsUserInput() && !commandLine.isSet("NoEnter"))
        waitForOperator();
    if (waitMs > 0)
        Sleep(static_cast<DWORD>(waitMs));
    if (step == 0) {
        const std::lock_guard lock(statusLock);
        sensorManager.startSampling();
        status = CollectionStatus::sampling;
    }
    sensorManager.waitForStepFinish(process->isLastRotationStage());
    Console::print("\a");
    Console::flush();
    {
        const VerdictColor color(true);
        Console::print("STEP " + std::to_string(step + 1) + " PASSED\n");
    }
    if (step < process->stepCount - 1) {
        if (process->currentStep < process->stepCount - 1)
            ++process->currentStep;
        Console::printLine(process->getInstructions(true));
    }
}

void CalibrationManager::waitForOperator() {
    constexpr std::int64_t msPerSecond = 1000;
    const std::int64_t before = nowMilliseconds();
    const std::string typed = process->readUserInput();
    userWaitSeconds += static_cast<std::uint32_t>((nowMilliseconds() - before) / msPerSecond);
    if (!typed.empty())
        sensorManager.setUserInput(typed);
}

void CalibrationManager::finishFailedCollection() {
    try {
        const VerdictColor color(false);
        if (magneticTest)
            writeResultLog();
        else
            Console::printLine("DATA COLLECTION FAILED");
    } catch (const CalibrationException&) {
        stopQuietly();
        throw;
    }
    stopQuietly();
}

/// Stops sampling; the failure that ended the collection is the one to report.
void CalibrationManager::stopQuietly() {
    try {
        stopSampling();
    } catch (const CalibrationException&) {  // NOLINT(bugprone-empty-catch)
    }
}

void CalibrationManager::collectReplay() {
    const auto [folder, prefix] = dumpLocation();
    if (!hasExtension(folder, "csv") && !isDirectory(folder))
        throw CalibrationException("Folder " + folder + " does not exist");
    try {
        sensorManager.loadDump(folder, prefix, commandLine.isSet("CalibrateOffline"));
        sensorManager.playData();
    } catch (const CalibrationException&) {
        Console::print(
            "DATA COLLECTION FAILED since there are significant differences in last sample's "
            "timestamp between sensors\n");
        throw;
    } catch (const std::exception& e) {
        Console::print("DATA COLLECTION FAILED:" + std::string(e.what()) + "\n");
        throw CalibrationException("failed during sampling sensors");
    }
    if (const auto light = std::dynamic_pointer_cast<AlsProcess>(process))
        addLightLevels(*light, calibratingSensors);
}

void CalibrationManager::stopSampling() {
    const std::lock_guard lock(statusLock);
    if (status != CollectionStatus::stopped) {
        try {
            sensorManager.stopSampling();
        } catch (const CalibrationException&) {
            Logger::write(LogLevel::debug, "CalibrationManager::stopSampling", __LINE__,
                          "CalibrationManager::start, caught CalibrationException");
            status = CollectionStatus::stopped;
            throw;
        }
    }
    status = CollectionStatus::stopped;
}

}  // namespace tavoren
