// The bar: redrawn in place ten times a second.

#include "host/Progress.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

namespace tolm {
namespace {

constexpr auto kPatience = std::chrono::seconds(1);
constexpr auto kRedraw = std::chrono::milliseconds(100);
constexpr int kBarWidth = 32;

} // namespace

Progress::Progress() : onTerminal_(isatty(STDERR_FILENO) == 1), due_(Clock::now() + kPatience) {}

Progress::~Progress()
{
    clear();
}

void Progress::begin(std::string what, int piece, int count)
{
    what_ = std::move(what);
    share_ = 1.0 / count;
    start_ = share_ * piece;
}

void Progress::show(double done)
{
    if (!onTerminal_ || Clock::now() < due_)
        return;
    due_ = Clock::now() + kRedraw;
    visible_ = true;
    done = std::clamp(start_ + done * share_, 0.0, 1.0);
    const int filled = static_cast<int>(std::lround(done * kBarWidth));
    const std::string bar(static_cast<std::size_t>(filled), '#');
    std::fprintf(stderr, "\r\033[K[%-*s] %3.0f%% %s", kBarWidth, bar.c_str(), done * 100.0,
                 what_.c_str());
    std::fflush(stderr);
}

void Progress::clear()
{
    if (visible_)
        std::fputs("\r\033[K", stderr);
    visible_ = false;
}

} // namespace tolm
