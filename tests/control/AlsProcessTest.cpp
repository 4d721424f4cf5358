#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "common/SamplingException.h"
#include "files/TemporaryFolder.h"
#include "sensors/ExpectThrow.h"
#include "sensors/LightRun.h"

namespace tavoren {
namespace {

/// What the process makes of an operator's lines, or of its own levels: those that it took, then
/// the failure.
std::string levelsOf(AlsProcess& process, const std::string& lines = {}) {
    std::istringstream input(lines);
    std::streambuf* const keyboard = std::cin.rdbuf(input.rdbuf());
    std::string taken;
    taken += textOf<CalibrationException>([&] {
        process.init();
        for (; process.currentStep < process.stepCount; ++process.currentStep)
            taken += process.readUserInput() + " ";
    });
    std::cin.rdbuf(keyboard);
    std::cin.clear();
    return taken;
}

TEST(AlsProcess, TakesLevelsThatFitTheOnesBefore) {
    const std::string ok = "(nothing thrown)";
    const std::string stages = "Invalid number of stages";
    const std::string wrong = "Invalid delta between light levels. ";
    const std::string order = wrong + "levels should be ascending or descending";
    for (const auto& [lines, outcome] :
         std::vector<std::pair<std::string, std::string>>{{"3\n100\n400\n700\n", "100 400 700 " + ok},
                                                          {"3\r\n700\r\n 400\r\n100", "700  400 100 " + ok},
                                                          {"2147483647\n", stages},
                                                          {"two\n", "Invalid number was entered"},
                                                          {"2\n", "Invalid light value 0. Value should be bigger than 1(lux)"},
                                                          {"2\n100\n399\n", "100 " + wrong + "Minimum delta is 300"},
                                                          {"3\n1000\n700\n700\n", "1000 700 " + wrong + "Minimum delta is 300"},
                                                          {"3\n1000\n700\n1000\n", "1000 700 " + order},
                                                          {"3\n100\n2147483647\n1\n", "100 2147483647 " + order}}) {
        AlsProcess process(true);
        EXPECT_EQ(levelsOf(process, lines), outcome) << lines;
    }
    const TemporaryFolder folder;
    AlsProcess automatic(false);
    EXPECT_EQ(levelsOf(automatic), stages);
    folder.write("levels.txt", "values=1000,500");
    automatic.setConfigFile(folder / "levels.txt");
    EXPECT_EQ(automatic.delayTime, 5);
    EXPECT_EQ(levelsOf(automatic), "1000 500 " + ok);
    EXPECT_EQ(textOf<CalibrationException>([&] { automatic.getInstructions(true); }), "Invalid number of light values");
}

TEST(AlsProcess, FollowsTheLight) {
    using Part = std::tuple<int, double, double>;  // a number of samples from one value to another and back
    const double nan = 0.0 / 0.0;
    const Part rest{102, 100, 100};
    const Part next{102, 500, 500};
    const std::string late = "A light level change was not detected for too long time";
    const std::string unstable = "The light is not stable for too long time";
    for (const auto& [parts, interval, outcome] : std::vector<std::tuple<std::vector<Part>, double, std::string>>{
             {{{101, 100, 100}}, 100, "0 0 0 0 "},  // the first two samples are not stored
             {{rest, {10, 99, 99}, {100, 500, 500}}, 100, "20 99 0 0 "},
             {{rest, {10, 99, 99}, {101, 500, 500}}, 100, "20 99 131 210 "},
             {{{40, 99, 101}, {1, 5000, 5000}, {61, 99, 101}, next}, 100, "20 99 121 200 "},
             {{rest, {50, 100, 100}, next, {200, 900, 900}}, 100, "20 99 171 250 "},
             {{rest, {51, 100, 100}, next}, 100, late},
             {{rest, {51, 95, 105}, next}, 100, late},  // 5.0 lux are no change
             {{rest, {50, 95, 105}, {101, 94.9, 94.9}}, 100, "20 99 170 249 "},
             {{rest, {250, 100, 100}, next}, 0, "20 99 371 450 "},  // 50 a second by default
             {{rest, {251, 100, 100}, next}, 0, late},
             {{rest, {1, 500, 500}, {99, 100, 100}}, 100, "20 99 120 199 "},          // ahead of the median
             {{{102, 99, 101}, next}, 100, "20 99 121 200 "},                         // a deviation of exactly 1.0
             {{{350, 98.99, 101.01}, {2, 100, 100}, next}, 100, "270 349 371 450 "},  // 250 failures
             {{{351, 98.99, 101.01}, {2, 100, 100}, next}, 100, unstable},
             {{{352, nan, nan}}, 100, unstable}}) {
        LightRun run(2);
        run.add();
        run.interval = interval;
        const std::string thrown = textOf<SamplingException>([&run, &script = parts] {
            for (const auto& [count, first, second] : script)
                run.feed(count, first, second);
        });
        std::string spans;
        for (const std::int32_t index : run.process.stepLevels)
            spans += std::to_string(index) + " ";
        EXPECT_EQ(thrown == "(nothing thrown)" ? spans : thrown, outcome);
        EXPECT_EQ(run.process.stepReady, spans != "0 0 0 0 ");
    }
}

TEST(AlsProcess, WaitsForTheOperatorInEveryStage) {
    LightRun run(2, true);
    const auto sensor = run.add();
    run.feed(5, 80.0, 80.0);
    sensor->userInput("100");
    EXPECT_THROW(sensor->userInput("4oo"), CalibrationException);
    run.feed(105, 100.0, 100.0);
    EXPECT_EQ(sensor->getDataSize(), 100U);
    EXPECT_TRUE(sensor->waitForInput);
}

TEST(AlsProcess, FinishEvensTheSensorsOut) {
    using Counts = std::vector<std::pair<std::uint8_t, std::size_t>>;  // instance and number of samples
    using Span = std::vector<std::int32_t>;
    using Row = std::tuple<Counts, std::size_t, Span>;
    for (const auto& [counts, size, span] : {Row{{{0, 5}}, 5, {1, 4}}, Row{{{0, 3}, {1, 5}}, 3, {1, 4}},
                                             Row{{{1, 4}, {0, 5}}, 4, {0, 3}}, Row{{{0, 5}, {1, 3}, {2, 4}}, 3, {-1, 2}}}) {
        LightRun run(1);
        run.process.stepLevels = {1, 4};
        for (const auto& [instance, count] : counts)
            run.add(instance)->bufferedData = SampleBuffer(std::vector<SensorSample>(count));
        run.process.finish();
        for (const auto& sensor : run.process.lightSensors)
            EXPECT_EQ(sensor->getDataSize(), size);
        EXPECT_EQ(run.process.stepLevels, span);
    }
}

}  // namespace
}  // namespace tavoren
