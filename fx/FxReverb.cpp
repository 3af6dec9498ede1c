#include "fx/FxReverb.h"

#include "engine/tables.h"
#include "fx/primes.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr float kSilence = 1e-9f;
constexpr float kInputFloor = 1e-15f;        // keeps the input ring of the lines off exact zeros
constexpr double kLongestDelaySeconds = 0.5; // pre-delay and last reflection of the largest room
constexpr float kLfoHz = 0.5f;
constexpr float kLfoFrames = 2.0f;
constexpr float kDiffuserGain[2] = {0.69f, 0.7f};
constexpr double kDiffuserSeconds[2][2] = {{0.0058, 0.0057}, {0.0066, 0.0065}}; // "Room" second
constexpr float kTailLevel = 0.0625f;
constexpr double kSpreadFrames = 99.0; // at 44.1 kHz
constexpr int kRoomLead = 54; // frames that the room's tail starts before its last reflection

} // namespace

float ReverbDiffuser::run(float x, int whole, float fraction)
{
    constexpr std::uint32_t kMask = kCells - 1;
    const std::uint32_t newer = position_ - static_cast<std::uint32_t>(length_ + whole);
    const float read =
        cells_[newer & kMask] * (1.0f - fraction) + cells_[(newer - 1) & kMask] * fraction;
    const float t = flushTiny(-read);
    const float written = x + t * gain_;
    cells_[position_] = written;
    position_ = (position_ + 1) & kMask;
    return t - gain_ * written;
}

FxReverb::FxReverb(Random& random)
    : random_(random),
      diffusers_{ReverbDiffuser(kDiffuserGain[0]), ReverbDiffuser(kDiffuserGain[1])}
{
    setSampleRate(44100.0);
    setParameter(lowCut, 0.0f);
}

void FxReverb::setSampleRate(double hz)
{
    setRate(static_cast<float>(hz));
    ring_.resize(static_cast<int>(sampleRateHz() * kLongestDelaySeconds));
    lines_.resize(sampleRateHz());
    decaySeconds_ = kReverbDefaultDecaySeconds;
    damping_ = dampingSetting_ = 1.0f;
    spreadFrames_ = static_cast<std::uint32_t>(sampleRateHz() / 44100.0 * kSpreadFrames);
    if (type_ >= 0)
        updateType();
}

void FxReverb::reset()
{
    lowpassMemory_ = highpassMemory_ = {};
    if (cleared_)
        return;
    ring_.clear();
    lines_.clear();
    for (ReverbDiffuser& diffuser : diffusers_)
        diffuser.clear();
    spread_.fill(0.0f);
    cleared_ = true;
}

void FxReverb::setType(int newType)
{
    newType = std::clamp(newType, 0, kReverbTypeCount - 1);
    if (newType == type_)
        return;
    type_ = newType;
    // The mixed lines lie over the long ones, whose loud contents would ring through the matrix.
    if (row().network == ReverbNetwork::mixed)
        reset();
    updateType();
}

// What follows from type, rate and pre-delay.
void FxReverb::updateType()
{
    const std::size_t second = row().network == ReverbNetwork::half ? 1 : 0;
    for (std::size_t c = 0; c < 2; ++c)
        diffusers_[c].setLength(
            primeAtLeast(static_cast<int>(sampleRateHz() * kDiffuserSeconds[second][c])));
    lowpass_ = lowpassCoefficients(row().inputCutoffHz);
    early_.build(row(), sampleRateHz(), preDelayFrames_, lines_.longLengths(), random_);
    if (row().network == ReverbNetwork::half)
        lineOffset_ = std::max(0, early_.lastDiffuseDelay() - lines_.longLengths()[0] -
                                      preDelayFrames_ - kRoomLead);
}

// Whole milliseconds. The products are single precision, so that frame counts stay as saved songs
// know them.
void FxReverb::setPreDelay(float value)
{
    const auto ms = static_cast<float>(static_cast<int>(value * 100.0f));
    preDelayFrames_ = static_cast<int>(ms * 0.001f * static_cast<float>(sampleRateHz()));
    if (type_ >= 0)
        updateType();
}

void FxReverb::updateDecay()
{
    lines_.setDecay(sampleRateHz(), decaySeconds_, damping_, dampingSetting_);
}

void FxReverb::setParameter(int index, float value)
{
    switch (index) {
    case type:
        setType(static_cast<int>(value * 128.0f) / 32);
        break;
    case decay:
        decaySeconds_ = curve(value, 0.5f, 10.0f);
        updateDecay();
        break;
    case damp:
        damping_ = 0.5f * value + 0.5f;
        dampingSetting_ = curve(value, 0.15f, 1.0f);
        updateDecay();
        break;
    case preDelay:
        setPreDelay(value);
        break;
    case lowCut:
        highpass_ = highpassCoefficients(static_cast<double>(curve(value, 10.0f, 1000.0f)));
        break;
    case amount:
        amount_ = value * value;
        break;
    default:
        break;
    }
}

// Silent frames at the end of the block become exact zeros. True when all are, and have been for
// longer than the decay.
bool FxReverb::skipSilence(int frames, float* const* channels)
{
    for (int i = frames - 1; i >= 0; --i) {
        if (std::abs(channels[0][i]) > kSilence || std::abs(channels[1][i]) > kSilence) {
            silentFrames_ = 0;
            return false;
        }
        channels[0][i] = channels[1][i] = 0.0f;
    }
    if (silentFrames_ > static_cast<std::int64_t>(decaySeconds_ * sampleRateHz()))
        return true;
    silentFrames_ += frames;
    return false;
}

