#include "editor/EditorContext.h"

#include "editor/matrixRows.h"
#include "gui/Frame.h"
#include "gui/Menu.h"
#include "gui/TextEdit.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tolm {

namespace {

constexpr int kChoiceProbes = 2048;
constexpr float kBendSemitones = 64.0f; // of a bend knob's whole range
constexpr float kUsualBend = 2.0f / kBendSemitones;
constexpr int kLargestChoiceCount = 40;
constexpr float kFieldWidth = 96.0f; // where values are typed
constexpr float kFieldHeight = 22.0f;

// Which destinations move a parameter.
struct Reach {
    int destination;
    int parameter;
};
constexpr Reach kReach[] = {
    {11, kOsc1Coarse},   {47, kOsc1Fine},       {49, kOsc1Fat},         {15, kOsc1Wave},
    {12, kOsc2Coarse},   {48, kOsc2Fine},       {50, kOsc2Fat},         {16, kOsc2Wave},
    {37, kOsc3Level},    {8, kOscMix},          {27, kNoiseLevel},      {89, kNoiseColour},
    {14, kRingMod},      {25, kPulseWidth},     {38, kPulseWidth},      {30, kOscFm},
    {91, kOscFm},        {52, kFmFeedback},     {57, kModAttack},       {58, kModDecay},
    {59, kModSustain},   {60, kModRelease},     {6, kFilterEnvAmount},  {42, kFilterEnvAmount},
    {5, kFilterCutoff},  {10, kFilterCutoff},   {26, kFilterResonance}, {51, kFilterOffset},
    {41, kFilterOffset}, {92, kFilterKeytrack}, {13, kFilterType},      {21, kFilterAttack},
    {22, kFilterDecay},  {23, kFilterSustain},  {24, kFilterRelease},   {17, kAmpAttack},
    {18, kAmpDecay},     {19, kAmpSustain},     {20, kAmpRelease},      {34, kLfo1Rate},
    {35, kLfo1Rate + 9}, {36, kLfo1Rate + 18},  {1, kOsc1Coarse},       {1, kOsc2Coarse},
    {39, kOsc1Coarse},   {39, kOsc2Coarse},     {2, kOsc1Fine},         {2, kOsc2Fine},
    {9, kOsc1Fine},      {9, kOsc2Fine},        {3, kVolume},           {88, kVolume},
    {28, kVolume},       {90, kVoiceSpread},    {7, kVoiceDetune},
};

// Texts that change with another parameter, such as a rate that is a note length with sync.
bool dependsOnOthers(int id)
{
    return id == kArpRate || id == kLfo1Rate || id == kLfo1Rate + kLfoIdStride ||
           id == kLfo1Rate + 2 * kLfoIdStride || id == kDistColour;
}

std::vector<Choice> storedIds(std::span<const MenuEntry> menu)
{
    std::vector<Choice> choices;
    for (const MenuEntry& entry : menu)
        choices.push_back({entry.name, static_cast<float>(entry.id)});
    return choices;
}

bool reaches(int destination, int parameter)
{
    return std::any_of(std::begin(kReach), std::end(kReach), [&](const Reach& reach) {
        return reach.destination == destination && reach.parameter == parameter;
    });
}

} // namespace

float EditorContext::value(int id) const
{
    // The bend ranges are settings of the plug-in, not of a program.
    if (id == kBendUp)
        return static_cast<float>(port_.bendUpRange()) / kBendSemitones;
    if (id == kBendDown)
        return static_cast<float>(port_.bendDownRange()) / kBendSemitones;
    return port_.value(id);
}

std::string EditorContext::textOf(int id, float value) const
{
    if (id == kBendUp || id == kBendDown)
        return std::to_string(static_cast<int>(value * kBendSemitones)) + " st";
    const auto context = textContext([this](int other) { return port_.value(other); });
    if (const std::string_view menu = menuText(id, value); !menu.empty())
        return std::string(menu);
    return std::string(parameterText(id, value, context).view());
}

