#include "Recording.h"

#include <random>

#include "BesideFloor.h"
#include "control/NewMotionProcess.h"
#include "sensors/createSensor.h"
#include "simulator/Device.h"
#include "simulator/Recorder.h"

namespace tavoren::bench {

ScratchFolder::ScratchFolder()
    : path(std::filesystem::temp_directory_path() /
           ("tavoren_bench_" + std::to_string(std::random_device{}()))) {
    std::filesystem::create_directories(path);
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

Recording::Recording(const std::string& sequence, std::vector<std::string> letters,
                     double restSeconds)
    : sensorLetters(std::move(letters)) {
    simulator::DevicePlan plan;
    plan.sensors = sensorLetters;
    simulator::Device device(plan);
    device.reset();
    simulator::ScriptTiming timing;
    timing.rest = restSeconds;
    recordDumps(device, simulator::Script::of(sequence, timing), folder.path.string());
}

double Recording::restForRows(std::size_t rows) {
    constexpr double rowsPerSecond = 100.0;
    constexpr double moving = 4.5 * simulator::ScriptTiming{}.fullTurn;  // 3 turns, 3 quarters
    return (static_cast<double>(rows) / rowsPerSecond - moving) / 7.0;
}

std::vector<std::shared_ptr<Sensor>> Recording::makeSensors() const {
    std::vector<std::shared_ptr<Sensor>> sensors;
    for (const std::string& letter : sensorLetters)
        sensors.push_back(createSensor(simulator::sensorKind(letter).luid));
    return sensors;
}

OfflineRun::OfflineRun(const Recording& recording, const std::shared_ptr<Process>& process)
    : sensors(recording.makeSensors()) {
    const MutedConsole muted;
    manager.setSensors(sensors);
    manager.setProcess(process);
    manager.loadDump(recording.folder.path.string(), "dataDump", false);
}

double OfflineRun::play() {
    return secondsOf([this] { manager.playData(); });
}

std::shared_ptr<Process> fullCalibration() {
    auto process = std::make_shared<NewMotionProcess>(SequenceKind::full);
    process->type = RunMode::calibrate;
    process->init();
    return process;
}

}  // namespace tavoren::bench
