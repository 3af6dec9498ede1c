#pragma once
// An X server without a screen, for the length of a test, on a display that nobody else uses.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace tolm::gui {

class XServer {
public:
    // Sets DISPLAY when the server runs.
    explicit XServer(const std::string& extraArguments = {})
    {
        // It chooses a free display itself and writes its number. -noreset: it forgets nothing
        // when the last window closes.
        const std::string command = "echo $$; exec Xvfb -displayfd 1 -screen 0 1280x1024x24 "
                                    "-noreset -nolisten tcp " +
                                    extraArguments + " 2>/dev/null";
        output_ = popen(command.c_str(), "r");
        int display = 0;
        runs_ = output_ != nullptr && std::fscanf(output_, "%d %d", &pid_, &display) == 2;
        std::string name(":");
        name += std::to_string(display);
        if (runs_)
            setenv("DISPLAY", name.c_str(), 1);
    }
    ~XServer()
    {
        if (runs_)
            kill(pid_, SIGTERM);
        if (output_ != nullptr)
            pclose(output_); // waits for its end
    }
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    bool runs() const { return runs_; }
    static bool isInstalled() { return std::system("command -v Xvfb >/dev/null") == 0; }

private:
    std::FILE* output_ = nullptr;
    int pid_ = 0;
    bool runs_ = false;
};

} // namespace tolm::gui
