#pragma once
// One run of the program: from the options to lists or sound files.

#include "host/CommandLine.h"

namespace tolm {

// Throws Failure.
void run(const Options& options);

} // namespace tolm
