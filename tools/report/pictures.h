#pragma once
// What a rendering looks like.

#include "tools/audition/play.h"

#include <filesystem>
#include <string>

namespace tolm {

inline constexpr int kPictureWidth = 300;
inline constexpr int kPictureHeight = 72;

// An SVG element of the extremes of both channels over time, scaled to their peak; the key-up is
// marked.
std::string waveformSvg(const Rendering& rendering);

// A PNG of the power over time and frequency, 30 Hz to 16 kHz on a logarithmic scale, 90 dB from
// dark to bright. Throws Failure when it cannot be written.
void writeSpectrogram(const Rendering& rendering, const std::filesystem::path& path);

} // namespace tolm
