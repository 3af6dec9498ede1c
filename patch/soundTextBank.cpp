// The plan of the factory bank, and the bank that it gives with the sounds.

#include "patch/soundTextToml.h"

#include "patch/soundTextRules.h"

#include <cstdio>
#include <map>
#include <set>

namespace tolm {
namespace {

constexpr std::string_view kFreeName = "- Init ";

SoundTextError planError(const BankPlan& plan, int part, const std::string& message)
{
    return {plan.file, 0, kBankPartNames[part], message};
}

ProgramRecord freePlace(const ProgramRecord& init, int number)
{
    char name[32];
    std::snprintf(name, sizeof name, "%s%03d", kFreeName.data(), number);
    ProgramRecord record = init;
    putName(record, name);
    putDescription(record, "A free place that holds the initial sound.");
    return record;
}

using SoundsByName = std::map<std::string, const Sound*, std::less<>>;

SoundTextStatus indexSounds(std::span<const Sound> sounds, SoundsByName& index)
{
    for (const Sound& sound : sounds) {
        const std::string name(withoutMark(nameOf(sound.record)));
        const auto [place, added] = index.emplace(name, &sound);
        if (!added)
            return SoundTextError{sound.file, sound.line, "name",
                                  "\"" + name + "\" is already in " + place->second->file};
    }
    return {};
}

SoundTextStatus placePart(const BankPlan& plan, int part, SoundsByName& unplaced,
                          const SoundsByName& all, FactoryImage& image)
{
    const auto& names = plan.names[static_cast<std::size_t>(part)];
    if (names.size() > static_cast<std::size_t>(kBankPartSize[part]))
        return planError(plan, part,
                         "more than " + std::to_string(kBankPartSize[part]) + " sounds");
    auto place = image.begin() + kBankPartFirst[part];
    for (const std::string& name : names) {
        const auto sound = unplaced.find(name);
        if (sound == unplaced.end())
            return planError(plan, part,
                             "\"" + name +
                                 (all.contains(name) ? "\" stands here twice" : "\" is no sound"));
        *place++ = sound->second->record;
        unplaced.erase(sound);
    }
    return {};
}

} // namespace

SoundTextStatus readBankPlan(std::string_view text, const std::string& file, BankPlan& plan)
{
    toml::table table;
    if (auto error = parseToml(text, file, table))
        return error;
    BankPlan read;
    read.file = file;
    for (const auto& [key, node] : table) {
        const auto part =
            std::find(std::begin(kBankPartNames), std::end(kBankPartNames), key.str());
        const toml::array* list = node.as_array();
        if (part == std::end(kBankPartNames) || !list)
            return errorAt(file, node, key.str(), "only lists of names for the parts of the bank");
        for (const toml::node& entry : *list) {
            const auto name = entry.value_exact<std::string>();
            if (!name)
                return errorAt(file, entry, key.str(), "a name is expected here");
            read.names[static_cast<std::size_t>(part - kBankPartNames)].push_back(*name);
        }
    }
    plan = std::move(read);
    return {};
}

SoundTextStatus assembleBank(const BankPlan& plan, std::span<const Sound> sounds,
                             const ProgramRecord& init, FactoryImage& image)
{
    SoundsByName all;
    if (auto error = indexSounds(sounds, all))
        return error;
    image.fill(ProgramRecord{});
    image.back() = init;
    image[kProgramCount - 1] = init;
    SoundsByName unplaced = all;
    for (int part = 0; part < kBankParts; ++part)
        if (auto error = placePart(plan, part, unplaced, all, image))
            return error;
    if (!unplaced.empty()) {
        const auto& [name, sound] = *unplaced.begin();
        return SoundTextError{sound->file, sound->line, "name",
                              "\"" + name + "\" has no place in " + plan.file};
    }
    int number = 0;
    for (ProgramRecord& record : image)
        if (nameOf(record).empty())
            record = freePlace(init, ++number);
    return {};
}

bool isFreePlace(const ProgramRecord& record, const ProgramRecord& init)
{
    return nameOf(record).starts_with(kFreeName) && record.values == init.values;
}

std::string writeBankPlan(const FactoryImage& image)
{
    std::string text;
    for (int part = 0; part < kBankParts; ++part) {
        text += std::string(part > 0 ? "\n" : "") + kBankPartNames[part] + " = [\n";
        const int first = kBankPartFirst[part];
        for (int program = first; program < first + kBankPartSize[part]; ++program) {
            const ProgramRecord& record = image[static_cast<std::size_t>(program)];
            if (!isFreePlace(record, image.back()))
                text += "    \"" + std::string(withoutMark(nameOf(record))) + "\",\n";
        }
        text += "]\n";
    }
    return text;
}

} // namespace tolm
