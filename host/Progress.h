#pragma once
// A progress bar on standard error, shown only on a terminal and only when the work takes longer
// than a second.

#include <chrono>
#include <string>

namespace tolm {

class Progress {
public:
    Progress();
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Names what is done next and its place among `count` pieces of equal length.
    void begin(std::string what, int piece = 0, int count = 1);
    // `done` 0..1 of the piece; cheap enough for every block.
    void show(double done);
    // Wipes the bar, so that other lines begin on a clean one.
    void clear();

private:
    using Clock = std::chrono::steady_clock;

    bool onTerminal_;
    bool visible_ = false;
    std::string what_;
    double start_ = 0.0;
    double share_ = 1.0;
    Clock::time_point due_;
};

} // namespace tolm
