#pragma once
// The programs as they are now against how they were loaded: the mark of a changed program, and
// listening to the one and the other in turns. User-interface thread.

#include "editor/EditHistory.h"
#include "plugin/EditorPort.h"

#include <map>

namespace tolm {

class Comparison {
public:
    // What the factory bank has counts as loaded, until a bank or a program is.
    Comparison(EditorPort& port, EditHistory& history) : port_(port), history_(history) {}

    // After a chunk or a file was loaded or saved: all programs count as unchanged.
    void takeAll();
    // After the current program alone was saved.
    void takeCurrent();

    // How a program 0..383 was loaded.
    const ProgramRecord& loaded(int program) const;
    bool isChanged(int program) const;
    bool isCurrentChanged() const { return isChanged(port_.currentProgram()); }

    // Switches the current program between the loaded and the changed sound. Each switch is a step
    // of undo, so that a change made while the loaded sound plays costs nothing. Nothing happens
    // when there is nothing to compare.
    void toggle();
    // The loaded sound plays and the changed one waits.
    bool showsLoaded() const;

private:
    EditorPort& port_;
    EditHistory& history_;
    std::map<int, ProgramRecord> taken_;   // over the factory's
    std::optional<ProgramRecord> changed_; // waits while the loaded sound plays
    int changedProgram_ = -1;
};

} // namespace tolm
