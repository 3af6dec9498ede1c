#pragma once
// The text of the report's page.

#include "tools/audition/bankStudy.h"
#include "tools/audition/exceptions.h"

#include <string>
#include <vector>

namespace tolm {

// File names beside the page, and an SVG element.
struct Illustration {
    std::string spectrogram;
    std::string clip;
    std::string waveform;
};

std::string reportPage(const std::vector<Sound>& sounds, const BankStudy& study,
                       const std::vector<Illustration>& illustrations,
                       const std::vector<RangeException>& exceptions);

} // namespace tolm
