// tolm-bank: the factory sounds between readable texts and the bank image that the plug-in embeds.

#include "patch/programStore.h"
#include "patch/soundText.h"
#include "plugin/catalogue.h"
#include "plugin/menus.h"
#include "tools/bankFiles.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace tolm {
namespace {

namespace fs = std::filesystem;

constexpr const char* kInitFile = "init.toml";
constexpr const char* kPlanFile = "bank.toml";

// One clear line for the person at the terminal.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void check(const SoundTextStatus& status)
{
    if (status)
        throw Failure(status->text());
}

std::string readFile(const fs::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad() || fs::is_directory(path))
        throw Failure(path.string() + ": cannot be read");
    return bytes;
}

// Written aside and renamed, so that a failure leaves no half file.
void writeFile(const fs::path& path, std::string_view bytes)
{
    fs::path aside = path;
    aside += ".part";
    std::ofstream stream(aside, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    std::error_code error;
    if (stream)
        fs::rename(aside, path, error);
    if (!stream || error) {
        std::error_code ignored;
        fs::remove(aside, ignored);
        throw Failure(path.string() + ": cannot be written");
    }
}

std::vector<Sound> readSoundFile(const fs::path& path, const ProgramRecord& base)
{
    std::vector<Sound> sounds;
    check(readSounds(readFile(path), path.string(), base, sounds));
    return sounds;
}

ProgramRecord readInit(const fs::path& directory)
{
    const std::vector<Sound> sounds = readSoundFile(directory / kInitFile, blankRecord());
    if (sounds.size() != 1)
        throw Failure((directory / kInitFile).string() + ": exactly one program is expected");
    return sounds.front().record;
}

std::vector<fs::path> soundFiles(const fs::path& directory)
{
    std::vector<fs::path> files;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory, error)) {
        const fs::path name = entry.path().filename();
        if (name.extension() == ".toml" && name != kInitFile && name != kPlanFile)
            files.push_back(entry.path());
    }
    if (error)
        throw Failure(directory.string() + ": cannot be read");
    std::sort(files.begin(), files.end());
    return files;
}

std::unique_ptr<FactoryImage> compileDirectory(const fs::path& directory)
{
    std::vector<Sound> sounds;
    const std::vector<fs::path> files = soundFiles(directory);
    const ProgramRecord init = readInit(directory);
    for (const fs::path& file : files)
        check(readSounds(readFile(file), file.string(), init, sounds));
    const fs::path planFile = directory / kPlanFile;
    BankPlan plan;
    check(readBankPlan(readFile(planFile), planFile.string(), plan));
    auto image = std::make_unique<FactoryImage>();
    check(assembleBank(plan, sounds, init, *image));
    return image;
}

std::unique_ptr<FactoryImage> readImage(const fs::path& path)
{
    const std::string bytes = readFile(path);
    if (bytes.size() != sizeof(FactoryImage))
        throw Failure(path.string() + ": a bank image has " + std::to_string(sizeof(FactoryImage)) +
                      " bytes, not " + std::to_string(bytes.size()));
    auto image = std::make_unique<FactoryImage>();
    std::memcpy(image->data(), bytes.data(), bytes.size());
    return image;
}

std::unique_ptr<FactoryImage> readBank(const fs::path& source)
{
    return fs::is_directory(source) ? compileDirectory(source) : readImage(source);
}

void compileCommand(const fs::path& directory, const fs::path& output)
{
    const auto image = compileDirectory(directory);
    writeFile(output, {reinterpret_cast<const char*>(image->data()), sizeof(FactoryImage)});
}

// "Sound Effects" -> "soundEffects.toml"
std::string categoryFile(int category)
{
    if (category == 0)
        return "other.toml";
    std::string name = kCategoryNames[category];
    name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
    name.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(name.front())));
    return name + ".toml";
}

int categoryOf(const ProgramRecord& record)
{
    const float value = record.values[kPatchCategory];
    const bool known = value >= 0.0f && value < static_cast<float>(std::size(kCategoryNames));
    return known ? static_cast<int>(value) : 0;
}

std::vector<ProgramRecord> programsOfCategory(const FactoryImage& image, int category)
{
    std::vector<ProgramRecord> programs;
    for (int program = 0; program < kProgramCount - 1; ++program) {
        const ProgramRecord& record = image[static_cast<std::size_t>(program)];
        if (categoryOf(record) == category && !isFreePlace(record, image.back()))
            programs.push_back(record);
    }
    return programs;
}

void decompileCommand(const fs::path& imageFile, const fs::path& directory)
{
    const auto image = readImage(imageFile);
    std::vector<std::pair<std::string, std::string>> files{
        {kPlanFile, writeBankPlan(*image)}
    };
    std::string text;
    check(writeSounds(std::span(image->end() - 1, 1), blankRecord(), 0, text));
    files.emplace_back(kInitFile, text);
    for (int category = 0; category < static_cast<int>(std::size(kCategoryNames)); ++category) {
        const auto programs = programsOfCategory(*image, category);
        text.clear();
        check(writeSounds(programs, image->back(), category, text));
        if (!programs.empty())
            files.emplace_back(categoryFile(category), text);
    }
    std::error_code error;
    fs::create_directories(directory, error);
    for (const auto& [name, content] : files)
        writeFile(directory / name, content);
}

void listCommand(const fs::path& source)
{
    const auto image = readBank(source);
    const ProgramStore store{std::span(*image).first<kProgramCount>(), image->back()};
    for (int program = 0; program < kProgramCount; ++program) {
        if (isFreePlace(store.record(program), image->back()))
            continue;
        const std::string_view name = store.name(program);
        std::printf("%3d  %-23.*s  %s\n", program, static_cast<int>(name.size()), name.data(),
                    kCategoryNames[categoryOf(store.record(program))]);
    }
}

// A subcommand: its words on the command line and what it does with them.
struct Command {
    const char* name;
    const char* help;
    const char* source;
    const char* output; // null when it writes no file
    void (*run)(const fs::path& source, const fs::path& output);
};

constexpr Command kCommands[] = {
    {"compile",                               "Compile a directory of sounds into a bank image", "DIR", "FILE",           compileCommand},
    {      "decompile", "Write a bank image as readable texts",                                            "FILE", "DIR", decompileCommand              },
    { "list",                             "List the programs in the order in which they are loaded",                                                                       "DIR|FILE",                                                                         nullptr,
     [](const fs::path& source,                                                              const fs::path&) { listCommand(source); }},
    {"fxp", "Make a program file of a text with one sound", "TEXT", "FILE", writeProgramFile},
    {"fxb", "Make a bank file of a text with up to 128 sounds", "TEXT", "FILE", writeBankFile},
    {"text", "Write a program or bank file as readable text", "FILE", "TEXT", writeTextOfFile},
};

int runCommandLine(int argc, char** argv)
{
    CLI::App app("Factory sounds: readable texts to the embedded bank image, and back.",
                 "tolm-bank");
    app.require_subcommand(1);
    std::string source;
    std::string output;
    for (const Command& command : kCommands) {
        CLI::App* sub = app.add_subcommand(command.name, command.help);
        sub->add_option("source", source, command.source)->required();
        if (command.output)
            sub->add_option("-o,--output", output, command.output)->required();
        sub->callback([&source, &output, &command] { command.run(source, output); });
    }
    CLI11_PARSE(app, argc, argv);
    return 0;
}

} // namespace
} // namespace tolm

int main(int argc, char** argv)
{
    try {
        return tolm::runCommandLine(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tolm-bank: %s\n", error.what());
        return 1;
    }
}
