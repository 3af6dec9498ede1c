#pragma once
// Signals and measurements for the effect tests.

#include "engine/constants.h"
#include "fx/Random.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <vector>

namespace tolm {

struct Stereo {
    std::vector<float> left, right;

    explicit Stereo(std::size_t frames) : left(frames), right(frames) {}

    static Stereo impulse(std::size_t frames, float l, float r)
    {
        Stereo s(frames);
        s.left[0] = l;
        s.right[0] = r;
        return s;
    }
    static Stereo noise(std::size_t frames, float level, std::uint32_t seed = 7)
    {
        Random random(seed);
        Stereo s(frames);
        for (auto* channel : {&s.left, &s.right})
            for (float& x : *channel)
                x = level * (static_cast<float>(random.next()) / 16383.5f - 1.0f);
        return s;
    }
    // The same signal on both sides.
    static Stereo sine(std::size_t frames, double hz, double rate, double level = 1.0)
    {
        Stereo s(frames);
        for (std::size_t i = 0; i < frames; ++i)
            s.left[i] = s.right[i] = static_cast<float>(
                level * std::sin(2.0 * kPi * hz * static_cast<double>(i) / rate));
        return s;
    }

    void fill(float value)
    {
        std::fill(left.begin(), left.end(), value);
        std::fill(right.begin(), right.end(), value);
    }
    int frames() const { return static_cast<int>(left.size()); }
    // fn(frames, channels) in blocks of uneven size, as hosts may send them.
    template <class Fn>
    void inBlocks(Fn&& fn)
    {
        constexpr int kSizes[] = {64, 1, 37, 512, 200};
        int block = 0;
        for (int done = 0; done < frames();) {
            const int count = std::min(kSizes[block++ % 5], frames() - done);
            float* channels[] = {left.data() + done, right.data() + done};
            fn(count, channels);
            done += count;
        }
    }
    template <class Fn>
    void inOneBlock(Fn&& fn)
    {
        float* channels[] = {left.data(), right.data()};
        fn(frames(), channels);
    }
    float peak() const
    {
        float most = 0.0f;
        for (const auto* channel : {&left, &right})
            for (const float x : *channel)
                most = std::isfinite(x) ? std::max(most, std::abs(x)) : HUGE_VALF;
        return most;
    }
};

// Sweeps the delay as far as it goes, in jumps.
inline std::vector<float> squareLfo()
{
    std::vector<float> table(kTableSize, 1.0f);
    std::fill(table.begin() + kTableSize / 2, table.end(), -1.0f);
    return table;
}

inline double energy(const std::vector<float>& x, std::size_t from, std::size_t to)
{
    double sum = 0.0;
    for (std::size_t i = from; i < to; ++i)
        sum += double{x[i]} * double{x[i]};
    return sum;
}

inline double decibels(double ratio)
{
    return 20.0 * std::log10(ratio);
}

// Magnitude of an impulse response at a frequency.
inline double magnitudeAt(const std::vector<float>& response, double hz, double rate)
{
    const std::complex<double> turn = std::polar(1.0, -2.0 * kPi * hz / rate);
    std::complex<double> z = 1.0;
    std::complex<double> sum = 0.0;
    for (const float x : response) {
        sum += double{x} * z;
        z *= turn;
    }
    return std::abs(sum);
}

// Largest difference between two signals.
inline float distance(const std::vector<float>& a, const std::vector<float>& b)
{
    float most = 0.0f;
    for (std::size_t i = 0; i < a.size(); ++i)
        most = std::max(most, std::abs(a[i] - b[i]));
    return most;
}
inline float distance(const Stereo& a, const Stereo& b)
{
    return std::max(distance(a.left, b.left), distance(a.right, b.right));
}

} // namespace tolm
