#include "tools/audition/exceptions.h"

#include "patch/soundTextToml.h"
#include "tools/soundFiles.h"

#include <algorithm>
#include <iterator>

namespace tolm {
namespace {

[[noreturn]] void fail(const std::string& file, const toml::node& node, std::string_view key,
                       const std::string& message)
{
    throw Failure(errorAt(file, node, key, message).text());
}

std::string textOf(const std::string& file, const toml::table& table, std::string_view key)
{
    const toml::node* node = table.get(key);
    const auto text = node ? node->value_exact<std::string>() : std::nullopt;
    if (!text || text->empty())
        fail(file, node ? *node : table, key, "a text is expected here");
    return *text;
}

RangeException readException(const std::string& file, const toml::node& node)
{
    const toml::table* table = node.as_table();
    if (!table)
        fail(file, node, "exception", "an exception is a table of program, figure and reason");
    for (const auto& [key, value] : *table)
        if (key != "program" && key != "figure" && key != "reason")
            fail(file, value, key.str(), "unknown key");
    const std::string figure = textOf(file, *table, "figure");
    const auto column =
        std::find_if(std::begin(kDescriptorColumns), std::end(kDescriptorColumns),
                     [&](const DescriptorColumn& row) { return row.key == figure; });
    if (column == std::end(kDescriptorColumns))
        fail(file, *table, "figure", "\"" + figure + "\" is no figure");
    return {textOf(file, *table, "program"),
            static_cast<Descriptor>(column - std::begin(kDescriptorColumns)),
            textOf(file, *table, "reason")};
}

} // namespace

std::vector<RangeException> readExceptions(const std::filesystem::path& directory)
{
    const std::filesystem::path path = directory / kExceptionFile;
    if (!std::filesystem::exists(path))
        return {};
    toml::table table;
    check(parseToml(readFile(path), path.string(), table));
    std::vector<RangeException> exceptions;
    for (const auto& [key, node] : table) {
        const toml::array* list = node.as_array();
        if (key != "exception" || !list)
            fail(path.string(), node, key.str(), "unknown key");
        for (const toml::node& entry : *list)
            exceptions.push_back(readException(path.string(), entry));
    }
    return exceptions;
}

const std::string* excuse(const std::vector<RangeException>& exceptions, std::string_view program,
                          Descriptor descriptor)
{
    const auto found =
        std::find_if(exceptions.begin(), exceptions.end(), [&](const RangeException& e) {
            return e.program == program && e.descriptor == descriptor;
        });
    return found == exceptions.end() ? nullptr : &found->reason;
}

} // namespace tolm
