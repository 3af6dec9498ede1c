#pragma once
// Actions over an offline plug-in, with a window that only counts.

#include "FakeEditorPort.h"
#include "editor/actions.h"

namespace tolm::test {

class CountingView final : public ActionsView {
public:
    void showWave(int oscillator, int wave) override { waves.push_back(oscillator * 100 + wave); }
    void showFilterType() override { ++filterTypes; }
    void showArpMode() override { ++arpModes; }
    void showPages(const EditorPages& pages) override { shown = pages; }
    void refresh() override { ++refreshes; }

    std::vector<int> waves; // oscillator * 100 + wave
    int filterTypes = 0, arpModes = 0, refreshes = 0;
    EditorPages shown;
};

// "User Pattern" and two others: every value of pattern p is p / 10, but for the mode.
class TwoPatterns final : public ArpPatternTable {
public:
    int count() const override { return 3; }
    std::string_view name(int pattern) const override
    {
        return pattern == 0 ? "User Pattern" : "Other";
    }
    ArpPattern pattern(int pattern) const override
    {
        ArpPattern made;
        made.values.fill(static_cast<float>(pattern) / 10.0f);
        made.set(kArpMode, 6.0f);
        return made;
    }
};

struct ActionsRig {
    FakeEditorPort port;
    EditHistory history{port};
    TwoPatterns patterns;
    CountingView view;
    Actions actions{port, history, patterns, view};

    // The calls that one change makes.
    std::vector<std::string> change(int tag, float value)
    {
        port.takeCalls();
        actions.controlChanged(tag, value);
        return port.takeCalls();
    }
};

} // namespace tolm::test
