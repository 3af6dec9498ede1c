#include "editor/actions.h"

#include "editor/matrixRows.h"
#include "editor/programActions.h"
#include "patch/chunkRecord.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace tolm {

namespace {

constexpr int kFirstQuietId = 127; // ids below are told to the host when a control moves them
constexpr float kPrevious = 1.0f;
constexpr float kNext = -1.0f;
constexpr float kOff = 0.00001f;     // a switch's value up to here
constexpr float kBendSemitones = 64; // of a bend knob's whole range

template <class Entries>
bool inside(const Entries& entries, int position)
{
    return position >= 0 && position < static_cast<int>(std::size(entries));
}

template <class Entries>
const auto& entryAt(const Entries& entries, int position)
{
    return entries[static_cast<std::size_t>(position)];
}

// The next stop from a position in the filter menu, over separators and not beyond the ends.
int filterStop(int position, int direction)
{
    const int next = position + direction;
    if (!inside(kFilterMenu, next))
        return position;
    return entryAt(kFilterMenu, next).id == kSeparatorId ? next + direction : next;
}

std::string_view labelOf(int tag)
{
    switch (tag) {
    case kTagMatrixTidy:
        return "Tidy Matrix";
    case kTagArpPattern:
        return "Arp Pattern";
    case kTagDescription:
        return "Description";
    default:
        break;
    }
    const int id = parameterOfTag(tag);
    return id >= 0 ? kCatalogue[static_cast<std::size_t>(id)].name : "";
}

} // namespace

int positionFromValue(float value)
{
    // A menu that was left without a choice sends -1, which truncation would make the first entry.
    const bool chosen = value > -0.5f && value < 1.0e6f;
    return chosen ? static_cast<int>(value + 0.0001f) : -1;
}

int menuPosition(std::span<const MenuEntry> menu, float stored)
{
    const int id = truncated(stored);
    if (id == kSeparatorId)
        return -1;
    const auto found = std::find_if(menu.begin(), menu.end(),
                                    [id](const MenuEntry& entry) { return entry.id == id; });
    return found != menu.end() ? static_cast<int>(found - menu.begin()) : -1;
}

int voiceMaskPosition(float stored)
{
    const int id = truncated(stored);
    for (std::size_t i = 0; i < std::size(kVoiceMaskMenu); ++i)
        if (kVoiceMaskMenu[i].id == id)
            return static_cast<int>(i);
    return -1;
}

int parameterOfTag(int tag)
{
    switch (tag) {
    case kTagOsc1WaveMenu:
    case kTagOsc1WaveStepper:
        return kOsc1Wave;
    case kTagOsc2WaveMenu:
    case kTagOsc2WaveStepper:
        return kOsc2Wave;
    case kTagFilterStepper:
        return kFilterType;
    case kTagBendUp:
    case kTagBendDown:
    case kTagPitchWheel:
        return tag;
    default:
        return tag >= 0 && tag < kStoredParameterCount ? tag : -1;
    }
}

// A row per range of tags; the first that holds a tag acts.
struct Actions::Row {
    int first;
    int last;
    void (Actions::*act)(int tag, float value);
};

const Actions::Row* Actions::rowOf(int tag)
{
    constexpr int kLastRow = kMatrixRows - 1;
    // clang-format off
    static constexpr Row kRows[] = {
        {kFilterType, kFilterType, &Actions::chooseFilterType},
        {kArpMode, kArpMode, &Actions::chooseArpMode},
        {kArpOn, kArpOn, &Actions::switchArpeggiator},
        {kModSource1, kModSource1 + kLastRow, &Actions::chooseSource},
        {kModDestination1, kModDestination1 + kLastRow, &Actions::chooseDestination},
        {kModVoices1, kModVoices1 + kLastRow, &Actions::chooseVoiceMask},
        {0, kFirstQuietId - 1, &Actions::changeHostParameter},
        {kFirstQuietId, kStoredParameterCount - 1, &Actions::changeOtherParameter},
        {kTagOsc1WaveMenu, kTagOsc2WaveMenu, &Actions::chooseWave},
        {kTagPresetList, kTagPresetList, &Actions::choosePreset},
        {kTagPresetPrevious, kTagPresetPrevious, &Actions::stepPreset},
        {kTagOsc1WaveStepper, kTagOsc2WaveStepper, &Actions::stepWave},
        {kTagPane1, kTagPane2, &Actions::choosePage},
        {kTagBendUp, kTagBendDown, &Actions::changeBendRange},
        {kTagFilterStepper, kTagFilterStepper, &Actions::stepFilterType},
        {kTagEffectPage, kTagEffectPage, &Actions::choosePage},
        {kTagTwoViews, kTagTwoViews, &Actions::choosePage},
        {kTagPitchWheel, kTagPitchWheel, &Actions::movePitchWheel},
        {kTagPresetNext, kTagPresetNext, &Actions::stepPreset},
        {kTagCategory, kTagCategory, &Actions::chooseCategory},
        {kTagBank, kTagBank, &Actions::chooseBank},
        {kTagMatrixTidy, kTagMatrixTidy, &Actions::tidy},
        {kTagArpPattern, kTagArpPattern, &Actions::choosePattern},
        {kTagBankFiles, kTagProgramFiles, &Actions::chooseFileAction},
        {kTagLearnMenu, kTagLearnMenu, &Actions::chooseLearning},
        {kTagDestinations1, kTagDestinations8, &Actions::chooseGroupedDestination},
    };
    // clang-format on
    const auto holds = [tag](const Row& row) { return tag >= row.first && tag <= row.last; };
    const auto* found = std::find_if(std::begin(kRows), std::end(kRows), holds);
    return found != std::end(kRows) ? found : nullptr;
}

