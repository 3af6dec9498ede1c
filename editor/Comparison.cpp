#include "editor/Comparison.h"

#include "editor/recordText.h"

namespace tolm {

void Comparison::takeAll()
{
    taken_.clear();
    changed_.reset();
    for (int program = 0; program < kProgramCount; ++program) {
        const ProgramRecord now = port_.record(program);
        if (!sameRecord(now, port_.factoryRecord(program)))
            taken_.emplace(program, now);
    }
}

void Comparison::takeCurrent()
{
    const int program = port_.currentProgram();
    taken_.insert_or_assign(program, port_.record(program));
    changed_.reset();
}

const ProgramRecord& Comparison::loaded(int program) const
{
    const auto found = taken_.find(program);
    return found != taken_.end() ? found->second : port_.factoryRecord(program);
}

bool Comparison::isChanged(int program) const
{
    return !sameRecord(port_.record(program), loaded(program));
}

bool Comparison::showsLoaded() const
{
    return changed_ && changedProgram_ == port_.currentProgram() && !isCurrentChanged();
}

void Comparison::toggle()
{
    const int program = port_.currentProgram();
    const bool back = showsLoaded();
    if (!back && !isCurrentChanged())
        return;
    const EditGesture gesture(history_, "Compare");
    history_.noteProgram(program);
    if (back) {
        writeDifferences(port_, program, *changed_);
        changed_.reset();
        return;
    }
    changed_ = port_.record(program);
    changedProgram_ = program;
    writeDifferences(port_, program, loaded(program));
}

} // namespace tolm