std::optional<float> EditorContext::valueFromText(int id, std::string_view text) const
{
    if (id == kBendUp || id == kBendDown) {
        int semitones = -1;
        std::from_chars(text.data(), text.data() + text.size(), semitones);
        const bool fits = semitones >= 0 && static_cast<float>(semitones) <= kBendSemitones;
        return fits ? std::optional(static_cast<float>(semitones) / kBendSemitones) : std::nullopt;
    }
    return parameterValue(id, text, textContext([this](int other) { return port_.value(other); }));
}

const std::vector<Choice>& EditorContext::choices(int id)
{
    std::vector<Choice>& known = choices_[static_cast<std::size_t>(id)];
    if (known.empty() || dependsOnOthers(id))
        known = id == kFmMode ? storedIds(kFmModeMenu) : probed(id);
    return known;
}

// Neighbouring values with one text are one choice; a continuous parameter has too many.
std::vector<Choice> EditorContext::probed(int id) const
{
    std::vector<Choice> found;
    int first = 0;
    std::string text = textOf(id, 0.0f);
    for (int probe = 1; probe <= kChoiceProbes + 1; ++probe) {
        const float at = static_cast<float>(probe) / kChoiceProbes;
        const std::string next = probe <= kChoiceProbes ? textOf(id, at) : std::string();
        if (next == text && probe <= kChoiceProbes)
            continue;
        found.push_back({text, static_cast<float>(first + probe - 1) / (2.0f * kChoiceProbes)});
        if (found.size() > kLargestChoiceCount)
            return {};
        first = probe;
        text = next;
    }
    return found;
}

int EditorContext::choiceAt(int id, float value)
{
    const std::vector<Choice>& all = choices(id);
    const std::string text = textOf(id, value);
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Choice& c) { return c.text == text; });
    return found != all.end() ? static_cast<int>(found - all.begin()) : -1;
}

float EditorContext::defaultValue(int id) const
{
    if (id < 0 || id >= kStoredParameterCount)
        return id == kPitchWheel ? 0.5f : id == kBendUp || id == kBendDown ? kUsualBend : 0.0f;
    return port_.initialRecord().values[static_cast<std::size_t>(id)];
}

void EditorContext::listen(ValueListener& listener, std::initializer_list<int> ids)
{
    for (const int id : ids)
        valueListeners_[static_cast<std::size_t>(id)].push_back(&listener);
}

void EditorContext::listen(ValueListener& listener, int firstId, int count)
{
    for (int id = firstId; id < firstId + count; ++id)
        valueListeners_[static_cast<std::size_t>(id)].push_back(&listener);
}

void EditorContext::forget(ValueListener& listener)
{
    for (auto& listeners : valueListeners_)
        std::erase(listeners, &listener);
}

void EditorContext::forget(MeterListener& listener)
{
    std::erase(meterListeners_, &listener);
}

void EditorContext::tellValue(int id)
{
    if (id < 0 || id >= kParameterCount)
        return;
    tellListeners(id);
    // Knobs show how far a row moves them.
    if (id >= kModAmount1 && id < kModAmount1 + kMatrixRows)
        tellReached(static_cast<int>(value(kModDestination1 + id - kModAmount1)));
}

void EditorContext::tellListeners(int id)
{
    for (ValueListener* listener : valueListeners_[static_cast<std::size_t>(id)])
        listener->valueChanged(id);
}

void EditorContext::tellReached(int destination)
{
    for (const Reach& reach : kReach)
        if (reach.destination == destination)
            tellListeners(reach.parameter);
}

void EditorContext::tellAllValues()
{
    for (int id = 0; id < kParameterCount; ++id)
        tellListeners(id);
}

void EditorContext::tellMeters(const EditorMeters& meters)
{
    for (MeterListener* listener : meterListeners_)
        listener->metersChanged(meters);
}

float EditorContext::modulationOf(int id) const
{
    float depth = 0.0f;
    for (int row = 0; row < kMatrixRows; ++row) {
        const auto source = static_cast<int>(value(kModSource1 + row));
        const auto destination = static_cast<int>(value(kModDestination1 + row));
        if (source != 0 && reaches(destination, id))
            depth += std::abs(2.0f * value(kModAmount1 + row) - 1.0f);
    }
    return std::min(depth, 1.0f);
}

