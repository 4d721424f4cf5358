// Whole offline runs on any dumps: a run ends with a verdict or with one of the tool's exceptions,
// and its result is there exactly if it was good. The first byte chooses the run; the dumps follow,
// with '|' between them.

#include <array>
#include <vector>

#include "control/CalibrationManager.h"
#include "files/xml/XmlDocument.h"
#include "frame/CommandLine.h"
#include "fuzz/Fuzz.h"
#include "fuzz/RowMutator.h"

namespace tavoren::fuzz {
namespace {

struct Kind {
    std::vector<const char*> arguments;
    std::vector<const char*> files;
    bool calibrates;
};

constexpr const char* accelerometer = "dataDumpAccelerometer.csv";
constexpr const char* gyroscope = "dataDumpGyroscope.csv";
constexpr const char* magnetometer = "dataDumpMagnetometer.csv";
constexpr const char* second = "dataDumpAccelerometer_2.csv";
constexpr const char* light = "dataDumpAmbientLightSensor.csv";

const std::array<Kind, 9>& kinds() {
    static const std::array<Kind, 9> table{{
        {{"-CalibrateOffline", "AG"}, {accelerometer, gyroscope}, true},
        {{"-CalibrateOffline", "AGM", "-ExportResult"},
         {accelerometer, gyroscope, magnetometer},
         true},
        {{"-CalibrateOffline", "AG", "-FourSteps"}, {accelerometer, gyroscope, second}, true},
        {{"-CalibrateOffline", "A"}, {accelerometer, second}, true},
        {{"-CalibrateOffline", "AM"}, {accelerometer, magnetometer}, true},
        {{"-CalibrateOffline", "ALS", "-Auto", "levels.txt", "-ExportResult"},
         {"levels.txt", light},
         true},
        {{"-TestCalibration", "AG", "-FourSteps"}, {accelerometer, gyroscope}, false},
        {{"-TestCalibration", "AG", "-Minimal"}, {accelerometer, gyroscope}, false},
        {{"-TestCalibration", "M", "-MagAccuracyTest"}, {magnetometer}, false},
    }};
    return table;
}

bool runs(const Kind& kind) {
    std::vector<const char*> arguments{"tavoren"};
    arguments.insert(arguments.end(), kind.arguments.begin(), kind.arguments.end());
    arguments.insert(arguments.end(), {"-UseRawData", ".", "-ExportAllFiles", "out"});
    return accepts([&] {
        CommandLine commandLine;
        commandLine.parse(static_cast<int>(arguments.size()), arguments.data());
        CalibrationManager manager(commandLine);
        Logger::setLogFile(manager.exportFolder());
        manager.start();
    });
}

void check(Input input) {
    const TemporaryFolder& folder = workingFolder();
    for (const char* const name : {accelerometer, gyroscope, magnetometer, second, light, "out"})
        std::filesystem::remove_all(name);
    const Kind& kind = kinds()[input.takeByte() % kinds().size()];
    for (const char* const file : kind.files)
        if (!input.bytes().empty())
            folder.write(file, input.takeUntil('|'));
    const bool good = runs(kind);
    const bool hasResult = std::filesystem::exists("out/resultCalibration.xml");
    require(hasResult == (good && kind.calibrates), "a result comes from a good run alone");
    XmlDocument document;
    require(!hasResult || document.load("out/resultCalibration.xml") == 0, "a result reads back");
}

}  // namespace
}  // namespace tavoren::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavoren::fuzz::check({data, size});
    return 0;
}

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t limit);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t limit, unsigned seed) {
    if (seed % 4 == 0)
        return LLVMFuzzerMutate(data, size, limit);
    const std::string text = tavoren::fuzz::RowMutator(seed).mutated({data, data + size});
    const std::size_t length = std::min(text.size(), limit);
    std::copy_n(text.begin(), length, data);
    return length;
}
