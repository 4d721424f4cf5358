// Arguments, one a line: what is accepted is one command, and is accepted again when it is rebuilt
// from what was understood, in the order of the usage text.

#include <algorithm>
#include <vector>

#include "frame/CommandLine.h"
#include "fuzz/Fuzz.h"

namespace tavoren::fuzz {
namespace {

bool parses(CommandLine& commandLine, const std::vector<std::string>& arguments) {
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(argument.c_str());
    return accepts([&] { commandLine.parse(static_cast<int>(pointers.size()), pointers.data()); });
}

std::vector<std::string> rebuilt(const CommandLine& commandLine) {
    std::vector<std::string> arguments{"tavoren"};
    for (const Option& option : commandLine.options()) {
        if (!commandLine.isSet(option.name))
            continue;
        arguments.push_back("-" + std::string(option.name));
        if (option.takesValue)
            arguments.push_back(commandLine.value(option.name));
    }
    return arguments;
}

void check(Input input) {
    const TemporaryFolder& folder = workingFolder();
    folder.write("a.xml", "");  // the files that two options want to exist
    folder.write("a.txt", "");
    std::vector<std::string> arguments;
    while (!input.bytes().empty())
        arguments.push_back(input.takeUntil('\n'));
    CommandLine commandLine;
    const bool accepted = parses(commandLine, arguments);
    commandLine.usage(arguments.empty() ? "" : arguments[0]);
    if (!accepted)
        return;
    const auto& options = commandLine.options();
    require(std::any_of(options.begin(), options.end(),
                        [&](const auto& o) { return o.isCommand && commandLine.isSet(o.name); }),
            "there is a command");
    CommandLine again;
    require(parses(again, rebuilt(commandLine)), "what was understood is accepted");
    require(rebuilt(again) == rebuilt(commandLine), "it is understood the same way");
}

}  // namespace
}  // namespace tavoren::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavoren::fuzz::check({data, size});
    return 0;
}
