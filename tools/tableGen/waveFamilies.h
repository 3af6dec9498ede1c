#pragma once
// The kinds of recipe that the waves are made of. Each adds one octave table's spectrum; what its
// numbers mean stands beside its declaration. Levels are relative: loudness is matched afterwards.

#include "tools/tableGen/waveSpectrum.h"

namespace tolm {

using Numbers = std::array<double, 20>;

// Where a table is played: cycles of the note per table, and the centre of the notes it serves.
struct Place {
    int cycles;
    double noteHz;
};

using Family = void(Spectrum& out, const Numbers& p, const Place& place);

Family slopeFamily;     // exponent
Family oddFamily;       // exponent, flat up to, alternating
Family pulseFamily;     // duty cycle
Family partialsFamily;  // pairs of bin and level
Family formantFamily;   // pairs of Hz and bandwidth
Family quantisedFamily; // levels of a stepped sine
Family heldFamily;      // time steps of a held sine
Family foldedFamily;    // drive into a sine fold
Family fmFamily;        // modulator ratio, index
Family reedFamily;      // exponent, first full even
Family notchedFamily;   // exponent, up to four notches
Family humpFamily;      // centre bin, width in octaves
Family windowedFamily;  // turns under a falling window
Family pluckedFamily;   // plucked at, heard at
Family bellFamily;      // pairs of ratio and level
Family breathFamily;    // exponent, spread
Family airFamily;       // as breath; formants from [2]
Family growlFamily;     // exponent, levels of near and far side bins
Family denseFamily;     // exponent, first bin
Family windFamily;      // width in octaves

} // namespace tolm
