// Every call that makes, fills or places a file, and every answer of the device, fails once: what is
// left is whole.

#include <gtest/gtest.h>

#include <map>

#include "end_to_end/BackgroundProcess.h"
#include "end_to_end/RunProgram.h"

namespace tavoren {
namespace {

constexpr int reportedFailure = 255;

/// The files of the folder by their names; the lines that hold times are left out.
std::map<std::string, std::string> filesIn(const TemporaryFolder& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path / "out")) {
        const std::string name = entry.path().filename().string();
        std::string text = folder.read("out/" + name);
        if (const std::size_t at = text.find("<Log Date="); at != std::string::npos)
            text.erase(at, text.find('\n', at) - at);
        files[name] = text;
    }
    return files;
}

class FragileFiles : public testing::TestWithParam<std::string> {
  protected:
    /// A run whose n-th call fails, on files of an earlier run.
    int run(const TemporaryFolder& folder, int n, const std::string& how) {
        for (const char* name : {"AGMLogFile.xml", "resultCalibration.xml", "calibratedDataDumpGyroscope.csv"})
            folder.write(std::string("out/") + name, "old");
        const std::string fragile = "FRAGILE_AT=" + std::to_string(n) + " FRAGILE_HOW=" + how +
                                    " ASAN_OPTIONS=verify_asan_link_order=0 LD_PRELOAD=" TAVOREN_FRAGILE " ";
        const ProgramRun ended = runProgram(folder,
                                            "-CalibrateOffline AG -FourSteps -UseRawData \"" TAVOREN_EXAMPLES
                                            "/four-steps-good\" -ExportAllFiles out -ExportResult",
                                            TAVOREN_PROGRAM, fragile);
        shown = ended.shown;
        return ended.exitCode;
    }

    std::string shown;
};

TEST_P(FragileFiles, AreTheOldOnesOrTheNewOnesWhole) {
    std::map<std::string, std::string> complete;
    {
        const TemporaryFolder folder;
        std::filesystem::create_directory(folder.path / "out");
        ASSERT_EQ(run(folder, 0, GetParam()), 0);
        complete = filesIn(folder);
    }
    int reached = 0;
    for (int n = 1, after = 0; after < 3; ++n) {  // a few more, since a name that is taken is tried again
        const TemporaryFolder folder;
        std::filesystem::create_directory(folder.path / "out");
        const int exitCode = run(folder, n, GetParam());
        const auto files = filesIn(folder);
        bool isComplete = true;
        for (const auto& [name, text] : complete) {
            const auto found = files.find(name);
            const bool isNew = found != files.end() && found->second == text;
            EXPECT_TRUE(isNew || found == files.end() || found->second == "old") << name << " at call " << n;
            const bool isDump = name.ends_with(".csv");
            EXPECT_TRUE(isNew || isDump || exitCode != 0) << name << " at call " << n;
            isComplete = isComplete && isNew;
        }
        for (const auto& [name, text] : files)
            EXPECT_TRUE(complete.contains(name) || name == "logfile.txt" || (GetParam() == "kill" && name.ends_with(".tmp")))
                << name << " at call " << n;
        EXPECT_TRUE(exitCode != reportedFailure || shown.find("Failed to write to file") != std::string::npos) << shown;
        reached += isComplete ? 0 : 1;
        after = isComplete && n > 12 ? after + 1 : 0;
    }
    EXPECT_GE(reached, 6);
}

INSTANTIATE_TEST_SUITE_P(All, FragileFiles, testing::Values("error", "short", "kill"), [](const auto& how) { return how.param; });

class FragileDevice : public testing::TestWithParam<std::string> {};

TEST_P(FragileDevice, HoldsWholeRecordsAndTheRunSaysWhatFailed) {
    const std::string calibrate = "-Calibrate AG -Minimal -UpdateTVN -ExportAllFiles out -NoEnter 1";
    const std::string hub = "--sequence minimal --errors offset --rest 1 --records records.txt --trace ";
    int answers = 0;  // of the first run, which nothing disturbs
    int failures = 0;
    for (int n = 0; n <= answers; ++n) {
        const TemporaryFolder folder;
        ProgramRun run;
        {
            const HubProcess device(folder, n == 0 ? hub : hub + "--fault " + GetParam() + "-at=" + std::to_string(n));
            run = runProgram(folder, calibrate, TAVOREN_IMPATIENT);  // half an answer to the stop is none
            answers = n == 0 ? device.count("tool: ") : answers;
        }
        ASSERT_TRUE(n > 0 || run.exitCode == 0) << run.shown;
        const bool hasResult = std::filesystem::exists(folder.path / "out/resultCalibration.xml");
        const bool hasRecords = std::filesystem::exists(folder.path / "records.txt");
        if (run.exitCode == 0) {
            EXPECT_TRUE(hasResult && hasRecords) << n << run.shown;
            continue;
        }
        ++failures;
        EXPECT_EQ(run.exitCode, reportedFailure) << n;
        EXPECT_TRUE(run.shown.find("ailed") != std::string::npos) << n << run.shown;
        EXPECT_TRUE(hasResult || !hasRecords) << n;
        // What the device holds is read back by the next run, old or new.
        const HubProcess device(folder, hub);
        EXPECT_EQ(runProgram(folder, "-ExportXml all.xml").exitCode, 0) << n;
        EXPECT_EQ(runProgram(folder, calibrate).exitCode, 0) << n;
    }
    EXPECT_GE(failures, 10) << "of " << answers;
}

INSTANTIATE_TEST_SUITE_P(All, FragileDevice, testing::Values("error", "short", "break"),
                         [](const auto& how) { return how.param; });

}  // namespace
}  // namespace tavoren
