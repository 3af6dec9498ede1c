#pragma once
// Who may drive the engine: one thread at a time. The audio thread only tries, and is silent when
// somebody else drives; a thread that loads much at once waits for the block in progress to end.

#include <atomic>
#include <chrono>
#include <thread>

namespace tolm {

class ProcessingGuard {
public:
    // Gives way to a thread that waits, so that blocks without a pause between them do not keep a
    // load out.
    bool tryTake() { return waiting_.load(std::memory_order_relaxed) == 0 && take(); }
    void release() { taken_.store(false, std::memory_order_release); }

    // Waits a bounded time, because a host may have stopped inside a block for good. Never called
    // on the audio thread.
    bool takePatiently()
    {
        constexpr auto kLongestWait = std::chrono::seconds(2);
        constexpr auto kNap = std::chrono::microseconds(200);
        const auto deadline = std::chrono::steady_clock::now() + kLongestWait;
        waiting_.fetch_add(1, std::memory_order_relaxed);
        bool taken = take();
        while (!taken && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(kNap);
            taken = take();
        }
        waiting_.fetch_sub(1, std::memory_order_relaxed);
        return taken;
    }

private:
    bool take() { return !taken_.exchange(true, std::memory_order_acquire); }

    std::atomic<int> waiting_{0};
    std::atomic<bool> taken_{false};
};

// Holds a guard that was taken, until the end of the scope.
class GuardHold {
public:
    static GuardHold attempt(ProcessingGuard& guard) { return {guard, guard.tryTake()}; }
    static GuardHold patiently(ProcessingGuard& guard) { return {guard, guard.takePatiently()}; }

    ~GuardHold()
    {
        if (held_)
            guard_.release();
    }
    GuardHold(const GuardHold&) = delete;
    GuardHold& operator=(const GuardHold&) = delete;

    explicit operator bool() const { return held_; }

private:
    GuardHold(ProcessingGuard& guard, bool held) : guard_(guard), held_(held) {}

    ProcessingGuard& guard_;
    bool held_;
};

} // namespace tolm
