#pragma once
// A plug-in's window inside a host's: opened, kept alive, looked at and closed, again and again.

#include <string>

namespace tolm {

struct WindowOptions {
    std::string plugin;
    std::string picture; // PNG of what the screen shows at the end of the first opening
    int cycles = 1;
    int instances = 1;
    int depth = 24;
    double seconds = 1.0; // of each opening
    double idlesPerSecond = 46.0;
    bool parentFirst = false; // the host's window goes before the plug-in is told
    bool refuseSize = false;  // the host keeps its size when asked for another
};

// Throws Failure: without a display, when the plug-in has no window, or does not open it.
void runWindow(const WindowOptions& options);

} // namespace tolm
