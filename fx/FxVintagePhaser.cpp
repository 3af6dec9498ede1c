#include "fx/FxVintagePhaser.h"

#include "engine/tables.h"

#include <algorithm>

namespace tolm {

namespace {

constexpr float kMostFeedback = 0.98f;
constexpr double kSweepRange = 0.75; // of the centre frequency, at full depth
constexpr int kChunkFrames = 64;

// Stage y = x - lp - lp[-1] with the low-pass lp = lp[-1] + g (x - lp[-1]) is the all-pass
// ((1 - g) - 1/z) / (1 - (1 - g) / z). Written out as (1 - g) x - (2 - g) lp[-1] only one
// multiplication and one subtraction lie between a stage's input and its output; with up to eight
// stages inside the feedback loop that latency is what the phaser costs. Both channels run side by
// side in it.
template <int stages, int outputStage>
void runStages(int frames, float* const* channels, int offset, const double* coefficients,
               const FxVintagePhaser::Mix& mix, FxVintagePhaser::Network& state)
{
    FxVintagePhaser::Network network = state;
    for (int i = 0; i < frames; ++i) {
        const double g = coefficients[i];
        for (std::size_t c = 0; c < 2; ++c) {
            const float input = channels[c][offset + i];
            double x = static_cast<double>(input) - network.fedBack[c] * mix.feedback;
            double output = 0.0;
            for (std::size_t k = 0; k < stages; ++k) {
                float& memory = network.lowpass[k][c];
                const double lowpass = static_cast<double>(memory);
                memory = static_cast<float>(lowpass + g * (x - lowpass));
                x = (1.0 - g) * x - (2.0 - g) * lowpass;
                if (k == outputStage - 1)
                    output = x;
            }
            network.fedBack[c] = output;
            channels[c][offset + i] =
                (input + static_cast<float>(output)) * mix.wet + input * mix.dry;
        }
    }
    state = network;
}

// Modes that are one row of stages. Four stages are taken out of six, so that switching between
// four and six does not click. The other modes are the delay's.
using RunStages = void (*)(int, float* const*, int, const double*, const FxVintagePhaser::Mix&,
                           FxVintagePhaser::Network&);
constexpr RunStages kNetworks[] = {runStages<6, 4>, runStages<6, 6>, runStages<8, 8>};

struct DelayMode {
    float delay;
    float invertWet;
};
constexpr DelayMode kDelayModes[] = {
    {0.1f, 0.0f}, // Flanger+
    {0.1f, 1.0f}, // Flanger-
    {0.2f, 0.0f}, // Chorus I
    {0.3f, 0.0f}, // Chorus II
};
constexpr int kFirstDelayMode = static_cast<int>(std::size(kNetworks));
static_assert(kFirstDelayMode + std::size(kDelayModes) == FxVintagePhaser::kModeCount);

} // namespace

FxVintagePhaser::FxVintagePhaser()
{
    setSampleRate(44100.0);
}

void FxVintagePhaser::setSampleRate(double hz)
{
    setRate(static_cast<float>(hz));
    delay_.setSampleRate(sampleRateHz());
}

// The delay lines empty themselves when their wet level is 0.
void FxVintagePhaser::reset()
{
    network_ = {};
    phase_ = 0;
}

void FxVintagePhaser::setMode(int newMode)
{
    mode_ = std::clamp(newMode, 0, kModeCount - 1);
    if (mode_ >= kFirstDelayMode) {
        const DelayMode& row = kDelayModes[mode_ - kFirstDelayMode];
        delay_.setDelay(row.delay);
        delay_.setInvertWet(row.invertWet);
    }
}

void FxVintagePhaser::setParameter(int index, float value)
{
    switch (index) {
    case rate:
        rateHz_ = curve(value, 0.05f, 20.0f);
        delay_.setLfoRate(static_cast<double>(rateHz_));
        break;
    case frequency:
        centreHz_ = curve(static_cast<double>(value), 200.0, 5000.0);
        delay_.setSmoothing(value);
        break;
    case feedback:
        feedback_ = kMostFeedback * value;
        delay_.setFeedback(value);
        break;
    case amount:
        wet_ = value;
        delay_.setAmount(value);
        break;
    case depth:
        depth_ = value;
        delay_.setDepth(value);
        break;
    case mode:
        setMode(static_cast<int>(value * 6.1f));
        break;
    default:
        break;
    }
}

// Stage coefficients of the next frames. A slow LFO stays on one table entry for many of them.
void FxVintagePhaser::sweep(int frames, std::uint32_t increment, double* coefficients)
{
    const auto& sine = constantTables().floatSine;
    const double range = static_cast<double>(depth_) * kSweepRange * centreHz_;
    std::uint32_t previous = ~0u;
    double g = 0.0;
    for (int i = 0; i < frames; ++i) {
        const std::uint32_t entry = phase_ >> kTableShift;
        phase_ += increment;
        if (entry != previous) {
            const double hz = static_cast<double>(sine[entry]) * range + centreHz_;
            g = 1.0 - std::exp(-2.0 * kPi * hz / sampleRateHz());
            previous = entry;
        }
        coefficients[i] = g;
    }
}

void FxVintagePhaser::processNetwork(int frames, float* const* channels)
{
    const auto increment = static_cast<std::uint32_t>(static_cast<std::int64_t>(
        static_cast<double>(phaseScale()) * static_cast<double>(rateHz_)));
    const Mix mix{static_cast<double>(feedback_), wet_, 1.0f - wet_};
    const RunStages run = kNetworks[mode_];
    for (int done = 0; done < frames; done += kChunkFrames) {
        std::array<double, kChunkFrames> coefficients;
        const int count = std::min(kChunkFrames, frames - done);
        sweep(count, increment, coefficients.data());
        run(count, channels, done, coefficients.data(), mix, network_);
    }
    for (auto& stage : network_.lowpass)
        for (float& state : stage)
            state = flushTiny(state);
    for (double& state : network_.fedBack)
        state = std::abs(state) < 1e-9 ? 0.0 : state;
}

void FxVintagePhaser::process(int frames, float* const* channels)
{
    if (mode_ < kFirstDelayMode)
        processNetwork(frames, channels);
    else
        delay_.process(frames, channels);
}

} // namespace tolm
