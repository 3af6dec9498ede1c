// Text to records.

#include "patch/soundTextToml.h"

#include "patch/soundTextFields.h"
#include "patch/soundTextRules.h"
#include "plugin/catalogue.h"

#include <cmath>
#include <iterator>

namespace tolm {
namespace {

struct Reader {
    const std::string& file;
    ProgramRecord record;
    SoundTextStatus error;

    // Notes the first error; false, so that callers can return it.
    bool fail(const toml::node& node, std::string_view key, std::string message)
    {
        if (!error)
            error = errorAt(file, node, key, std::move(message));
        return false;
    }
    float& value(int id) { return record.values[static_cast<std::size_t>(id)]; }
};

bool readNumber(Reader& r, const toml::node& node, std::string_view key, double low, double high,
                double& number)
{
    const auto read = node.is_number() ? node.value<double>() : std::nullopt;
    if (!read)
        return r.fail(node, key, "a number is expected here");
    if (!(*read >= low && *read <= high)) // refuses NaN too
        return r.fail(node, key, "out of range");
    number = *read;
    return true;
}

bool readField(Reader& r, int id, std::string_view key, const toml::node& node)
{
    if (const auto on = node.value_exact<bool>()) {
        if (!isToggle(id))
            return r.fail(node, key, "this is no switch");
        r.value(id) = *on ? 1.0f : 0.0f;
        return true;
    }
    if (const auto words = node.value_exact<std::string_view>()) {
        const auto value = valueOfWords(id, *words);
        if (!value)
            return r.fail(node, key, "no value is called \"" + std::string(*words) + "\"");
        r.value(id) = *value;
        return true;
    }
    double number = 0.0;
    if (!readNumber(r, node, key, 0.0, static_cast<double>(largestValue(id)), number))
        return false;
    r.value(id) = static_cast<float>(number);
    return true;
}

bool readText(Reader& r, std::string_view key, const toml::node& node, std::string_view& text)
{
    const auto read = node.value_exact<std::string_view>();
    if (!read)
        return r.fail(node, key, "a text is expected here");
    text = *read;
    return true;
}

bool readName(Reader& r, std::string_view key, const toml::node& node)
{
    std::string_view name;
    if (!readText(r, key, node, name))
        return false;
    if (const std::string problem = nameProblem(name); !problem.empty())
        return r.fail(node, key, problem);
    putName(r.record, name);
    return true;
}

bool readDescription(Reader& r, std::string_view key, const toml::node& node)
{
    std::string_view description;
    if (!readText(r, key, node, description))
        return false;
    if (const std::string problem = descriptionProblem(description); !problem.empty())
        return r.fail(node, key, problem);
    putDescription(r.record, description);
    return true;
}

// Array of at most `limit` entries, or null after an error.
const toml::array* readList(Reader& r, std::string_view key, const toml::node& node,
                            std::size_t limit)
{
    const toml::array* list = node.as_array();
    if (!list)
        r.fail(node, key, "a list is expected here");
    else if (list->size() > limit) {
        r.fail(node, key, "the list is longer than " + std::to_string(limit) + " entries");
        return nullptr;
    }
    return list;
}

// "." a rest, "-" a tie, a whole number semitones over the base key, any other number the value.
bool readStepNote(Reader& r, std::string_view key, const toml::node& node, float& step)
{
    if (const auto sign = node.value_exact<std::string_view>()) {
        if (*sign != "." && *sign != "-")
            return r.fail(node, key, "a step is \".\", \"-\" or a number of semitones");
        step = *sign == "." ? 0.0f : 1.0f;
        return true;
    }
    double number = 0.0;
    if (!readNumber(r, node, key, 0.0, node.is_integer() ? 126.0 : 1.0, number))
        return false;
    step = node.is_integer() ? storedStep(static_cast<int>(number)) : static_cast<float>(number);
    return true;
}

bool readStepVelocity(Reader& r, std::string_view key, const toml::node& node, float& step)
{
    double number = 0.0;
    if (!readNumber(r, node, key, 0.0, 1.0, number))
        return false;
    step = static_cast<float>(number);
    return true;
}

using StepReader = bool (*)(Reader&, std::string_view, const toml::node&, float&);

template <int firstId, StepReader readStep>
bool readSteps(Reader& r, std::string_view key, const toml::node& node)
{
    const toml::array* list = readList(r, key, node, kArpSteps);
    if (!list)
        return false;
    int id = firstId;
    for (const toml::node& entry : *list)
        if (!readStep(r, key, entry, r.value(id++)))
            return false;
    return true;
}

bool readEffectOrder(Reader& r, std::string_view key, const toml::node& node)
{
    const toml::array* list = readList(r, key, node, kEffectSlots);
    if (!list)
        return false;
    unsigned seen = 0;
    int id = kFirstEffectOrderId;
    for (const toml::node& entry : *list) {
        std::string_view name;
        if (!readText(r, key, entry, name))
            return false;
        const auto effect = std::find(std::begin(kEffectNames), std::end(kEffectNames), name);
        if (effect == std::end(kEffectNames))
            return r.fail(entry, key, "no effect is called \"" + std::string(name) + "\"");
        const auto kind = effect - std::begin(kEffectNames);
        seen |= 1u << kind;
        r.value(id++) = static_cast<float>(kind);
    }
    if (seen != (1u << kEffectSlots) - 1)
        return r.fail(node, key, "every effect must stand in the order once");
    return true;
}

bool readMenu(Reader& r, std::string_view key, const toml::node& node,
              std::optional<int> (*idOf)(std::string_view), float& stored)
{
    std::string_view name;
    if (!readText(r, key, node, name))
        return false;
    const auto id = idOf(name);
    if (!id)
        return r.fail(node, key, "no choice is called \"" + std::string(name) + "\"");
    stored = static_cast<float>(*id);
    return true;
}

std::optional<int> sourceOf(std::string_view name)
{
    return menuIdOf(kSourceMenu, name);
}
std::optional<int> destinationOf(std::string_view name)
{
    return menuIdOf(kDestinationMenu, name);
}

bool readRowEntry(Reader& r, int row, std::string_view key, const toml::node& node)
{
    if (key == "from")
        return readMenu(r, key, node, sourceOf, r.value(kModSource1 + row));
    if (key == "to")
        return readMenu(r, key, node, destinationOf, r.value(kModDestination1 + row));
    if (key == "voices")
        return readMenu(r, key, node, voiceMaskIdOf, r.value(kModVoices1 + row));
    const bool stored = key == "stored"; // an amount that no decimal number gives
    if (key != "amount" && !stored)
        return r.fail(node, key, "unknown key in a matrix row");
    double amount = 0.0;
    if (!readNumber(r, node, key, stored ? 0.0 : -1.0, 1.0, amount))
        return false;
    r.value(kModAmount1 + row) = stored ? static_cast<float>(amount) : storedAmount(amount);
    return true;
}

bool readRow(Reader& r, int row, std::string_view key, const toml::node& node)
{
    const toml::table* table = node.as_table();
    if (!table)
        return r.fail(node, key, "a matrix row is a table of from, to, amount and voices");
    for (const auto& [entryKey, entry] : *table)
        if (!readRowEntry(r, row, entryKey.str(), entry))
            return false;
    const bool complete = table->contains("from") && table->contains("to") &&
                          table->contains("amount") != table->contains("stored");
    if (!table->empty() && !complete)
        return r.fail(node, key, "a matrix row needs from, to and one amount");
    return true;
}

bool readMatrix(Reader& r, std::string_view key, const toml::node& node)
{
    const toml::array* list = readList(r, key, node, kMatrixRows);
    if (!list)
        return false;
    const ProgramRecord blank = blankRecord();
    std::copy(blank.values.begin() + kModSource1, blank.values.begin() + kArpNote1,
              r.record.values.begin() + kModSource1);
    int row = 0;
    for (const toml::node& entry : *list)
        if (!readRow(r, row++, key, entry))
            return false;
    return true;
}

// Everything in a program that is not a single parameter.
struct SpecialKey {
    const char* key;
    bool (*read)(Reader&, std::string_view key, const toml::node&);
};
constexpr SpecialKey kSpecialKeys[] = {
    {"name", readName},
    {"description", readDescription},
    {"matrix", readMatrix},
    {"Arp notes", readSteps<kArpNote1, readStepNote>},
    {"Arp second notes", readSteps<kArpVelocity1, readStepNote>},
    {"Arp velocities", readSteps<kArpVelocity1, readStepVelocity>},
    {"Effect order", readEffectOrder},
};

bool readEntry(Reader& r, std::string_view key, const toml::node& node)
{
    for (const SpecialKey& special : kSpecialKeys)
        if (key == special.key)
            return special.read(r, key, node);
    const int id = idOfKey(key);
    return id < 0 ? r.fail(node, key, "unknown key") : readField(r, id, key, node);
}

// What the tables of a text are called and which keys they may have.
struct TableForm {
    const char* name;
    bool (*allows)(std::string_view key);
};

bool isPatternKey(std::string_view key)
{
    constexpr std::string_view kLists[] = {"name", "Arp notes", "Arp second notes",
                                           "Arp velocities"};
    constexpr int kIds[] = {kArpRate, kArpLength, kArpSwing, kArpSync, kArpMode, kArpStepCount};
    const auto is = [&](int id) { return idOfKey(key) == id; };
    return std::find(std::begin(kLists), std::end(kLists), key) != std::end(kLists) ||
           std::any_of(std::begin(kIds), std::end(kIds), is);
}

constexpr TableForm kProgramForm{"program", [](std::string_view) { return true; }};
constexpr TableForm kPatternForm{"pattern", isPatternKey};

bool readTable(Reader& r, const TableForm& form, const toml::node& node)
{
    const std::string kind = form.name;
    const toml::table* table = node.as_table();
    if (!table)
        return r.fail(node, kind, "a " + kind + " is a table");
    if (!table->contains("name"))
        return r.fail(node, "name", "the " + kind + " has no name");
    if (table->contains("Arp velocities") && table->contains("Arp second notes"))
        return r.fail(node, "Arp second notes", "they take the place of the velocities");
    for (const auto& [key, entry] : *table) {
        if (!form.allows(key.str()))
            return r.fail(entry, key.str(), "a " + kind + " has no such key");
        if (!readEntry(r, key.str(), entry))
            return false;
    }
    return true;
}

// Appends the tables of a list, each a record that starts as `base`.
SoundTextStatus readTables(const std::string& file, const TableForm& form, const toml::node& node,
                           const ProgramRecord& base, std::vector<Sound>& sounds)
{
    const toml::array* tables = node.as_array();
    if (!tables)
        return errorAt(file, node, form.name, "unknown key");
    for (const toml::node& table : *tables) {
        Reader r{file, base, {}};
        if (!readTable(r, form, table))
            return r.error;
        sounds.push_back({r.record, file, static_cast<int>(table.source().begin.line)});
    }
    return {};
}

} // namespace

SoundTextStatus readSounds(std::string_view text, const std::string& file,
                           const ProgramRecord& base, std::vector<Sound>& sounds)
{
    toml::table table;
    if (auto error = parseToml(text, file, table))
        return error;
    ProgramRecord start = base;
    std::vector<Sound> read;
    if (const toml::node* category = table.get("category")) {
        Reader r{file, start, {}};
        if (!readField(r, kPatchCategory, "category", *category))
            return r.error;
        start = r.record;
    }
    for (const auto& [key, node] : table) {
        if (key.str() == "category")
            continue;
        if (key.str() != kProgramForm.name)
            return errorAt(file, node, key.str(), "unknown key");
        if (auto error = readTables(file, kProgramForm, node, start, read))
            return error;
    }
    sounds.insert(sounds.end(), read.begin(), read.end());
    return {};
}

SoundTextStatus readPatterns(std::string_view text, const std::string& file,
                             const ProgramRecord& base, std::vector<Sound>& patterns)
{
    toml::table table;
    if (auto error = parseToml(text, file, table))
        return error;
    std::vector<Sound> read;
    for (const auto& [key, node] : table) {
        if (key.str() != kPatternForm.name)
            return errorAt(file, node, key.str(), "unknown key");
        if (auto error = readTables(file, kPatternForm, node, base, read))
            return error;
    }
    patterns.insert(patterns.end(), read.begin(), read.end());
    return {};
}

} // namespace tolm
