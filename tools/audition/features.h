#pragma once
// How alike programs sound: mel cepstra over time and keys, which follow heard differences of
// timbre well (Terasawa, Slaney and Berger 2006), and a few descriptors.

#include "tools/audition/Phrase.h"
#include "tools/audition/descriptors.h"

#include <span>
#include <utility>
#include <vector>

namespace tolm {

using Features = std::vector<double>;

// Mean and deviation of 13 mel cepstral coefficients in three segments of three notes, then attack,
// decay, release, width and modulation.
Features featuresOf(const ProgramRecord& program, const Descriptors& descriptors,
                    int velocity = kAuditionVelocity);

// What tells categories apart: brightness, attack, decay, release, harmonicity, low share, width,
// modulation, flatness, onsets and the level at the end, of each category's own note and phrase.
Features characterOf(const Descriptors& descriptors);

struct Neighbour {
    std::size_t index = 0;
    double distance = 0.0; // in units, see Likeness
};

// Distances in a bank, every feature divided by its deviation over the bank.
class Likeness {
public:
    explicit Likeness(std::vector<Features> bank);

    // The unit of distance: how far a program is from itself at another velocity, as the median of
    // pairs of features.
    void setUnit(std::span<const std::pair<Features, Features>> touches);

    double distance(std::size_t a, std::size_t b) const;
    // The closest other program; itself at no distance in a bank of one.
    Neighbour nearest(std::size_t index) const;

private:
    Features scaled(Features features) const;

    Features mean_, deviation_;
    std::vector<Features> bank_; // scaled
    double unit_ = 1.0;
};

// The velocities whose difference is the unit.
inline constexpr int kSofterTouch = 90;
inline constexpr int kHarderTouch = 110;

} // namespace tolm
