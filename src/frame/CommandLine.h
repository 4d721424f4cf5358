#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavoren {

struct SensorLetters;

/// One row of the option table.
struct Option {
    std::string_view name;  ///< without the leading "-"
    bool takesValue = false;
    std::string_view valueName;  ///< placeholder in the usage text; may be empty
    bool mandatory = false;
    bool isCommand = false;  ///< starts the check of combinations
    std::string_view help;
    std::uint8_t groups = 0;  ///< may stand beside a command only if the two share a bit
};

/// An option as it was given.
struct ParsedOption : Option {
    std::string value;
};

/// The command line: which options there are, what was asked for, and every rule of what may be
/// asked together, so that a run that starts is a run that makes sense.
class CommandLine {
  public:
    /// Knows the options of the tool; nothing is given yet.
    CommandLine();
    /// Knows other options; their texts must outlive the object.
    explicit CommandLine(std::vector<Option> options);

    /// Takes and judges the arguments, `argv[0]` being the program's path. Throws
    /// `CmdLineException` with the text of the first rule that fails.
    void parse(int argc, const char* const* argv);

    /// The options it knows, in the order of the usage text.
    const std::vector<Option>& options() const { return table; }
    /// Whether the option was given; the case of `name` does not matter.
    bool isSet(std::string_view name) const;
    /// The value of the option with exactly this name; empty if it was not given or takes none.
    std::string value(std::string_view name) const;
    /// The usage text; it names the program by the part of its path behind the last backslash.
    std::string usage(std::string_view path) const;

  private:
    void parseArguments(const std::vector<std::string>& arguments);

    void checkExtensions() const;
    void checkMandatory() const;
    void checkCombinations() const;

    void checkRules() const;
    void checkCommands() const;
    void checkSequences() const;
    void checkNoEnter() const;
    void checkSensors() const;
    void checkCalibratedSensors(const SensorLetters& sensors) const;
    void checkTestedSensors(const SensorLetters& sensors) const;
    void checkAmbientLight(const SensorLetters& sensors) const;
    void checkReplayOptions() const;

    std::string sensorsText() const;
    std::string description() const;

    std::vector<ParsedOption> given;  ///< in order of appearance
    std::string programPath;
    std::vector<Option> table;
};

}  // namespace tavoren
