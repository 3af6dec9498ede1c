#pragma once
// What the user asks for.

#include "host/AudioFile.h"

#include <optional>
#include <string>
#include <vector>

namespace tolm {

struct Options {
    std::string song; // MIDI file
    std::optional<std::string> notes;
    std::string output;
    std::string plugin;
    std::optional<std::string> program; // name or index
    std::string bank;
    std::vector<std::string> settings; // "NAME=VALUE"
    std::vector<std::string> parts;    // "TRACK=PROGRAM" or "TRACK=PROGRAM@DB"
    std::string allProgramsDirectory;
    AudioFormat format;
    int blockFrames = 512;
    double tailSeconds = 2.0;
    double gainDb = 0.0;
    std::optional<double> bpm;
    bool listPrograms = false;
    bool listParameters = false;

    const char* extension() const { return format.container == Container::wav ? ".wav" : ".flac"; }
};

// Nothing when only help was asked for. Throws Failure.
std::optional<Options> parseCommandLine(int argc, char** argv);

} // namespace tolm
