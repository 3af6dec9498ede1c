#include "tools/audition/level.h"

#include "patch/soundTextRules.h"
#include "plugin/catalogue.h"
#include "tools/audition/descriptors.h"
#include "tools/audition/measure.h"
#include "tools/audition/parallel.h"
#include "tools/soundFiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>

namespace tolm {
namespace {

constexpr int kMaxRounds = 4; // effects that distort do not follow the volume exactly
constexpr double kCloseEnoughLu = 0.15;
constexpr double kSmallestVolume = 0.02;
constexpr double kPeakCeilingDb = -1.0; // of the hardest phrase

struct Solution {
    double loudness = 0.0;   // as stored so far
    double volume = 0.0;     // to be stored
    double reached = 0.0;    // loudness with it
    const char* heldBy = ""; // what keeps it quieter than its target, if anything
};

double measuredLoudness(const ProgramRecord& record)
{
    const int category = categoryOf(record);
    return loudnessOf(play(record, categoryPhrase(category), 0.0))
        .of(loudnessTarget(category).kind);
}

// The output gain is 4 v^2.
double volumeChangedBy(double volume, double db)
{
    const double exact = std::clamp(volume * std::pow(10.0, db / 40.0), kSmallestVolume, 1.0);
    return std::round(exact * 1000.0) / 1000.0;
}

// Takes the volume back by what is too much, if it is.
void limit(ProgramRecord& record, Solution& solution, double excessDb, const char* what)
{
    constexpr double kMarginDb = 0.1;
    if (excessDb <= 0.0)
        return;
    solution.heldBy = what;
    solution.volume = volumeChangedBy(solution.volume, -excessDb - kMarginDb);
    record.values[kVolume] = static_cast<float>(solution.volume);
    solution.reached = measuredLoudness(record);
}

void limitHardStrokes(ProgramRecord& record, Solution& solution)
{
    const int category = categoryOf(record);
    const double peakDb = figuresOf(play(record, hardestPhrase(category), 0.0)).peakDb;
    limit(record, solution, peakDb - kPeakCeilingDb, ", held by its peak");
    const double loudest = loudnessOf(play(record, categoryPhrase(category, 127), 0.0)).momentary;
    limit(record, solution, loudest - loudestStroke(category), ", held by its hardest stroke");
}

Solution solve(ProgramRecord record)
{
    const double target = loudnessTarget(categoryOf(record)).lufs;
    Solution solution;
    solution.volume = static_cast<double>(record.values[kVolume]);
    solution.loudness = solution.reached = measuredLoudness(record);
    for (int round = 0; round < kMaxRounds; ++round) {
        const double missing = target - solution.reached;
        if (!std::isfinite(missing) || std::fabs(missing) < kCloseEnoughLu)
            break;
        solution.volume = volumeChangedBy(solution.volume, missing);
        record.values[kVolume] = static_cast<float>(solution.volume);
        solution.reached = measuredLoudness(record);
    }
    limitHardStrokes(record, solution);
    return solution;
}

std::string volumeText(double volume)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "\"Volume\" = %g", volume);
    return text.data();
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines(1);
    for (const char c : text)
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    return lines;
}

// `line` (1-based) is where the program's table begins. A comment behind the value stays.
void putVolume(std::vector<std::string>& lines, std::size_t line, double volume)
{
    std::size_t place = line;
    for (std::size_t i = line; i < lines.size() && !lines[i].starts_with("[["); ++i) {
        if (lines[i].starts_with("\"Volume\"")) {
            const std::size_t comment = lines[i].find(" #");
            const std::string rest = comment == std::string::npos ? "" : lines[i].substr(comment);
            lines[i] = volumeText(volume) + rest;
            return;
        }
        if (lines[i].starts_with("name") || lines[i].starts_with("description"))
            place = i + 1;
    }
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(place), volumeText(volume));
}

void rewriteFile(const std::string& file, const std::map<std::size_t, double>& volumes)
{
    std::vector<std::string> lines = linesOf(readFile(file));
    for (auto at = volumes.rbegin(); at != volumes.rend(); ++at) // an added line moves later ones
        putVolume(lines, at->first, at->second);
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i)
        text.append(i == 0 ? "" : "\n").append(lines[i]);
    writeFile(file, text);
}

void printSolution(const Sound& sound, const Solution& s)
{
    const LoudnessTarget target = loudnessTarget(categoryOf(sound.record));
    const bool off = !target.accepts(s.reached);
    std::printf("%-24s %7.2f -> %7.2f LUFS, volume %.3f%s%s\n", sound.record.name.data(),
                s.loudness, s.reached, s.volume, s.heldBy, off ? ", off target" : "");
}

} // namespace

void levelDirectory(const std::filesystem::path& directory, const SoundChoice& choice)
{
    const std::vector<Sound> sounds = chosenSounds(directory, choice);
    std::vector<Solution> solutions(sounds.size());
    forAll(
        sounds.size(), [&](std::size_t i) { solutions[i] = solve(sounds[i].record); },
        [&](std::size_t done) { showProgress("levelling", done, sounds.size()); });
    std::map<std::string, std::map<std::size_t, double>> changes;
    for (std::size_t i = 0; i < sounds.size(); ++i) {
        printSolution(sounds[i], solutions[i]);
        if (static_cast<float>(solutions[i].volume) != sounds[i].record.values[kVolume])
            changes[sounds[i].file][static_cast<std::size_t>(sounds[i].line)] = solutions[i].volume;
    }
    for (const auto& [file, volumes] : changes)
        rewriteFile(file, volumes);
}

} // namespace tolm
