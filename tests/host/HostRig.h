#pragma once
// Runs tolm-render with the test instrument in a directory of its own and reads what it made.

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace tolm {

struct Outcome {
    int status = -1;
    std::string out, err;
};

struct Sound {
    int sampleRateHz = 0;
    int format = 0; // libsndfile's word
    std::vector<float> left, right;
};

class HostRig {
public:
    HostRig();
    ~HostRig();

    HostRig(const HostRig&) = delete;
    HostRig& operator=(const HostRig&) = delete;

    std::filesystem::path path(const std::string& name) const { return directory_ / name; }
    void write(const std::string& name, const std::string& bytes) const;
    std::string read(const std::string& name) const;
    // Files in the directory, apart from the captured output.
    std::vector<std::string> files() const;
    // `arguments` as in a shell, run inside the directory; `kind` as the test instrument takes it.
    Outcome run(const std::string& arguments, const std::string& kind = "") const;
    Outcome runPlain(const std::string& arguments) const;
    Outcome runBank(const std::string& arguments) const; // tolm-bank
    // Runs, expects success, and reads out.wav.
    Sound render(const std::string& arguments, const std::string& kind = "") const;
    Sound readSound(const std::string& name) const;

private:
    Outcome runCommand(const std::string& command) const;

    std::filesystem::path directory_;
};

// A constant stretch of a signal.
struct Step {
    std::size_t frame;
    float value;
};
// The places where the signal changes, first frame included.
std::vector<Step> stepsOf(const std::vector<float>& signal);
void expectSteps(const std::vector<float>& signal, const std::vector<Step>& expected);

// As files of music and presets have their numbers.
std::string bigEndian(std::uint32_t value, int bytes);

// Standard MIDI Files, byte by byte.
class MidiTrack {
public:
    // Ticks since the event before, then the message.
    MidiTrack& add(std::uint32_t delta, std::vector<std::uint8_t> message);
    MidiTrack& tempo(std::uint32_t delta, std::uint32_t microsecondsPerQuarter);
    MidiTrack& name(const std::string& text);
    std::string chunk(std::uint32_t endDelta = 0) const;

private:
    std::string bytes_;
};
std::string midiFile(int format, int division, const std::vector<std::string>& chunks);

} // namespace tolm
