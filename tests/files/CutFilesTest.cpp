// Dumps, calibration files and light levels, cut behind each of their bytes.

#include <gtest/gtest.h>

#include "common/CalibrationException.h"
#include "files/AlsConfig.h"
#include "files/CalibrationFile.h"
#include "files/CsvParser.h"
#include "files/TemporaryFolder.h"
#include "sensors/createSensor.h"
#include "sensors/Sensor.h"

namespace tavoren {
namespace {

/// Calls `read` with each shorter file; gives how many were read without a refusal.
template <typename Read>
std::size_t acceptedCuts(const TemporaryFolder& folder, const std::string& name, const std::string& whole, Read read) {
    std::size_t accepted = 0;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        folder.write(name, whole.substr(0, size));
        try {
            read();
            ++accepted;
        } catch (const CalibrationException& e) {
            EXPECT_STRNE(e.what(), "") << size;
        }
    }
    return accepted;
}

TEST(CutFiles, ADumpKeepsTheRowsInFrontOfTheCut) {
    const TemporaryFolder folder;
    const auto sensor = createSensor({115, 0, 0, 0, 2});
    SampleBuffer samples;
    for (int i = 0; i < 5; ++i)
        samples.append({10.0 * i, {0.25 * i, -1.5, 1.0}});
    CsvParser().writeToFile(folder / "d.csv", {{sensor, samples}}, {});
    const auto read = [&] {
        const SampleBuffer found = CsvParser().readFromFile(folder / "d.csv", std::vector{sensor}, true).at(sensor);
        ASSERT_LE(found.size(), samples.size());
        for (std::size_t i = 0; i + 1 < found.size(); ++i)  // the last one may have lost digits
            EXPECT_EQ(found[i].values[0], samples[i].values[0]);
    };
    const std::string whole = folder.read("dAccelerometer.csv");
    EXPECT_GT(acceptedCuts(folder, "dAccelerometer.csv", whole, read), 5U);
}

TEST(CutFiles, ACalibrationHasAllItsBytesOrNoneAndLevelsStayInOrder) {
    const TemporaryFolder folder;
    const auto sensor = createSensor({999, 1, 2, 0, 0});
    sensor->calibrationData = {131, 2, 0xCD, 0x0E};
    writeCalibrationFile(folder / "f.xml", {sensor}, false);
    const auto readXml = [&] {  // elements may stay open at the end; without a length there are no bytes
        for (const auto& found : readCalibrationFile(folder / "f.xml"))
            if (found->calibrationData != ByteString{131, 2}) {
                EXPECT_EQ(found->calibrationData, sensor->calibrationData);
            }
    };
    EXPECT_GT(acceptedCuts(folder, "f.xml", folder.read("f.xml"), readXml), 5U);
    const auto readLevels = [&] {
        AlsConfig config{7, {}};
        CsvParser().readAlsConfig(folder / "l.txt", config);
        EXPECT_TRUE(std::is_sorted(config.values.begin(), config.values.end()));
    };
    EXPECT_GT(acceptedCuts(folder, "l.txt", "# levels\nvalues=100,500,1000\ndelay_time=50\n", readLevels), 5U);
}

}  // namespace
}  // namespace tavoren
