#include "plugin/PluginEditorPort.h"

#include "patch/chunkRecord.h"
#include "plugin/VstSynth.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <mutex>
#include <utility>

namespace tolm {

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;
constexpr int kLargestBendRange = 64;
constexpr std::uint8_t kControlChange = 0xB0;
constexpr std::uint8_t kModWheelController = 1;
constexpr std::size_t kMostNotices = 16; // older ones nobody has read are dropped

bool isProgram(int program)
{
    return program >= 0 && program < kProgramCount;
}

bool isEditorValue(int id)
{
    return id >= kStoredParameterCount && id < kParameterCount;
}

// What a text field of a file or the clipboard brings is made to fit the store.
ProgramRecord safeCopy(const ProgramRecord& record)
{
    ProgramRecord safe = record;
    dropNonFinite(safe);
    safe.name.back() = '\0';
    safe.description.back() = '\0';
    return safe;
}

} // namespace

PluginEditorPort::PluginEditorPort(VstSynth& synth, UserFiles* files) : synth_(synth), files_(files)
{
}

PluginEditorPort::~PluginEditorPort() = default;

SynthCore& PluginEditorPort::core() const
{
    return synth_.core();
}

PresetLibrary& PluginEditorPort::presets() const
{
    return synth_.presets();
}

// ---- Values -----------------------------------------------------------------------------------

float PluginEditorPort::value(int id) const
{
    if (id == kPitchWheel)
        return core().pitchWheel();
    if (isEditorValue(id))
        return editorValues_[static_cast<std::size_t>(id - kStoredParameterCount)];
    return core().storedValue(id);
}

void PluginEditorPort::keepEditorValue(int id, float value)
{
    if (isEditorValue(id))
        editorValues_[static_cast<std::size_t>(id - kStoredParameterCount)] =
            std::isfinite(value) ? value : 0.0f;
}

// Programs bring their order when they load; one that the user changes is to be heard before that.
void PluginEditorPort::hearEffectOrder(int id, float value)
{
    const int slot = id - kEffectOrder1;
    const float kind = std::floor(value + 0.1f);
    if (slot >= 0 && slot < kEffectSlots && kind >= 0.0f && kind < kEffectSlots)
        core().setEffectOrder(slot, static_cast<int>(kind));
}

void PluginEditorPort::setParameter(int id, float value)
{
    keepEditorValue(id, value);
    synth_.setParameter(id, value);
    hearEffectOrder(id, value);
}

void PluginEditorPort::setParameterQuiet(int id, float value)
{
    keepEditorValue(id, value);
    synth_.setParameterQuiet(id, value);
    hearEffectOrder(id, value);
}

void PluginEditorPort::setParameterAutomated(int id, float value)
{
    keepEditorValue(id, value);
    synth_.setParameterAutomated(id, value);
    hearEffectOrder(id, value);
}

void PluginEditorPort::beginEdit(int id)
{
    synth_.beginEdit(id);
}

void PluginEditorPort::endEdit(int id)
{
    synth_.endEdit(id);
}

void PluginEditorPort::reapplyProgram()
{
    core().reapplyProgram();
}

// ---- News -------------------------------------------------------------------------------------

void PluginEditorPort::parameterChanged(int id, float)
{
    if (id < 0 || id >= kParameterCount)
        return;
    const auto bit = static_cast<std::size_t>(id);
    changed_[bit / 64].fetch_or(std::uint64_t{1} << (bit % 64), std::memory_order_release);
}

void PluginEditorPort::note(Happening happening)
{
    happened_.fetch_or(happening, std::memory_order_release);
}

void PluginEditorPort::programChanged(int)
{
    note(programNews);
}

void PluginEditorPort::programNamesChanged()
{
    note(presetListNews);
}

void PluginEditorPort::everythingChanged()
{
    note(everythingNews);
}

void PluginEditorPort::mouseWheelMoved(std::intptr_t, float distance)
{
    float sum = wheelDistance_.load(kRelaxed);
    while (std::isfinite(distance) &&
           !wheelDistance_.compare_exchange_weak(sum, sum + distance, kRelaxed)) {
    }
}

