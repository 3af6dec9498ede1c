// tolm-score: turns the readable scores of data/demo into Standard MIDI Files. The notation is
// described beside them.

#include "host/keyName.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace tolm;

constexpr int kTicksPerBeat = 480;
constexpr double kMaxBeats = 100000.0;

struct Event {
    std::int64_t tick;
    std::string message;
};

struct ScoreTrack {
    std::string name;
    std::vector<Event> events;
    double beat = 0.0;
    int velocity = 90;
    double gate = 1.0;
};

struct Score {
    std::vector<Event> conductor;
    std::vector<ScoreTrack> tracks;
    double beatsPerBar = 4.0;
};

std::string bytes(std::initializer_list<int> values)
{
    std::string text;
    for (const int value : values)
        text.push_back(static_cast<char>(value));
    return text;
}

std::string bigEndian(std::size_t value, int count)
{
    std::string text;
    for (int i = count - 1; i >= 0; --i)
        text.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
    return text;
}

std::int64_t tickOf(double beat)
{
    return std::llround(beat * kTicksPerBeat);
}

double number(std::string_view text, double low, double high)
{
    const auto value = decimalNumber(text);
    if (!value || *value < low || *value > high)
        throw std::runtime_error("no number in range: \"" + std::string(text) + '"');
    return *value;
}

std::vector<std::string_view> words(std::string_view line)
{
    std::vector<std::string_view> found;
    for (const std::string_view word : split(line, ' '))
        if (!trimmed(word).empty())
            found.push_back(trimmed(word));
    return found;
}

void addTempo(Score& score, const std::vector<std::string_view>& line)
{
    const bool later = line.size() == 4 && line[2] == "at";
    if (line.size() != 2 && !later)
        throw std::runtime_error("a tempo is \"tempo BPM\" or \"tempo BPM at BEAT\"");
    const double microseconds = 60e6 / number(line[1], 4.0, 1000.0);
    const double beat = later ? number(line[3], 0.0, kMaxBeats) : 0.0;
    score.conductor.push_back(
        {tickOf(beat), bytes({0xFF, 0x51, 3}) +
                           bigEndian(static_cast<std::size_t>(std::lround(microseconds)), 3)});
}

void setTime(Score& score, std::string_view text)
{
    const auto parts = split(text, '/');
    const int numerator = static_cast<int>(number(parts[0], 1, 64));
    const int power = static_cast<int>(std::log2(number(parts.size() == 2 ? parts[1] : "", 1, 64)));
    score.beatsPerBar = 4.0 * numerator / (1 << power);
    score.conductor.push_back({0, bytes({0xFF, 0x58, 4, numerator, power, 24, 8})});
}

void addNotes(ScoreTrack& track, std::size_t channel, std::string_view word)
{
    const std::size_t colon = word.find(':');
    if (colon == word.npos)
        throw std::runtime_error("no length: \"" + std::string(word) + '"');
    const double beats = number(word.substr(colon + 1), 1.0 / kTicksPerBeat, kMaxBeats);
    const std::int64_t start = tickOf(track.beat);
    const std::int64_t end = std::max(start + 1, tickOf(track.beat + beats * track.gate));
    track.beat += beats;
    if (word.substr(0, colon) == "R")
        return;
    const int low = static_cast<int>(channel % 16);
    for (const std::string_view name : split(word.substr(0, colon), '+')) {
        const std::optional<int> key = keyFromName(name);
        if (!key)
            throw std::runtime_error("no such note: \"" + std::string(name) + '"');
        track.events.push_back({start, bytes({0x90 | low, *key, track.velocity})});
        track.events.push_back({end, bytes({0x80 | low, *key, 0})});
    }
}

void checkBarLine(const Score& score, const ScoreTrack& track)
{
    const double bars = track.beat / score.beatsPerBar;
    if (std::abs(bars - std::round(bars)) > 1e-6)
        throw std::runtime_error("a bar line at beat " + std::to_string(track.beat));
}

void readLine(Score& score, std::string_view line)
{
    line = trimmed(line);
    if (const std::size_t comment = line.find("# "); comment != line.npos)
        line = line.substr(0, comment);
    const auto row = words(line);
    if (row.empty())
        return;
    if (row[0] == "tempo")
        return addTempo(score, row);
    if (row[0] == "time" && row.size() == 2)
        return setTime(score, row[1]);
    if (row[0] == "track") {
        score.tracks.emplace_back().name = trimmed(line.substr(5));
        return;
    }
    if (score.tracks.empty())
        throw std::runtime_error("music before the first track");
    ScoreTrack& track = score.tracks.back();
    for (const std::string_view word : row) {
        if (word[0] == '|')
            checkBarLine(score, track);
        else if (word[0] == '@')
            track.velocity = static_cast<int>(number(word.substr(1), 1, 127));
        else if (word[0] == '~')
            track.gate = number(word.substr(1), 0.01, 1.0);
        else
            addNotes(track, score.tracks.size() - 1, word);
    }
}

Score readScore(const std::string& path)
{
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error("cannot open \"" + path + '"');
    Score score;
    std::string line;
    for (int row = 1; std::getline(file, line); ++row) {
        try {
            readLine(score, line);
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(path + ':' + std::to_string(row) + ": " + error.what());
        }
    }
    return score;
}

std::string variableLength(std::int64_t value)
{
    std::string text(1, static_cast<char>(value & 0x7F));
    while ((value >>= 7) != 0)
        text.insert(text.begin(), static_cast<char>((value & 0x7F) | 0x80));
    return text;
}

// Releases stand before starts of the same tick, so that repeated notes sound again.
std::string trackChunk(const std::string& name, std::vector<Event> events)
{
    const auto isStart = [](const Event& event) { return (event.message[0] & 0xF0) == 0x90; };
    std::stable_sort(events.begin(), events.end(), [&](const Event& a, const Event& b) {
        return a.tick != b.tick ? a.tick < b.tick : isStart(a) < isStart(b);
    });
    std::string body = bytes({0, 0xFF, 3}) + variableLength(static_cast<int>(name.size())) + name;
    std::int64_t tick = 0;
    for (const Event& event : events) {
        body += variableLength(event.tick - tick) + event.message;
        tick = event.tick;
    }
    body += bytes({0, 0xFF, 0x2F, 0});
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

} // namespace

int main(int argc, char** argv)
{
    try {
        if (argc != 4 || std::string_view(argv[2]) != "-o")
            throw std::runtime_error("usage: tolm-score SONG.score -o SONG.mid");
        const std::string midi = midiFile(readScore(argv[1]));
        std::ofstream file(argv[3], std::ios::binary);
        file << midi;
        if (!file.flush())
            throw std::runtime_error("cannot write \"" + std::string(argv[3]) + '"');
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tolm-score: %s\n", error.what());
        return 1;
    }
    return 0;
}
