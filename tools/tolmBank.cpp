// tolm-bank: the factory sounds between readable texts and the bank image that the plug-in embeds,
// and their loudness.

#include "patch/programStore.h"
#include "plugin/catalogue.h"
#include "plugin/menus.h"
#include "tools/audition/alike.h"
#include "tools/audition/descriptors.h"
#include "tools/audition/figures.h"
#include "tools/audition/level.h"
#include "tools/bankFiles.h"
#include "tools/report/report.h"
#include "tools/soundFiles.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>

namespace tolm {
namespace {

namespace fs = std::filesystem;

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
    std::vector<std::pair<std::string, std::string>> files{{kPlanFile, writeBankPlan(*image)}};
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
    {"compile", "Compile a directory of sounds into a bank image", "DIR", "FILE", compileCommand},
    {"decompile", "Write a bank image as readable texts", "FILE", "DIR", decompileCommand},
    {"list", "List the programs in the order in which they are loaded", "DIR|FILE", nullptr,
     [](const fs::path& source, const fs::path&) { listCommand(source); }},
    {"fxp", "Make a program file of a text with one sound", "TEXT", "FILE", writeProgramFile},
    {"fxb", "Make a bank file of a text with up to 128 sounds", "TEXT", "FILE", writeBankFile},
    {"text", "Write a program or bank file as readable text", "FILE", "TEXT", writeTextOfFile},
};

// What the commands that play sounds share.
struct AuditionArguments {
    std::string source;
    std::string output;
    SoundChoice choice;
};

CLI::App* addAuditionCommand(CLI::App& app, AuditionArguments& arguments, const char* name,
                             const char* help)
{
    CLI::App* sub = app.add_subcommand(name, help);
    sub->add_option("source", arguments.source, "DIR")->required();
    sub->add_option("--category", arguments.choice.categories, "Only programs of this category");
    sub->add_option("--program", arguments.choice.programs, "Only the program of this name");
    return sub;
}

void addAuditionCommands(CLI::App& app, AuditionArguments& arguments)
{
    addAuditionCommand(app, arguments, "level",
                       "Set every Volume so that programs are equally loud")
        ->callback([&] { levelDirectory(arguments.source, arguments.choice); });
    addAuditionCommand(app, arguments, "figures",
                       "Print what programs measure and mark what their category does not accept")
        ->callback([&] { printFigures(arguments.source, arguments.choice); });
    addAuditionCommand(app, arguments, "alike", "List programs that sound much like another")
        ->callback([&] { printAlike(arguments.source, arguments.choice); });
    CLI::App* report =
        addAuditionCommand(app, arguments, "report", "Make a page to look at and listen to");
    report->add_option("-o,--output", arguments.output, "DIR")->required();
    report->callback([&] { writeReport(arguments.source, arguments.choice, arguments.output); });
}

int runCommandLine(int argc, char** argv)
{
    CLI::App app("Factory sounds: readable texts to the embedded bank image, and back.",
                 "tolm-bank");
    app.require_subcommand(1);
    std::string source;
    std::string output;
    AuditionArguments arguments;
    addAuditionCommands(app, arguments);
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
