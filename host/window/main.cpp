// tolm-window-host: opens the window of a plug-in as a host does, to look at it and to wear it out.

#include "host/Failure.h"
#include "host/window/WindowRun.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

int main(int argc, char** argv)
{
    tolm::WindowOptions options;
    CLI::App app("Opens a VST 2.4 plug-in's window inside one of its own, on the display that "
                 "DISPLAY names.");
    app.add_option("plugin", options.plugin, "the plug-in, Tolm.so")->required();
    app.add_option("--shot", options.picture, "write what the screen shows as a PNG file");
    app.add_option("--cycles", options.cycles, "how often to open and close")
        ->check(CLI::Range(1, 1'000'000));
    app.add_option("--instances", options.instances, "plug-ins open at the same time")
        ->check(CLI::Range(1, 64));
    app.add_option("--depth", options.depth, "bits of the host's window")
        ->check(CLI::IsMember({24, 32}));
    app.add_option("--seconds", options.seconds, "how long it stays open each time")
        ->check(CLI::Range(0.0, 86'400.0));
    app.add_option("--idle-rate", options.idlesPerSecond, "idle calls a second")
        ->check(CLI::Range(0.1, 1000.0));
    app.add_flag("--parent-first", options.parentFirst,
                 "destroy the host's window before the plug-in closes its own");
    app.add_flag("--refuse-size", options.refuseSize, "keep the size when asked for another");
    CLI11_PARSE(app, argc, argv);
    try {
        tolm::runWindow(options);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tolm-window-host: %s\n", error.what());
        return 1;
    }
    return 0;
}
