#include <algorithm>
#include <array>
#include <span>

#include "frame/CommandLine.h"

namespace tavoren {

namespace {

constexpr std::array<std::string_view, 11> usageForms{
    " [-ImportXml <filename>] [-ExportXml <filename>]",
    " -Calibrate <sensors> [-ExportAllFiles <folder>] [-UpdateTVN] [-UseRawData "
    "<dump-folder-path> [-DumpPrefix <dump-file-prefix>]] [-Minimal | -FourSteps] "
    "[-CheckVsOriginalAxis] [-noGyroRotation] [-PrimaryOnly | -SecondaryOnly] "
    "[-SamplingInterval <sampling_interval_ms>]",
    " -Calibrate <sensors> [-ExportAllFiles <folder> [-ExportResult]] [-UpdateTVN] "
    "[-UseRawData <dump-folder-path> [-DumpPrefix <dump-file-prefix>]] [-Minimal | "
    "-FourSteps] [-CheckVsOriginalAxis] [-noGyroRotation] [-PrimaryOnly | -SecondaryOnly] "
    "[-SamplingInterval <sampling_interval_ms>]",
    " -CalibrateOffline <sensors> -ExportAllFiles <folder> -UseRawData <dump-folder-path> "
    "[-DumpPrefix <dump-file-prefix>] [-FourSteps]  [-PrimaryOnly | -SecondaryOnly]",
    " -CalibrateOffline <sensors> -ExportAllFiles <folder> [-ExportResult] -UseRawData "
    "<dump-folder-path> [-DumpPrefix <dump-file-prefix>] [-FourSteps]  [-PrimaryOnly | "
    "-SecondaryOnly]",
    " -TestCalibration <sensors> [-ExportAllFiles <folder>]  [-Minimal | -FourSteps]  "
    "[-PrimaryOnly | -SecondaryOnly] [-SamplingInterval <sampling_interval_ms>]",
    " -Calibrate ALS [-ExportAllFiles <folder>] [-Auto <config-file-path>] [-UpdateTVN] "
    "[-UseRawData <dump-folder-path> [-DumpPrefix <dump-file-prefix>]] [-PrimaryOnly | "
    "-SecondaryOnly] [-SamplingInterval <sampling_interval_ms>]",
    " -Calibrate ALS [-ExportAllFiles <folder> [-ExportResult]] [-Auto <config-file-path>] "
    "[-UpdateTVN] [-UseRawData <dump-folder-path> [-DumpPrefix <dump-file-prefix>]] "
    "[-PrimaryOnly | -SecondaryOnly] [-SamplingInterval <sampling_interval_ms>]",
    " -CalibrateOffline ALS -Auto <config-file-path> -UseRawData <dump-folder-path> "
    "[-DumpPrefix <dump-file-prefix>] -ExportAllFiles <folder> [-PrimaryOnly | "
    "-SecondaryOnly]",
    " -CalibrateOffline ALS -Auto <config-file-path> -UseRawData <dump-folder-path> "
    "[-DumpPrefix <dump-file-prefix>] -ExportAllFiles <folder> [-ExportResult] [-PrimaryOnly "
    "| -SecondaryOnly]",
    " -MagTest [-ExportAllFiles <folder>]",
};

constexpr std::array<std::string_view, 9> usageExamples{
    " -Calibrate AGM -UpdateTVN -ExportAllFiles results",
    " -Calibrate AGM -UpdateTVN -ExportAllFiles results -ExportResult",
    " -Calibrate AGM -UpdateTVN -ExportAllFiles results -UseRawData resultsFolder "
    "-DumpPrefix dataDump",
    " -Calibrate AGM -UpdateTVN -ExportAllFiles results -ExportResult -UseRawData "
    "resultsFolder -DumpPrefix dataDump",
    " -TestCalibration AG -ExportAllFiles results -Minimal -noEnter 2000",
    " -TestCalibration AG -ExportAllFiles results -FourSteps",
    " -TestCalibration M -ExportAllFiles results -MagAccuracyTest",
    " -ExportXml filename.xml",
    " -ImportXml filename.xml",
};

/// Every text behind the program's name, with `separator` between them.
std::string joinLines(std::string_view name, std::span<const std::string_view> texts,
                      std::string_view separator) {
    std::string joined;
    for (const auto text : texts) {
        if (!joined.empty())
            joined += separator;
        joined.append(name).append(text);
    }
    return joined;
}

std::size_t widthOf(const Option& option) {
    return option.name.size() + option.valueName.size();
}

}  // namespace

std::string CommandLine::usage(std::string_view path) const {
    const std::string_view name = path.substr(path.rfind('\\') + 1);
    return "\nUsage:\n\n" + joinLines(name, usageForms, "\n") + "\n\nDescription:\n\n" +
           description() + "\nExamples:\n\n\t" + joinLines(name, usageExamples, "\n\t") + "\n";
}

std::string CommandLine::description() const {
    std::size_t width = 0;
    for (const auto& option : table)
        width = std::max(width, widthOf(option));
    std::string lines;
    for (const auto& option : table) {
        lines.append(" -").append(option.name).append(" ");
        if (option.takesValue)
            lines.append(option.valueName);
        lines.append(width - widthOf(option) + 1, ' ');
        lines.append(":  ").append(option.help).append("\n");
    }
    return lines;
}

}  // namespace tavoren