bool PluginEditorPort::show(std::string_view title, std::string_view text)
{
    if (!windowOpen_)
        return false;
    notices_.push_back({std::string(title), std::string(text)});
    if (notices_.size() > kMostNotices)
        notices_.pop_front();
    return true;
}

EditorNews PluginEditorPort::takeNews()
{
    EditorNews news;
    const unsigned happened = happened_.exchange(0, std::memory_order_acquire);
    news.program = (happened & programNews) != 0;
    news.presetList = (happened & presetListNews) != 0;
    news.everything = (happened & everythingNews) != 0;
    for (std::size_t i = 0; i < changed_.size(); ++i) {
        std::uint64_t marks = changed_[i].exchange(0, std::memory_order_acquire);
        for (; marks != 0; marks &= marks - 1)
            news.parameters.set(i * 64 + static_cast<std::size_t>(std::countr_zero(marks)));
    }
    const bool isLearning = core().midiMap().isLearning();
    news.learnedController = std::exchange(wasLearning_, isLearning) && !isLearning;
    news.wheelDistance = wheelDistance_.exchange(0.0f, kRelaxed);
    return news;
}

EditorMeters PluginEditorPort::meters()
{
    EditorMeters meters;
    core().meters().read(meters);
    for (int key = 0; key < kKeyCount; ++key)
        meters.keys.set(static_cast<std::size_t>(key), core().keyDown(key));
    return meters;
}

std::optional<EditorNotice> PluginEditorPort::takeNotice()
{
    if (!notices_.empty()) {
        EditorNotice notice = std::move(notices_.front());
        notices_.pop_front();
        return notice;
    }
    if (std::optional<Notice> kept = synth_.notices().takeKept())
        return EditorNotice{std::move(kept->title), std::move(kept->text)};
    return std::nullopt;
}

// ---- Programs and the preset list -------------------------------------------------------------

int PluginEditorPort::currentProgram() const
{
    return core().currentProgram();
}

ProgramRecord PluginEditorPort::record(int program) const
{
    const std::lock_guard lock(core().textLock());
    return takeRecord(core().engine().programBank(), std::clamp(program, 0, kProgramCount - 1));
}

void PluginEditorPort::replaceCurrent(const ProgramRecord& record)
{
    replaceProgram(core().currentProgram(), record);
}

void PluginEditorPort::replaceProgram(int program, const ProgramRecord& record)
{
    if (!isProgram(program))
        return;
    const ProgramRecord safe = safeCopy(record);
    {
        const std::lock_guard lock(core().textLock());
        putRecord(core().engine().programBank(), program, safe);
    }
    if (program == core().currentProgram())
        presets().setProgram(program);
    note(presetListNews);
}

const ProgramStore& PluginEditorPort::factory() const
{
    if (factory_ == nullptr)
        factory_ = std::make_unique<ProgramStore>();
    return *factory_;
}

const ProgramRecord& PluginEditorPort::factoryRecord(int program) const
{
    return factory().record(std::clamp(program, 0, kProgramCount - 1));
}

const ProgramRecord& PluginEditorPort::initialRecord() const
{
    return factory().record(kProgramCount - 1);
}

void PluginEditorPort::setProgram(int program)
{
    presets().setProgram(program);
}

void PluginEditorPort::setProgramName(std::string_view name)
{
    presets().setProgramName(name);
}

void PluginEditorPort::setDescription(std::string_view text)
{
    const std::lock_guard lock(core().textLock());
    core().engine().programBank().setDescription(core().currentProgram(), text);
}

PresetBrowser PluginEditorPort::browser() const
{
    return presets().browser();
}

std::string PluginEditorPort::presetLabel(int position) const
{
    return presets().label(position);
}

int PluginEditorPort::currentBank() const
{
    return core().currentBank();
}

void PluginEditorPort::choosePreset(int position)
{
    presets().choose(position);
}

void PluginEditorPort::previousPreset()
{
    presets().previous();
}

void PluginEditorPort::nextPreset()
{
    presets().next();
}

void PluginEditorPort::chooseBank(float value)
{
    presets().chooseBank(value);
}

