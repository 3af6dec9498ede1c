#include "tools/score.h"

#include "host/keyName.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <span>
#include <stdexcept>

namespace tolm {

std::string midiBytes(std::initializer_list<int> values)
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

namespace {

constexpr double kMaxBeats = 100000.0;
constexpr double kRampStepBeats = 1.0 / 24.0;
constexpr int kMostRepeats = 999;

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
        {tickOf(beat), midiBytes({0xFF, 0x51, 3}) +
                           bigEndian(static_cast<std::size_t>(std::lround(microseconds)), 3)});
}

void setTime(Score& score, std::string_view text)
{
    const auto parts = split(text, '/');
    const int numerator = static_cast<int>(number(parts[0], 1, 64));
    const int power = static_cast<int>(std::log2(number(parts.size() == 2 ? parts[1] : "", 1, 64)));
    score.beatsPerBar = 4.0 * numerator / (1 << power);
    score.conductor.push_back({0, midiBytes({0xFF, 0x58, 4, numerator, power, 24, 8})});
}

void addNotes(ScoreTrack& track, int channel, std::string_view word)
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
    for (const std::string_view name : split(word.substr(0, colon), '+')) {
        const std::optional<int> key = keyFromName(name);
        if (!key)
            throw std::runtime_error("no such note: \"" + std::string(name) + '"');
        track.events.push_back({start, midiBytes({0x90 | channel, *key, track.velocity})});
        track.events.push_back({end, midiBytes({0x80 | channel, *key, 0})});
    }
}

void checkBarLine(const Score& score, const ScoreTrack& track)
{
    const double bars = track.beat / score.beatsPerBar;
    if (std::abs(bars - std::round(bars)) > 1e-6)
        throw std::runtime_error("a bar line at beat " + std::to_string(track.beat));
}

struct Control {
    std::string_view name;
    int status;
    int controller; // -1 where the status says it all
    double low;
};
constexpr Control kControls[] = {
    {"wheel", 0xB0, 1, 0.0},       {"breath", 0xB0, 2, 0.0}, {"foot", 0xB0, 4, 0.0},
    {"expression", 0xB0, 11, 0.0}, {"pedal", 0xB0, 64, 0.0}, {"pressure", 0xD0, -1, 0.0},
    {"bend", 0xE0, -1, -1.0},
};

std::string controlMessage(const Control& control, int channel, double value)
{
    if (control.low < 0.0) { // 14 bits around the middle
        const int bend = std::min(static_cast<int>(std::lround((value + 1.0) * 8192.0)), 16383);
        return midiBytes({control.status | channel, bend & 0x7F, bend >> 7});
    }
    const int level = static_cast<int>(std::lround(value * 127.0));
    return control.controller < 0
               ? midiBytes({control.status | channel, level})
               : midiBytes({control.status | channel, control.controller, level});
}

// "VALUE", or "FROM>TO:BEATS" for a ramp that begins here while the music goes on.
void addControl(ScoreTrack& track, int channel, const Control& control, std::string_view text)
{
    const std::size_t arrow = text.find('>');
    const double from = number(text.substr(0, arrow), control.low, 1.0);
    std::string last = controlMessage(control, channel, from);
    track.events.push_back({tickOf(track.beat), last});
    if (arrow == text.npos)
        return;
    const std::string_view goal = text.substr(arrow + 1);
    const std::size_t colon = goal.find(':');
    if (colon == goal.npos)
        throw std::runtime_error("a ramp is \"FROM>TO:BEATS\"");
    const double to = number(goal.substr(0, colon), control.low, 1.0);
    const double beats = number(goal.substr(colon + 1), kRampStepBeats, kMaxBeats);
    const double steps = std::ceil(beats / kRampStepBeats);
    for (double step = 1.0; step <= steps; step += 1.0) {
        const double share = step / steps;
        const std::string message = controlMessage(control, channel, from + share * (to - from));
        if (message != last)
            track.events.push_back({tickOf(track.beat + share * beats), message});
        last = message;
    }
}

bool addControlWord(ScoreTrack& track, int channel, std::string_view word)
{
    const std::size_t equals = word.find('=');
    if (equals == word.npos)
        return false;
    for (const Control& control : kControls)
        if (word.substr(0, equals) == control.name) {
            addControl(track, channel, control, word.substr(equals + 1));
            return true;
        }
    throw std::runtime_error("no such control: \"" + std::string(word.substr(0, equals)) + '"');
}

void readMusic(const Score& score, ScoreTrack& track, int channel,
               std::span<const std::string_view> row)
{
    for (const std::string_view word : row) {
        if (word[0] == '|')
            checkBarLine(score, track);
        else if (word[0] == '@')
            track.velocity = static_cast<int>(number(word.substr(1), 1, 127));
        else if (word[0] == '~')
            track.gate = number(word.substr(1), 0.01, 1.0);
        else if (!addControlWord(track, channel, word))
            addNotes(track, channel, word);
    }
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
    if (row[0] == "sound") {
        track.sound = trimmed(line.substr(5));
        return;
    }
    const bool repeats = row[0][0] == 'x';
    const int times = repeats ? static_cast<int>(number(row[0].substr(1), 1, kMostRepeats)) : 1;
    const int channel = static_cast<int>((score.tracks.size() - 1) % 16);
    for (int i = 0; i < times; ++i)
        readMusic(score, track, channel, std::span(row).subspan(repeats ? 1 : 0));
}

} // namespace

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

} // namespace tolm
