#pragma once

#include <array>
#include <chrono>
#include <csignal>
#include <string>
#include <thread>

#include <sys/socket.h>
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
        std::array<int, 2> ends{};
        ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data());
        keyboard = ends[0];
        id = ::fork();
        if (id != 0) {
            ::close(ends[1]);
            return;
        }
        ::dup2(ends[1], STDIN_FILENO);
        const std::string line = "cd \"" + folder.path.string() + "\" && exec " + command + " >" + output + " 2>&1";
        ::execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
        ::_exit(127);
    }
    BackgroundProcess(const BackgroundProcess&) = delete;
    BackgroundProcess& operator=(const BackgroundProcess&) = delete;
    ~BackgroundProcess() {
        stop(SIGTERM);
        ::close(keyboard);
    }

    void pressEnter() const { ::send(keyboard, "\n", 1, MSG_NOSIGNAL); }
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
        constexpr auto limit = std::chrono::seconds(100);
        const auto end = std::chrono::steady_clock::now() + limit;
        while (std::chrono::steady_clock::now() < end) {
            if (count(text) >= times)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return false;
    }
    std::string shown() const { return folder.read(output); }

    /// How often the text was printed so far.
    int count(const std::string& text) const {
        const std::string all = shown();
        int found = 0;
        for (std::size_t at = all.find(text); at != std::string::npos; at = all.find(text, at + 1))
            ++found;
        return found;
    }

  private:
    const TemporaryFolder& folder;
    const std::string output;
    int keyboard = -1;
    pid_t id = -1;
    int status = 0;
    bool ended = false;
};

/// A simulated hub that serves the folder at full speed.
class HubProcess : public BackgroundProcess {
  public:
    HubProcess(const TemporaryFolder& in, const std::string& options)
        : BackgroundProcess(in, "\"" TAVOREN_HUB "\" --speed max --hold 100 " + options, "hub.txt") {
        waitFor("Serving");
    }
};

}  // namespace tavoren
