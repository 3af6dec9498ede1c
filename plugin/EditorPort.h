#pragma once
// All that the editor can see of the plug-in and ask of it. User-interface thread, unless said
// otherwise. An implementation never waits for the audio thread longer than the processing guard
// lets it, and never calls the host from a thread that is not the host's.

#include "patch/ProgramRecord.h"
#include "patch/browser.h"
#include "plugin/catalogue.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tolm {

inline constexpr std::size_t kTagCount = std::size(kCatalogue);

// What changed since it was last asked, however it came about.
struct EditorNews {
    std::bitset<kTagCount> parameters; // stored values, by id
    bool program = false;              // another one is current
    bool presetList = false;           // entries, names, selection or description
    bool everything = false;           // a chunk was loaded: all of it
    bool learnedController = false;
    float wheelDistance = 0.0f; // of the mouse wheel, sent by hosts that keep it; upwards positive
};

// Small live values for meters and lights, read about 30 times a second.
struct EditorMeters {
    float peakLeft = 0.0f; // of the output since the last reading, 1 is full scale
    float peakRight = 0.0f;
    int voices = 0;                    // sounding
    int arpStep = -1;                  // 0..31 while the arpeggiator plays
    std::bitset<128> keys;             // held
    std::array<float, 24> rowSource{}; // a matrix row's source, -1..1, of the newest voice
    std::array<float, 3> lfoPhase{};   // 0..1, of the newest voice
};

struct EditorNotice {
    std::string title;
    std::string text;
};

class FileSelector;

// The wave 0..69 that a stored "Osc 1 Wave" or "Osc 2 Wave" chooses.
inline int waveIndex(float value)
{
    const float unit = value > 0.0f ? std::min(value, 1.0f) : 0.0f;
    return std::min(static_cast<int>(unit * 128.0f + 0.001f), kWaveCount - 1);
}

class EditorPort {
public:
    virtual ~EditorPort() = default;

    // --- values ---------------------------------------------------------------------------
    // The current program's stored value; for ids 329..348 what was last set, 0 before. Id 346, the
    // pitch wheel, follows incoming bends.
    virtual float value(int id) const = 0;
    // Stored and applied, and the editor is told.
    virtual void setParameter(int id, float value) = 0;
    // The same without an echo to the editor. A new effect order is heard at once.
    virtual void setParameterQuiet(int id, float value) = 0;
    // Stored, applied, told to the host and sent as a controller.
    virtual void setParameterAutomated(int id, float value) = 0;
    // Around a gesture on an id that the host knows; others are ignored.
    virtual void beginEdit(int id) = 0;
    virtual void endEdit(int id) = 0;
    // Applies all 329 stored values again, in order.
    virtual void reapplyProgram() = 0;
    virtual EditorNews takeNews() = 0;
    virtual EditorMeters meters() = 0;

    // --- the current program and the preset list ---------------------------------------------
    virtual int currentProgram() const = 0;
    // A copy of any program, 0..383.
    virtual ProgramRecord record(int program) const = 0;
    // Replaces the current program, name and description included, and loads it.
    virtual void replaceCurrent(const ProgramRecord& record) = 0;
    // Over any program; loads it when it is the current one.
    virtual void replaceProgram(int program, const ProgramRecord& record) = 0;
    // As the factory bank has it after loading, 0..383.
    virtual const ProgramRecord& factoryRecord(int program) const = 0;
    virtual const ProgramRecord& initialRecord() const = 0;
    virtual void setProgram(int program) = 0;
    virtual void setProgramName(std::string_view name) = 0;
    virtual void setDescription(std::string_view text) = 0;
    virtual PresetBrowser browser() const = 0;
    virtual std::string presetLabel(int position) const = 0;
    virtual int currentBank() const = 0;
    virtual void choosePreset(int position) = 0;
    virtual void previousPreset() = 0;
    virtual void nextPreset() = 0;
    virtual void chooseBank(float value) = 0;
    virtual void chooseCategory(int position) = 0;
    virtual void rebuildPresetList() = 0;
    // 0 load bank, 1 save bank, 2 load program, 3 save program.
    virtual void fileDialog(int mode) = 0;
    // The selector that fileDialog opens; null when the window closes. While there is one, meters
    // run and notes to the user wait in takeNotice instead of going elsewhere.
    virtual void useFileSelector(FileSelector* selector) = 0;

    // --- controllers --------------------------------------------------------------------------
    // The map counts as changed.
    virtual void armLearn(int id) = 0;
    virtual void forget(int id) = 0;
    virtual void forgetAll() = 0;
    // The id that waits for a controller, and the controllers 0..127 that move an id.
    virtual std::optional<int> learningId() const = 0;
    virtual std::vector<int> controllersOf(int id) const = 0;

    // --- playing -----------------------------------------------------------------------------
    virtual void playKey(int key, int velocity) = 0; // 0..127, 1..127
    virtual void releaseKey(int key) = 0;
    virtual void moveModWheel(int value) = 0; // 0..127
    // Lets held and arpeggiated notes go into their release.
    virtual void softAllNotesOff() = 0;
    // Silences everything at once.
    virtual void panic() = 0;
    virtual void resetArpStep() = 0;
    // The wave index 0..69 that oscillator 1 or 2 plays.
    virtual int oscillatorWave(int oscillator) const = 0;
    virtual int bendUpRange() const = 0; // semitones 0..64
    virtual int bendDownRange() const = 0;
    virtual void setBendUpRange(int semitones) = 0;
    virtual void setBendDownRange(int semitones) = 0;

    // --- remembered for as long as the plug-in lives --------------------------------------------
    virtual int& rememberedMatrixSource() = 0;
    virtual int& rememberedVoiceMask() = 0;
    virtual std::optional<EditorNotice> takeNotice() = 0;

    // --- host and system ------------------------------------------------------------------------
    virtual void updateHostDisplay() = 0;
    // Device pixels. False when the host cannot or will not.
    virtual bool resizeHostWindow(int width, int height) = 0;
    // Small text files of the user (favourites, window size), by plain name; nothing when there is
    // none. Writing replaces the whole file or leaves the old one; a failure is not reported.
    virtual std::optional<std::string> readUserFile(std::string_view name) const = 0;
    virtual void writeUserFile(std::string_view name, std::string_view text) = 0;
};

} // namespace tolm
