#pragma once

#include <chrono>
#include <csignal>
#include <string>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include "files/TemporaryFolder.h"

namespace tavoren {

/// A program that runs beside the test in `folder` and writes what it prints to a file there. It is
/// ended with the object.
class BackgroundProcess {
  public:
    /// The command is a shell's words.
    BackgroundProcess(const TemporaryFolder& in, const std::string& command, std::string outputFile)
        : folder(in), output(std::move(outputFile)) {
        std::filesystem::remove(folder.path / output);  // that of an earlier process
        id = ::fork();
        if (id != 0)
            return;
        const std::string line = "cd \"" + folder.path.string() + "\" && exec " + command + " >" + output + " 2>&1";
        ::execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
        ::_exit(127);
    }
    BackgroundProcess(const BackgroundProcess&) = delete;
    BackgroundProcess& operator=(const BackgroundProcess&) = delete;
    ~BackgroundProcess() { stop(SIGTERM); }

    void signal(int number) const { ::kill(id, number); }
    /// The exit code, or minus the number of the signal that ended it.
    int wait() {
        if (!ended) {
            ::waitpid(id, &status, 0);
            ended = true;
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    int stop(int number) {
        if (!ended)
            signal(number);
        return wait();
    }
    /// Waits until the text was printed `times` times; false if it takes too long.
    bool waitFor(const std::string& text, int times = 1) const {
        constexpr auto limit = std::chrono::seconds(30);
        const auto end = std::chrono::steady_clock::now() + limit;
        while (std::chrono::steady_clock::now() < end) {
            if (count(text) >= times)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return false;
    }
    std::string shown() const { return folder.read(output); }

  private:
    int count(const std::string& text) const {
        const std::string all = shown();
        int found = 0;
        for (std::size_t at = all.find(text); at != std::string::npos; at = all.find(text, at + 1))
            ++found;
        return found;
    }

    const TemporaryFolder& folder;
    const std::string output;
    pid_t id = -1;
    int status = 0;
    bool ended = false;
};

/// A simulated hub that serves the folder at full speed.
class HubProcess : public BackgroundProcess {
  public:
    HubProcess(const TemporaryFolder& in, const std::string& options)
        : BackgroundProcess(in, "\"" TAVOREN_HUB "\" --speed max " + options, "hub.txt") {
        waitFor("Serving");
    }
};

}  // namespace tavoren
