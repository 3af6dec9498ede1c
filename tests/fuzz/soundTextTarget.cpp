// Reader of readable sounds: any text gives sounds that are safe to play, or an error that names
// its place; what was read can be written, and reads the same again.

#include "patch/soundText.h"
#include "tests/fuzz/targets.h"

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace tolm::fuzz {

namespace {

void checkSound(const Sound& sound)
{
    require(std::memchr(sound.record.name.data(), 0, sound.record.name.size()) != nullptr,
            "names end");
    require(std::memchr(sound.record.description.data(), 0, sound.record.description.size()) !=
                nullptr,
            "descriptions end");
    require(sound.line > 0, "sounds have a line");
    for (const float value : sound.record.values)
        require(std::isfinite(value), "values are finite");
}

} // namespace

void soundTextTarget(Input input)
{
    const std::string_view text(reinterpret_cast<const char*>(input.data()), input.size());
    const ProgramRecord base = blankRecord();
    std::vector<Sound> sounds;
    if (const SoundTextStatus error = readSounds(text, "input", base, sounds)) {
        require(sounds.empty(), "an error leaves no sounds");
        require(error->text().starts_with("input"), "an error names its file");
        require(!error->message.empty(), "an error says what is wrong");
        return;
    }
    std::vector<ProgramRecord> records;
    for (const Sound& sound : sounds) {
        checkSound(sound);
        records.push_back(sound.record);
    }
    std::string written;
    require(!writeSounds(records, base, 0, written), "what was read can be written");
    std::vector<Sound> again;
    require(!readSounds(written, "again", base, again), "what was written can be read");
    require(again.size() == records.size(), "every sound comes back");
    for (std::size_t i = 0; i < records.size(); ++i)
        require(std::memcmp(&again[i].record, &records[i], sizeof(ProgramRecord)) == 0,
                "a sound comes back byte for byte");
}

} // namespace tolm::fuzz
