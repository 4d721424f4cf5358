#include "simulator/Options.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

namespace tavoren::simulator {
namespace {

Options parsed(const std::string& line) {
    std::istringstream words(line);
    std::vector<std::string> arguments;
    for (std::string word; words >> word;)
        arguments.push_back(word == "''" ? "" : word);
    return Options::parse(arguments);
}

TEST(HubOptions, SetWhatTheyName) {
    const Options options = parsed(
        "--sequence full,four-steps --sensors a,g2 --seed 7 --errors diagonal --noise 0.5 --field "
        "450 --dip -20 --disturbance 3 --form-factor mid --hinge LEFT --rest 2.5 --turn 4 --levels "
        "5,900 --interval 20 --speed max --hold 80 --records r --name n --trace --record d --wait --truth "
        "t --fault status:set-record=5 --fault silent-sensor:G2 --fault late-buffers --fault break-at=40");
    EXPECT_EQ(options.sequences, (std::vector<std::string>{"full", "four-steps"}));
    EXPECT_EQ(Device(options.device).listed(), (std::vector<Luid>{{115, 0, 0, 0, 2}, {118, 0, 0, 1, 2}}));
    EXPECT_EQ(options.device.seed, 7U);
    EXPECT_EQ(options.device.errors, Errors::diagonal);
    EXPECT_EQ(options.device.noiseFactor, 0.5);
    EXPECT_EQ(options.device.world.field, 450.0);
    EXPECT_EQ(options.device.world.dip, -20.0);
    EXPECT_EQ(options.device.world.disturbance, 3.0);
    EXPECT_EQ(options.device.formFactor, 5);
    EXPECT_EQ(options.device.hinge, 2);
    EXPECT_EQ(options.timing.rest, 2.5);
    EXPECT_EQ(options.timing.fullTurn, 4.0);
    EXPECT_EQ(options.timing.levels, (std::vector<int>{5, 900}));
    EXPECT_EQ(options.interval, 20U);
    EXPECT_EQ(options.speed, 0.0);
    EXPECT_EQ(options.hold, 80U);
    EXPECT_EQ(options.records + options.name + options.record + options.truth, "rndt");
    EXPECT_TRUE(options.trace && options.wait);
    EXPECT_EQ(options.faults.find(FaultKind::status, Request::setRecord)->value, 5);
    EXPECT_EQ(options.faults.find(FaultKind::status, Request::reset), nullptr);
    EXPECT_EQ(options.faults.find(FaultKind::silentSensor)->sensor, (Luid{118, 0, 0, 1, 2}));
    EXPECT_TRUE(options.faults.has(FaultKind::lateBuffers));
    EXPECT_EQ(options.faults.find(FaultKind::breakAt)->value, 40);
    EXPECT_EQ(parsed("--speed 30").speed, 30.0);
    EXPECT_EQ(parsed("--speed real").speed, 1.0);
}

TEST(HubOptions, RefuseWhatTheyDoNotKnow) {
    struct Row {
        const char* line;
        const char* text;
    };
    for (const Row& row : {
             Row{"--dance", "unknown option \"--dance\""},
             Row{"full", "unknown option \"full\""},
             Row{"--seed", "--seed needs a value"},
             Row{"--seed x", "--seed: \"x\" is not a number from 0 to 1e+06"},
             Row{"--seed ''", "--seed: \"\" is not a number from 0 to 1e+06"},
             Row{"--seed nan", "--seed: \"nan\" is not a number from 0 to 1e+06"},
             Row{"--seed 1.5", "--seed: \"1.5\" is not a whole number"},
             Row{"--hold -1", "--hold: \"-1\" is not a number from 0 to 60000"},
             Row{"--sequence full,", "--sequence: unknown sequence \"\""},
             Row{"--sensors A,Q", "--sensors: unknown sensor \"Q\""},
             Row{"--errors some", "--errors: \"some\" is not one of none, offset, diagonal, full"},
             Row{"--speed fast", "--speed: \"fast\" is not a number from 0.01 to 100000"},
             Row{"--levels 5,,7", "--levels: \"\" is not a number from 1 to 100000"},
             Row{"--name a/b", "--name: \"a/b\" is not a name of 1 to 40 characters without \"/\""},
             Row{"--record ''", "--record: \"\" is not the name of a file or folder"},
             Row{"--fault rain", "--fault: unknown fault \"rain\""},
             Row{"--fault status", "--fault: fault status needs a request"},
             Row{"--fault status:x", "--fault: unknown request \"x\" of a fault"},
             Row{"--fault status:list=0", "--fault: bad value \"0\" of a fault: 1 to 255 expected"},
             Row{"--fault short:list=2", "--fault: fault short takes no value"},
             Row{"--fault silence:list", "--fault: fault silence takes no request"},
         }) {
        try {
            parsed(row.line);
            ADD_FAILURE() << row.line;
        } catch (const std::invalid_argument& e) {
            EXPECT_STREQ(e.what(), row.text);
        }
    }
}

}  // namespace
}  // namespace tavoren::simulator
