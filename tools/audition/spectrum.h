#pragma once
// Spectra of a rendering and what is read off them.

#include "tools/audition/play.h"

#include <complex>
#include <span>
#include <vector>

namespace tolm {

// Power spectrum, `size` a power of two; bins 0..size/2, Hann window, zeros behind a short signal.
std::vector<double> powerSpectrum(std::span<const float> signal, std::size_t size);

// Mean power spectra of the sum and the difference of the channels.
struct Spectra {
    std::size_t size = 0; // of the transform
    std::vector<double> mid, side;

    double hertz(double bin) const { return bin * kAuditionRateHz / static_cast<double>(size); }
};
// Frames of `size`, side by side, from `begin` to `end`; a signal that is shorter is filled up.
Spectra spectraOf(const Rendering& rendering, std::size_t begin, std::size_t end,
                  std::size_t size = 4096);

// Centre of the power between 20 Hz and 16 kHz; 0 for silence.
double centroidHz(const Spectra& spectra);
// Geometric over arithmetic mean of the power there: towards 1 for noise.
double flatness(const Spectra& spectra);
// Share of the power below 200 Hz.
double lowShare(const Spectra& spectra);
// Side against mid in dB up to that frequency.
double widthDb(const Spectra& spectra, double upToHz);
// Share of the power within 3 % of multiples of the key's frequency or of half of it (sounds with a
// sub-octave or a fifth are as harmonic); at most 12 % of that frequency to either side and never
// narrower than the window's main lobe.
double harmonicity(const Spectra& spectra, double fundamentalHz);
// How many tones of the scale stand out within 20 dB of the strongest, from an octave below the key
// to a fifth above its octave; octaves count once, and none counts when the key's own is missing.
int fundamentalCount(const Spectra& spectra, double keyHz);

} // namespace tolm
