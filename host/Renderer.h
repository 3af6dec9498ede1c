#pragma once
// Plays events through one plug-in instance per part and mixes the parts into a sound file.

#include "host/AudioFile.h"
#include "host/Plugin.h"
#include "host/Progress.h"
#include "host/Song.h"

#include <memory>
#include <vector>

namespace tolm {

struct Part {
    std::unique_ptr<Plugin> plugin;
    std::vector<FrameEvent> events;
    float gain = 1.0f;
};

struct RenderPlan {
    double sampleRateHz = 44100.0;
    int blockFrames = 512;
    std::int64_t totalFrames = 0;
    float gain = 1.0f;
};

struct Levels {
    std::int64_t frames = 0;
    double peak = 0.0;
    double squares = 0.0;   // summed over both channels
    std::int64_t overs = 0; // samples beyond full scale

    double peakDb() const;
    double rmsDb() const;
};

// Throws Failure when a plug-in yields values that are no numbers, on a full disk, or when the
// user interrupts.
Levels render(std::vector<Part>& parts, const TempoMap& tempo, const RenderPlan& plan,
              AudioFile& file, Progress& progress);

} // namespace tolm
