#pragma once
// The readable form of sounds: TOML texts with one table per program, parameter names on the left,
// and only what differs from the initial patch. Reading a written text gives the same record again,
// byte for byte. Nothing here throws for what a text contains; errors are returned.

#include "patch/ProgramRecord.h"

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tolm {

struct SoundTextError {
    std::string file;
    int line = 0; // 1-based; 0 when the whole file is meant
    std::string key;
    std::string message;

    std::string text() const; // "file:line: key: message"
};
// Empty on success.
using SoundTextStatus = std::optional<SoundTextError>;

struct Sound {
    ProgramRecord record;
    std::string file;
    int line = 0;
};

// What a text leaves out of the initial patch: zeros, unused matrix rows, effects in order 0..5.
ProgramRecord blankRecord();

// Appends the programs of one text; `file` is its name in errors. Values that the text leaves out
// are those of `base`. After an error `sounds` is unchanged.
SoundTextStatus readSounds(std::string_view text, const std::string& file,
                           const ProgramRecord& base, std::vector<Sound>& sounds);
// The same for arpeggiator patterns: tables called "pattern" with a name and the arpeggiator's
// keys, no others.
SoundTextStatus readPatterns(std::string_view text, const std::string& file,
                             const ProgramRecord& base, std::vector<Sound>& patterns);
// The text of several programs of one category (0..13). Fails when a record holds something that
// the form has no words for, such as a value in a reserved place.
SoundTextStatus writeSounds(std::span<const ProgramRecord> programs, const ProgramRecord& base,
                            int category, std::string& text);

// The amount -1..1 of a matrix row as the float to store. The engine computes 2v - 1 in 32 bits and
// truncates percentages afterwards, so the result never falls short of the amount: 0.12 must stay
// 12 percent and not become 11.
float storedAmount(double amount);
// What the engine makes of a stored amount.
double engineAmount(float stored);
// Arpeggiator step counted in semitones over the base key, 0..126.
float storedStep(int semitones);

// Which sound stands in which part of the bank, by name (without "+").
enum class BankPart { essentials, motion, colours, templates };
inline constexpr int kBankParts = 4;
inline constexpr const char* kBankPartNames[] = {"essentials", "motion", "colours", "templates"};
inline constexpr int kBankPartFirst[] = {0, 128, 256, 373};
inline constexpr int kBankPartSize[] = {128, 128, 117, 10};

struct BankPlan {
    std::array<std::vector<std::string>, kBankParts> names;
    std::string file;
};

// The image that is embedded: 384 records, then the initial patch.
using FactoryImage = std::array<ProgramRecord, kProgramCount + 1>;

SoundTextStatus readBankPlan(std::string_view text, const std::string& file, BankPlan& plan);
// Places left free hold copies of `init` named "- Init 001" and so on, which sort last.
SoundTextStatus assembleBank(const BankPlan& plan, std::span<const Sound> sounds,
                             const ProgramRecord& init, FactoryImage& image);
// The plan that assembles to `image`; free places are not in it.
std::string writeBankPlan(const FactoryImage& image);
bool isFreePlace(const ProgramRecord& record, const ProgramRecord& init);

} // namespace tolm
