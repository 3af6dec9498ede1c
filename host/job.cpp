// Sets instances up as asked and lists, renders, or renders every program in turn.

#include "host/job.h"

#include "host/Failure.h"
#include "host/Renderer.h"
#include "host/names.h"
#include "host/parameterText.h"
#include "host/presetFile.h"
#include "host/textNumbers.h"

#include <cmath>
#include <cstdio>

namespace tolm {
namespace {

constexpr double kMaxSeconds = 24.0 * 3600.0;

float gainFromDb(double db)
{
    return static_cast<float>(std::pow(10.0, db / 20.0));
}

// Numbers are indices even when a file is called like one.
bool isProgramFile(const std::string& program)
{
    std::error_code ignored;
    return program.ends_with(".fxp") ||
           (!wholeNumber(program) && std::filesystem::is_regular_file(program, ignored));
}

PresetFile readPresetFor(const Plugin& plugin, const std::string& path)
{
    PresetFile preset = readPresetFile(path);
    if (preset.uniqueId != plugin.uniqueId() || !plugin.takesChunks())
        throw Failure(quoted(path) + " belongs to another plug-in than " + plugin.name());
    return preset;
}

// Without a choice the current program is selected all the same: a plug-in need not apply any
// before it is told to.
void chooseProgram(const Plugin& plugin, const std::optional<std::string>& program)
{
    if (!program)
        return plugin.selectProgram(plugin.currentProgram());
    if (!isProgramFile(*program))
        return plugin.selectProgram(findByName(plugin.programNames(), *program, "program"));
    PresetFile preset = readPresetFor(plugin, *program);
    if (preset.kind != ChunkKind::program)
        throw Failure(quoted(*program) + " is a bank: use --bank");
    plugin.loadChunk(preset.kind, preset.chunk);
}

// A bank replaces all programs before one is chosen; a single program replaces the chosen one.
void loadSounds(const Plugin& plugin, const Options& options,
                const std::optional<std::string>& program)
{
    if (options.bank.empty())
        return chooseProgram(plugin, program);
    PresetFile preset = readPresetFor(plugin, options.bank);
    if (preset.kind == ChunkKind::program)
        chooseProgram(plugin, program);
    plugin.loadChunk(preset.kind, preset.chunk);
    if (preset.kind == ChunkKind::bank)
        chooseProgram(plugin, program);
}

void applySetting(const Plugin& plugin, const std::string& setting)
{
    const std::size_t equals = setting.find('=');
    if (equals == setting.npos)
        throw Failure("--set takes NAME=VALUE, not " + quoted(setting));
    const std::string name(trimmed(std::string_view(setting).substr(0, equals)));
    const std::string text(trimmed(std::string_view(setting).substr(equals + 1)));
    const std::vector<std::string> names = settableNames(plugin);
    const int index = findByName(names, name, "parameter");
    const std::optional<float> value = parameterValueFromText(plugin, index, text);
    if (!value)
        throw Failure(quoted(names[static_cast<std::size_t>(index)]) + " has no value " +
                      quoted(text) + ": a number from 0 to 1, or a text it shows, such as " +
                      quoted(plugin.parameterText(index)));
    plugin.setParameter(index, *value);
}

std::unique_ptr<Plugin> instance(const Options& options, const std::optional<std::string>& program)
{
    auto plugin =
        std::make_unique<Plugin>(options.plugin, options.format.sampleRateHz, options.blockFrames);
    loadSounds(*plugin, options, program);
    for (const std::string& setting : options.settings)
        applySetting(*plugin, setting);
    return plugin;
}

struct PartText {
    std::string track;
    std::string program;
    double gainDb = 0.0;
};

PartText parsePart(const std::string& text)
{
    const std::size_t equals = text.find('=');
    if (equals == text.npos)
        throw Failure("--part takes TRACK=PROGRAM, not " + quoted(text));
    PartText part{text.substr(0, equals), text.substr(equals + 1)};
    const std::size_t at = part.program.rfind('@');
    if (at == part.program.npos)
        return part;
    if (const auto gain = decimalNumber(std::string_view(part.program).substr(at + 1))) {
        part.gainDb = *gain;
        part.program.resize(at);
    }
    return part;
}

std::vector<Part> makeParts(const Options& options, const Song& song)
{
    std::vector<std::string> trackNames;
    for (const Track& track : song.tracks)
        trackNames.push_back(track.name);
    std::vector<Part> parts;
    const auto add = [&](const std::vector<std::size_t>& tracks, float gain,
                         const std::optional<std::string>& program) {
        parts.push_back({instance(options, program),
                         eventsOf(song, tracks, options.format.sampleRateHz, !program), gain});
    };
    std::vector<bool> taken(song.tracks.size());
    for (const std::string& text : options.parts) {
        const PartText part = parsePart(text);
        const auto track = static_cast<std::size_t>(findByName(trackNames, part.track, "track"));
        taken[track] = true;
        add({track}, gainFromDb(part.gainDb), part.program);
    }
    std::vector<std::size_t> rest;
    for (std::size_t i = 0; i < song.tracks.size(); ++i)
        if (!taken[i] && (parts.empty() || !song.tracks[i].messages.empty()))
            rest.push_back(i);
    if (!rest.empty())
        add(rest, 1.0f, options.program);
    return parts;
}

void report(const std::string& path, const Levels& levels, const Options& options)
{
    const double seconds =
        static_cast<double>(levels.frames) / static_cast<double>(options.format.sampleRateHz);
    std::printf("%s: %.3f s, peak %.1f dBFS, RMS %.1f dBFS", path.c_str(), seconds, levels.peakDb(),
                levels.rmsDb());
    if (levels.overs > 0)
        std::printf(", %lld samples %s full scale", static_cast<long long>(levels.overs),
                    options.format.samples == SampleFormat::float32 ? "over" : "clipped at");
    std::printf("\n");
}

void renderFile(const std::string& path, const Options& options, const Song& song,
                std::vector<Part> parts, Progress& progress)
{
    RenderPlan plan;
    plan.sampleRateHz = options.format.sampleRateHz;
    plan.blockFrames = options.blockFrames;
    plan.gain = gainFromDb(options.gainDb);
    plan.totalFrames = frameAt(song.tempo.secondsAt(song.lengthQuarters), plan.sampleRateHz) +
                       frameAt(options.tailSeconds, plan.sampleRateHz);
    AudioFile file(path, options.format);
    const Levels levels = render(parts, song.tempo, plan, file, progress);
    parts.clear();
    file.commit();
    progress.clear();
    report(path, levels, options);
}

std::string fileNameOf(std::size_t index, std::string program, const Options& options)
{
    for (char& c : program)
        if (c == '/' || static_cast<unsigned char>(c) < ' ')
            c = '_';
    char number[32];
    std::snprintf(number, sizeof number, "%03zu ", index);
    return number + program + options.extension();
}

void renderAllPrograms(const Options& options, const Song& song, Progress& progress)
{
    const std::filesystem::path directory = options.allProgramsDirectory;
    const std::vector<std::string> names = instance(options, std::nullopt)->programNames();
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error)
        throw Failure("cannot make the directory " + quoted(directory.string()) + ": " +
                      error.message());
    for (std::size_t i = 0; i < names.size(); ++i) {
        Options one = options;
        one.program = std::to_string(i);
        progress.begin(names[i], static_cast<int>(i), static_cast<int>(names.size()));
        renderFile((directory / fileNameOf(i, names[i], options)).string(), one, song,
                   makeParts(one, song), progress);
    }
}

void listPrograms(const Plugin& plugin)
{
    const std::vector<std::string> names = plugin.programNames();
    for (std::size_t i = 0; i < names.size(); ++i)
        std::printf("%4zu  %s\n", i, names[i].c_str());
}

void listParameters(const Plugin& plugin)
{
    const std::vector<std::string> names = plugin.parameterNames();
    for (std::size_t i = 0; i < names.size(); ++i) {
        const int index = static_cast<int>(i);
        std::printf("%4zu  %-36s %8.6f  %s\n", i, names[i].c_str(),
                    static_cast<double>(plugin.parameter(index)),
                    plugin.parameterText(index).c_str());
    }
}

Song songOf(const Options& options)
{
    Song song = options.notes ? parseNoteList(*options.notes) : readMidiFile(options.song);
    if (options.bpm)
        song.tempo.flatten(*options.bpm);
    if (song.tempo.secondsAt(song.lengthQuarters) > kMaxSeconds)
        throw Failure("the song lasts more than 24 hours");
    return song;
}

} // namespace

void run(const Options& options)
{
    if (options.listPrograms || options.listParameters) {
        const auto plugin = instance(options, options.program);
        if (options.listPrograms)
            listPrograms(*plugin);
        if (options.listParameters)
            listParameters(*plugin);
        return;
    }
    const Song song = songOf(options);
    Progress progress;
    if (!options.allProgramsDirectory.empty())
        return renderAllPrograms(options, song, progress);
    progress.begin(options.output);
    renderFile(options.output, options, song, makeParts(options, song), progress);
}

} // namespace tolm
