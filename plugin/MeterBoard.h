#pragma once
// What an open window shows of the sound: written by the audio thread once per block, read by the
// user interface. Costs one test per block while no window is open.

#include "engine/record.h"
#include "plugin/EditorPort.h"

#include <array>
#include <atomic>

namespace tolm {

class MeterBoard {
public:
    // User-interface thread. Switching off forgets the last values.
    void watch(bool on);

    // After a block. Audio thread, under the guard.
    void update(EngineRecord& r, const float* const* outputs, int frames);

    // Everything but the keys. Peaks start over. User-interface thread.
    void read(EditorMeters& meters);

private:
    void showVoice(EngineRecord& r, std::size_t newest);

    std::atomic<bool> watched_{false};
    std::array<std::atomic<float>, 2> peak_{};
    std::atomic<int> voices_{0};
    std::atomic<int> arpStep_{-1};
    std::array<std::atomic<float>, kMatrixRows> rowSource_{};
    std::array<std::atomic<float>, kLfoCount> lfoPhase_{};
};

} // namespace tolm
