#pragma once
// Ctrl-C and termination end a run in order, so that no half-written file stays behind.

namespace tolm {

void catchInterrupts();
// Throws Failure once the user has asked to stop.
void throwIfInterrupted();

} // namespace tolm
