#pragma once
// An X server without a screen, for the length of a test, on a display that nobody else uses.

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tolm::gui {

class XServer {
public:
    // Sets DISPLAY when the server runs.
    explicit XServer(std::vector<std::string> extraArguments = {},
                     const char* screen = "1280x1024x24")
    {
        std::array<int, 2> pipeEnds{};
        if (pipe(pipeEnds.data()) != 0)
            return;
        // It chooses a free display itself and writes its number. -noreset: it forgets nothing
        // when the last window closes.
        std::vector<std::string> words = {"Xvfb",     "-displayfd", std::to_string(pipeEnds[1]),
                                          "-screen",  "0",          screen,
                                          "-noreset", "-nolisten",  "tcp"};
        words.insert(words.end(), extraArguments.begin(), extraArguments.end());
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addclose(&actions, pipeEnds[0]);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", 1, 0);
        const int error = posix_spawnp(&pid_, "Xvfb", &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(pipeEnds[1]);
        if (error != 0)
            pid_ = 0;
        std::string number;
        for (char c = 0; pid_ != 0 && read(pipeEnds[0], &c, 1) == 1 && c != '\n';)
            number += c;
        close(pipeEnds[0]);
        if (number.empty())
            return;
        setenv("DISPLAY", (":" + number).c_str(), 1);
        runs_ = true;
    }
    ~XServer()
    {
        if (pid_ <= 0)
            return;
        kill(pid_, SIGTERM);
        while (waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    bool runs() const { return runs_; }
    bool isInstalled() const { return pid_ != 0; }

private:
    pid_t pid_ = 0;
    bool runs_ = false;
};

} // namespace tolm::gui
