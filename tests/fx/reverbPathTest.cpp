// The reverb's way from input to output, frame by frame, around its early reflections, which have a
// test of their own.

#include "fx/FxReverb.h"
#include "tests/fx/rig.h"

#include <gtest/gtest.h>

#include <bit>
#include <optional>
#include <span>

namespace tolm {
namespace {

constexpr double kRate = 44100.0;
constexpr int kPreDelay = 441; // frames in 10 ms
constexpr int kSpread = 99;

struct Settings {
    double decay = 0.3, damp = 0.6, lowCut = 0.5, amount = 0.8;
};

// y = b0 x + b1 x' - a1 y' with its own way to the coefficients.
struct PlainOnePole {
    double b0, b1, a1, x1 = 0.0, y1 = 0.0;

    PlainOnePole(double hz, bool highpass)
    {
        const double t = std::tan(kPi * hz / kRate);
        a1 = (t - 1.0) / (t + 1.0);
        b0 = (highpass ? 1.0 : t) / (t + 1.0);
        b1 = highpass ? -b0 : b0;
    }
    double run(double x)
    {
        const double y = b0 * x + b1 * x1 - a1 * y1;
        x1 = x;
        return y1 = std::abs(y) < 1e-9 ? 0.0 : y;
    }
};

struct PlainDiffuser {
    int length;
    double gain;
    std::vector<double> cells = std::vector<double>(4096);
    int position = 0;
    double read = 0.0, written = 0.0;

    double run(double x, double offset)
    {
        const double at = position - offset - length + 2 * 4096;
        const auto whole = static_cast<int>(at);
        const double f = at - whole;
        const auto cell = [&](int i) { return cells[static_cast<std::size_t>(i % 4096)]; };
        read = -(cell(whole) * (1.0 - f) + cell(whole + 1) * f);
        written = x + read * gain;
        cells[static_cast<std::size_t>(position)] = written;
        position = (position + 1) % 4096;
        return read - gain * written;
    }
};

// The networks of lines, of which only lengths and output weights are the product's.
class PlainLines {
public:
    PlainLines(int type, const ReverbLines& lines, const Settings& settings)
        : mixed_(type == 1), damping_(0.5 + 0.5 * settings.damp)
    {
        const double seconds = 0.5 * std::pow(20.0, settings.decay);
        const double setting = 0.15 * std::pow(1.0 / 0.15, settings.damp);
        const auto lossOf = [&](int length) { return -3.0 * length / (kRate * seconds); };
        if (mixed_)
            for (const int length : lines.mixedLengths()) {
                const double d = lossOf(length); // powers of ten on one way through the line
                const double damped = d * std::log(10.0) / 4.0 * (1.0 - 1.0 / (setting * setting));
                const double pole = std::min(0.92, damped);
                add(length, std::pow(10.0, d) * (1.0 - pole) / 4.0, pole);
            }
        for (int i = 0; !mixed_ && i < 64; ++i) {
            const int length = lines.longLengths()[static_cast<std::size_t>(i)];
            add(length, damping_ * std::pow(10.0, lossOf(length)) * (i % 32 == 31 ? 0.8 : 1.0),
                1.0 - damping_);
        }
        half_ = type == 2;
        const std::span<const LineWeight> weights =
            half_ ? std::span<const LineWeight>(kHalfWeights) : kParallelWeights;
        for (const LineWeight& w : weights)
            weights_[static_cast<std::size_t>(w.line)] = w;
    }
    void run(double x, double& left, double& right)
    {
        left = right = 0.0;
        for (Line& line : lines_)
            line.state = line.gain * line.cells[line.position] + line.pole * line.state;
        for (std::size_t i = 0; i < lines_.size(); ++i) {
            if (half_ && i % 2 == 0)
                continue;
            Line& line = lines_[i];
            double out = line.state;
            if (mixed_) {
                out = 0.0; // entry (i, j) of the matrix: the parity of their common bits
                for (std::size_t j = 0; j < 16; ++j)
                    out += std::popcount(i & j) % 2 == 0 ? lines_[j].state : -lines_[j].state;
            }
            left += out * (mixed_ ? kMixedLeft[i] : weights_[i].left);
            right += out * (mixed_ ? kMixedRight[i] : weights_[i].right);
            const bool positive = half_ ? (i >> 1) % 2 == 0 : i % 2 == 1;
            line.cells[line.position] = mixed_ ? out + x : positive ? out - x : x - out;
            line.position = (line.position + 1) % line.cells.size();
        }
    }

private:
    struct Line {
        std::vector<double> cells;
        double gain, pole;
        double state = 0.0;
        std::size_t position = 0;
    };
    void add(int length, double gain, double pole)
    {
        lines_.push_back({std::vector<double>(static_cast<std::size_t>(length)), gain, pole});
    }

