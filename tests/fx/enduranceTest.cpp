// Every effect type at its worst settings for long, and what silence costs after sound.

#include "fx/effectChain.h"
#include "plugin/catalogue.h"
#include "tests/fx/rig.h"

#include <gtest/gtest.h>

#ifdef __SSE2__
#include <xmmintrin.h>
#endif

namespace tolm {
namespace {

constexpr int kBlock = 512;

struct EffectTypes {
    const char* name;
    EffectKind kind;
    int typeId, count;
    float range; // that the type's setting is multiplied by
    float bound; // resonance amplifies: phasers by up to 100, delays up to the limit of their rings
};
constexpr EffectTypes kEffects[] = {
    {"distortion", EffectKind::distortion, kDistType, 9, 8.0f, 8.0f},
    {"equaliser", EffectKind::equaliser1, kEq1Type, 3, 2.01f, 32.0f},
    {"phaser", EffectKind::phaser, kPhaserType, 7, 6.1f, 150.0f},
    {"delay", EffectKind::delay, kDelayType, 9, 8.0f, 600.0f},
    {"reverb", EffectKind::reverb, kReverbType, 5, 4.0f, 1000.0f},
};

class Rig {
public:
    Rig(const EffectTypes& effect, int type, double rate, float sustain = 1.0f) : effect_(effect)
    {
        chain_.setSampleRate(rate);
        for (int id = kPhaserType; id <= kEq2On; ++id)
            chain_.setParameter(id, 1.0f);
        chain_.setParameter(kDelayType + 1, 0.5f); // open, so that nothing is lost on the way round
        constexpr int kSustains[] = {kPhaserType + 3, kDelayType + 2, kReverbType + 2};
        for (const int id : kSustains)
            chain_.setParameter(id, sustain);
        chain_.setParameter(effect.typeId,
                            std::min(1.0f, (static_cast<float>(type) + 0.2f) / effect.range));
    }

    // Repeats `source` until `frames` have passed. False when the output is not finite or too loud.
    bool run(const Stereo& source, std::size_t frames)
    {
        bool good = true;
        for (std::size_t done = 0; done < frames; done += kBlock) {
            const auto at = static_cast<long>(done % source.left.size());
            Stereo block(kBlock);
            std::copy_n(source.left.begin() + at, kBlock, block.left.begin());
            std::copy_n(source.right.begin() + at, kBlock, block.right.begin());
            block.inOneBlock([&](int n, float* const* channels) {
                chain_.process(static_cast<int>(effect_.kind), n, channels, 120.0f,
                               {0x01234567, phase_, 0.5f, lfo_.data()});
            });
            phase_ += 0x01234567u * kBlock;
            good = good && block.peak() <= effect_.bound;
        }
        return good;
    }

private:
    const EffectTypes& effect_;
    Random random_{11};
    EffectChain chain_{random_};
    const std::vector<float> lfo_ = squareLfo();
    std::uint32_t phase_ = 0;
};

template <class Fn>
void eachType(Fn&& fn)
{
    for (const EffectTypes& effect : kEffects)
        for (int type = 0; type < effect.count; ++type) {
            SCOPED_TRACE(testing::Message() << effect.name << " " << type);
            fn(effect, type);
        }
}

// Twenty seconds of noise, of a constant at full level, and of nothing.
TEST(EffectEndurance, theWorstOfEveryTypeStaysBounded)
{
    const Stereo noise = Stereo::noise(65536, 1.0f);
    const Stereo silence(kBlock);
    Stereo constant(kBlock);
    constant.fill(1.0f);
    for (const double rate : {8000.0, 44100.0, 384000.0})
        eachType([&](const EffectTypes& effect, int type) {
            Rig rig(effect, type, rate);
            const auto frames = [&](double seconds) {
                return static_cast<std::size_t>(seconds * rate);
            };
            EXPECT_TRUE(rig.run(noise, frames(14.0))) << "noise at " << rate;
            EXPECT_TRUE(rig.run(constant, frames(3.0))) << "constant at " << rate;
            EXPECT_TRUE(rig.run(silence, frames(3.0))) << "silence at " << rate;
        });
}

#ifdef __SSE2__
// Denormal numbers cost processors up to a hundred times more, so what is left in the memories
// after sound must not stay among them, even without the mode that flushes them. The processor
// notes when it meets one.
TEST(EffectEndurance, silenceAfterSoundEndsWithoutDenormalNumbers)
{
    constexpr unsigned kDenormalOperand = 0x0002;
    const Stereo noise = Stereo::noise(8 * kBlock, 0.5f);
    const Stereo silence(kBlock);
    const unsigned before = _mm_getcsr();
    eachType([&](const EffectTypes& effect, int type) {
        Rig rig(effect, type, 44100.0, 0.6f);
        rig.run(noise, 30000);
        rig.run(silence, 300000);
        _mm_setcsr(before & ~0x807Fu); // no flushing to zero, nothing noted yet
        rig.run(silence, 100000);
        EXPECT_EQ(_mm_getcsr() & kDenormalOperand, 0u);
    });
    _mm_setcsr(before);
}
#endif

} // namespace
} // namespace tolm
