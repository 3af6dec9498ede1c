// Process running and file reading for the host's tests.

#include "tests/host/HostRig.h"

#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string_view>

namespace tolm {
namespace {

std::string variableLength(std::uint32_t value)
{
    std::string bytes(1, static_cast<char>(value & 0x7F));
    while ((value >>= 7) != 0)
        bytes.insert(bytes.begin(), static_cast<char>((value & 0x7F) | 0x80));
    return bytes;
}

bool isCapture(const std::string& name)
{
    return name == "stdout.txt" || name == "stderr.txt" || name == "plugin.log";
}

} // namespace

HostRig::HostRig()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "tolm-host-XXXXXX").string();
    directory_ = mkdtemp(pattern.data());
}

HostRig::~HostRig()
{
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
}

void HostRig::write(const std::string& name, const std::string& bytes) const
{
    std::ofstream(path(name), std::ios::binary) << bytes;
}

std::string HostRig::read(const std::string& name) const
{
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> HostRig::files() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory_))
        if (!isCapture(entry.path().filename().string()))
            names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

Outcome HostRig::run(const std::string& arguments, const std::string& kind) const
{
    return runCommand("TOLM_TEST_LOG=plugin.log TOLM_TEST_INSTRUMENT='" + kind +
                      "' " TOLM_RENDER " --plugin " TOLM_TEST_PLUGIN " " + arguments);
}

Outcome HostRig::runPlain(const std::string& arguments) const
{
    return runCommand(TOLM_RENDER " " + arguments);
}

Outcome HostRig::runBank(const std::string& arguments) const
{
    return runCommand(TOLM_BANK " " + arguments);
}

Outcome HostRig::runCommand(const std::string& command) const
{
    const int result = std::system(("cd " + directory_.string() + " && { " + command +
                                    "; } >stdout.txt 2>stderr.txt </dev/null")
                                       .c_str());
    return {WIFEXITED(result) ? WEXITSTATUS(result) : -1, read("stdout.txt"), read("stderr.txt")};
}

Sound HostRig::render(const std::string& arguments, const std::string& kind) const
{
    const Outcome outcome = run("-o out.wav " + arguments, kind);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return readSound("out.wav");
}

Sound HostRig::readSound(const std::string& name) const
{
    SF_INFO info{};
    Sound sound;
    SNDFILE* file = sf_open(path(name).c_str(), SFM_READ, &info);
    EXPECT_NE(file, nullptr) << name << ": " << sf_strerror(nullptr);
    if (file == nullptr)
        return sound;
    EXPECT_EQ(info.channels, 2);
    std::vector<float> samples(static_cast<std::size_t>(2 * info.frames));
    EXPECT_EQ(sf_readf_float(file, samples.data(), info.frames), info.frames);
    sf_close(file);
    sound.sampleRateHz = info.samplerate;
    sound.format = info.format;
    for (std::size_t i = 0; i < samples.size(); i += 2) {
        sound.left.push_back(samples[i]);
        sound.right.push_back(samples[i + 1]);
    }
    return sound;
}

std::vector<Step> stepsOf(const std::vector<float>& signal)
{
    constexpr float kSmallest = 1e-4f;
    std::vector<Step> steps;
    for (std::size_t i = 0; i < signal.size(); ++i)
        if (steps.empty() || std::abs(signal[i] - steps.back().value) > kSmallest)
            steps.push_back({i, signal[i]});
    return steps;
}

void expectSteps(const std::vector<float>& signal, const std::vector<Step>& expected)
{
    const std::vector<Step> found = stepsOf(signal);
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(found[i].frame, expected[i].frame) << "step " << i;
        EXPECT_NEAR(found[i].value, expected[i].value, 1e-5) << "step " << i;
    }
}

std::string bigEndian(std::uint32_t value, int count)
{
    std::string bytes;
    for (int i = count - 1; i >= 0; --i)
        bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
    return bytes;
}

MidiTrack& MidiTrack::add(std::uint32_t delta, std::vector<std::uint8_t> message)
{
    bytes_ += variableLength(delta);
    bytes_.append(message.begin(), message.end());
    return *this;
}

MidiTrack& MidiTrack::tempo(std::uint32_t delta, std::uint32_t microsecondsPerQuarter)
{
    bytes_ += variableLength(delta) + "\xFF\x51\x03" + bigEndian(microsecondsPerQuarter, 3);
    return *this;
}

MidiTrack& MidiTrack::name(const std::string& text)
{
    bytes_ +=
        std::string("\0\xFF\x03", 3) + variableLength(static_cast<std::uint32_t>(text.size()));
    bytes_ += text;
    return *this;
}

std::string MidiTrack::chunk(std::uint32_t endDelta) const
{
    const std::string body = bytes_ + variableLength(endDelta) + std::string("\xFF\x2F\0", 3);
    return "MTrk" + bigEndian(static_cast<std::uint32_t>(body.size()), 4) + body;
}

std::string midiFile(int format, int division, const std::vector<std::string>& chunks)
{
    std::string file = "MThd" + bigEndian(6, 4) + bigEndian(static_cast<std::uint32_t>(format), 2);
    file += bigEndian(static_cast<std::uint32_t>(chunks.size()), 2);
    file += bigEndian(static_cast<std::uint32_t>(division), 2);
    for (const std::string& chunk : chunks)
        file += chunk;
    return file;
}

} // namespace tolm
