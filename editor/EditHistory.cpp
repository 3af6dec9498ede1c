#include "editor/EditHistory.h"

#include "editor/recordText.h"

#include <algorithm>
#include <utility>

namespace tolm {

namespace {

// Which of the user's changes go to the host and out as controllers: those of ids below 127, but
// for the switch and the modes that have actions of their own.
bool isAutomated(int id)
{
    return id < kMonoMode && id != kArpOn && id != kArpMode && id != kFilterType;
}

bool isBendRange(int id)
{
    return id == kBendUp || id == kBendDown;
}

} // namespace

void writeEdited(EditorPort& port, int id, float value)
{
    if (id == kBendUp)
        port.setBendUpRange(static_cast<int>(value));
    else if (id == kBendDown)
        port.setBendDownRange(static_cast<int>(value));
    else if (!isAutomated(id))
        port.setParameter(id, value);
    else {
        if (id < kHostParameterCount)
            port.beginEdit(id);
        port.setParameterAutomated(id, value);
        if (id < kHostParameterCount)
            port.endEdit(id);
    }
}

void writeDifferences(EditorPort& port, int program, const ProgramRecord& target)
{
    const ProgramRecord now = port.record(program);
    if (sameRecord(now, target))
        return;
    if (program != port.currentProgram()) {
        port.replaceProgram(program, target);
        return;
    }
    if (fieldText(now.name) != fieldText(target.name))
        port.setProgramName(fieldText(target.name));
    if (fieldText(now.description) != fieldText(target.description))
        port.setDescription(fieldText(target.description));
    for (int id = 0; id < kStoredParameterCount; ++id) {
        const float value = target.values[static_cast<std::size_t>(id)];
        if (!sameBits(now.values[static_cast<std::size_t>(id)], value))
            writeEdited(port, id, value);
    }
}

void EditHistory::begin(std::string_view label)
{
    if (depth_++ > 0)
        return;
    open_ = Entry{std::string(label), port_.currentProgram(), {}, {}};
    noted_.reset();
}

void EditHistory::end()
{
    if (depth_ == 0 || --depth_ > 0)
        return;
    complete(open_);
    if (open_.values.empty() && open_.programs.empty())
        return;
    undone_.push_back(std::move(open_));
    if (undone_.size() > kDepth)
        undone_.pop_front();
    redone_.clear();
    ++changes_;
}

float EditHistory::valueNow(int program, int id) const
{
    if (id == kBendUp)
        return static_cast<float>(port_.bendUpRange());
    if (id == kBendDown)
        return static_cast<float>(port_.bendDownRange());
    return program == port_.currentProgram()
               ? port_.value(id)
               : port_.record(program).values[static_cast<std::size_t>(id)];
}

void EditHistory::noteValue(int id)
{
    const bool known = (id >= 0 && id < kStoredParameterCount) || isBendRange(id);
    if (depth_ == 0 || !known || noted_.test(static_cast<std::size_t>(id)))
        return;
    noted_.set(static_cast<std::size_t>(id));
    const float now = valueNow(open_.program, id);
    open_.values.push_back({id, now, now});
}

void EditHistory::noteProgram(int program)
{
    const auto isNoted = [program](const ProgramChange& change) {
        return change.program == program;
    };
    if (depth_ == 0 || program < 0 || program >= kProgramCount ||
        std::any_of(open_.programs.begin(), open_.programs.end(), isNoted))
        return;
    open_.programs.push_back({program, port_.record(program), {}});
    if (program != open_.program)
        return;
    // Values that were noted before belong to the record from now on.
    ProgramRecord& before = open_.programs.back().before;
    for (const ValueChange& change : open_.values)
        if (!isBendRange(change.id))
            before.values[static_cast<std::size_t>(change.id)] = change.before;
}

// Fills in how the gesture left things, and drops what it did not change.
void EditHistory::complete(Entry& entry) const
{
    bool wholeProgram = false;
    for (ProgramChange& change : entry.programs) {
        change.after = port_.record(change.program);
        wholeProgram |= change.program == entry.program;
    }
    for (ValueChange& change : entry.values)
        change.after = valueNow(entry.program, change.id);
    std::erase_if(entry.values, [&](const ValueChange& change) {
        return (wholeProgram && !isBendRange(change.id)) || sameBits(change.before, change.after);
    });
    std::erase_if(entry.programs, [](const ProgramChange& change) {
        return sameRecord(change.before, change.after);
    });
}

std::string_view EditHistory::undoLabel() const
{
    return canUndo() ? std::string_view(undone_.back().label) : std::string_view();
}

std::string_view EditHistory::redoLabel() const
{
    return canRedo() ? std::string_view(redone_.back().label) : std::string_view();
}

void EditHistory::write(const Entry& entry, bool forwards)
{
    if (entry.program != port_.currentProgram())
        port_.setProgram(entry.program);
    const auto changes = [&](int id) {
        return std::any_of(entry.values.begin(), entry.values.end(),
                           [id](const ValueChange& change) { return change.id == id; });
    };
    if (changes(kArpMode) || changes(kArpOn)) {
        port_.softAllNotesOff();
        port_.resetArpStep();
    }
    for (const ValueChange& change : entry.values)
        writeEdited(port_, change.id, forwards ? change.after : change.before);
    for (const ProgramChange& change : entry.programs)
        writeDifferences(port_, change.program, forwards ? change.after : change.before);
}

bool EditHistory::step(std::deque<Entry>& from, std::deque<Entry>& to, bool forwards)
{
    if (from.empty() || depth_ > 0)
        return false;
    write(from.back(), forwards);
    to.push_back(std::move(from.back()));
    from.pop_back();
    ++changes_;
    return true;
}

bool EditHistory::undo()
{
    return step(undone_, redone_, false);
}

bool EditHistory::redo()
{
    return step(redone_, undone_, true);
}

void EditHistory::clear()
{
    undone_.clear();
    redone_.clear();
    ++changes_;
}

} // namespace tolm
