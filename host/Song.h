#pragma once
// What is played: tracks of MIDI messages in musical time and the tempo map that turns them into
// frames. Comes from a MIDI file or from a note list.

#include "host/TempoMap.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tolm {

struct TimedMessage {
    double quarter = 0.0;
    std::array<std::uint8_t, 3> bytes{}; // a channel message; unused data bytes are 0
};

struct Track {
    std::string name;
    std::vector<TimedMessage> messages; // ascending in time
};

struct Song {
    TempoMap tempo;
    std::vector<Track> tracks;
    double lengthQuarters = 0.0;
};

struct FrameEvent {
    std::int64_t frame = 0;
    std::array<std::uint8_t, 3> bytes{};
};

// The frame nearest to a time; halves go up, also where binary fractions fall just short of one.
std::int64_t frameAt(double seconds, double sampleRateHz);

// The messages of some tracks in playing order. Notes and pedals still down at the song's end are
// released there. Without `keepProgramChanges` program changes and bank selects are left out.
std::vector<FrameEvent> eventsOf(const Song& song, const std::vector<std::size_t>& tracks,
                                 double sampleRateHz, bool keepProgramChanges);

// Song from a Standard MIDI File of format 0 or 1; throws Failure when it is none.
Song readMidiFile(const std::filesystem::path& path);

// Song from a note list such as "C4 0.5, E4+G4@100 1, R 0.5": keys (middle C is C4), an optional
// velocity and a length in beats, one after the other; throws Failure.
Song parseNoteList(std::string_view text);

} // namespace tolm
