#pragma once
// Which MIDI controller moves which parameter, and which controller an automated parameter sends.
// The audio thread reads and learns while the editor arms and forgets: all bytes are atomic, and a
// learn that races with an incoming controller takes effect at the next one.

#include "engine/constants.h"
#include "plugin/platform.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace tolm {

inline constexpr int kControllerCount = 128;
inline constexpr std::uint8_t kUnassigned = 255;

class MidiMap {
public:
    // Starts with the defaults, replaced by the stored map when there is one.
    explicit MidiMap(SettingsStore& store);

    // The parameter that a controller 0..127 moves, or -1.
    int parameterOf(int controller) const;
    // The controller that parameter 0..328 sends, or -1.
    int controllerOf(int parameter) const;

    // The next controller above 1 will move `parameter`. The map stores ids as bytes, so ids that
    // do not fit (or mean "none") disarm instead.
    void armLearn(int parameter);
    // Gives the waiting parameter, if any, to this controller.
    void learn(int controller);
    bool isLearning() const { return learningParameter() >= 0; }
    // The parameter that waits for a controller, or -1.
    int learningParameter() const { return learning_.load(std::memory_order_relaxed); }
    // Takes every controller but 127 away from `parameter`.
    void forget(int parameter);

    // Writes the map if "learn" or "forget" was used.
    void storeIfChanged();

private:
    using Byte = std::atomic<std::uint8_t>;

    void setDefaults();
    void load();
    void rebuildControllers();

    SettingsStore& store_;
    std::array<Byte, kControllerCount> parameterByController_;
    std::array<Byte, kStoredParameterCount> controllerByParameter_; // derived
    std::atomic<int> learning_{-1};
    std::atomic<bool> changed_{false};
};

} // namespace tolm
