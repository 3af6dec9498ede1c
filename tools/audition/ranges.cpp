#include "tools/audition/ranges.h"

#include "plugin/menus.h"
#include "tools/audition/Phrase.h"
#include "tools/audition/envelope.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <optional>

namespace tolm {
namespace {

using D = Descriptor;

constexpr double kFree = kNever; // no limit on this side
constexpr double kBrightnessForLevel = 10.0;

const std::vector<AcceptedRange> kCommon = {
    {D::peak, -60.0, -1.0},         {D::fade, -kFree, 10.0},    {D::monoLoss, -kFree, 3.0},
    {D::velocityLevel, 2.0, kFree}, {D::offset, -kFree, -60.0},
};

// By category. A decay of kNever is a level that stays while the key is held.
const std::vector<AcceptedRange> kRows[] = {
    {},
    // Arpeggiated
    {{D::onsets, 2.0, kFree}, {D::release, -kFree, 2.0}},
    // Bass
    {{D::centroid, 60.0, 900.0},
     {D::attack, -kFree, 30.0},
     {D::decay, 0.3, kFree},
     {D::release, -kFree, 0.6},
     {D::harmonicity, 0.75, kFree},
     {D::lowShare, 0.5, kFree},
     {D::lowWidth, -kFree, -15.0},
     {D::monoLoss, -kFree, 1.0}},
    // Chords
    {{D::centroid, 300.0, 4000.0},
     {D::attack, -kFree, 400.0},
     {D::release, 0.1, 2.0},
     {D::fundamentals, 3.0, kFree}},
    // Drums
    {{D::attack, -kFree, 5.0}, {D::decay, 0.03, 1.2}, {D::release, -kFree, 1.0}},
    // Keyboards
    {{D::centroid, 300.0, 3500.0},
     {D::attack, -kFree, 40.0},
     {D::decay, 0.8, kFree},
     {D::release, 0.1, 1.0},
     {D::harmonicity, 0.75, kFree},
     {D::velocityBrightness, 15.0, kFree}},
    // Leads
    {{D::centroid, 700.0, 5000.0},
     {D::attack, -kFree, 120.0},
     {D::decay, 1.0, kFree},
     {D::release, 0.1, 1.2},
     {D::harmonicity, 0.7, kFree},
     {D::width, -kFree, -3.0}},
    // Mallets
    {{D::centroid, 500.0, 6000.0},
     {D::attack, -kFree, 15.0},
     {D::decay, 0.15, 3.0},
     {D::harmonicity, 0.3, kFree},
     {D::levelAfter4s, -kFree, -40.0}},
    // Pads
    {{D::centroid, 300.0, 3500.0},
     {D::attack, 200.0, 3000.0},
     {D::decay, kNever, kNever},
     {D::release, 0.8, 6.0},
     {D::harmonicity, 0.5, kFree},
     {D::width, -12.0, 1.0}},
    // Plucked
    {{D::centroid, 300.0, 4500.0},
     {D::attack, -kFree, 20.0},
     {D::decay, 0.15, 2.0},
     {D::release, 0.1, 1.5},
     {D::harmonicity, 0.6, kFree},
     {D::brightnessFall, 30.0, kFree}},
    // Sound Effects
    {{D::release, -kFree, 10.0}},
    // Synths
    {{D::centroid, 400.0, 4500.0},
     {D::attack, 10.0, 250.0},
     {D::release, 0.1, 1.5},
     {D::harmonicity, 0.6, kFree}},
    // Textures
    {{D::attack, 300.0, kFree},
     {D::decay, kNever, kNever},
     {D::release, 1.0, kFree},
     {D::harmonicity, -kFree, 0.8},
     {D::fade, -kFree, 20.0}},
    // Wind
    {{D::centroid, 500.0, 3500.0},
     {D::attack, 30.0, 250.0},
     {D::decay, kNever, kNever},
     {D::release, 0.08, 0.6},
     {D::harmonicity, 0.6, 0.97},
     {D::breathBrightness, 1.0, kFree}},
};
static_assert(std::size(kRows) == std::size(kCategoryNames));

std::optional<AcceptedRange> rangeOf(int category, Descriptor descriptor)
{
    if (descriptor == D::loudness) {
        const LoudnessTarget target = loudnessTarget(category);
        return AcceptedRange{descriptor, target.lufs - target.withinLu,
                             target.lufs + target.withinLu};
    }
    for (const auto ranges :
         {rangesOf(category), commonRanges()}) // a category's own rule is closer
        for (const AcceptedRange& range : ranges)
            if (range.descriptor == descriptor)
                return range;
    return {};
}

bool isOutside(const AcceptedRange& range, const Descriptors& d)
{
    // A stroke may act on the tone instead of the level.
    if (range.descriptor == D::velocityLevel && d[D::velocityBrightness] >= kBrightnessForLevel)
        return false;
    const double value = d[range.descriptor];
    return !(value >= range.low && value <= range.high);
}

} // namespace

std::span<const AcceptedRange> commonRanges()
{
    return kCommon;
}

std::span<const AcceptedRange> rangesOf(int category)
{
    return kRows[category];
}

std::vector<Descriptor> outsideOf(int category, const Descriptors& descriptors)
{
    std::vector<Descriptor> outside;
    for (std::size_t i = 0; i < kDescriptorCount; ++i) {
        const auto range = rangeOf(category, static_cast<Descriptor>(i));
        if (range && isOutside(*range, descriptors))
            outside.push_back(static_cast<Descriptor>(i));
    }
    return outside;
}

bool isTelling(int category, Descriptor descriptor)
{
    return descriptor < D::lowWidth || rangeOf(category, descriptor).has_value();
}

std::string rangeText(int category, Descriptor descriptor)
{
    const auto range = rangeOf(category, descriptor);
    if (!range)
        return {};
    char text[48];
    if (range->low == kNever)
        return "never";
    if (range->high == kFree)
        std::snprintf(text, sizeof text, ">=%g", range->low);
    else if (range->low == -kFree)
        std::snprintf(text, sizeof text, "<=%g", range->high);
    else
        std::snprintf(text, sizeof text, "%g..%g", range->low, range->high);
    return text;
}

} // namespace tolm