    bool mixed_, half_ = false;
    double damping_;
    std::vector<Line> lines_;
    std::array<LineWeight, 64> weights_{};
};

class PlainReverb {
public:
    PlainReverb(int type, const Settings& settings)
        : type_(type),
          row_(kReverbTypes[static_cast<std::size_t>(type)]),
          low_(row_.inputCutoffHz, false),
          high_(10.0 * std::pow(100.0, settings.lowCut), true),
          wet_(settings.amount * settings.amount),
          left_{type == 2 ? 293 : 257, 0.69},
          right_{type == 2 ? 293 : 251, 0.7}
    {
        Random random(3);
        lines_.resize(kRate);
        lines_.setDecay(kRate, static_cast<float>(0.5 * std::pow(20.0, settings.decay)),
                        static_cast<float>(0.5 + 0.5 * settings.damp),
                        static_cast<float>(0.15 * std::pow(1.0 / 0.15, settings.damp)));
        plain_.emplace(type, lines_, settings);
        // Drawn twice, as the settings come: with the type and with the pre-delay.
        early_.build(row_, kRate, 0, lines_.longLengths(), random);
        early_.build(row_, kRate, kPreDelay, lines_.longLengths(), random);
        ring_.resize(44100);
    }

    void run(float& inLeft, float& inRight)
    {
        const double share = type_ == 1 ? 1.0 : 0.5;
        const double x = (double{inLeft} + double{inRight}) * share;
        const auto conditioned = static_cast<float>(high_.run(low_.run(x)));
        ring_.write(&conditioned, 1);
        ReverbBuffer earlyLeft, earlyRight;
        double sumLeft, sumRight;
        early_.render(ring_, 1, earlyLeft, earlyRight);
        const int delay = type_ == 2 ? early_.lastDiffuseDelay() - 521 - 54 + 1 : kPreDelay;
        plain_->run(*ring_.at(delay), sumLeft, sumRight);

        const double sine = 0.999 * std::sin(2.0 * kPi * (phase_ >> 21) / 2048.0);
        phase_ += static_cast<std::uint32_t>(4294967296.0 / kRate * 0.5);
        const double level = type_ == 1 ? lines_.mixedLevel() : 1.0;
        const double tail = type_ == 1 ? 1.0 : 0.0625;
        const double l = left_.run(sumLeft * level, 2.0 * sine) * tail + earlyLeft[0];
        history_.push_back(right_.run(sumRight * level, 2.0 * sine) * tail + earlyRight[0]);
        const double r = history_[history_.size() - 1 - (type_ == 2 ? 0 : kSpread)];
        inLeft = static_cast<float>((1.0 - wet_) * inLeft + wet_ * l);
        inRight = static_cast<float>((1.0 - wet_) * inRight + wet_ * r);
    }

private:
    int type_;
    const ReverbRow& row_;
    PlainOnePole low_, high_;
    double wet_;
    PlainDiffuser left_, right_;
    ReverbLines lines_; // its lengths and its level
    std::optional<PlainLines> plain_;
    EarlyReflections early_;
    InputRing ring_;
    std::uint32_t phase_ = 0;
    std::vector<double> history_ = std::vector<double>(kSpread);
};

TEST(Reverb, everyTypeFollowsItsDefinitionFromInputToOutput)
{
    for (int type = 0; type < kReverbTypeCount; ++type) {
        SCOPED_TRACE(kReverbTypes[static_cast<std::size_t>(type)].name);
        const Settings settings;
        Random random(3);
        FxReverb reverb(random);
        reverb.setParameter(FxReverb::type, static_cast<float>(type) / 4.0f);
        reverb.setParameter(FxReverb::preDelay, 0.105f);
        reverb.setParameter(FxReverb::decay, static_cast<float>(settings.decay));
        reverb.setParameter(FxReverb::damp, static_cast<float>(settings.damp));
        reverb.setParameter(FxReverb::lowCut, static_cast<float>(settings.lowCut));
        reverb.setParameter(FxReverb::amount, static_cast<float>(settings.amount));
        PlainReverb plain(type, settings);

        Stereo s = Stereo::noise(20000, 0.5f);
        std::fill_n(s.left.begin(), 64, 0.0f); // the first block, in which the pre-delay fades in
        std::fill_n(s.right.begin(), 64, 0.0f);
        Stereo expected = s;
        s.inBlocks([&](int n, float* const* ch) { reverb.process(n, ch); });
        for (std::size_t i = 0; i < expected.left.size(); ++i)
            plain.run(expected.left[i], expected.right[i]);
        EXPECT_LT(distance(s.left, expected.left), 3e-5f);
        EXPECT_LT(distance(s.right, expected.right), 3e-5f);
    }
}

} // namespace
} // namespace tolm
