#pragma once
// Stored values as text and back, by the display rules of the catalogue. Independent of the
// process's locale; any value, however wild, gives a text.

#include "plugin/catalogue.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tolm {

// Values of other parameters that a text depends on.
struct TextContext {
    std::array<bool, 3> lfoSync{};
    bool arpSync = false;
    float distType = 0.0f;
};

// `valueOf(id)` answers stored values.
template <class ValueOf>
TextContext textContext(ValueOf&& valueOf)
{
    TextContext context;
    for (std::size_t lfo = 0; lfo < context.lfoSync.size(); ++lfo)
        context.lfoSync[lfo] = valueOf(kLfo1Sync + kLfoIdStride * static_cast<int>(lfo)) > 1e-5f;
    context.arpSync = valueOf(kArpSync) > 0.001f;
    context.distType = valueOf(kDistType);
    return context;
}

// A short text that needs no allocation; what does not fit is cut.
class ParamText {
public:
    std::string_view view() const { return {text_.data(), size_}; }
    ParamText& add(std::string_view text);
    // With this many decimals, a dot between, and a minus also on negative zero.
    ParamText& add(double number, int decimals);

private:
    std::array<char, 64> text_{};
    std::size_t size_ = 0;
};

// The text of a value 0..1 of parameter `id`; empty for ids outside the catalogue. "Arp Rate" reads
// as a note length or in Hz, "Arp Length" as signed percent of its 31 ticks, matrix amounts as
// signed percent and "Arp Steps" as their number; a host is shown none of these.
ParamText parameterText(int id, float value, const TextContext& context);

// The name of the menu entry that a whole-number value chooses ("Filter Type", matrix sources and
// the like), empty where there is none.
std::string_view menuText(int id, float value);

// The value that a text stands for: a number with or without its unit, a sign, or the name of a
// choice in any case. Choices give a value in the middle of their range, menus the stored id,
// toggles know "On" and "Off". Nothing for a text that does not fit the parameter or its range.
std::optional<float> parameterValue(int id, std::string_view text, const TextContext& context);

} // namespace tolm
