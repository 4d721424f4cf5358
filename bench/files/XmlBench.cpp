#include <benchmark/benchmark.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "BesideFloor.h"
#include "common/Utf8.h"
#include "files/CalibrationFile.h"
#include "files/xml/XmlCode.h"
#include "files/xml/XmlDeclaration.h"
#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"
#include "files/xml/XmlText.h"
#include "platform/Files.h"
#include "Recording.h"
#include "simulator/Script.h"

namespace tavoren::bench {
namespace {

constexpr int loading = 0, saving = 1;

std::shared_ptr<XmlElement> makeEntry(int index) {
    auto entry = std::make_shared<XmlElement>(L"Sensor");
    entry->setAttribute(L"Name", L"Accelerometer");
    entry->setAttribute(L"Index", std::to_wstring(index));
    for (const wchar_t* const name : {L"Offset", L"Scale", L"Noise", L"Rotation", L"Norm"}) {
        auto result = std::make_shared<XmlElement>(name);
        result->setAttribute(L"Success", L"true");
        result->addChild(std::make_shared<XmlText>(L"0.012345,-0.998877,0.004321;"));
        entry->addChild(std::move(result));
    }
    return entry;
}

/// A result log, not far from the largest file that is loaded.
void saveLog(const std::string& path) {
    constexpr int entryCount = 4000;
    XmlDocument document;
    document.addChild(
        std::make_shared<XmlDeclaration>(L"xml", L"version=\"1.0\" encoding=\"UTF-8\""));
    auto root = std::make_shared<XmlElement>(L"Log");
    for (int i = 0; i < entryCount; ++i)
        root->addChild(makeEntry(i));
    document.addChild(std::move(root));
    document.save(path);
}

/// Loads the file or saves what it holds, beside the bare bytes.
void runFile(benchmark::State& state, const std::string& what, const std::string& path) {
    XmlDocument loaded;
    if (loaded.load(path) != XmlCode::success)
        throw std::runtime_error("load failed");
    const std::string bytes = readFile(path).value();
    const std::wstring text = fromUtf8(bytes).value();
    const auto load = [&] {
        return secondsOf([&] { benchmark::DoNotOptimize(XmlDocument().load(path)); });
    };
    const auto decode = [&] {
        return secondsOf([&] { benchmark::DoNotOptimize(fromUtf8(readFile(path).value())); });
    };
    const auto save = [&] {
        return secondsOf([&] { benchmark::DoNotOptimize(loaded.save(path)); });
    };
    const auto encode = [&] {
        return secondsOf([&] { replaceFile(path, toUtf8(text).value(), LineEnds::asWritten); });
    };
    if (state.range(0) == loading)
        runBesideFloor(state, {"load " + what, "read the bytes, decode UTF-8", "B"}, bytes.size(),
                       load, decode);
    else
        runBesideFloor(state, {"save " + what, "encode UTF-8, write the bytes", "B"}, bytes.size(),
                       save, encode);
}

void calibrationFile(benchmark::State& state) {
    const Recording recording("full", {"A", "G", "M"}, simulator::ScriptTiming{}.rest);
    OfflineRun run(recording, fullCalibration());
    const MutedConsole muted;
    run.play();
    for (const auto& sensor : run.sensors)
        sensor->calibrate();
    const std::string path = recording.folder.file("calibration.xml");
    writeCalibrationFile(path, run.sensors, false);
    runFile(state, "a calibration file", path);
}
BENCHMARK(calibrationFile)->Arg(loading)->Arg(saving)->Iterations(101)->UseManualTime();

void logFile(benchmark::State& state) {
    const ScratchFolder folder;
    const std::string path = folder.file("log.xml");
    saveLog(path);
    runFile(state, "a log of 1.6 MB", path);
}
BENCHMARK(logFile)->Arg(loading)->Arg(saving)->Iterations(9)->UseManualTime();

}  // namespace
}  // namespace tavoren::bench