void Actions::controlChanged(int tag, float value)
{
    const Row* row = rowOf(tag);
    if (row == nullptr || !std::isfinite(value))
        return;
    const bool open = std::find(openTags_.begin(), openTags_.end(), tag) != openTags_.end();
    if (!open)
        beginGesture(tag);
    (this->*row->act)(tag, value);
    if (!open)
        endGesture(tag);
}

void Actions::beginGesture(int tag)
{
    openTags_.push_back(tag);
    history_.begin(labelOf(tag));
    if (const int id = parameterOfTag(tag); id >= 0 && id < kHostParameterCount)
        port_.beginEdit(id);
}

void Actions::endGesture(int tag)
{
    const auto open = std::find(openTags_.begin(), openTags_.end(), tag);
    if (open == openTags_.end())
        return;
    openTags_.erase(open);
    if (const int id = parameterOfTag(tag); id >= 0 && id < kHostParameterCount)
        port_.endEdit(id);
    history_.end();
}

void Actions::endGestures()
{
    while (!openTags_.empty())
        endGesture(openTags_.back());
}

void Actions::automated(int id, float value)
{
    history_.noteValue(id);
    port_.setParameterAutomated(id, value);
}

void Actions::quiet(int id, float value)
{
    history_.noteValue(id);
    port_.setParameterQuiet(id, value);
}

void Actions::full(int id, float value)
{
    history_.noteValue(id);
    port_.setParameter(id, value);
}

void Actions::silenceArpeggiator()
{
    port_.softAllNotesOff();
    port_.resetArpStep();
}

void Actions::changeHostParameter(int tag, float value)
{
    automated(tag, value);
}

// Switches, modes, the matrix, the steps and the effect order are not the host's business.
void Actions::changeOtherParameter(int tag, float value)
{
    quiet(tag, value);
}

void Actions::chooseFilterType(int tag, float value)
{
    const int position = positionFromValue(value);
    if (inside(kFilterMenu, position) && entryAt(kFilterMenu, position).id != kSeparatorId)
        quiet(tag, static_cast<float>(entryAt(kFilterMenu, position).id));
}

void Actions::chooseArpMode(int tag, float value)
{
    const int position = positionFromValue(value);
    if (!inside(kArpModeMenu, position))
        return;
    silenceArpeggiator();
    quiet(tag, static_cast<float>(entryAt(kArpModeMenu, position).id));
}

void Actions::switchArpeggiator(int tag, float value)
{
    quiet(tag, value);
    silenceArpeggiator();
}

void Actions::chooseSource(int tag, float value)
{
    const int position = positionFromValue(value);
    if (!inside(kSourceMenu, position))
        return;
    port_.rememberedMatrixSource() = entryAt(kSourceMenu, position).id;
    quiet(tag, static_cast<float>(entryAt(kSourceMenu, position).id));
}

void Actions::chooseDestination(int tag, float value)
{
    const int position = positionFromValue(value);
    if (inside(kDestinationMenu, position))
        quiet(tag, static_cast<float>(entryAt(kDestinationMenu, position).id));
}

void Actions::chooseVoiceMask(int tag, float value)
{
    const int position = positionFromValue(value);
    if (!inside(kVoiceMaskMenu, position))
        return;
    port_.rememberedVoiceMask() = entryAt(kVoiceMaskMenu, position).id;
    quiet(tag, static_cast<float>(entryAt(kVoiceMaskMenu, position).id));
}

void Actions::chooseWave(int tag, float value)
{
    const int position = positionFromValue(value);
    if (position >= 0 && position < kWaveCount)
        automated(parameterOfTag(tag), static_cast<float>(position) / 128.0f);
}

