#include "simulator/Options.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

#include "common/CalibrationException.h"
#include "common/Text.h"

namespace tavoren::simulator {

namespace {

[[noreturn]] void refuse(const std::string& value, const std::string& expected) {
    throw std::invalid_argument("\"" + value + "\" is not " + expected);
}

double number(const std::string& value, double lowest, double highest) {
    const std::string expected =
        "a number from " + formatGeneral(lowest) + " to " + formatGeneral(highest);
    try {
        const double parsed = parseDouble(value);
        if (!value.empty() && parsed >= lowest && parsed <= highest)
            return parsed;
    } catch (const CalibrationException&) {
        refuse(value, expected);
    }
    refuse(value, expected);
}

template <typename Integer>
Integer wholeNumber(const std::string& value, double lowest, double highest) {
    const double parsed = number(value, lowest, highest);
    if (parsed != std::floor(parsed))
        refuse(value, "a whole number");
    return static_cast<Integer>(parsed);
}

std::vector<std::string> listOf(const std::string& value) {
    std::vector<std::string> items;
    for (std::size_t at = 0; at <= value.size();) {
        const std::size_t end = std::min(value.find(',', at), value.size());
        items.push_back(value.substr(at, end - at));
        at = end + 1;
    }
    return items;
}

template <std::size_t n>
std::size_t choice(const std::string& value, const std::array<const char*, n>& names) {
    std::string expected = "one of";
    for (std::size_t i = 0; i < n; ++i) {
        if (equalsIgnoringCase(value, names.at(i)))
            return i;
        expected += (i == 0 ? " " : ", ") + std::string(names.at(i));
    }
    refuse(value, expected);
}

constexpr std::array formFactors{"2IN1", "KICKSTAND", "SWIVEL", "TABLET", "CLAMSHELL", "MID"};
constexpr std::array hinges{"BOTTOM", "TOP", "LEFT", "RIGHT"};
constexpr std::array errorNames{"none", "offset", "diagonal", "full"};

void setSequences(Options& options, const std::string& value) {
    options.sequences = listOf(value);
    for (const std::string& name : options.sequences)
        Script::of(name, options.timing);
}

void setSensors(Options& options, const std::string& value) {
    options.device.sensors = listOf(value);
    for (const std::string& letter : options.device.sensors)
        sensorKind(letter);
}

void setLevels(Options& options, const std::string& value) {
    options.timing.levels.clear();
    for (const std::string& level : listOf(value))
        options.timing.levels.push_back(wholeNumber<int>(level, 1, 100000));
}

void setSpeed(Options& options, const std::string& value) {
    options.speed = value == "max" ? 0.0 : value == "real" ? 1.0 : number(value, 0.01, 100000);
}

void setName(Options& options, const std::string& value) {
    constexpr std::size_t longest = 40;  // the socket's path has room for little more
    if (value.empty() || value.size() > longest || value.find('/') != std::string::npos)
        refuse(value, "a name of 1 to 40 characters without \"/\"");
    options.name = value;
}

void setPath(std::string& path, const std::string& value) {
    if (value.empty())
        refuse(value, "the name of a file or folder");
    path = value;
}

struct OptionRow {
    const char* name;
    const char* value;  ///< empty for a switch
    const char* text;
    void (*apply)(Options&, const std::string&);
};

constexpr std::array optionTable{
    OptionRow{"--sequence", "NAME,...", "movement of the first session, of the second, ...",
              setSequences},
    OptionRow{"--sensors", "LIST", "sensors of the device (A,G,M,L)", setSensors},
    OptionRow{"--seed", "N", "draws the sensors' errors and noise (1)",
              [](Options& o, const std::string& v) {
                  o.device.seed = wholeNumber<unsigned>(v, 0, 1000000);
              }},
    OptionRow{"--errors", "KIND", "none, offset, diagonal (no coupling of axes) or full (full)",
              [](Options& o, const std::string& v) {
                  o.device.errors = static_cast<Errors>(choice(v, errorNames));
              }},
    OptionRow{"--noise", "FACTOR", "times the usual noise (1)",
              [](Options& o, const std::string& v) { o.device.noiseFactor = number(v, 0, 1000); }},
    OptionRow{"--field", "MG", "size of the magnetic field in milligauss (500)",
              [](Options& o, const std::string& v) { o.device.world.field = number(v, 0, 1e5); }},
    OptionRow{"--dip", "DEGREES", "of the field below the horizon (55)",
              [](Options& o, const std::string& v) { o.device.world.dip = number(v, -90, 90); }},
    OptionRow{
        "--disturbance", "MG", "by which the field changes where mag-test moves (25)",
        [](Options& o, const std::string& v) { o.device.world.disturbance = number(v, 0, 1e5); }},
    OptionRow{"--form-factor", "NAME", "2IN1, KICKSTAND, SWIVEL, TABLET, CLAMSHELL, MID (2IN1)",
              [](Options& o, const std::string& v) {
                  o.device.formFactor = static_cast<std::uint8_t>(choice(v, formFactors));
              }},
    OptionRow{"--hinge", "NAME", "BOTTOM, TOP, LEFT, RIGHT (BOTTOM)",
              [](Options& o, const std::string& v) {
                  o.device.hinge = static_cast<std::uint8_t>(choice(v, hinges));
              }},
    OptionRow{"--rest", "SECONDS", "of each rest (3)",
              [](Options& o, const std::string& v) { o.timing.rest = number(v, 0.1, 3600); }},
    OptionRow{"--turn", "SECONDS", "of a turn of 360 degrees (5)",
              [](Options& o, const std::string& v) { o.timing.fullTurn = number(v, 0.5, 600); }},
    OptionRow{"--levels", "LUX,...", "light levels of the sequence light (100,500,1000)",
              setLevels},
    OptionRow{"--interval", "MS", "shortest report interval (10)",
              [](Options& o, const std::string& v) {
                  o.interval = wholeNumber<std::uint32_t>(v, 1, 1000);
              }},
    OptionRow{"--speed", "SPEED", "real, N times real time, or max: as fast as it is read (real)",
              setSpeed},
    OptionRow{
        "--hold", "MS", "shortest rest by the clock, at any speed (50)",
        [](Options& o, const std::string& v) { o.hold = wholeNumber<std::uint32_t>(v, 0, 60000); }},
    OptionRow{"--wait", "", "begins each movement when Enter is pressed",
              [](Options& o, const std::string&) { o.wait = true; }},
    OptionRow{"--fault", "FAULT", "misbehaves; may stand several times",
              [](Options& o, const std::string& v) { o.faults.add(v); }},
    OptionRow{"--records", "FILE", "keeps the firmware's records in a file",
              [](Options& o, const std::string& v) { setPath(o.records, v); }},
    OptionRow{"--name", "NAME", "of the device (hub)", setName},
    OptionRow{"--trace", "", "shows all messages",
              [](Options& o, const std::string&) { o.trace = true; }},
    OptionRow{"--record", "FOLDER", "writes the first movement as dump files and ends",
              [](Options& o, const std::string& v) { setPath(o.record, v); }},
    OptionRow{"--truth", "FILE", "writes what the sensors were built as",
              [](Options& o, const std::string& v) { setPath(o.truth, v); }},
    OptionRow{"--help", "", "shows this text",
              [](Options& o, const std::string&) { o.wantsHelp = true; }},
};

const OptionRow& optionOf(const std::string& name) {
    for (const OptionRow& entry : optionTable)
        if (entry.name == name)
            return entry;
    throw std::invalid_argument("unknown option \"" + name + "\"");
}

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

constexpr const char* introduction =
    "tavoren-hub simulates a sensor hub for the Tavoren Calibration Tool.\n"
    "It serves the tool started in the same folder, until Ctrl-C.\n\n"
    "Usage: tavoren-hub [OPTION [VALUE]] ...\n\n";

constexpr const char* examples =
    "\nExamples:\n"
    "  tavoren-hub --speed max\n"
    "      then, beside it: tavoren -Calibrate AGM -ExportAllFiles out -NoEnter 1\n"
    "  tavoren-hub --sequence full,four-steps --speed max --records records.txt --trace\n"
    "      a calibration with -UpdateTVN, then a test; the records outlive the hub\n"
    "  tavoren-hub --sensors A,G,A2,G2 --form-factor MID --hinge TOP\n"
    "  tavoren-hub --fault status:set-record=5 --fault late-buffers\n"
    "  tavoren-hub --record dumps --truth truth.txt --sequence four-steps --errors diagonal\n";

}  // namespace

Options Options::parse(std::span<const std::string> arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const OptionRow& entry = optionOf(arguments[i]);
        const bool takesValue = *entry.value != '\0';
        if (takesValue && i + 1 == arguments.size())
            throw std::invalid_argument(std::string(entry.name) + " needs a value");
        try {
            entry.apply(options, takesValue ? arguments[++i] : "");
        } catch (const std::invalid_argument& e) {
            throw std::invalid_argument(std::string(entry.name) + ": " + e.what());
        }
    }
    return options;
}

std::vector<HelpRow> Options::all() {
    std::vector<HelpRow> rows;
    for (const OptionRow& entry : optionTable)
        rows.push_back(
            {std::string(entry.name) + (*entry.value ? " " : "") + entry.value, entry.text});
    return rows;
}

std::string Options::help() {
    std::string text = introduction;
    for (const auto& [form, explanation] : all())
        text += "  " + padded(form, 22) + explanation + "\n";
    text += "\n  Sequences:";
    for (const std::string& name : Script::names())
        text += " " + name;
    text += "\n\n  Sensors:\n";
    for (const SensorKind& kind : sensorKinds())
        text += "    " + std::string(kind.letter) + "\t" + kind.text + "\n";
    text += "\n  Faults:\n";
    for (const auto& [form, explanation] : Faults::all())
        text += "    " + padded(form, 26) + explanation + "\n";
    const char* separator = "  REQUEST is one of ";
    for (const std::string& name : Faults::requestNames()) {
        text += separator + name;
        separator = ", ";
    }
    return text + "\n" + examples;
}

}  // namespace tavoren::simulator
