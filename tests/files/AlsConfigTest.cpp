#include "files/AlsConfig.h"

#include <gtest/gtest.h>

#include "common/CalibrationException.h"
#include "files/CsvParser.h"
#include "sensors/ExpectThrow.h"
#include "TemporaryFolder.h"

namespace tavoren {
namespace {

/// What reading the file gives: "levels / delay", or the failure.
std::string outcomeOf(const std::string& path) {
    AlsConfig config{7, {}};
    std::string text = textOf<CalibrationException>([&] { CsvParser().readAlsConfig(path, config); });
    if (text != "(nothing thrown)")
        return text;
    text.clear();
    for (const std::int32_t level : config.values)
        text += std::to_string(level) + " ";
    return text + "/ " + std::to_string(config.delayTime);
}

TEST(AlsConfigTest, Files) {
    const TemporaryFolder folder;
    const std::string path = folder / "light.txt";
    const std::string nothing = "Invalid configuration file " + path;
    const std::string format =
        "Invalid value in the configuration file. The format should be "
        "\"values=list of comma separated values\" or \"delay_time=value\"";
    const std::string order = "Invalid values in configuration file. Values should be in ascending or descending order";
    const std::string step = "Invalid delta between values in configuration file. Minimum delta should be 300";
    for (const auto& [content, outcome] : std::vector<std::pair<std::string, std::string>>{
             {"values=100,500,1000\ndelay_time=3\n", "100 500 1000 / 3"},
             {"# note\r\n\r\n values =\t1000 , 500,100\r\ndelay_time= 50 \r\n", "1000 500 100 / 50"},
             {"values=1\nvalues=400,100\na=b=c\nvalues=\n", "400 100 / 7"},
             {"values=500,+900,", "500 900 / 7"},
             {"delay_time=10\n", nothing},
             {"Values=100", format},
             {"# values=100", format},
             {"values==", "Invalid number of values in configuration file. Minimum number of values is 1"},
             {"values=-99999999999", "Invalid light value in configuration file -2147483648. value should be bigger than 1"},
             {"values=100,5x", "Conversion error. Value 5x is not a valid number"},
             {"values=100,1000,1000", order},
             {"values=100,399", step},
             {"values=9\ndelay_time=2", "Invalid delay time. Minimum delay time is 3 seconds."},
             {"delay_time=51", "Invalid delay time. Maximum delay time is 50 seconds."},
             {std::string(std::size_t{2} << 20, '#'), "Line too long at input file " + path},
         }) {
        folder.write("light.txt", content);
        EXPECT_EQ(outcomeOf(path), outcome) << content.substr(0, 80);
    }
    for (const std::string& name : {folder / "absent.txt", folder.path.string()})
        EXPECT_EQ(outcomeOf(name), "Cannot read input file " + name);
}

}  // namespace
}  // namespace tavoren
