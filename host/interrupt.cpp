// The signal handler only raises a flag that the block loop reads.

#include "host/interrupt.h"

#include "host/Failure.h"

#include <csignal>

namespace tolm {
namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void noteInterrupt(int)
{
    interrupted = 1;
}

} // namespace

void catchInterrupts()
{
    struct sigaction action {};
    action.sa_handler = noteInterrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND); // a second one ends the program at once
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

void throwIfInterrupted()
{
    if (interrupted != 0)
        throw Failure("interrupted");
}

} // namespace tolm
