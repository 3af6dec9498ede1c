#pragma once
// The timed notes of one host block, and the notes that the on-screen keyboard plays.

#include "engine/EngineOwner.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace tolm {

// Audio thread only. The count has 8 bits and wraps: the 257th event of a block is its only one.
class EventQueue {
public:
    void append(const QueuedEvent& event) { events_[count_++] = event; }
    void clear() { count_ = 0; }
    int count() const { return count_; }
    const QueuedEvent& operator[](int i) const { return events_[static_cast<std::size_t>(i)]; }
    QueuedEvent& operator[](int i) { return events_[static_cast<std::size_t>(i)]; }

private:
    std::array<QueuedEvent, 256> events_{};
    std::uint8_t count_ = 0;
};

struct KeyboardNote {
    std::int32_t offset = 0;
    std::uint8_t status = 0;
    std::uint8_t key = 0;
    std::uint8_t velocity = 0;
};

// One thread pushes (the editor's), one drains (the audio thread). A note that finds the queue
// full is dropped. Controllers pass as well: status 0xB0, the controller as key, its value as
// velocity.
class KeyboardNoteQueue {
public:
    bool push(std::uint8_t status, int key, std::uint8_t velocity)
    {
        const std::uint32_t end = end_.load(std::memory_order_relaxed);
        if (end - begin_.load(std::memory_order_acquire) == notes_.size())
            return false;
        notes_[end % notes_.size()] = {
            0, status, static_cast<std::uint8_t>(std::clamp(key, 0, 127)), velocity};
        end_.store(end + 1, std::memory_order_release);
        return true;
    }

    bool pop(KeyboardNote& note)
    {
        const std::uint32_t begin = begin_.load(std::memory_order_relaxed);
        if (begin == end_.load(std::memory_order_acquire))
            return false;
        note = notes_[begin % notes_.size()];
        begin_.store(begin + 1, std::memory_order_release);
        return true;
    }

private:
    std::array<KeyboardNote, 128> notes_{};
    std::atomic<std::uint32_t> begin_{0};
    std::atomic<std::uint32_t> end_{0};
};

} // namespace tolm