void PluginEditorPort::chooseCategory(int position)
{
    presets().chooseCategory(position);
}

void PluginEditorPort::rebuildPresetList()
{
    presets().rebuildPresetList();
}

void PluginEditorPort::fileDialog(int mode)
{
    presets().fileDialog(mode);
}

void PluginEditorPort::useFileSelector(FileSelector* selector)
{
    windowOpen_ = selector != nullptr;
    core().meters().watch(windowOpen_);
    presets().useFileSelector(selector);
}

// ---- Controllers ------------------------------------------------------------------------------

void PluginEditorPort::armLearn(int id)
{
    core().midiMap().armLearn(id);
    wasLearning_ = core().midiMap().isLearning();
}

void PluginEditorPort::forget(int id)
{
    core().midiMap().forget(id);
}

void PluginEditorPort::forgetAll()
{
    MidiMap& map = core().midiMap();
    for (int controller = 0; controller < kControllerCount; ++controller)
        if (const int id = map.parameterOf(controller); id >= 0)
            map.forget(id);
}

std::optional<int> PluginEditorPort::learningId() const
{
    const int id = core().midiMap().learningParameter();
    return id >= 0 ? std::optional(id) : std::nullopt;
}

std::vector<int> PluginEditorPort::controllersOf(int id) const
{
    std::vector<int> controllers;
    for (int controller = 0; id >= 0 && controller < kControllerCount; ++controller)
        if (core().midiMap().parameterOf(controller) == id)
            controllers.push_back(controller);
    return controllers;
}

// ---- Playing ----------------------------------------------------------------------------------

void PluginEditorPort::playKey(int key, int velocity)
{
    core().keyboard().push(kNoteOn, key, static_cast<std::uint8_t>(std::clamp(velocity, 1, 127)));
}

void PluginEditorPort::releaseKey(int key)
{
    core().keyboard().push(kNoteOff, key, 0);
}

void PluginEditorPort::moveModWheel(int value)
{
    core().keyboard().push(kControlChange, kModWheelController,
                           static_cast<std::uint8_t>(std::clamp(value, 0, 127)));
}

void PluginEditorPort::softAllNotesOff()
{
    core().request(SynthCore::Request::releaseNotes);
}

void PluginEditorPort::panic()
{
    core().request(SynthCore::Request::silence);
}

void PluginEditorPort::resetArpStep()
{
    core().request(SynthCore::Request::restartArp);
}

int PluginEditorPort::oscillatorWave(int oscillator) const
{
    return waveIndex(core().storedValue(oscillator == 1 ? kOsc1Wave : kOsc2Wave));
}

int PluginEditorPort::bendUpRange() const
{
    return core().engine().record().bendUpRange.load(kRelaxed);
}

int PluginEditorPort::bendDownRange() const
{
    return core().engine().record().bendDownRange.load(kRelaxed);
}

void PluginEditorPort::setBendUpRange(int semitones)
{
    const int range = std::clamp(semitones, 0, kLargestBendRange);
    core().engine().record().bendUpRange.store(range, kRelaxed);
}

void PluginEditorPort::setBendDownRange(int semitones)
{
    const int range = std::clamp(semitones, 0, kLargestBendRange);
    core().engine().record().bendDownRange.store(range, kRelaxed);
}

// ---- Memory, host, files ----------------------------------------------------------------------

int& PluginEditorPort::rememberedMatrixSource()
{
    return synth_.rememberedMatrixSource;
}

int& PluginEditorPort::rememberedVoiceMask()
{
    return synth_.rememberedVoiceMask;
}

void PluginEditorPort::updateHostDisplay()
{
    synth_.updateHostDisplay();
}

bool PluginEditorPort::resizeHostWindow(int width, int height)
{
    return synth_.resizeHostWindow(width, height);
}

std::optional<std::string> PluginEditorPort::readUserFile(std::string_view name) const
{
    return files_ != nullptr ? files_->read(name) : std::nullopt;
}

void PluginEditorPort::writeUserFile(std::string_view name, std::string_view text)
{
    if (files_ != nullptr)
        files_->write(name, text);
}

} // namespace tolm
