// The scripts of the movement sequences.

#include <array>
#include <stdexcept>

#include "common/Text.h"
#include "simulator/Script.h"

namespace tavoren::simulator {

namespace {

constexpr int x = 0, y = 1, z = 2;

/// Builds a list of movements with a rest between any two.
class Steps {
  public:
    explicit Steps(const ScriptTiming& times) : timing(times) { rest(); }

    Steps& turn(int axis, double degrees) {
        const bool full = degrees == 360.0;
        add({"turn " + formatGeneral(degrees) + " degrees about " + "XYZ"[axis],
             timing.fullTurn * (full ? 1.0 : 0.5), axis, degrees});
        return *this;
    }
    Steps& carry() {
        add({"move without turning", timing.fullTurn, 0, 0.0, 1.0});
        return *this;
    }
    Steps& light(int from, int to) {
        add({"light to " + std::to_string(to) + " lux", 1.0, 0, 0.0, 0.0, double(to - from)});
        return *this;
    }
    std::vector<Movement> take() { return std::move(list); }

  private:
    void add(Movement movement) {
        list.push_back(std::move(movement));
        rest();
    }
    void rest() { list.push_back({"rest", timing.rest}); }

    const ScriptTiming& timing;
    std::vector<Movement> list;
};

/// Z up, Y up, X up, Y down, with a full turn about the axis that points up before each change.
Script full(const ScriptTiming& timing) {
    return Script(Steps(timing)
                      .turn(z, 360.0)
                      .turn(x, 90.0)
                      .turn(y, 360.0)
                      .turn(z, 90.0)
                      .turn(x, 360.0)
                      .turn(z, 90.0)
                      .take());
}

Script accelerometerOnly(const ScriptTiming& timing) {
    return Script(Steps(timing).turn(x, 90.0).turn(z, 90.0).turn(z, 90.0).take());
}

Script fourSteps(const ScriptTiming& timing) {
    return Script(Steps(timing).turn(y, 90.0).turn(z, 90.0).turn(x, -90.0).take());
}

Script minimal(const ScriptTiming& timing) {
    return Script(Steps(timing).take());
}

Script magAccuracy(const ScriptTiming& timing) {
    return Script(Steps(timing).turn(z, 90.0).turn(z, 90.0).turn(z, 90.0).take());
}

Script magTest(const ScriptTiming& timing) {
    return Script(Steps(timing).turn(x, 360.0).turn(y, 360.0).turn(z, 360.0).carry().take());
}

/// A level must hold for 100 samples at 20 ms before its step ends, with some room around them.
Script light(const ScriptTiming& timing) {
    ScriptTiming longer = timing;
    longer.rest = std::max(timing.rest, 4.5);
    Steps steps(longer);
    for (std::size_t i = 1; i < timing.levels.size(); ++i)
        steps.light(timing.levels[i - 1], timing.levels[i]);
    return Script(steps.take(), timing.levels.empty() ? 0.0 : timing.levels.front());
}

struct SequenceRow {
    const char* name;
    Script (*make)(const ScriptTiming&);
};

constexpr std::array sequences{
    SequenceRow{"full", full},
    SequenceRow{"four-steps", fourSteps},
    SequenceRow{"accelerometer", accelerometerOnly},
    SequenceRow{"minimal", minimal},
    SequenceRow{"mag-accuracy", magAccuracy},
    SequenceRow{"mag-test", magTest},
    SequenceRow{"light", light},
};

}  // namespace

Script Script::of(const std::string& sequence, const ScriptTiming& timing) {
    for (const SequenceRow& entry : sequences)
        if (entry.name == sequence)
            return entry.make(timing);
    throw std::invalid_argument("unknown sequence \"" + sequence + "\"");
}

std::vector<std::string> Script::names() {
    std::vector<std::string> list;
    for (const SequenceRow& entry : sequences)
        list.emplace_back(entry.name);
    return list;
}

}  // namespace tavoren::simulator
