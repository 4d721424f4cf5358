// Man pages and completions as they are installed.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <iterator>
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

/// The options that a page names, a hyphen being "\\-" there and a change of font "\\fB".
Names optionsNamedIn(const std::string& page) {
    std::string plain;
    for (std::size_t at = 0; at < page.size(); ++at)
        if (page.compare(at, 2, "\\f") == 0)
            at += 2;
        else if (page[at] != '\\')
            plain += page[at];
    const auto isPart = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-'; };
    Names names;
    for (std::size_t at = 0; at < plain.size();) {
        const auto end =
            static_cast<std::size_t>(std::find_if_not(plain.begin() + std::ptrdiff_t(at), plain.end(), isPart) - plain.begin());
        const std::string word = plain.substr(at, end - at);
        if (word.size() > 1 && word[0] == '-' && word.find_first_of("0123456789") == word.npos)
            names.insert(word);
        at = end + 1;
    }
    return names;
}

TEST(Reference, ManPagesNameEveryOptionAndNoOther) {
    for (const std::string program : {"tavoren", "tavoren-hub"}) {
        const std::string page = readFile(folder + "/man/" + program + ".1").value_or("");
        EXPECT_EQ(optionsNamedIn(page), optionsOf(program)) << program;
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
