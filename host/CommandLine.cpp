// Command line: options, their ranges and which of them go together.

#include "host/CommandLine.h"

#include "host/Failure.h"
#include "host/textNumbers.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <map>
#include <sstream>

namespace tolm {
namespace {

constexpr int kMinRateHz = 4000;
constexpr int kMaxRateHz = 384000;
constexpr int kMaxBlockFrames = 8192;
constexpr double kMaxTailSeconds = 3600.0;
constexpr double kMinBpm = 1.0;
constexpr double kMaxBpm = 1000.0;
constexpr double kMaxGainDb = 60.0;

const std::map<std::string, Container> kContainers = {{"wav", Container::wav},
                                                      {"flac", Container::flac}};
const std::map<std::string, SampleFormat> kSampleFormats = {
    {"16", SampleFormat::pcm16}, {"24", SampleFormat::pcm24}, {"32f", SampleFormat::float32}};

template <class Value>
Value choice(const std::map<std::string, Value>& table, const std::string& key,
             const std::string& option)
{
    const auto found = table.find(key);
    if (found != table.end())
        return found->second;
    std::string all;
    for (const auto& [name, value] : table)
        all += (all.empty() ? "" : ", ") + name;
    throw Failure(option + " takes one of " + all + ", not " + quoted(key));
}

std::string defaultPlugin()
{
    std::error_code ignored;
    return (std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path() / "Tolm.so")
        .string();
}

// Other than the library's own check this one refuses "nan".
CLI::Validator between(double low, double high)
{
    std::ostringstream range;
    range << low << ".." << high;
    return CLI::Validator(
        [=, text = range.str()](std::string& input) -> std::string {
            const auto value = decimalNumber(input);
            const bool inside = value && *value >= low && *value <= high;
            return inside ? "" : tolm::quoted(input) + " is not within " + text;
        },
        range.str());
}

struct FormatTexts {
    std::string container; // empty: by the name of the output
    std::string bits = "24";
};

void addOptions(CLI::App& app, Options& o, FormatTexts& format)
{
    app.add_option("SONG", o.song, "Standard MIDI File to play");
    app.add_option("-o,--output", o.output, "Sound file to write");
    app.add_option("--plugin", o.plugin,
                   "VST 2.4 instrument (default: Tolm.so beside this program)");
    app.add_option("--program", o.program,
                   "Program by name or index, or a program file (.fxp); the song's own program "
                   "changes are then ignored");
    app.add_option("--bank", o.bank, "Bank (.fxb) or program (.fxp) file to load first");
    app.add_option(
           "--set", o.settings,
           "Parameter, as \"Filter Cutoff=0.4\" or as its display, \"Filter Cutoff=440 Hz\"")
        ->allow_extra_args(false);
    app.add_option("--part", o.parts,
                   "A plug-in instance of its own for a track, as \"TRACK=PROGRAM\" or with a "
                   "level in dB as \"TRACK=PROGRAM@-3\"")
        ->allow_extra_args(false);
    app.add_option("--notes", o.notes,
                   "Notes instead of a song: \"C4 0.5, E4+G4@100 1, R 0.5\" (keys, @velocity, "
                   "length in beats; C4 is middle C)");
    app.add_option("--bpm", o.bpm, "Tempo instead of the song's own")
        ->check(between(kMinBpm, kMaxBpm));
    app.add_option("--tail", o.tailSeconds, "Seconds to render after the last note")
        ->check(between(0.0, kMaxTailSeconds))
        ->capture_default_str();
    app.add_option("--gain", o.gainDb, "Level change in dB")
        ->check(between(-kMaxGainDb, kMaxGainDb));
    app.add_option("--rate", o.format.sampleRateHz, "Sample rate in Hz")
        ->check(between(kMinRateHz, kMaxRateHz))
        ->capture_default_str();
    app.add_option("--block", o.blockFrames, "Frames per block")
        ->check(between(1, kMaxBlockFrames))
        ->capture_default_str();
    app.add_option("--format", format.container, "wav or flac (default: by the output's name)");
    app.add_option("--bits", format.bits, "16, 24 or 32f")->capture_default_str();
    app.add_option("--all-programs", o.allProgramsDirectory,
                   "Render every program into a file of its own in this directory");
    app.add_flag("--list-programs", o.listPrograms, "List the programs");
    app.add_flag("--list-parameters", o.listParameters,
                 "List the parameters with their values and displays");
}

void check(const Options& o)
{
    if (o.listPrograms || o.listParameters)
        return;
    if (o.song.empty() && !o.notes)
        throw Failure("nothing to play: name a MIDI file or give --notes (see --help)");
    if (!o.song.empty() && o.notes)
        throw Failure("a MIDI file and --notes exclude each other");
    if (o.output.empty() == o.allProgramsDirectory.empty())
        throw Failure("name one output: a file with -o or a directory with --all-programs");
    if (!o.allProgramsDirectory.empty() && (o.program || !o.parts.empty()))
        throw Failure("--all-programs goes with neither --program nor --part");
}

void chooseFormat(Options& o, const FormatTexts& texts)
{
    std::string container = texts.container;
    if (container.empty())
        container = std::filesystem::path(o.output).extension() == ".flac" ? "flac" : "wav";
    o.format.container = choice(kContainers, container, "--format");
    o.format.samples = choice(kSampleFormats, texts.bits, "--bits");
    if (o.format.container == Container::flac && o.format.samples == SampleFormat::float32)
        throw Failure("flac holds 16 or 24 bits, not 32f");
}

} // namespace

std::optional<Options> parseCommandLine(int argc, char** argv)
{
    Options options;
    FormatTexts format;
    options.plugin = defaultPlugin();
    CLI::App app{"Plays a song or notes through a VST 2.4 instrument into a sound file.",
                 "tolm-render"};
    addOptions(app, options, format);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        std::cout << app.help();
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        std::string line = error.what();
        std::replace(line.begin(), line.end(), '\n', ' ');
        throw Failure(line + " (see --help)");
    }
    check(options);
    chooseFormat(options, format);
    return options;
}

} // namespace tolm
