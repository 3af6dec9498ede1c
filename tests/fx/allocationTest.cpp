// Settings, resets and processing happen on the audio thread: none of them may take memory.

#include "fx/effectChain.h"
#include "plugin/catalogue.h"
#include "tests/fx/rig.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int> allocations{0};

} // namespace

// Not inlined, so that the compiler does not take a new and its free() for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    ++allocations;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace tolm {

TEST(EffectChain, neverAllocatesAfterTheRateIsSet)
{
    Random random;
    EffectChain chain(random);
    chain.setSampleRate(96000.0);
    Stereo s = Stereo::noise(2000, 0.5f);
    const int before = allocations;
    for (const float value : {0.0f, 0.2f, 0.45f, 0.7f, 1.0f}) {
        for (int id = kPhaserType; id <= kEq2On; ++id)
            chain.setParameter(id, value > 0.0f || id < kPhaserOn ? value : 1.0f);
        s.inBlocks([&](int n, float* const* ch) {
            for (int slot = 0; slot < kEffectSlots; ++slot)
                chain.process(slot, n, ch, 120.0f, {});
        });
        chain.reset();
    }
    EXPECT_EQ(allocations, before);
    chain.setSampleRate(48000.0);
    EXPECT_GT(allocations, before); // the counter counts
}

} // namespace tolm
