#include "fx/effectChain.h"

#include "plugin/catalogue.h"

#include <algorithm>
#include <iterator>

namespace tolm {

namespace {

constexpr float kSwitchThreshold = 0.001f;

// Switch parameters in id order.
constexpr std::array kSwitchOrder = {EffectKind::phaser,     EffectKind::delay,
                                     EffectKind::reverb,     EffectKind::distortion,
                                     EffectKind::equaliser1, EffectKind::equaliser2};

// Where the setting of an id goes: an effect and its own index. "Reserved" ids go nowhere.
struct SettingRow {
    EffectKind effect;
    int index;
};
constexpr int kNowhere = -1;
constexpr SettingRow kSettings[] = {
    {EffectKind::phaser, FxVintagePhaser::mode}, // 79
    {EffectKind::phaser, FxVintagePhaser::rate},
    {EffectKind::phaser, FxVintagePhaser::frequency},
    {EffectKind::phaser, FxVintagePhaser::feedback},
    {EffectKind::phaser, FxVintagePhaser::amount},
    {EffectKind::phaser, FxVintagePhaser::depth},
    {EffectKind::delay, FxDelay::type}, // 85
    {EffectKind::delay, FxDelay::colour},
    {EffectKind::delay, FxDelay::feedback1},
    {EffectKind::delay, FxDelay::dryWet},
    {EffectKind::delay, FxDelay::steps1},
    {EffectKind::delay, FxDelay::steps2},
    {EffectKind::reverb, FxReverb::type}, // 91
    {EffectKind::reverb, FxReverb::damp},
    {EffectKind::reverb, FxReverb::decay},
    {EffectKind::reverb, FxReverb::amount},
    {EffectKind::reverb, FxReverb::preDelay},
    {EffectKind::reverb, FxReverb::lowCut},
    {EffectKind::distortion, Distortion::type}, // 97
    {EffectKind::distortion, Distortion::colour},
    {EffectKind::distortion, Distortion::drive},
    {EffectKind::distortion, Distortion::amount},
    {EffectKind::equaliser1, EqualiserBand::type}, // 101
    {EffectKind::equaliser1, EqualiserBand::frequency},
    {EffectKind::equaliser1, EqualiserBand::quality},
    {EffectKind::equaliser1, EqualiserBand::gain},
    {EffectKind::equaliser1, kNowhere},
    {EffectKind::equaliser2, EqualiserBand::type}, // 106
    {EffectKind::equaliser2, EqualiserBand::frequency},
    {EffectKind::equaliser2, EqualiserBand::quality},
    {EffectKind::equaliser2, EqualiserBand::gain},
};
static_assert(kPhaserType + std::size(kSettings) == kEq2Gain + 1);

// Also makes a number of what is none.
float withinUnit(float value)
{
    return value > 0.0f ? std::min(value, 1.0f) : 0.0f;
}

} // namespace

EffectChain::EffectChain(Random& random) : reverb_(random)
{
    setSampleRate(distortion_.sampleRateHz());
}

// Memories of another rate are gone, and settings that depend on the rate are at defaults; the
// engine applies the program's again.
void EffectChain::setSampleRate(double hz)
{
    distortion_.setSampleRate(hz);
    equaliser1_.setSampleRate(hz);
    equaliser2_.setSampleRate(hz);
    phaser_.setSampleRate(hz);
    delay_.setSampleRate(hz);
    reverb_.setSampleRate(hz);
    reverb_.setParameter(FxReverb::type, 0.5f);
}

void EffectChain::reset()
{
    phaser_.reset();
    delay_.reset();
    reverb_.reset();
}

void EffectChain::setParameter(int id, float value)
{
    if (id >= kPhaserOn && id <= kEq2On) {
        const EffectKind kind = kSwitchOrder[static_cast<std::size_t>(id - kPhaserOn)];
        on_[static_cast<std::size_t>(kind)] = value > kSwitchThreshold;
    } else if (id >= kPhaserType && id <= kEq2Gain) {
        const SettingRow& row = kSettings[id - kPhaserType];
        setSetting(row.effect, row.index, withinUnit(value));
    }
}

void EffectChain::setSetting(EffectKind kind, int index, float value)
{
    switch (kind) {
    case EffectKind::distortion:
        return distortion_.setParameter(index, value);
    case EffectKind::equaliser1:
        return equaliser1_.setParameter(index, value);
    case EffectKind::equaliser2:
        return equaliser2_.setParameter(index, value);
    case EffectKind::phaser:
        return phaser_.setParameter(index, value);
    case EffectKind::delay:
        return delay_.setParameter(index, value);
    case EffectKind::reverb:
        return reverb_.setParameter(index, value);
    }
}

void EffectChain::process(int slotContent, int frames, float* const* channels, float tempo,
                          const DelayModulation& modulation)
{
    if (slotContent < 0 || slotContent >= kEffectSlots || frames <= 0)
        return;
    const auto kind = static_cast<EffectKind>(slotContent);
    if (!isOn(kind))
        return;
    switch (kind) {
    case EffectKind::distortion:
        return distortion_.process(frames, channels);
    case EffectKind::equaliser1:
        return equaliser1_.process(frames, channels);
    case EffectKind::equaliser2:
        return equaliser2_.process(frames, channels);
    case EffectKind::phaser:
        return phaser_.process(frames, channels);
    case EffectKind::delay:
        return delay_.process(frames, channels, tempo, modulation);
    case EffectKind::reverb:
        return reverb_.process(frames, channels);
    }
}

} // namespace tolm
