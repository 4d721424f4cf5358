// A dump that is read and written reads back, and is then written as the same bytes.

#include <array>

#include "common/SampleBuffer.h"
#include "files/CsvParser.h"
#include "fuzz/Fuzz.h"
#include "sensors/createSensor.h"
#include "sensors/Sensor.h"

namespace tavoren::fuzz {
namespace {

std::vector<std::shared_ptr<Sensor>> sensorsFor(std::uint8_t choice) {
    constexpr std::array<std::uint16_t, 5> types{115, 118, 527, 65, 999};
    return {
        createSensor({.SensorTypeId = types[choice % types.size()], .Flags = Luid::staticData})};
}

void check(Input input) {
    const TemporaryFolder& folder = workingFolder();
    const std::uint8_t choice = input.takeByte();
    auto sensors = sensorsFor(choice);
    const std::string name = CsvParser::sensorFileName("dataDump.csv", sensors[0]->displayName());
    folder.write(name, input.text());
    SensorDataMap data;
    const bool withLuid = choice >= 128;
    if (!accepts([&] { data = CsvParser().readFromFile(folder / "dataDump", sensors, withLuid); }))
        return;
    CsvParser().writeToFile(folder / "dataDump.csv", data, sensors);
    const std::string first = folder.read(name);
    sensors = sensorsFor(choice);
    sensors[0]->luid.InstanceId = 0;
    require(accepts([&] { data = CsvParser().readFromFile(folder / "dataDump", sensors, false); }),
            "a written dump reads back");
    CsvParser().writeToFile(folder / "dataDump.csv", data, sensors);
    require(withLuid || folder.read(name) == first, "it is written as the same bytes");
}

}  // namespace
}  // namespace tavoren::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavoren::fuzz::check({data, size});
    return 0;
}
