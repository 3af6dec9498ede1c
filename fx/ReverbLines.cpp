#include "fx/ReverbLines.h"

#include "fx/Module.h"
#include "fx/onePoleScan.h"
#include "fx/primes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace tolm {

namespace {

constexpr std::size_t kLeastPool = 262144;
constexpr std::size_t kPoolReserve = 1000;
constexpr double kDefaultLongGain = 0.9;
constexpr float kRunaway = 100.0f;
constexpr float kLastLineGain = 0.8f; // of lines 32 and 64, whose output weights are large

int longLength(int i, double sampleRateHz)
{
    return primeAtLeast(static_cast<int>(i * sampleRateHz / 2560.0 + 500.0));
}

// Primes spread over 761..4073 at 44.1 kHz.
int mixedLength(int k, double sampleRateHz)
{
    const double x = (k * 14.20254760980606 + 67.0) * 2.0;
    const std::int64_t prime = kPrimes[static_cast<std::size_t>(x)];
    const std::int64_t ratio = static_cast<std::int64_t>(sampleRateHz * 8192.0) / 44100;
    return primeAtLeast(static_cast<int>(prime * ratio / 8192));
}

// Four long lines at a time: within a line a stretch waits for the one before, four lines overlap.
constexpr std::size_t kGroup = 4;

struct LineGroup {
    std::array<LineWeight, kGroup> weights; // copies, which stores to the cells cannot touch
    std::array<OnePoleScan, kGroup> pole;
    std::array<float, kGroup> gain;
    std::array<float*, kGroup> cells;

    // One frame or, with vectors, four.
    template <class Value>
    Value runLine(std::size_t k, Value stored, Value input, Value& left, Value& right)
    {
        const Value state = pole[k].run(stored * gain[k]);
        left += weights[k].left * state;
        right += weights[k].right * state;
        return weights[k].sign * (state - input);
    }
};

// All four lines over a stretch in which none of them wraps.
inline void runStretch(LineGroup& group, int frames, const float* input, float* left, float* right)
{
    int i = 0;
    for (; i + 4 <= frames; i += 4) {
        const Frames4 p = load4(input + i);
        Frames4 sumLeft = load4(left + i);
        Frames4 sumRight = load4(right + i);
        for (std::size_t k = 0; k < kGroup; ++k) {
            float* cells = group.cells[k] + i;
            store4(cells, group.runLine(k, load4(cells), p, sumLeft, sumRight));
        }
        store4(left + i, sumLeft);
        store4(right + i, sumRight);
    }
    for (; i < frames; ++i)
        for (std::size_t k = 0; k < kGroup; ++k)
            group.cells[k][i] = group.runLine(k, group.cells[k][i], input[i], left[i], right[i]);
}

void runGroup(const LineWeight* weights, DelayLines<kReverbLongLines>& lines, float damping,
              int frames, const float* input, float* left, float* right)
{
    LineGroup group;
    std::copy_n(weights, kGroup, group.weights.begin());
    std::array<std::size_t, kGroup> index;
    for (std::size_t k = 0; k < kGroup; ++k) {
        index[k] = static_cast<std::size_t>(weights[k].line);
        group.pole[k] = OnePoleScan(1.0f - damping, lines.state[index[k]]);
        group.gain[k] = lines.gain[index[k]];
    }
    for (int done = 0; done < frames;) {
        int run = frames - done;
        for (std::size_t k = 0; k < kGroup; ++k) {
            run = std::min(run, lines.length[index[k]] - lines.position[index[k]]);
            group.cells[k] = lines.cells[index[k]] + lines.position[index[k]];
        }
        runStretch(group, run, input + done, left + done, right + done);
        for (const std::size_t i : index) {
            lines.position[i] += run;
            if (lines.position[i] == lines.length[i])
                lines.position[i] = 0;
        }
        done += run;
    }
    for (std::size_t k = 0; k < kGroup; ++k)
        lines.state[index[k]] = group.pole[k].state();
}

using MixedBuffers = std::array<ReverbBuffer, kReverbMixedLines>;

void butterfly(float* __restrict a, float* __restrict b, int frames)
{
    for (int i = 0; i < frames; ++i) {
        const float sum = a[i] + b[i];
        b[i] = a[i] - b[i];
        a[i] = sum;
    }
}

// Natural order, not normalised.
void walshHadamard(MixedBuffers& lines, int frames)
{
    for (std::size_t distance = 1; distance < kReverbMixedLines; distance *= 2)
        for (std::size_t k = 0; k < kReverbMixedLines; ++k)
            if ((k & distance) == 0)
                butterfly(lines[k].data(), lines[k + distance].data(), frames);
}

void addWeighted(const float* __restrict line, int frames, float leftWeight, float rightWeight,
                 float* __restrict left, float* __restrict right)
{
    for (int i = 0; i < frames; ++i) {
        left[i] += leftWeight * line[i];
        right[i] += rightWeight * line[i];
    }
}

// The frames of a line that lie ahead, in at most two stretches: fn(cells, first frame, count).
template <class Fn>
void eachStretch(const DelayLines<kReverbMixedLines>& lines, std::size_t k, int frames, Fn&& fn)
{
    const int first = std::min(frames, lines.length[k] - lines.position[k]);
    fn(lines.cells[k] + lines.position[k], 0, first);
    if (first < frames)
        fn(lines.cells[k], first, frames - first);
}

} // namespace

