// Preset files without a plug-in: the chunk reader and writer over a store of their own.

#include "tools/bankFiles.h"

#include "patch/conversions.h"
#include "patch/presetFileTransfer.h"
#include "patch/soundText.h"
#include "plugin/catalogue.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace tolm {

namespace {

namespace fs = std::filesystem;

std::runtime_error failure(const fs::path& path, const std::string& reason)
{
    return std::runtime_error(path.string() + ": " + reason);
}

std::string readText(const fs::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad() || fs::is_directory(path))
        throw failure(path, "cannot be read");
    return text;
}

// Written aside and renamed, so that a failure leaves no half file.
void writeText(const fs::path& path, const std::string& text)
{
    fs::path aside = path;
    aside += ".part";
    std::ofstream stream(aside, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    std::error_code error;
    if (stream)
        fs::rename(aside, path, error);
    if (!stream || error) {
        std::error_code ignored;
        fs::remove(aside, ignored);
        throw failure(path, "cannot be written");
    }
}

std::vector<Sound> readSoundFile(const fs::path& path, const ProgramRecord& base)
{
    std::vector<Sound> sounds;
    if (const SoundTextStatus error = readSounds(readText(path), path.string(), base, sounds))
        throw std::runtime_error(error->text());
    return sounds;
}

ProgramRecord baseBeside(const fs::path& text)
{
    const fs::path init = text.parent_path() / "init.toml";
    if (!fs::exists(init) || init == text)
        return blankRecord();
    const std::vector<Sound> sounds = readSoundFile(init, blankRecord());
    if (sounds.size() != 1)
        throw failure(init, "exactly one program is expected");
    return sounds.front().record;
}

std::span<const ProgramRecord, kProgramCount> blankImage()
{
    static const std::array<ProgramRecord, kProgramCount> kBlank{};
    return kBlank;
}

// Plays the plug-in's part of a transfer.
class Files final : private PresetFileHost, private ChunkHost {
public:
    Files() : store_(blankImage(), {}) {}

    void transfer(const fs::path& path, FileMode mode)
    {
        const bool done = tolm::transferFile(path.string(), mode, *this);
        if (message_ == ChunkMessage::veryOld)
            throw failure(path, chunkMessageText(message_));
        if (done)
            return;
        throw failure(path, fileModeRow(mode).saves ? "cannot be written"
                                                    : "is no whole preset file of this plug-in");
    }
    std::span<ProgramRecord, kProgramCount> programs() { return store_.records(); }

private:
    std::span<const std::uint8_t, kChunkBytes> saveChunk() override
    {
        writeChunk(store_, {}, std::span<std::uint8_t, kChunkBytes>(bytes_));
        return std::span<const std::uint8_t, kChunkBytes>(bytes_);
    }
    bool loadFileChunk(std::span<const std::uint8_t> bytes, bool isPreset) override
    {
        const ChunkResult result = readChunk(bytes, isPreset, store_, *this);
        message_ = result.message;
        return result.loaded;
    }
    std::string_view currentProgramName() const override { return store_.name(program_); }
    // The text names the sound, whatever its file is called.
    void setProgramName(std::string_view) override {}

    void setBendRanges(int, int) override {}
    bool pauseProcessing() override { return true; }
    void resumeProcessing() override {}
    int currentProgram() const override { return program_; }
    int currentBank() const override { return 0; }
    bool isLoadingFromFile() const override { return true; }
    void setEngineVersion(int) override {}
    void setSmoothing(double, int) override {}
    // Serves both sides: loads of the oldest programs select another one.
    void setProgram(int program) override { program_ = program; }
    void loadProgram(int) override {}

    ProgramStore store_;
    std::vector<std::uint8_t> bytes_ = std::vector<std::uint8_t>(kChunkBytes);
    int program_ = 0;
    ChunkMessage message_ = ChunkMessage::none;
};

// What a bank does not use, numbered so that lists of names stay readable.
ProgramRecord freePlace(const ProgramRecord& base, int number)
{
    ProgramRecord record = base;
    record.name.fill('\0');
    std::snprintf(record.name.data(), record.name.size(), "- Init %03d", number);
    return record;
}

void fill(Files& files, const std::vector<Sound>& sounds, const ProgramRecord& base)
{
    for (std::size_t i = 0; i < kBankSize; ++i)
        files.programs()[i] =
            i < sounds.size() ? sounds[i].record : freePlace(base, static_cast<int>(i) + 1);
}

} // namespace

void writeProgramFile(const fs::path& text, const fs::path& output)
{
    const ProgramRecord base = baseBeside(text);
    const std::vector<Sound> sounds = readSoundFile(text, base);
    if (sounds.size() != 1)
        throw failure(text,
                      "exactly one program is expected, not " + std::to_string(sounds.size()));
    Files files;
    fill(files, sounds, base);
    files.transfer(output, FileMode::saveProgram);
}

void writeBankFile(const fs::path& text, const fs::path& output)
{
    const ProgramRecord base = baseBeside(text);
    const std::vector<Sound> sounds = readSoundFile(text, base);
    if (sounds.empty() || sounds.size() > kBankSize)
        throw failure(text, "a bank has 1 to 128 programs, not " + std::to_string(sounds.size()));
    Files files;
    fill(files, sounds, base);
    files.transfer(output, FileMode::saveBank);
}

void writeTextOfFile(const fs::path& source, const fs::path& output)
{
    const bool isBank = source.extension() == ".fxb";
    Files files;
    files.transfer(source, isBank ? FileMode::loadBank : FileMode::loadProgram);
    std::span<const ProgramRecord> programs = files.programs().first(isBank ? kBankSize : 1);
    const ProgramRecord base = baseBeside(output);
    ProgramRecord loadedBase = base; // as it comes out of a bank again
    convertProgram(loadedBase, kChunkVersion, LoadPath::bank);
    std::vector<ProgramRecord> kept;
    for (std::size_t i = 0; i < programs.size(); ++i)
        if (!isBank || !isFreePlace(programs[i], loadedBase))
            kept.push_back(programs[i]);
    std::string text;
    if (const SoundTextStatus error = writeSounds(kept, base, 0, text))
        throw failure(source, error->key + ": " + error->message);
    writeText(output, text);
}

} // namespace tolm
