#include "fx/distortion.h"

#include <algorithm>

namespace tolm {

namespace {

constexpr float kOpenColour = 0.999f; // above this the low-pass is out of the way altogether
constexpr float kDcBlockerHz = 5.0f;

// tanh by one exponential, which is twice as fast as the library's and, in double precision, exact
// to the resolution of its result.
float fastTanh(float x)
{
    return static_cast<float>(1.0 - 2.0 / (std::exp(2.0 * static_cast<double>(x)) + 1.0));
}

// Soft saturation; the make-up gain gives back part of what the drive is divided by.
struct Crunch {
    static constexpr bool kTwoStages = false;
    static constexpr bool kFlushFirst = false;
    float drive, level;

    explicit Crunch(const Distortion::Block& b) : drive(b.drive), level(b.makeUp / b.drive) {}
    float operator()(float x) const { return fastTanh(drive * x) * level; }
};

// A step at 0 whose steepness is the drive: it turns any signal into near-pulses.
struct Toxic {
    static constexpr bool kTwoStages = true;
    static constexpr bool kFlushFirst = false;
    double exponent; // of e, per unit of input

    explicit Toxic(const Distortion::Block& b)
        : exponent(static_cast<double>(b.drive) * 2.302585092994045684) // ln 10
    {
    }
    float operator()(float x) const
    {
        const double m = std::abs(static_cast<double>(x));
        const double u = 1.0 - (1.0 - m) * std::exp(-exponent * m);
        return static_cast<float>(x < 0.0f ? -0.25 * u : 0.25 * u);
    }
};

// t / (1 - e^(-8t)): nearly straight on one side, dying away on the other, biased so that silence
// stays silent.
struct Valve {
    static constexpr bool kTwoStages = true;
    static constexpr bool kFlushFirst = true;
    static constexpr double kBias = 0.25;
    static constexpr double kOffset = -0.28912941068741643; // -0.25 / (1 - e^-2)
    double drive, level;

    explicit Valve(const Distortion::Block& b)
        : drive(static_cast<double>(b.drive)), level(1.0 / drive)
    {
    }
    float operator()(float x) const
    {
        const double t = drive * static_cast<double>(x) + kBias;
        const double curve = std::abs(t) < 0.0001 ? 0.125 : t / (1.0 - std::exp(-8.0 * t));
        return static_cast<float>((curve + kOffset) * level);
    }
};

struct Gain {
    static constexpr bool kTwoStages = true;
    static constexpr bool kFlushFirst = true;
    float drive;

