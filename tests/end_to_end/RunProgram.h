#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <sys/wait.h>

#include "files/TemporaryFolder.h"

namespace tavoren {

/// What a run of the program left behind.
struct ProgramRun {
    int exitCode = -1;
    std::string shown;  ///< without the lines of the run time
};

inline std::string withoutRunTimes(const std::string& text) {
    std::string rest;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        if (text.compare(at, 14, "Total run time") != 0)
            rest += text.substr(at, end - at);
        at = end;
    }
    return rest;
}

/// Runs the real program in `folder` without a keyboard. Arguments are a shell's words.
inline ProgramRun runProgram(const TemporaryFolder& folder, const std::string& arguments,
                             const std::string& program = TAVOREN_PROGRAM, const std::string& environment = "") {
    const std::string command = "cd \"" + folder.path.string() + "\" && " + environment + "\"" + program + "\" " + arguments +
                                " >console.txt 2>&1 </dev/null";
    const int status = std::system(command.c_str());  // NOLINT(cert-env33-c): the test's own words
    ProgramRun run;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -status;
    run.shown = withoutRunTimes(folder.read("console.txt"));
    std::filesystem::remove(folder.path / "console.txt");
    return run;
}

/// Names of the files in the folder, in order, separated by blanks.
inline std::string filesBelow(const std::filesystem::path& path) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path))
        if (entry.is_regular_file())
            names.push_back(entry.path().lexically_relative(path).generic_string());
    std::sort(names.begin(), names.end());
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : " ") + name;
    return text;
}

}  // namespace tavoren
