// tolm-render: plays a song through an instrument plug-in into a sound file.

#include "host/CommandLine.h"
#include "host/interrupt.h"
#include "host/job.h"

#include <cstdio>
#include <exception>

int main(int argc, char** argv)
{
    try {
        tolm::catchInterrupts();
        if (const auto options = tolm::parseCommandLine(argc, argv))
            tolm::run(*options);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tolm-render: %s\n", error.what());
        return 1;
    }
    return 0;
}
