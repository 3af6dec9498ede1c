#include "tools/audition/descriptors.h"

#include "plugin/catalogue.h"
#include "plugin/menus.h"
#include "tools/audition/envelope.h"
#include "tools/audition/measure.h"
#include "tools/audition/spectrum.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>

namespace tolm {
namespace {

using D = Descriptor;

// How the reference note of a category is held, and how long an attack may take to be seen whole.
struct NoteRow {
    int key;
    double seconds;
    double attackSeconds;
};
constexpr NoteRow kNotes[] = {
    {60, 2.0, 0.5}, // ---
    {48, 2.0, 0.5}, // Arpeggiated
    {28, 1.6, 0.5}, // Bass
    {48, 1.6, 1.0}, // Chords
    {36, 1.4, 0.5}, // Drums
    {60, 2.6, 0.5}, // Keyboards
    {72, 1.6, 0.5}, // Leads
    {72, 4.2, 0.5}, // Mallets
    {60, 4.0, 4.0}, // Pads
    {60, 2.2, 0.5}, // Plucked
    {60, 2.0, 0.5}, // Sound Effects
    {60, 2.0, 0.5}, // Synths
    {60, 4.0, 4.0}, // Textures
    {72, 2.0, 1.0}, // Wind
};
static_assert(std::size(kNotes) == std::size(kCategoryNames));

constexpr int kChords = 3;
constexpr int kWind = 13;
static_assert(std::string_view(kCategoryNames[kChords]) == "Chords");
static_assert(std::string_view(kCategoryNames[kWind]) == "Wind");

constexpr int kEightKeys[] = {48, 52, 55, 59, 60, 64, 67, 71};
constexpr std::size_t kTwoKeys = 2; // of programs that make a chord of each
constexpr double kCostSeconds = 0.4;
constexpr double kLongestFadeSeconds = 20.0;
constexpr double kMonoDb = -99.0;            // no side at all
constexpr double kTouchSeconds = 0.7;        // of the notes that compare two ways of playing
constexpr std::size_t kFineSpectrum = 65536; // tells the harmonics of the lowest key apart
constexpr std::size_t kShortSpectrum = 4096;
constexpr std::size_t kHalfSecond = kAuditionRateHz / 2;
constexpr std::uint8_t kController = 0xB0;
constexpr std::uint8_t kBreath = 2;

double keyHz(int key)
{
    return 440.0 * std::pow(2.0, (key - 69) / 12.0);
}

double centroidBetween(const Rendering& r, std::size_t begin, std::size_t end)
{
    return centroidHz(spectraOf(r, begin, end, kShortSpectrum));
}

double changePercent(double from, double to)
{
    return from > 0.0 ? 100.0 * std::fabs(to / from - 1.0) : 0.0;
}

void describePhrase(const ProgramRecord& program, int category, Descriptors& d)
{
    const Rendering r = play(program, categoryPhrase(category), kLongestFadeSeconds);
    const Figures figures = figuresOf(r);
    const Spectra spectra = spectraOf(r, 0, r.keyUpFrame);
    d[D::loudness] = loudnessOf(r).of(loudnessTarget(category).kind);
    d[D::release] = releaseSeconds(envelopeOf(r), r.keyUpFrame);
    d[D::fade] = figures.fadeSeconds;
    d[D::width] = std::max(figures.widthDb, kMonoDb);
    d[D::lowWidth] = std::max(widthDb(spectra, 200.0), kMonoDb);
    d[D::monoLoss] = figures.monoLossDb;
    d[D::offset] = figures.offsetDb;
    constexpr double kBeatsPerSecond = 2.0;
    const double seconds = static_cast<double>(r.keyUpFrame) / kAuditionRateHz;
    d[D::onsets] = onsetCount(r) / (seconds * kBeatsPerSecond);
}

void describeNote(const ProgramRecord& program, const NoteRow& note, Descriptors& d)
{
    const Rendering r = play(program, heldKeys({&note.key, 1}, note.seconds), 0.0);
    const std::vector<double> envelope = envelopeOf(r);
    const Spectra spectra = spectraOf(r, 0, r.keyUpFrame);
    d[D::attack] = attackMs(envelope, note.attackSeconds);
    d[D::decay] = decaySeconds(envelope, r.keyUpFrame);
    d[D::centroid] = centroidHz(spectra);
    const Spectra fine = spectraOf(r, 0, r.keyUpFrame, kFineSpectrum);
    d[D::harmonicity] = harmonicity(fine, keyHz(note.key));
    if (categoryOf(program) == kChords)
        d[D::fundamentals] = fundamentalCount(fine, keyHz(note.key));
    d[D::lowShare] = lowShare(spectra);
    d[D::flatness] = flatness(spectra);
    const double sounding =
        std::min(d[D::decay] * kAuditionRateHz, 1.0 * static_cast<double>(r.keyUpFrame));
    const std::size_t settled = std::min(kHalfSecond, r.keyUpFrame / 4);
    d[D::modulation] = modulationPercent(r, settled, static_cast<std::size_t>(sounding));
    d[D::flux] = fluxPercent(r, settled, static_cast<std::size_t>(sounding));
    const double start = centroidBetween(r, 0, kShortSpectrum);
    const double later = centroidBetween(r, kHalfSecond - kShortSpectrum, kHalfSecond);
    d[D::brightnessFall] = start > 0.0 ? 100.0 * (1.0 - later / start) : 0.0;
    d[D::levelAfter4s] = levelAtDb(envelope, std::min(4.0, note.seconds - 0.1));
}

struct Touch {
    double level = 0.0;
    double centroid = 0.0;
};

Touch touchOf(const ProgramRecord& program, const Phrase& phrase)
{
    const Rendering r = play(program, phrase, 0.0);
    double sum = 0.0;
    for (const double level : envelopeOf(r))
        sum += level * level;
    return {std::sqrt(sum), centroidBetween(r, 0, r.keyUpFrame)};
}

void describeTouch(const ProgramRecord& program, const NoteRow& note, Descriptors& d)
{
    const std::span<const int> key(&note.key, 1);
    const Touch soft = touchOf(program, heldKeys(key, kTouchSeconds, 40));
    const Touch hard = touchOf(program, heldKeys(key, kTouchSeconds, 120));
    d[D::velocityLevel] = decibels(hard.level) - decibels(soft.level);
    d[D::velocityBrightness] = changePercent(soft.centroid, hard.centroid);
}

void describeBreath(const ProgramRecord& program, const NoteRow& note, Descriptors& d)
{
    const std::span<const int> key(&note.key, 1);
    Phrase blown = heldKeys(key, kTouchSeconds);
    setBefore(blown, kController, kBreath, 127);
    const Touch plain = touchOf(program, heldKeys(key, kTouchSeconds));
    d[D::breathBrightness] = plain.centroid > 0.0
                                 ? 100.0 * (touchOf(program, blown).centroid / plain.centroid - 1.0)
                                 : 0.0;
}

} // namespace

double cpuNsPerFrameOf(const ProgramRecord& program)
{
    const std::size_t keys = categoryOf(program) == kChords ? kTwoKeys : std::size(kEightKeys);
    const Phrase phrase = heldKeys(std::span(kEightKeys).first(keys), kCostSeconds);
    return play(program, phrase, 0.0).cpuNsPerFrame;
}

int categoryOf(const ProgramRecord& program)
{
    const float value = program.values[kPatchCategory];
    const bool known = value >= 0.0f && value < static_cast<float>(std::size(kCategoryNames));
    return known ? static_cast<int>(value) : 0;
}

Descriptors describe(const ProgramRecord& program)
{
    const int category = categoryOf(program);
    const NoteRow& note = kNotes[category];
    Descriptors d;
    describePhrase(program, category, d);
    describeNote(program, note, d);
    describeTouch(program, note, d);
    if (category == kWind)
        describeBreath(program, note, d);
    const Rendering hardest = play(program, hardestPhrase(category), 0.0);
    d[D::peak] = figuresOf(hardest).peakDb;
    d.cpuNsPerFrame = cpuNsPerFrameOf(program);
    return d;
}

} // namespace tolm
