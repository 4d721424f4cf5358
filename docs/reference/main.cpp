// Makes the man pages and the completions: fills a template from the tables of the two programs.
//   tavoren_reference TEMPLATE OUTPUT
// A template holds "@version@" and "@LIST:FORM@": one of the lists below as "words" (separated by
// blanks) or as "man" (an entry of a man page each).

#include <exception>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/Utf8.h"
#include "common/Version.h"
#include "frame/CommandLine.h"
#include "platform/Files.h"
#include "simulator/Options.h"
#include "simulator/SensorKind.h"

namespace tavoren::reference {

namespace {

using simulator::HelpRow;
using Rows = std::vector<HelpRow>;

Rows toolOptions() {
    const CommandLine commandLine;
    Rows rows;
    for (const Option& option : commandLine.options()) {
        const std::string_view value = option.valueName.empty() ? "<value>" : option.valueName;
        rows.push_back(
            {"-" + std::string(option.name) + (option.takesValue ? " " + std::string(value) : ""),
             std::string(option.help)});
    }
    return rows;
}

Rows withValue(Rows rows) {
    std::erase_if(rows, [](const HelpRow& row) { return row.form.find(' ') == row.form.npos; });
    return rows;
}

Rows sensors() {
    Rows rows;
    for (const simulator::SensorKind& kind : simulator::sensorKinds())
        rows.push_back({kind.letter, kind.text});
    return rows;
}

Rows withoutText(const std::vector<std::string>& names) {
    Rows rows;
    for (const std::string& name : names)
        rows.push_back({name, ""});
    return rows;
}

Rows listOf(const std::string& name) {
    static const std::map<std::string, Rows> lists{
        {"tool-options", toolOptions()},
        {"tool-valued", withValue(toolOptions())},
        {"hub-options", simulator::Options::all()},
        {"hub-valued", withValue(simulator::Options::all())},
        {"hub-sequences", withoutText(simulator::Script::names())},
        {"hub-sensors", sensors()},
        {"hub-faults", simulator::Faults::all()},
        {"hub-requests", withoutText(simulator::Faults::requestNames())},
    };
    const auto found = lists.find(name);
    if (found == lists.end())
        throw std::runtime_error("no list \"" + name + "\"");
    return found->second;
}

/// The text in the language of man pages, where a bare minus is a hyphen.
std::string manText(const std::string& text) {
    std::string escaped;
    for (const char c : text)
        escaped += c == '\\' ? "\\e" : c == '-' ? "\\-" : std::string(1, c);
    return escaped;
}

std::string manEntries(const Rows& rows) {
    std::string text;
    for (const HelpRow& row : rows) {
        const std::size_t end = row.form.find(' ');
        text += ".TP\n\\fB" + manText(row.form.substr(0, end)) + "\\fR";
        if (end != std::string::npos) {
            std::string value = row.form.substr(end + 1);
            std::erase_if(value, [](char c) { return c == '<' || c == '>'; });
            text += " \\fI" + manText(value) + "\\fR";
        }
        text += "\n" + manText(row.text) + "\n";
    }
    return text.substr(0, text.size() - 1);
}

std::string words(const Rows& rows) {
    std::string text;
    for (const HelpRow& row : rows)
        text += (text.empty() ? "" : " ") + row.form.substr(0, row.form.find_first_of(" :["));
    return text;
}

std::string valueOf(const std::string& placeholder) {
    if (placeholder == "version")
        return toUtf8Lossy(std::wstring(versionText));
    const std::size_t colon = placeholder.find(':');
    const Rows rows = listOf(placeholder.substr(0, colon));
    return placeholder.substr(colon + 1) == "man" ? manEntries(rows) : words(rows);
}

std::string filled(const std::string& text) {
    std::string result;
    std::size_t at = 0;
    for (std::size_t sign = 0; (sign = text.find('@', at)) != std::string::npos;) {
        const std::size_t end = text.find('@', sign + 1);
        result += text.substr(at, sign - at) + valueOf(text.substr(sign + 1, end - sign - 1));
        at = end + 1;
    }
    return result + text.substr(at);
}

void fill(const std::string& from, const std::string& to) {
    const auto text = readFile(from);
    if (!text || !replaceFile(to, filled(*text), LineEnds::asWritten))
        throw std::runtime_error("cannot make " + to + " from " + from);
}

}  // namespace

}  // namespace tavoren::reference

int main(int argc, char* argv[]) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    try {
        tavoren::reference::fill(arguments.at(0), arguments.at(1));
        return 0;
    } catch (const std::exception& e) {
        std::cerr << "tavoren_reference: " << e.what() << std::endl;
        return 1;
    }
}
