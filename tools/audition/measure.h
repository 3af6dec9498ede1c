#pragma once
// Figures of a rendering: how loud, how fast, how bright, how wide.

#include "tools/audition/play.h"

namespace tolm {

// Loudness after ITU-R BS.1770; the whole phrase up to the last key-up without gating, the two
// others as the loudest window of 400 ms and 3 s anywhere. Silence is -infinity.
struct Loudness {
    double wholePhrase = 0.0;
    double momentary = 0.0;
    double shortTerm = 0.0;

    double of(LoudnessKind kind) const;
};
Loudness loudnessOf(const Rendering& rendering);

struct Figures {
    bool finite = true;
    double peakDb = 0.0;      // sample peak, dBFS
    double offsetDb = 0.0;    // the larger channel's standing mean up to the key-up, dBFS
    double attackMs = 0.0;    // 10 to 90 % of the level that the first 0.5 s reach
    double fadeSeconds = 0.0; // from the last key-up until the sound stays 60 dB below its peak
    double centroidHz = 0.0;  // of the power between 20 Hz and 16 kHz
    double widthDb = 0.0;     // side against mid
    double monoLossDb = 0.0;  // what the sum to mono loses against the two channels
};
Figures figuresOf(const Rendering& rendering);

double decibels(double amplitude);

} // namespace tolm
