#include "engine/Tolm.h"

#include "engine/apply.h"
#include "engine/arpeggiator.h"
#include "engine/lfo.h"
#include "engine/matrix.h"
#include "engine/voices.h"
#include "plugin/catalogue.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr float kInitialRateHz = 5000.0f; // until the host tells
constexpr double kLowestRateHz = 1000.0;
constexpr double kHighestRateHz = 768000.0;
constexpr double kDcBlockerHz = 8.0;
constexpr int kLastEffect = 5;

} // namespace

Tolm::Tolm(EngineOwner& owner)
    : owner_(owner),
      record_(std::make_unique<EngineRecord>()),
      scratch_(std::make_unique<RenderScratch>()),
      effects_(record_->random)
{
    buildPitchTable(record_->pitch);
    setSampleRate(static_cast<double>(kInitialRateHz));
    clearVoices(*record_);
}

Tolm::~Tolm() = default;

void Tolm::seed(std::uint32_t value)
{
    record_->random = Random(value);
}

void Tolm::setSampleRate(double hz)
{
    const double rate = std::isfinite(hz) ? std::clamp(hz, kLowestRateHz, kHighestRateHz)
                                          : static_cast<double>(kInitialRateHz);
    setRate(static_cast<float>(rate));
    buildRateTables(record_->rateTables, sampleRateHz());
    record_->dcBlocker = highpassCoefficients(kDcBlockerHz);
    ApplyContext context{*record_, effects_, *this};
    recomputeRateSettings(context);
    effects_.setSampleRate(sampleRateHz());
}

void Tolm::noteOn(int key, int velocity, std::uint32_t mask)
{
    playNote(*record_, key & (kKeyCount - 1), velocity, mask);
}

void Tolm::noteOff(int key, std::uint32_t mask)
{
    releaseNote(*record_, key & (kKeyCount - 1), mask);
}

void Tolm::retuneVoices(int key, std::uint32_t mask)
{
    retune(*record_, key & (kKeyCount - 1), mask);
}

void Tolm::resetVoices()
{
    clearVoices(*record_);
    effects_.reset();
}

void Tolm::allNotesOff(bool hard)
{
    if (hard)
        resetVoices();
    else
        releaseAllVoices(*record_);
}

void Tolm::loadProgram(int program)
{
    record_->currentProgram = program;
    resetVoices();
    for (ControllerCurve* curve :
         {&record_->velocityCurve, &record_->wheelCurve, &record_->breathCurve})
        *curve = {};
    for (int id = 0; id < kStoredParameterCount; ++id)
        owner_.setParameter(id, owner_.getParameter(id));
    for (int slot = 0; slot < kEffectSlots; ++slot) {
        // The range is tested before the cast, for values that no integer holds.
        const float kind = std::floor(owner_.getParameter(kEffectOrder1 + slot) + 0.1f);
        if (kind >= 0.0f && kind <= static_cast<float>(kLastEffect))
            owner_.setEffectOrder(slot, static_cast<int>(kind));
    }
}

void Tolm::setEngineParameter(int id, float value)
{
    ApplyContext context{*record_, effects_, *this, owner_.hostIsOwnHost()};
    applyParameter(context, id, value);
}

void Tolm::startBlock(int frames)
{
    refreshMatrix(*record_);
    refreshLfoTables(*record_);
    record_->sampleClock = 0;
    for (BlockRamp* ramp : {&record_->cutoff, &record_->pulseWidth, &record_->fm}) {
        if (ramp->base < -1.0f)
            ramp->base = ramp->target;
        ramp->slope = frames > 0 ? (ramp->target - ramp->base) / static_cast<float>(frames) : 0.0f;
    }
}

void Tolm::runArpeggiator(int frames)
{
    runPattern(*record_, owner_, sampleRateHz(), frames);
}

bool Tolm::renderVoices(int frames, float* const* effectsBus, float* const* bypassBus, bool replace)
{
    for (int channel = 0; channel < 2; ++channel) {
        if (replace)
            std::fill_n(effectsBus[channel], frames, 0.0f);
        std::fill_n(bypassBus[channel], frames, 0.0f);
    }
    return renderSlice(*record_, *scratch_, *this, owner_.hostTempo(), frames,
                       {effectsBus, bypassBus});
}

void Tolm::updateGlobalModulation()
{
    evaluateGlobalMatrix(*record_, sampleRateHz(), owner_.hostTempo());
}

const DelayModulation& Tolm::delayModulation() const
{
    return record_->delayModulation;
}

void Tolm::advanceDelayModulation(int frames)
{
    DelayModulation& modulation = record_->delayModulation;
    modulation.phase +=
        static_cast<std::uint32_t>(modulation.increment) * static_cast<std::uint32_t>(frames);
}

float Tolm::applyOutputStage(int frames, float* const* outputs)
{
    return renderOutputStage(*record_, frames, outputs);
}

void Tolm::endBlock()
{
    for (BlockRamp* ramp : {&record_->cutoff, &record_->pulseWidth, &record_->fm})
        ramp->base = ramp->target;
}

} // namespace tolm