void EditorContext::openParameterMenu(gui::View& control, int tag, gui::Point inFrame)
{
    enum Command : int { learn = 1, forgetController, reset, type, copy, paste };
    gui::Frame* frame = control.frame();
    const int id = parameterOfTag(tag);
    if (frame == nullptr || id < 0)
        return;
    const auto controllers = port_.controllersOf(id);
    gui::MenuRequest request;
    request.anchor = {inFrame.x, inFrame.y, 0.0f, 0.0f};
    auto& entries = request.entries;
    entries.push_back(gui::MenuEntry::heading(kCatalogue[static_cast<std::size_t>(id)].name));
    entries.push_back({learn, "MIDI Learn", {}, port_.learningId() == id, true, {}, {}});
    std::string moved = "MIDI Forget";
    for (std::size_t i = 0; i < controllers.size(); ++i)
        moved += (i == 0 ? " (CC " : ", ") + std::to_string(controllers[i]);
    if (!controllers.empty())
        moved += ")";
    entries.push_back({forgetController, moved, {}, false, !controllers.empty(), {}, {}});
    entries.push_back(gui::MenuEntry::separator());
    entries.push_back({reset, "Reset", {}, false, true, {}, {}});
    entries.push_back({type, "Enter value\u2026", {}, false, true, {}, {}});
    entries.push_back({copy, "Copy " + text(id), {}, false, true, {}, {}});
    entries.push_back({paste, "Paste", {}, false, copiedValue_.has_value(), {}, {}});
    request.chosen = [this, &control, tag, id](int command) {
        switch (command) {
        case learn:
        case forgetController:
            actions_.openLearnMenu(tag);
            actions_.controlChanged(kTagLearnMenu, command == learn ? 0.0f : 1.0f);
            break;
        case reset:
            actions_.controlChanged(id, defaultValue(id));
            tellValue(id);
            break;
        case type:
            openValueField(control, id);
            break;
        case copy:
            copiedValue_ = value(id);
            break;
        case paste:
            actions_.controlChanged(id, *copiedValue_);
            tellValue(id);
            break;
        default:
            break;
        }
    };
    gui::Menu::show(*frame, std::move(request));
}

void EditorContext::openValueField(gui::View& control, int id)
{
    const gui::Rect around = control.boundsInFrame();
    openTextField(control, {around.x, around.bottom() - kFieldHeight, around.width, kFieldHeight},
                  text(id), [this, id](const std::string& typed) {
                      if (const auto value = valueFromText(id, typed)) {
                          actions_.controlChanged(id, *value);
                          tellValue(id);
                      }
                  });
}

void EditorContext::openTextField(gui::View& control, const gui::Rect& around,
                                  std::string_view text,
                                  std::function<void(const std::string&)> typed)
{
    gui::Frame* frame = control.frame();
    if (frame == nullptr)
        return;
    const gui::Point most{frame->size().x - kFieldWidth - 4.0f,
                          frame->size().y - kFieldHeight - 4.0f};
    const gui::Point corner{around.centre().x - kFieldWidth / 2,
                            around.centre().y - kFieldHeight / 2};
    auto field = std::make_unique<gui::TextEdit>(
        gui::Rect{std::clamp(corner.x, 4.0f, most.x), std::clamp(corner.y, 4.0f, most.y),
                  kFieldWidth, kFieldHeight},
        gui::TextEdit::Options{false, 40, false, {}, "Value"});
    gui::TextEdit* const edit = field.get();
    field->setText(text);
    field->committed = [typed = std::move(typed), frame, edit](const std::string& entered) {
        typed(entered);
        frame->dismissOverlay(*edit);
    };
    field->cancelled = [frame, edit] { frame->dismissOverlay(*edit); };
    frame->showOverlay(std::move(field), {});
    frame->setFocus(edit);
    edit->selectAll();
}

} // namespace tolm
