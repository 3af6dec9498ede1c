#pragma once
// A delay line with a variable clock, after the bucket-brigade chips of analogue choruses: one
// clock cycle carries a sample from input to output, and an LFO sweeps the clock. Each sample is
// stored with its place within the cycle, and read back when the next cycle comes to that place.

#include <array>
#include <vector>

namespace tolm {

class CDelayLine {
public:
    // `length` is the longest delay in frames.
    CDelayLine(int length, double lfoPhase);

    // 0.01..1 of the longest delay.
    void setTime(float t);
    void setLfoIncrement(double turnsPerFrame);
    // The LFO shortens the delay to 1 / (1 + depth) of its time.
    void setDepth(double depth) { depth_ = depth; }
    void setWet(float wet);
    void setFeedback(float feedback);
    // Of the output, 0.05..1; 1 is none.
    void setSmoothing(float coefficient);

    int length() const { return length_; }
    // In place. A line without wet signal empties itself and leaves the audio alone.
    void process(int frames, float* channel);

private:
    struct Cell {
        double time; // in cycles since the start of the one it was written in
        float value;
    };
    // The cells of one cycle. Before them are the last of the cycle before, so that reading can
    // interpolate across the seam.
    struct Cycle {
        std::vector<Cell> cells;
        int count = 0;
        int readIndex = 0;
    };

    void reset();
    double clockMultiplier();
    float readAt(double position);
    void endCycle(float value);
    void glide();

    int length_;
    std::array<Cycle, 2> cycles_;
    int writing_ = 0; // index of the cycle being written; the other one is read

    float targetFeedback_ = 0.8f;
    float feedback_ = 0.0f;
    float targetWet_ = 0.0f;
    float wet_ = 0.0f;
    float inputGain_ = 0.0f;
    float smoothing_ = 0.05f;
    float output_ = 0.0f;
    double targetRate_; // cycles per frame
    double rate_;
    double lfoIncrement_ = 0.6 / 44100.0;
    double initialPhase_;
    double depth_ = 0.0;
    double phase_;
    double position_ = 0.0; // within the cycle
};

} // namespace tolm
