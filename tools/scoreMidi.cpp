// Scores as Standard MIDI Files of format 1: a track of tempo and time, then one per part.

#include "tools/score.h"

#include <algorithm>

namespace tolm {
namespace {

std::string variableLength(std::int64_t value)
{
    std::string text(1, static_cast<char>(value & 0x7F));
    while ((value >>= 7) != 0)
        text.insert(text.begin(), static_cast<char>((value & 0x7F) | 0x80));
    return text;
}

// Releases stand before starts of the same tick, so that repeated notes sound again.
std::string trackChunk(const std::string& name, std::vector<ScoreEvent> events)
{
    const auto isStart = [](const ScoreEvent& event) { return (event.message[0] & 0xF0) == 0x90; };
    std::stable_sort(events.begin(), events.end(), [&](const ScoreEvent& a, const ScoreEvent& b) {
        return a.tick != b.tick ? a.tick < b.tick : isStart(a) < isStart(b);
    });
    std::string body =
        midiBytes({0, 0xFF, 3}) + variableLength(static_cast<int>(name.size())) + name;
    std::int64_t tick = 0;
    for (const ScoreEvent& event : events) {
        body += variableLength(event.tick - tick) + event.message;
        tick = event.tick;
    }
    body += midiBytes({0, 0xFF, 0x2F, 0});
    return "MTrk" + bigEndian(body.size(), 4) + body;
}

} // namespace

std::string midiFile(const Score& score)
{
    std::string file = "MThd" + bigEndian(6, 4) + bigEndian(1, 2) +
                       bigEndian(score.tracks.size() + 1, 2) + bigEndian(kTicksPerBeat, 2);
    file += trackChunk("Conductor", score.conductor);
    for (const ScoreTrack& track : score.tracks)
        file += trackChunk(track.name, track.events);
    return file;
}

} // namespace tolm
