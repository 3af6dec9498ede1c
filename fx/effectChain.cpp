#include "fx/effectChain.h"

namespace tolm {

namespace {

constexpr float kSwitchThreshold = 0.001f;

// Switch parameters 116..121 in id order.
constexpr int kFirstSwitchId = 116;
constexpr std::array kSwitchOrder = {EffectKind::phaser,     EffectKind::delay,
                                     EffectKind::reverb,     EffectKind::distortion,
                                     EffectKind::equaliser1, EffectKind::equaliser2};

} // namespace

EffectChain::EffectChain(Random& random) : random_(random) {}

void EffectChain::setSampleRate(double) {}

void EffectChain::reset() {}

void EffectChain::setParameter(int id, float value)
{
    const int index = id - kFirstSwitchId;
    if (index >= 0 && index < static_cast<int>(kSwitchOrder.size())) {
        const EffectKind kind = kSwitchOrder[static_cast<std::size_t>(index)];
        on_[static_cast<std::size_t>(kind)] = value > kSwitchThreshold;
    }
}

void EffectChain::process(int, int, float* const*, float, const DelayModulation&) {}

} // namespace tolm
