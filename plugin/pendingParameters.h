#pragma once
// Parameter changes made on other threads that wait for the audio thread: a mark per id, so the
// last writer wins. The value itself lies in the program store and is read when the mark is
// drained.

#include "engine/constants.h"

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace tolm {

class PendingParameters {
public:
    // After the value was stored; `id` must be 0..348.
    void mark(int id)
    {
        const auto bit = static_cast<std::size_t>(id);
        words_[bit / 64].fetch_or(std::uint64_t{1} << (bit % 64), std::memory_order_release);
    }

    void clear()
    {
        for (std::atomic<std::uint64_t>& word : words_)
            word.store(0, std::memory_order_relaxed);
    }

    // Calls `apply(id)` for every mark, in id order.
    template <class Apply>
    void drain(Apply&& apply)
    {
        for (std::size_t i = 0; i < words_.size(); ++i) {
            if (words_[i].load(std::memory_order_relaxed) == 0)
                continue;
            std::uint64_t marks = words_[i].exchange(0, std::memory_order_acquire);
            for (; marks != 0; marks &= marks - 1)
                apply(static_cast<int>(i) * 64 + std::countr_zero(marks));
        }
    }

private:
    std::array<std::atomic<std::uint64_t>, (kParameterCount + 63) / 64> words_{};
};

} // namespace tolm
