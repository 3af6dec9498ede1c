#pragma once
// Tempo and time signature over a song: musical time in quarter notes to seconds and back.

#include <vector>

namespace tolm {

struct TimeSignature {
    double quarter = 0.0; // where it begins, always on a bar line
    int numerator = 4;
    int denominator = 4;

    double quartersPerBar() const { return 4.0 * numerator / denominator; }
};

class TempoMap {
public:
    static constexpr double kDefaultBpm = 120.0;

    explicit TempoMap(double bpm = kDefaultBpm);

    // Both are added in ascending order; one at the same place replaces the one before.
    void addTempo(double quarter, double bpm);
    void addSignature(const TimeSignature& signature);
    // One tempo from start to end; signatures stay.
    void flatten(double bpm);

    double secondsAt(double quarter) const;
    double quarterAt(double seconds) const;
    double bpmAt(double seconds) const;
    const TimeSignature& signatureAt(double quarter) const;
    // Start of the bar that holds `quarter`.
    double barStart(double quarter) const;

private:
    struct Segment {
        double quarter;
        double seconds;
        double bpm;

        double secondsAt(double q) const { return seconds + (q - quarter) * 60.0 / bpm; }
        double quarterAt(double s) const { return quarter + (s - seconds) * bpm / 60.0; }
    };

    const Segment& segmentAt(double seconds) const;

    std::vector<Segment> segments_;
    std::vector<TimeSignature> signatures_;
};

} // namespace tolm
