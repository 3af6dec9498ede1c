#pragma once
// Undo and redo of what the user changes in the window. Every writer says beforehand what it is
// about to change; what it really changed is found when its gesture ends. User-interface thread.

#include "plugin/EditorPort.h"

#include <bitset>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace tolm {

class EditHistory {
public:
    static constexpr std::size_t kDepth = 500; // the oldest entry is dropped for a new one

    explicit EditHistory(EditorPort& port) : port_(port) {}

    // A gesture becomes one entry, or none when nothing differs at its end. Gestures nest: only the
    // outermost counts, and gives its label.
    void begin(std::string_view label);
    void end();

    // Inside a gesture, before the change; outside of one nothing happens. Ids 0..328 of the
    // current program, and the bend ranges kBendUp and kBendDown; others are ignored.
    void noteValue(int id);
    // The whole of a program 0..383: values, name, description.
    void noteProgram(int program);

    bool canUndo() const { return !undone_.empty(); }
    bool canRedo() const { return !redone_.empty(); }
    // What the next step takes back or does again; empty when there is none.
    std::string_view undoLabel() const;
    std::string_view redoLabel() const;

    // False when there is nothing to do or a gesture is under way. A step that belongs to another
    // program selects it first. Notes play on: only what differs is written.
    bool undo();
    bool redo();

    // After a bank was loaded, whose programs the steps know nothing of.
    void clear();
    // Counts steps and new entries, for those who want to know whether something happened.
    unsigned changes() const { return changes_; }

private:
    struct ValueChange {
        int id;
        float before;
        float after;
    };
    struct ProgramChange {
        int program;
        ProgramRecord before;
        ProgramRecord after;
    };
    struct Entry {
        std::string label;
        int program = 0;
        std::vector<ValueChange> values;
        std::vector<ProgramChange> programs;
    };

    float valueNow(int program, int id) const;
    void complete(Entry& entry) const;
    bool step(std::deque<Entry>& from, std::deque<Entry>& to, bool forwards);
    void write(const Entry& entry, bool forwards);

    EditorPort& port_;
    std::deque<Entry> undone_; // can be undone, the latest last
    std::deque<Entry> redone_;
    Entry open_;
    std::bitset<kParameterCount> noted_;
    int depth_ = 0;
    unsigned changes_ = 0;
};

// A gesture for the length of a scope.
class EditGesture {
public:
    EditGesture(EditHistory& history, std::string_view label) : history_(history)
    {
        history_.begin(label);
    }
    ~EditGesture() { history_.end(); }
    EditGesture(const EditGesture&) = delete;
    EditGesture& operator=(const EditGesture&) = delete;

private:
    EditHistory& history_;
};

// Makes a program equal to `target`. In the current one only differing values are written, so that
// sounding notes go on.
void writeDifferences(EditorPort& port, int program, const ProgramRecord& target);
// One value as the user's own change would write it: told to the host where it is the host's.
void writeEdited(EditorPort& port, int id, float value);

} // namespace tolm
