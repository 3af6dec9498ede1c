#include "tools/soundFiles.h"

#include "patch/soundTextRules.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>

namespace tolm {

namespace fs = std::filesystem;

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

namespace {

std::vector<Sound> readSoundFile(const fs::path& path, const ProgramRecord& base)
{
    std::vector<Sound> sounds;
    check(readSounds(readFile(path), path.string(), base, sounds));
    return sounds;
}

} // namespace

ProgramRecord readInit(const fs::path& directory)
{
    const std::vector<Sound> sounds = readSoundFile(directory / kInitFile, blankRecord());
    if (sounds.size() != 1)
        throw Failure((directory / kInitFile).string() + ": exactly one program is expected");
    return sounds.front().record;
}

namespace {

std::vector<fs::path> soundFiles(const fs::path& directory)
{
    std::vector<fs::path> files;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory, error)) {
        const fs::path name = entry.path().filename();
        if (name.extension() == ".toml" && name != kInitFile && name != kPlanFile &&
            name != kExceptionFile)
            files.push_back(entry.path());
    }
    if (error)
        throw Failure(directory.string() + ": cannot be read");
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

std::vector<Sound> readDirectory(const fs::path& directory)
{
    std::vector<Sound> sounds;
    const std::vector<fs::path> files = soundFiles(directory);
    const ProgramRecord init = readInit(directory);
    for (const fs::path& file : files)
        check(readSounds(readFile(file), file.string(), init, sounds));
    return sounds;
}

std::unique_ptr<FactoryImage> compileDirectory(const fs::path& directory)
{
    const std::vector<Sound> sounds = readDirectory(directory);
    const ProgramRecord init = readInit(directory);
    const fs::path planFile = directory / kPlanFile;
    BankPlan plan;
    check(readBankPlan(readFile(planFile), planFile.string(), plan));
    auto image = std::make_unique<FactoryImage>();
    check(assembleBank(plan, sounds, init, *image));
    return image;
}

std::vector<ProgramRecord> compilePatterns(const fs::path& text, const fs::path& directory)
{
    std::vector<Sound> patterns;
    check(readPatterns(readFile(text), text.string(), readInit(directory), patterns));
    std::vector<ProgramRecord> records;
    std::set<std::string_view> names;
    for (const Sound& pattern : patterns) {
        if (!names.insert(nameOf(pattern.record)).second)
            throw Failure(
                SoundTextError{pattern.file, pattern.line, "name", "another pattern has this name"}
                    .text());
        records.push_back(pattern.record);
    }
    return records;
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

} // namespace tolm
