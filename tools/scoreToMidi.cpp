// tolm-score: turns the readable scores of data/demo into Standard MIDI Files, and names the sounds
// that they ask for.

#include "tools/score.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace {

using namespace tolm;

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