void FxReverb::process(int frames, float* const* channels)
{
    if (type_ < 0)
        return;
    if (skipSilence(frames, channels)) {
        currentAmount_ = -1.0f;
        return;
    }
    if (currentAmount_ < 0.0f)
        currentAmount_ = amount_;
    const auto length = static_cast<float>(frames);
    Ramp mix{currentAmount_, (amount_ - currentAmount_) / length};
    Ramp fade{0.0f, 1.0f / length};
    if (previousPreDelay_ == preDelayFrames_)
        fade = {1.0f, 0.0f};

    const bool mixed = row().network == ReverbNetwork::mixed;
    const int most = mixed ? lines_.mixedChunk() : kReverbChunk;
    for (int done = 0; done < frames;) {
        Chunk chunk;
        chunk.frames = std::min(most, frames - done);
        chunk.outLeft = channels[0] + done;
        chunk.outRight = channels[1] + done;
        processChunk(chunk, fade, mix);
        done += chunk.frames;
    }
    lines_.endBlock();
    currentAmount_ = amount_;
    previousPreDelay_ = preDelayFrames_;
    cleared_ = false;
}

void FxReverb::processChunk(Chunk& chunk, Ramp& fade, Ramp& mix)
{
    condition(chunk);
    early_.render(ring_, chunk.frames, chunk.earlyLeft, chunk.earlyRight);
    tapInput(chunk, fade);
    runNetwork(chunk);
    diffuse(chunk);
    mixOutput(chunk, mix);
}

void FxReverb::condition(const Chunk& chunk)
{
    const float gain = row().inputGain;
    const float floor = row().network == ReverbNetwork::mixed ? 0.0f : kInputFloor;
    ReverbBuffer conditioned;
    OnePoleMemory low = lowpassMemory_;
    OnePoleMemory high = highpassMemory_;
    for (int i = 0; i < chunk.frames; ++i) {
        const float x = (chunk.outLeft[i] + chunk.outRight[i]) * gain;
        const float h = high.runFlushed(highpass_, low.runFlushed(lowpass_, x));
        conditioned[static_cast<std::size_t>(i)] = h + floor;
    }
    lowpassMemory_ = low;
    highpassMemory_ = high;
    ring_.write(conditioned.data(), chunk.frames);
}

// The input of the network: delayed by the pre-delay, faded over when that has changed. In "Room"
// it stands behind the reflections and needs no fade.
void FxReverb::tapInput(Chunk& chunk, Ramp& fade) const
{
    const bool room = row().network == ReverbNetwork::half;
    const int roomDelay = std::min(preDelayFrames_ + 1 + lineOffset_, ring_.longestDelay());
    const float* to = ring_.at(room ? roomDelay : preDelayFrames_);
    const float* from = room ? to : ring_.at(previousPreDelay_);
    for (int i = 0; i < chunk.frames; ++i) {
        chunk.tail[static_cast<std::size_t>(i)] =
            from[i] * (1.0f - fade.value) + to[i] * fade.value;
        fade.value += fade.step;
    }
}

void FxReverb::runNetwork(Chunk& chunk)
{
    chunk.left.fill(0.0f);
    chunk.right.fill(0.0f);
    switch (row().network) {
    case ReverbNetwork::parallel:
        lines_.runLong(kParallelWeights, damping_, chunk.frames, chunk.tail, chunk.left,
                       chunk.right);
        break;
    case ReverbNetwork::mixed:
        lines_.runMixed(chunk.frames, chunk.tail, chunk.left, chunk.right);
        break;
    case ReverbNetwork::half:
        lines_.runLong(kHalfWeights, damping_, chunk.frames, chunk.tail, chunk.left, chunk.right);
        break;
    }
}

// From the network's sums to the effect's own output, in chunk.left and chunk.right.
void FxReverb::diffuse(Chunk& chunk)
{
    const auto& sine = constantTables().floatSine;
    const bool mixed = row().network == ReverbNetwork::mixed;
    const float sumLevel = mixed ? lines_.mixedLevel() : 1.0f;
    const float outLevel = mixed ? 1.0f : kTailLevel;
    const std::uint32_t spread = row().network == ReverbNetwork::half ? 0 : spreadFrames_;
    const auto increment = static_cast<std::uint32_t>(phaseScale() * kLfoHz);
    for (std::size_t i = 0; i < static_cast<std::size_t>(chunk.frames); ++i) {
        const float sweep = kLfoFrames * sine[lfoPhase_ >> kTableShift];
        lfoPhase_ += increment;
        const int whole = static_cast<int>(sweep + kLfoFrames) - static_cast<int>(kLfoFrames);
        const float fraction = sweep - static_cast<float>(whole);

        const float left = diffusers_[0].run(chunk.left[i] * sumLevel, whole, fraction);
        const float right = diffusers_[1].run(chunk.right[i] * sumLevel, whole, fraction);
        chunk.left[i] = chunk.earlyLeft[i] + left * outLevel;
        spread_[spreadPosition_] = chunk.earlyRight[i] + right * outLevel;
        chunk.right[i] = spread_[(spreadPosition_ - spread) & (kSpreadCells - 1)];
        spreadPosition_ = (spreadPosition_ + 1) & (kSpreadCells - 1);
    }
}

void FxReverb::mixOutput(const Chunk& chunk, Ramp& mix)
{
    for (int i = 0; i < chunk.frames; ++i) {
        const auto n = static_cast<std::size_t>(i);
        const float dry = 1.0f - mix.value;
        chunk.outLeft[i] = dry * chunk.outLeft[i] + mix.value * chunk.left[n];
        chunk.outRight[i] = dry * chunk.outRight[i] + mix.value * chunk.right[n];
        mix.value += mix.step;
    }
}

} // namespace tolm
