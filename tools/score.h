#pragma once
// The readable scores of data/demo. The notation is described beside them.

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace tolm {

inline constexpr int kTicksPerBeat = 480;

struct ScoreEvent {
    std::int64_t tick;
    std::string message; // MIDI bytes
};

struct ScoreTrack {
    std::string name;
    std::string sound; // program, and "@DB" if not as loud as it is; empty when left open
    std::vector<ScoreEvent> events;
    double beat = 0.0;
    int velocity = 90;
    double gate = 1.0;
};

struct Score {
    std::vector<ScoreEvent> conductor;
    std::vector<ScoreTrack> tracks;
    double beatsPerBar = 4.0;
};

std::string midiBytes(std::initializer_list<int> values);
std::string bigEndian(std::size_t value, int count);

// Throws std::runtime_error with file and line.
Score readScore(const std::string& path);
// The bytes of a MIDI file, its tracks named as in the score.
std::string midiFile(const Score& score);

} // namespace tolm
