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

using Family = void (*)(Spectrum& out, const Numbers& p, const Place& place);

void slopeFamily(Spectrum& out, const Numbers& p, const Place&); // exponent
void oddFamily(Spectrum& out, const Numbers& p, const Place&); // exponent, flat up to, alternating
void pulseFamily(Spectrum& out, const Numbers& p, const Place&);     // duty cycle
void partialsFamily(Spectrum& out, const Numbers& p, const Place&);  // pairs of bin and level
void formantFamily(Spectrum& out, const Numbers& p, const Place&);   // pairs of Hz and bandwidth
void quantisedFamily(Spectrum& out, const Numbers& p, const Place&); // levels of a stepped sine
void heldFamily(Spectrum& out, const Numbers& p, const Place&);      // time steps of a held sine
void foldedFamily(Spectrum& out, const Numbers& p, const Place&);    // drive into a sine fold
void fmFamily(Spectrum& out, const Numbers& p, const Place&);        // modulator ratio, index
void reedFamily(Spectrum& out, const Numbers& p, const Place&);      // exponent, first full even
void notchedFamily(Spectrum& out, const Numbers& p, const Place&);   // exponent, up to four notches
void humpFamily(Spectrum& out, const Numbers& p, const Place&);      // centre bin, width in octaves
void windowedFamily(Spectrum& out, const Numbers& p, const Place&);  // turns under a falling window
void pluckedFamily(Spectrum& out, const Numbers& p, const Place&);   // plucked at, heard at
void bellFamily(Spectrum& out, const Numbers& p, const Place&);      // pairs of ratio and level
void breathFamily(Spectrum& out, const Numbers& p, const Place&);    // exponent, spread
void airFamily(Spectrum& out, const Numbers& p, const Place&);       // as breath; formants from [2]
void growlFamily(Spectrum& out, const Numbers& p,
                 const Place&); // exponent, near and far side level
void denseFamily(Spectrum& out, const Numbers& p, const Place&); // exponent, first bin
void windFamily(Spectrum& out, const Numbers& p, const Place&);  // width in octaves

} // namespace tolm
