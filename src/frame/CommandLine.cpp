#include "frame/CommandLine.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "common/CmdLineException.h"
#include "common/Text.h"
#include "platform/Files.h"

namespace tavoren {

namespace {

// Who may stand beside whom.
constexpr std::uint8_t transfer = 2;  // import and export of calibration data
constexpr std::uint8_t offline = 4;
constexpr std::uint8_t calibration = 8;
constexpr std::uint8_t test = 16;
constexpr std::uint8_t magneticTest = 64;
constexpr std::uint8_t allButTransfer = 0xFD;

constexpr bool withValue = true;
constexpr bool noValue = false;
constexpr bool command = true;
constexpr bool modifier = false;

constexpr Option row(std::string_view name, bool takesValue, std::string_view valueName,
                     bool isCommand, int groups, std::string_view help) {
    return {name, takesValue, valueName, false, isCommand, help, static_cast<std::uint8_t>(groups)};
}

constexpr std::array optionTable{
    row("ImportXml", withValue, "<xml-file-path>", command, transfer,
        "Import calibration data from XML file"),
    row("ExportXml", withValue, "<xml-file-path>", command, transfer,
        "Save FW current calibration data to XML file"),
    row("CalibrateOffline", withValue, "", command, offline,
        "Run the calibration offline, with no machine dependency"),
    row("Calibrate", withValue, "<sensors>", command, calibration,
        "Activate calibration flow on selected sensors"),
    row("TestCalibration", withValue, "", command, test, "Test the calibration of all sensors"),
    row("MagTest", noValue, "", command, magneticTest, "Test the environment magnetic noise level"),
    row("ExportAllFiles", withValue, "<folder-path>", modifier, allButTransfer,
        "Export output file to selected folder"),
    row("ExportResult", noValue, "", command, allButTransfer,
        "Export calibration result to output folder"),
    row("UseRawData", withValue, "<dump-folder-path>", modifier, offline | calibration | test,
        "Read the sensors data from dump files instead of sampling sensors"),
    row("DumpPrefix", withValue, "<dump-file-prefix>", modifier, offline | calibration | test,
        "Dump-files prefix (default is dataDump)"),
    row("UpdateTVN", noValue, "", modifier, calibration,
        "Flush the calculated calibration data to the TVN"),
    row("Auto", withValue, "<config-file-path>", modifier, offline | calibration,
        "Automatic ALS calibration process, based on configuration file"),
    row("Minimal", noValue, "", modifier, calibration | test,
        "Performs the fastest and minimal calibration on the selected sensors. For motion sensors "
        "this will trigger a 1 position face up calibration"),
    row("FourSteps", noValue, "", modifier, offline | calibration | test,
        "Performs the shortened 4 steps calibration on the selected sensors"),
    row("MagAccuracyTest", noValue, "", modifier, test,
        "Performs 4 steps test on Magnetometer accuracy"),
    row("CheckVsOriginalAxis", noValue, "", modifier, calibration,
        "Fail 4 steps Calibration if Axis Mapping of Accelerometer differs from original one"),
    row("PrimaryOnly", noValue, "", modifier, offline | calibration | test,
        "Calibrate primary sensors only"),
    row("SecondaryOnly", noValue, "", modifier, offline | calibration | test,
        "Calibrate secondary sensors only"),
    row("NoEnter", withValue, "", modifier, calibration | test,
        "Wait x milliseconds instead of user pressing Enter"),
    row("NoGyroRotation", noValue, "", modifier, calibration,
        "Does not calculate the exact Gyroscope rotation, use this option if you don't have "
        "fixture"),
    row("SamplingInterval", withValue, "<sampling_interval_ms>", modifier, calibration | test,
        "Assign specific sampling interval of sensors, unit is ms"),
};

constexpr std::size_t longestValue = 255;

/// Judges a value by itself; empty if it is good, else what the message says behind the name.
using ValueRule = std::string (*)(std::string_view value);

std::string checkLength(std::string_view value) {
    return value.size() > longestValue ? "length exceeds " + std::to_string(longestValue) : "";
}

std::string checkCharacters(std::string_view value) {
    const bool forbidden = value.find_first_of("<>|?*") != std::string_view::npos;
    return forbidden ? "forbidden character found." : "";
}

std::string checkFileExists(std::string_view value) {
    return FileReader(value).isOpen() ? "" : "file does not exist.";
}

std::string checkDigits(std::string_view value) {
    const bool other = value.find_first_not_of("0123456789") != std::string_view::npos;
    return other ? "only positive integer is accepted." : "";
}

std::string checkNoFolder(std::string_view value) {
    const bool folder = value.find_first_of("/\\") != std::string_view::npos;
    return folder ? "prefix ought not contain directory" : "";
}

struct ValueCheck {
    std::string_view option;  ///< empty for all options
    ValueRule rule;
};

constexpr std::array valueChecks{
    ValueCheck{"", checkLength},
    ValueCheck{"", checkCharacters},
    ValueCheck{"ImportXml", checkFileExists},
    ValueCheck{"Auto", checkFileExists},
    ValueCheck{"NoEnter", checkDigits},
    ValueCheck{"SamplingInterval", checkDigits},
    ValueCheck{"DumpPrefix", checkNoFolder},
};

void checkValue(const Option& option, std::string_view typed, std::string_view value) {
    for (const auto& check : valueChecks) {
        if (!check.option.empty() && check.option != option.name)
            continue;
        const std::string fault = check.rule(value);
        if (!fault.empty())
            throw CmdLineException("Invalid value of: '" + std::string(typed) + "', " + fault);
    }
}

/// The option named `name` in any case, null if there is none.
template <typename Options>
auto findByName(const Options& options, std::string_view name) {
    const auto found = std::find_if(options.begin(), options.end(), [name](const auto& option) {
        return equalsIgnoringCase(option.name, name);
    });
    return found == options.end() ? nullptr : &*found;
}

}  // namespace

CommandLine::CommandLine() : CommandLine({optionTable.begin(), optionTable.end()}) {}

CommandLine::CommandLine(std::vector<Option> options) : table(std::move(options)) {}

bool CommandLine::isSet(std::string_view name) const {
    return findByName(given, name) != nullptr;
}

std::string CommandLine::value(std::string_view name) const {
    for (const auto& option : given) {
        if (option.name == name)
            return option.value;
    }
    return {};
}

void CommandLine::parse(int argc, const char* const* argv) {
    if (!argv)
        throw CmdLineException("No Command line arguments");
    if (argc < 0)
        throw CmdLineException("Negative number of arguments");
    parseArguments({argv, argv + argc});
    checkExtensions();
    checkMandatory();
    checkCombinations();
    checkRules();
}

void CommandLine::parseArguments(const std::vector<std::string>& arguments) {
    given.clear();
    programPath = arguments.empty() ? "" : arguments[0];
    for (std::size_t at = 1; at < arguments.size(); ++at) {
        const std::string& argument = arguments[at];
        if (!argument.starts_with('-'))
            throw CmdLineException("Invalid argument: '" + argument + "'");
        const std::string typed = argument.substr(1);
        if (isSet(typed))
            throw CmdLineException("The '" + typed + "' argument was already specified");
        const Option* const option = findByName(table, typed);
        if (!option)
            throw CmdLineException("Invalid argument: '" + typed + "'");
        ParsedOption parsed{*option, {}};
        if (option->takesValue) {
            ++at;
            if (at == arguments.size() || arguments[at].starts_with('-'))
                throw CmdLineException("Could not find value for '" + typed + "'");
            checkValue(*option, typed, arguments[at]);
            parsed.value = arguments[at];
        }
        given.push_back(std::move(parsed));
    }
}

}  // namespace tavoren