void ReverbLines::resize(double sampleRateHz)
{
    std::size_t longTotal = 0;
    for (std::size_t i = 0; i < kReverbLongLines; ++i) {
        long_.length[i] = longLength(static_cast<int>(i) + 1, sampleRateHz);
        longTotal += static_cast<std::size_t>(long_.length[i]);
    }
    std::size_t mixedTotal = 0;
    for (std::size_t k = 0; k < kReverbMixedLines; ++k) {
        mixed_.length[k] = mixedLength(static_cast<int>(k), sampleRateHz);
        mixedTotal += static_cast<std::size_t>(mixed_.length[k]);
    }
    mixedChunk_ = std::min(kReverbChunk, mixed_.length[0]);

    pool_.assign(std::max({kLeastPool, longTotal, mixedTotal}) + kPoolReserve, 0.0f);
    float* next = pool_.data();
    for (std::size_t i = 0; i < kReverbLongLines; next += long_.length[i++])
        long_.cells[i] = next;
    next = pool_.data();
    for (std::size_t k = 0; k < kReverbMixedLines; next += mixed_.length[k++])
        mixed_.cells[k] = next;
    clear();

    setDecay(sampleRateHz, kReverbDefaultDecaySeconds, 1.0f, 1.0f);
    const double decayFrames = sampleRateHz * static_cast<double>(kReverbDefaultDecaySeconds);
    for (std::size_t i = 0; i < kReverbLongLines; ++i)
        long_.gain[i] =
            static_cast<float>(kDefaultLongGain * std::pow(0.001, long_.length[i] / decayFrames));
}

void ReverbLines::clear()
{
    std::fill(pool_.begin(), pool_.end(), 0.0f);
    long_.state.fill(0.0f);
    long_.position.fill(0);
    mixed_.state.fill(0.0f);
    mixed_.position.fill(0);
}

void ReverbLines::setDecay(double sampleRateHz, float decaySeconds, float damping, float setting)
{
    const double decayFrames = sampleRateHz * static_cast<double>(decaySeconds);
    for (std::size_t i = 0; i < kReverbLongLines; ++i)
        long_.gain[i] =
            damping * static_cast<float>(std::pow(0.001, long_.length[i] / decayFrames));
    long_.gain[31] *= kLastLineGain;
    long_.gain[63] *= kLastLineGain;

    // A one-pole whose loss grows with frequency (Jot and Chaigne, "Digital delay networks for
    // designing artificial reverberators", 1991).
    const double s = static_cast<double>(setting);
    const double treble = std::log(10.0) / 4.0 * (1.0 - 1.0 / (s * s));
    double sum = 0.0;
    for (std::size_t k = 0; k < kReverbMixedLines; ++k) {
        const double loss = -3.0 * mixed_.length[k] / decayFrames; // powers of ten per passage
        const double c = std::min(0.92, loss * treble);
        const double g = std::pow(10.0, loss) * (1.0 - c) * 0.25;
        mixedLoss_[k] = static_cast<float>(c);
        mixed_.gain[k] = static_cast<float>(g);
        sum += g;
    }
    mixedLevel_ = static_cast<float>(std::min(2.0, 16.0 / sum) / 16.0);
}

void ReverbLines::runLong(std::span<const LineWeight> weights, float damping, int frames,
                          const ReverbBuffer& input, ReverbBuffer& left, ReverbBuffer& right)
{
    for (std::size_t i = 0; i < weights.size(); i += kGroup)
        runGroup(&weights[i], long_, damping, frames, input.data(), left.data(), right.data());
}

// No line is shorter than the chunk, so what it returns now was written before: line by line out,
// all lines mixed, line by line back in.
void ReverbLines::runMixed(int frames, const ReverbBuffer& input, ReverbBuffer& left,
                           ReverbBuffer& right)
{
    MixedBuffers mix;
    for (std::size_t k = 0; k < kReverbMixedLines; ++k) {
        const float gain = mixed_.gain[k];
        OnePoleScan pole(mixedLoss_[k], mixed_.state[k]);
        float* const out = mix[k].data();
        eachStretch(mixed_, k, frames, [&](const float* cells, int first, int count) {
            int i = 0;
            for (; i + 4 <= count; i += 4)
                store4(out + first + i, pole.run(load4(cells + i) * gain));
            for (; i < count; ++i)
                out[first + i] = pole.run(cells[i] * gain);
        });
        mixed_.state[k] = pole.state();
    }
    walshHadamard(mix, frames);
    for (std::size_t k = 0; k < kReverbMixedLines; ++k) {
        const float* w = mix[k].data();
        addWeighted(w, frames, kMixedLeft[k], kMixedRight[k], left.data(), right.data());
        eachStretch(mixed_, k, frames, [&](float* cells, int first, int count) {
            for (int i = 0; i < count; ++i)
                cells[i] = w[first + i] + input[static_cast<std::size_t>(first + i)];
        });
        mixed_.position[k] += frames;
        if (mixed_.position[k] >= mixed_.length[k])
            mixed_.position[k] -= mixed_.length[k];
    }
}

void ReverbLines::endBlock()
{
    for (float& state : mixed_.state)
        if (!(std::abs(state) <= kRunaway))
            state = 0.0f;
    for (float& state : long_.state)
        state = flushTiny(state);
}

} // namespace tolm
