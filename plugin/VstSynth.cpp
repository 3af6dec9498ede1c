#include "plugin/VstSynth.h"

#include "plugin/EditorWindow.h"
#include "plugin/PluginEditorPort.h"
#include "plugin/blockDriver.h"
#include "plugin/catalogue.h"
#include "plugin/eventIntake.h"
#include "plugin/floatMode.h"
#include "plugin/paramText.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>
#include <string_view>
#include <utility>

namespace tolm {

namespace {

constexpr std::string_view kEffectName = "Tolm";
constexpr std::string_view kVendorName = "Corvane Audio";
constexpr std::int32_t kUniqueId = vst2::fourCharacters("QXJT");

// Requests of the own host.
constexpr std::int32_t kMouseWheelRequest = vst2::fourCharacters("Whee");
constexpr std::int32_t kTuningRequest = vst2::fourCharacters("Tuni");
constexpr std::size_t kTuningEntries = kPitchCount - kFirstKeyPitch;

constexpr std::string_view kAbilities[] = {
    "receiveVstEvents",
    "receiveVstMidiEvent",
    "receiveVstTimeInfo",
};

VstSynth::HostKind hostKindOf(std::string_view vendor)
{
    return {
        .own = vendor == kVendorName,
        .cockosOrZynewave = vendor == "Cockos" || vendor == "Zynewave",
        .imageLineOrCakewalk = vendor == "Image-Line" || vendor == "Twelve Tone Systems" ||
                               vendor.find("Cakewalk") != std::string_view::npos,
        .steinberg = vendor == "Steinberg",
    };
}

bool isProgram(std::int32_t program)
{
    return program >= 0 && program < kProgramCount;
}

// Two levels of buffer: what a parameter shows never exceeds what hosts hold ready.
void copyParameterText(char* to, std::string_view text)
{
    vst2::copyText(to, vst2::kParameterTextSize, text);
}

} // namespace

VstSynth::VstSynth(vst2::HostCallback host, std::unique_ptr<SettingsStore> settings,
                   std::unique_ptr<MessageBox> messages, std::unique_ptr<UserFiles> files)
    : AudioEffectX(host, kProgramCount, kHostParameterCount),
      settings_(std::move(settings)),
      messages_(std::move(messages)),
      files_(std::move(files)),
      core_(*settings_, *this),
      notices_(core_, *messages_),
      presets_(core_, notices_),
      port_(std::make_unique<PluginEditorPort>(*this, files_.get()))
{
    core_.setEditor(port_.get());
    if (!hasHost())
        return;
    effect_.numInputs = 0;
    effect_.numOutputs = 2;
    effect_.uniqueId = kUniqueId;
    setFlag(vst2::effFlagsCanReplacing, true);
    setFlag(vst2::effFlagsIsSynth, true);
    setFlag(vst2::effFlagsProgramChunks, true);
    setEditor(std::make_unique<EditorWindow>(*port_));
}

VstSynth::~VstSynth()
{
    setEditor(nullptr); // the window goes first: it knows the port
    core_.setEditor(nullptr);
    try {
        core_.midiMap().storeIfChanged();
    } catch (...) {
        // Out of memory while building a path: the map is lost, the host is not.
    }
    core_.resetCurrentProgram();
}

void VstSynth::open()
{
    hostKind_ = hostKindOf(hostVendorString().view());
    core_.setHostIsOwnHost(hostKind_.own);
}

void VstSynth::suspend()
{
    core_.setRunning(false);
}

void VstSynth::resume()
{
    core_.setRunning(true);
    wantMidi();
}

void VstSynth::setSampleRate(float hz)
{
    if (!std::isfinite(hz) || hz <= 0.0f)
        return;
    AudioEffectX::setSampleRate(hz);
    core_.whileSilent([this, hz] {
        core_.engine().setSampleRate(hz); // and of its effects
        core_.engine().resetVoices();
    });
}

void VstSynth::setBlockSize(std::int32_t frames)
{
    if (frames <= 0)
        return;
    AudioEffectX::setBlockSize(frames);
    core_.whileSilent([this, frames] { core_.setBlockCapacity(frames); });
}

std::int32_t VstSynth::getChunk(void** data, bool)
{
    // Hosts take the bytes as their own to read; the interface has no word for that.
    *data = const_cast<std::uint8_t*>(presets_.saveChunk().data());
    return static_cast<std::int32_t>(kChunkBytes);
}

std::int32_t VstSynth::setChunk(const void* data, std::int32_t bytes, bool singleProgram)
{
    presets_.loadChunk({static_cast<const std::uint8_t*>(data), static_cast<std::size_t>(bytes)},
                       singleProgram);
    return static_cast<std::int32_t>(kChunkBytes);
}

std::int32_t VstSynth::processEvents(const vst2::VstEvents* events)
{
    const GuardHold hold = GuardHold::attempt(core_.guard());
    if (!hold || events == nullptr)
        return 1;
    const FlushDenormals flushDenormals;
    core_.applyPending();
    takeHostEvents(core_, *events);
    return 1;
}

void VstSynth::processReplacing(float**, float** outputs, std::int32_t frames)
{
    processBlock(core_, outputs, frames, OutputMode::replace);
}

void VstSynth::process(float**, float** outputs, std::int32_t frames)
{
    processBlock(core_, outputs, frames, OutputMode::accumulate);
}

double VstSynth::beatsPerMinute()
{
    const vst2::VstTimeInfo* time = timeInfo(vst2::kTempoValid);
    return time != nullptr && (time->flags & vst2::kTempoValid) != 0 ? time->tempo : 0.0;
}

void VstSynth::setParameter(std::int32_t id, float value)
{
    core_.changeParameter(id, value, true);
}

void VstSynth::setParameterQuiet(std::int32_t id, float value)
{
    core_.changeParameter(id, value, false);
}

void VstSynth::setParameterAutomated(std::int32_t id, float value)
{
    value = std::isfinite(value) ? value : 0.0f;
    setParameter(id, value);
    if (id >= 0 && id < numAutomatable_)
        callHost(vst2::audioMasterAutomate, id, 0, nullptr, value);
    sendControllerFor(id, value);
}

EditorPort& VstSynth::editorPort()
{
    return *port_;
}

void VstSynth::beginEdit(std::int32_t id)
{
    if (id >= 0 && id < numAutomatable_)
        callHost(vst2::audioMasterBeginEdit, id);
}

void VstSynth::endEdit(std::int32_t id)
{
    if (id >= 0 && id < numAutomatable_)
        callHost(vst2::audioMasterEndEdit, id);
}

void VstSynth::updateHostDisplay()
{
    callHost(vst2::audioMasterUpdateDisplay);
}

bool VstSynth::resizeHostWindow(std::int32_t width, std::int32_t height)
{
    return callHost(vst2::audioMasterSizeWindow, width, height) != 0;
}

void VstSynth::sendControllerFor(std::int32_t id, float value)
{
    const int controller = core_.midiMap().controllerOf(id);
    if (controller < 0)
        return;
    const float scaled = std::clamp(value * 127.0f, 0.0f, 127.0f);
    vst2::VstMidiEvent message;
    message.midiData[0] = static_cast<char>(0xB0);
    message.midiData[1] = static_cast<char>(controller);
    message.midiData[2] = static_cast<char>(scaled);
    vst2::VstEvents events;
    events.numEvents = 1;
    events.events[0] = reinterpret_cast<vst2::VstEvent*>(&message);
    sendEventsToHost(events);
}

float VstSynth::getParameter(std::int32_t id) const
{
    return core_.storedValue(id);
}

void VstSynth::setProgram(std::int32_t program)
{
    presets_.setProgram(program);
}

std::int32_t VstSynth::getProgram() const
{
    return core_.currentProgram();
}

void VstSynth::setProgramName(const char* name)
{
    if (name == nullptr)
        return;
    const std::size_t longest = sizeof(ProgramRecord::name) - 1;
    presets_.setProgramName({name, strnlen(name, longest)});
}

void VstSynth::getProgramName(char* text)
{
    const std::lock_guard lock(core_.textLock());
    vst2::copyText(text, vst2::kProgramNameSize,
                   core_.engine().programBank().name(core_.currentProgram()));
}

bool VstSynth::getProgramNameIndexed(std::int32_t, std::int32_t program, char* text)
{
    if (!isProgram(program))
        return false;
    const std::lock_guard lock(core_.textLock());
    vst2::copyText(text, vst2::kProgramNameSize, core_.engine().programBank().name(program));
    return true;
}

// Values one by one: the audio thread may be storing some of them.
bool VstSynth::copyProgram(std::int32_t destination)
{
    if (!isProgram(destination))
        return false;
    const std::lock_guard lock(core_.textLock());
    ProgramStore& programs = core_.engine().programBank();
    const int source = core_.currentProgram();
    for (int id = 0; id < kStoredParameterCount; ++id)
        programs.setValue(destination, id, programs.value(source, id));
    const ProgramRecord& from = programs.record(source);
    ProgramRecord& to = programs.record(destination);
    to.name = from.name;
    to.description = from.description;
    to.reserved = from.reserved;
    return true;
}

void VstSynth::getParameterLabel(std::int32_t, char* text)
{
    copyParameterText(text, "");
}

void VstSynth::getParameterDisplay(std::int32_t id, char* text)
{
    if (id < 0 || id >= kParameterCount) {
        copyParameterText(text, "");
        return;
    }
    if (kCatalogue[static_cast<std::size_t>(id)].display == Display::none)
        return;
    const auto valueOf = [this](int other) { return core_.storedValue(other); };
    copyParameterText(text, parameterText(id, valueOf(id), textContext(valueOf)).view());
}

void VstSynth::getParameterName(std::int32_t id, char* text)
{
    const bool known = id >= 0 && id < kParameterCount;
    copyParameterText(text, known ? kCatalogue[static_cast<std::size_t>(id)].name : "");
}

bool VstSynth::getOutputProperties(std::int32_t pin, vst2::VstPinProperties* properties)
{
    if (pin < 0 || pin > 1 || properties == nullptr)
        return false;
    constexpr std::string_view kLabels[] = {"Tolm 1", "Tolm 2"};
    vst2::copyText(properties->label, sizeof properties->label, kLabels[pin]);
    properties->flags = vst2::kPinIsActive | vst2::kPinIsStereo;
    return true;
}

bool VstSynth::getEffectName(char* text)
{
    vst2::copyText(text, vst2::kEffectNameSize, kEffectName);
    return true;
}

bool VstSynth::getVendorString(char* text)
{
    vst2::copyText(text, vst2::kVendorStringSize, kVendorName);
    return true;
}

bool VstSynth::getProductString(char* text)
{
    vst2::copyText(text, vst2::kVendorStringSize, kEffectName);
    return true;
}

std::int32_t VstSynth::canDo(std::string_view what) const
{
    return std::find(std::begin(kAbilities), std::end(kAbilities), what) != std::end(kAbilities)
               ? 1
               : -1;
}

std::intptr_t VstSynth::vendorSpecific(std::int32_t index, std::intptr_t value, void* pointer,
                                       float option)
{
    if (!hostKind_.own)
        return 0;
    if (index == kTuningRequest && pointer != nullptr)
        replaceTuning(pointer);
    else if (index == kMouseWheelRequest)
        if (EditorHooks* editor = core_.editor())
            editor->mouseWheelMoved(value, option);
    return 0;
}

// Frequencies in Hz from MIDI key 0 upward, a value per 1/128 semitone. All or nothing: a table
// with an impossible frequency is refused.
void VstSynth::replaceTuning(const void* bytes)
{
    const auto tuning = std::make_unique<std::array<float, kTuningEntries>>();
    std::memcpy(tuning->data(), bytes, sizeof *tuning);
    const auto isFrequency = [](float hz) { return std::isfinite(hz) && hz > 0.0f; };
    if (!std::all_of(tuning->begin(), tuning->end(), isFrequency))
        return;
    core_.whileSilent([this, &tuning] {
        PitchTable& pitch = core_.engine().record().pitch;
        std::copy(tuning->begin(), tuning->end(), pitch.begin() + kFirstKeyPitch);
    });
}

} // namespace tolm