void Actions::stepWave(int tag, float value)
{
    const int oscillator = tag == kTagOsc1WaveStepper ? 1 : 2;
    int wave = port_.oscillatorWave(oscillator);
    if (value == kPrevious)
        wave = std::max(wave - 1, 0);
    else if (value == kNext)
        wave = std::min(wave + 1, kWaveCount - 1);
    automated(parameterOfTag(tag), static_cast<float>(wave) / 128.0f);
    view_.showWave(oscillator, wave);
}

void Actions::stepFilterType(int, float value)
{
    int position = std::max(menuPosition(kFilterMenu, port_.value(kFilterType)), 0);
    if (value == kPrevious)
        position = filterStop(position, -1);
    else if (value == kNext)
        position = filterStop(position, 1);
    quiet(kFilterType, static_cast<float>(entryAt(kFilterMenu, position).id));
    view_.showFilterType();
}

void Actions::choosePreset(int, float value)
{
    if (const int position = positionFromValue(value); position >= 0)
        port_.choosePreset(position);
}

void Actions::stepPreset(int tag, float value)
{
    if (value != 1.0f)
        return;
    if (tag == kTagPresetPrevious)
        port_.previousPreset();
    else
        port_.nextPreset();
}

void Actions::chooseCategory(int, float value)
{
    port_.chooseCategory(positionFromValue(value));
}

void Actions::chooseBank(int, float value)
{
    port_.chooseBank(value);
}

void Actions::chooseFileAction(int tag, float value)
{
    constexpr int kProgramModes = 2; // behind those of banks
    const int position = positionFromValue(value);
    if (position == 0 || position == 1)
        port_.fileDialog(tag == kTagBankFiles ? position : position + kProgramModes);
}

void Actions::changeBendRange(int tag, float value)
{
    history_.noteValue(tag);
    const int semitones = static_cast<int>(std::clamp(value, 0.0f, 1.0f) * kBendSemitones);
    if (tag == kTagBendUp)
        port_.setBendUpRange(semitones);
    else
        port_.setBendDownRange(semitones);
}

void Actions::movePitchWheel(int tag, float value)
{
    port_.setParameterAutomated(tag, value);
}

void Actions::choosePage(int tag, float value)
{
    constexpr float kPageEnds[] = {kOff, 0.34f, 0.67f};
    if (tag == kTagEffectPage)
        pages_.effectPage =
            static_cast<int>(std::count_if(std::begin(kPageEnds), std::end(kPageEnds),
                                           [value](float end) { return value >= end; }));
    else if (tag == kTagTwoViews)
        pages_.secondView = value >= kOff;
    else
        pages_.pane[static_cast<std::size_t>(tag - kTagPane1)] = value >= kOff;
    view_.showPages(pages_);
}

void Actions::openLearnMenu(int tag)
{
    learnId_ = parameterOfTag(tag);
}

void Actions::chooseLearning(int, float value)
{
    const int position = positionFromValue(value);
    if (learnId_ < 0 || position < 0)
        return;
    if (position == 0)
        port_.armLearn(learnId_);
    else
        port_.forget(learnId_);
}

void Actions::choosePattern(int, float value)
{
    const int position = positionFromValue(value);
    if (position < 0 || position >= patterns_.count())
        return;
    port_.softAllNotesOff();
    if (position > 0) {
        applyPattern(port_, history_, patterns_.pattern(position));
        view_.showArpMode();
    }
    view_.refresh();
    port_.updateHostDisplay();
}

void Actions::tidy(int, float)
{
    MatrixRows rows = matrixOf(port_);
    tidyMatrix(rows);
    writeMatrix(port_, history_, rows);
    view_.refresh();
    port_.reapplyProgram();
}

void Actions::chooseGroupedDestination(int tag, float value)
{
    const int group = entryAt(kDestinationGroups, tag - kTagDestinations1);
    const int index = positionFromValue(value) + group;
    const bool rowNoted = notedRow_ >= 0 && notedRow_ < kMatrixRows;
    if (!rowNoted || positionFromValue(value) < 0 || !inside(kDestinationMenu, index))
        return;
    full(kModDestination1 + notedRow_, static_cast<float>(entryAt(kDestinationMenu, index).id));
    view_.refresh();
    port_.updateHostDisplay();
}

void Actions::descriptionChanged(std::string_view text)
{
    const EditGesture gesture(history_, labelOf(kTagDescription));
    history_.noteProgram(port_.currentProgram());
    port_.setDescription(text.substr(0, text.find('\0')));
}

} // namespace tolm