    explicit Gain(const Distortion::Block& b) : drive(b.drive) {}
    float operator()(float x) const { return drive * x; }
};

// Rounds positive peaks into a plateau at 1/2; the negative side stays as it is.
float clipPositive(float v)
{
    if (v <= 1.0f / 3.0f)
        return v;
    if (v >= 2.0f / 3.0f)
        return 0.5f;
    const float knee = 2.0f - 3.0f * v;
    return (3.0f - knee * knee) / 6.0f;
}

template <class Sample>
void mixChannel(const Distortion::Block& block, int frames, float* channel, Sample&& sample)
{
    float dry = block.dry;
    float wet = block.wet;
    for (int i = 0; i < frames; ++i) {
        const float x = channel[i];
        channel[i] = x * dry + sample(x) * wet;
        dry += block.dryStep;
        wet += block.wetStep;
    }
}

// Shaper, then one or two stages of the tone filter.
template <class Shaper>
void shapeThenFilter(const Distortion::Block& block, int frames, float* channel,
                     Distortion::Memory& memory)
{
    const Shaper shape(block);
    OnePoleMemory first = memory[0];
    OnePoleMemory second = memory[1];
    mixChannel(block, frames, channel, [&](float x) {
        const float u = shape(x);
        float s = Shaper::kFlushFirst ? first.runFlushed(block.tone, u) : first.run(block.tone, u);
        if constexpr (Shaper::kTwoStages)
            s = second.run(block.tone, s);
        return s;
    });
    memory = {first, second};
}

// Tone filter, then the one-sided clipper and a high-pass against the offset it makes.
void filterThenClip(const Distortion::Block& block, int frames, float* channel,
                    Distortion::Memory& memory)
{
    const float level = 1.0f / block.drive;
    OnePoleMemory tone = memory[0];
    OnePoleMemory blocker = memory[1];
    mixChannel(block, frames, channel, [&](float x) {
        const float v = block.drive * tone.run(block.tone, x);
        return blocker.run(block.dcBlocker, clipPositive(v) * level);
    });
    memory = {tone, blocker};
}

struct TypeRow {
    bool highpass;
    float leastDrive, mostDrive, driveScale;
    void (*run)(const Distortion::Block&, int frames, float* channel, Distortion::Memory&);
};

constexpr std::array<TypeRow, Distortion::kTypeCount> kTypes = {{
    {false, 1.0f, 64.0f, 1.0f, shapeThenFilter<Crunch>}, // LP+Crunch
    {true, 1.0f, 64.0f, 1.0f, shapeThenFilter<Crunch>},  // HP+Crunch
    {false, 1.0f, 64.0f, 1.0f, shapeThenFilter<Toxic>},  // LP+Toxic
    {true, 1.0f, 64.0f, 1.0f, shapeThenFilter<Toxic>},   // HP+Toxic
    {false, 1.0f, 64.0f, 0.5f, shapeThenFilter<Valve>},  // LP+Valve
    {true, 1.0f, 64.0f, 0.5f, shapeThenFilter<Valve>},   // HP+Valve
    {false, 0.25f, 4.0f, 1.0f, shapeThenFilter<Gain>},   // LP Only
    {true, 0.25f, 4.0f, 1.0f, shapeThenFilter<Gain>},    // HP Only
    {false, 1.0f, 64.0f, 0.25f, filterThenClip},         // LP+Clip
}};

} // namespace

void Distortion::setParameter(int index, float value)
{
    switch (index) {
    case type:
        type_ = std::clamp(static_cast<int>(value * 8.0f), 0, kTypeCount - 1);
        break;
    case colour:
        colour_ = value;
        break;
    case drive:
        drive_ = value;
        break;
    case amount:
        amount_ = value;
        break;
    default:
        break;
    }
}

OnePole Distortion::toneCoefficients(bool highpass) const
{
    if (highpass)
        return highpassCoefficients(static_cast<double>(curve(colour_, 1.0f, 2000.0f)));
    if (colour_ > kOpenColour)
        return {};
    return lowpassCoefficients(static_cast<double>(curve(colour_, 100.0f, 20000.0f)));
}

void Distortion::process(int frames, float* const* channels)
{
    const TypeRow& row = kTypes[static_cast<std::size_t>(type_)];
    const float dryTarget = 1.0f - amount_;
    const float wetTarget = amount_;
    if (dry_ < 0.0f) {
        dry_ = dryTarget;
        wet_ = wetTarget;
    }

    Block block;
    block.drive = row.driveScale * curve(drive_, row.leastDrive, row.mostDrive);
    block.makeUp = curve(drive_, 1.0f, 16.0f);
    block.tone = toneCoefficients(row.highpass);
    block.dcBlocker = highpassCoefficients(kDcBlockerHz);
    block.dry = dry_;
    block.wet = wet_;
    block.dryStep = (dryTarget - dry_) / static_cast<float>(frames);
    block.wetStep = (wetTarget - wet_) / static_cast<float>(frames);

    for (std::size_t c = 0; c < memory_.size(); ++c) {
        row.run(block, frames, channels[c], memory_[c]);
        for (OnePoleMemory& stage : memory_[c])
            stage.flush();
    }
    dry_ = dryTarget;
    wet_ = wetTarget;
}

} // namespace tolm
