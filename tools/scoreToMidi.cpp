// tolm-score: turns the readable scores of data/demo into Standard MIDI Files, and names the sounds
// that they ask for.

#include "tools/score.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace {

using namespace tolm;

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

std::string midiFile(const Score& score)
{
    std::string file = "MThd" + bigEndian(6, 4) + bigEndian(1, 2) +
                       bigEndian(score.tracks.size() + 1, 2) + bigEndian(kTicksPerBeat, 2);
    file += trackChunk("Conductor", score.conductor);
    for (const ScoreTrack& track : score.tracks)
        file += trackChunk(track.name, track.events);
    return file;
}

void writeMidi(const Score& score, const std::string& path)
{
    std::ofstream file(path, std::ios::binary);
    file << midiFile(score);
    if (!file.flush())
        throw std::runtime_error("cannot write \"" + path + '"');
}

// One line per track with a sound, as tolm-render's --part takes it.
void printParts(const Score& score)
{
    for (const ScoreTrack& track : score.tracks)
        if (!track.sound.empty())
            std::printf("%s=%s\n", track.name.c_str(), track.sound.c_str());
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const std::string_view action = argc > 2 ? argv[2] : "";
        if (argc == 4 && action == "-o")
            writeMidi(readScore(argv[1]), argv[3]);
        else if (argc == 3 && action == "--parts")
            printParts(readScore(argv[1]));
        else
            throw std::runtime_error("usage: tolm-score SONG.score -o SONG.mid | --parts");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tolm-score: %s\n", error.what());
        return 1;
    }
    return 0;
}
