// Man pages and completions as they are installed.

#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

#include "files/TemporaryFolder.h"
#include "frame/CommandLine.h"
#include "platform/Files.h"
#include "simulator/Options.h"

namespace tavoren {
namespace {

using Names = std::set<std::string>;

const std::string folder = TAVOREN_REFERENCE;

Names optionsOf(const std::string& program) {
    Names names;
    if (program == "tavoren")
        for (const CommandLine line; const Option& option : line.options())
            names.insert("-" + std::string(option.name));
    else
        for (const simulator::HelpRow& row : simulator::Options::all())
            names.insert(row.form.substr(0, row.form.find(' ')));
    return names;
}

/// What bash proposes for the last of the words.
std::string proposals(const std::string& words) {
    const TemporaryFolder output;
    const std::string program = words.substr(0, words.find(' '));
    const std::string function = program == "tavoren" ? "_tavoren" : "_tavoren_hub";
    const std::string script = ". '" + folder + "/completions/" + program + "'; COMP_WORDS=(" + words +
                               "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); " + function + "; echo -n ${COMPREPLY[@]}";
    output.write("script", script);
    const std::string command = "cd '" + output.path.string() + "' && bash script >shown 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0) << words;  // NOLINT(cert-env33-c): the test's own words
    return output.read("shown");
}

TEST(Reference, ManPagesNameEveryOptionAndNoOther) {
    const std::regex font(R"(\\f[BIR])");
    const std::regex option(R"((^|[^\w\\-])((\\-){1,2}[A-Za-z]+(\\-[a-z]+)*))");
    for (const std::string program : {"tavoren", "tavoren-hub"}) {
        const std::string page = std::regex_replace(readFile(folder + "/man/" + program + ".1").value_or(""), font, "");
        Names named;
        for (std::sregex_iterator found(page.begin(), page.end(), option), end; found != end; ++found)
            named.insert(std::regex_replace((*found)[2].str(), std::regex(R"(\\)"), ""));
        EXPECT_EQ(named, optionsOf(program)) << program;
        EXPECT_EQ(page.find('@'), std::string::npos) << program;
    }
}

TEST(Reference, CompletionProposesWhatMayFollow) {
    for (const std::string program : {"tavoren", "tavoren-hub"}) {
        std::istringstream words(proposals(program + " ''"));
        EXPECT_EQ(Names(std::istream_iterator<std::string>(words), {}), optionsOf(program)) << program;
    }
    const std::vector<std::pair<std::string, std::string>> rows{
        {"tavoren -cali", "-CalibrateOffline -Calibrate"},
        {"tavoren -MAGTEST -mag", "-MagAccuracyTest"},
        {"tavoren -calibrateoffline m", "motion"},
        {"tavoren -Auto ''", ""},
        {"tavoren-hub --fault silence --fau", "--fault"},
        {"tavoren-hub --sequence full,mini", "full,minimal"},
        {"tavoren-hub --fault late", "late-buffers"},
        {"tavoren-hub --hinge L", "LEFT"},
        {"tavoren-hub --seed ''", ""},
    };
    for (const auto& [words, expected] : rows)
        EXPECT_EQ(proposals(words), expected) << words;
}

}  // namespace
}  // namespace tavoren
