#pragma once
// What happens when a control of the window changes, by its tag. No drawing: a test and a window
// call the same handler. User-interface thread.
//
// Tags below 329 are parameter ids; the others are named below. Knobs and switches send 0..1, menus
// their position, steppers 1 for previous (up in the list) and -1 for next.

#include "editor/EditHistory.h"
#include "editor/arpPattern.h"
#include "plugin/menus.h"

#include <array>
#include <span>
#include <string_view>
#include <vector>

namespace tolm {

enum EditorTag : int {
    kTagOsc1WaveMenu = 329,
    kTagOsc2WaveMenu = 330,
    kTagPresetList = 331,
    kTagPresetPrevious = 332,
    kTagOsc1WaveStepper = 335,
    kTagOsc2WaveStepper = 336,
    kTagPane1 = 337,
    kTagPane2 = 338,
    kTagBendUp = 340,
    kTagBendDown = 341,
    kTagFilterStepper = 342,
    kTagEffectPage = 343,
    kTagDescription = 344, // a text: see Actions::descriptionChanged
    kTagTwoViews = 345,
    kTagPitchWheel = 346,
    kTagPresetNext = 349,
    kTagCategory = 351,
    kTagBank = 352, // 0, 0.5 and 1
    kTagMatrixTidy = 353,
    kTagArpPattern = 354,
    kTagBankFiles = 355,      // 0 load, 1 save
    kTagProgramFiles = 356,   // 0 load, 1 save
    kTagLearnMenu = 357,      // 0 learn, 1 forget; see Actions::openLearnMenu
    kTagDestinations1 = 1000, // eight sub-menus; see Actions::openDestinationMenu
    kTagDestinations8 = 1007,
};

// Which of the exchangeable parts of the window are shown.
struct EditorPages {
    int effectPage = 0; // 0..3
    bool secondView = false;
    std::array<bool, 2> pane{};

    friend bool operator==(const EditorPages&, const EditorPages&) = default;
};

// What actions tell the window. Other controls follow their values' news.
class ActionsView {
public:
    virtual ~ActionsView() = default;
    // The wave menu of oscillator 1 or 2 shows 0..69.
    virtual void showWave(int oscillator, int wave) = 0;
    virtual void showFilterType() = 0;
    virtual void showArpMode() = 0;
    virtual void showPages(const EditorPages& pages) = 0;
    // All controls read their values again.
    virtual void refresh() = 0;
};

class Actions {
public:
    Actions(EditorPort& port, EditHistory& history, const ArpPatternTable& patterns,
            ActionsView& view)
        : port_(port), history_(history), patterns_(patterns), view_(view)
    {
    }

    // Unknown tags, positions outside a menu and values that are no numbers do nothing. A change
    // outside of a gesture is a gesture of its own.
    void controlChanged(int tag, float value);

    // Around a drag, a turn of the wheel or a series of keys on one control: one step of undo, and
    // for the host one edit. Begins and ends pair up.
    void beginGesture(int tag);
    void endGesture(int tag);
    // Those that nobody will end any more, as when the window goes in the middle of a drag.
    void endGestures();

    // Zero-terminated where it is stored: the text ends before its first zero, at most 479 bytes.
    void descriptionChanged(std::string_view text);

    // The row 0..23 that the destination sub-menus act on from now on.
    void openDestinationMenu(int row) { notedRow_ = row; }
    int notedRow() const { return notedRow_; }
    // The control whose parameter the learn menu acts on from now on.
    void openLearnMenu(int tag);

    const EditorPages& pages() const { return pages_; }
    const ArpPatternTable& patterns() const { return patterns_; }

private:
    struct Row;
    static const Row* rowOf(int tag);

    void automated(int id, float value);
    void quiet(int id, float value);
    void full(int id, float value);
    void silenceArpeggiator();

    void changeHostParameter(int tag, float value);
    void changeOtherParameter(int tag, float value);
    void chooseFilterType(int tag, float value);
    void chooseArpMode(int tag, float value);
    void switchArpeggiator(int tag, float value);
    void chooseSource(int tag, float value);
    void chooseDestination(int tag, float value);
    void chooseVoiceMask(int tag, float value);
    void chooseWave(int tag, float value);
    void stepWave(int tag, float value);
    void stepFilterType(int tag, float value);
    void choosePreset(int tag, float value);
    void stepPreset(int tag, float value);
    void chooseCategory(int tag, float value);
    void chooseBank(int tag, float value);
    void chooseFileAction(int tag, float value);
    void changeBendRange(int tag, float value);
    void movePitchWheel(int tag, float value);
    void choosePage(int tag, float value);
    void chooseLearning(int tag, float value);
    void choosePattern(int tag, float value);
    void tidy(int tag, float value);
    void chooseGroupedDestination(int tag, float value);

    EditorPort& port_;
    EditHistory& history_;
    const ArpPatternTable& patterns_;
    ActionsView& view_;
    EditorPages pages_;
    int notedRow_ = 0;
    int learnId_ = -1;
    std::vector<int> openTags_; // of the gestures under way
};

// The position that a menu sends or stands at; -1 for values that are none.
int positionFromValue(float value);
// Where the entry with this stored id stands, or -1. Separators are never found.
int menuPosition(std::span<const MenuEntry> menu, float stored);
int voiceMaskPosition(float stored);
// The parameter that a control with this tag changes, or -1: what its learn menu, its undo step and
// the host's record of edits are about.
int parameterOfTag(int tag);

} // namespace tolm
