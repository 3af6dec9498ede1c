#pragma once
// The TOML parser, set up to return its errors, and what both readers of texts do with it.

#define TOML_EXCEPTIONS 0
// Some damaged texts break what the parser asserts and, in release builds, lets the compiler take
// for granted. With neither they are errors like others.
#pragma push_macro("NDEBUG")
#undef NDEBUG
#define TOML_ASSERT(expression) static_cast<void>(0)
#include <toml++/toml.h>
#pragma pop_macro("NDEBUG")

#include "patch/soundText.h"
#include "patch/soundTextPlain.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace tolm {

inline SoundTextError errorAt(const std::string& file, const toml::node& node, std::string_view key,
                              std::string message)
{
    return {file, static_cast<int>(node.source().begin.line), std::string(key), std::move(message)};
}

// The whole text as a table, or the parser's complaint.
inline SoundTextStatus parseToml(std::string_view text, const std::string& file, toml::table& table)
{
    std::string plain(text);
    if (const int line = makePlain(plain); line != 0)
        return SoundTextError{file, line, {}, "only comments may have letters beyond ASCII"};
    toml::parse_result result = toml::parse(plain, file);
    if (!result) {
        const toml::parse_error& error = result.error();
        // The parser reports bytes of the text as they are: keep the message on one clean line.
        std::string message(error.description());
        std::replace_if(
            message.begin(), message.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
        return SoundTextError{file, static_cast<int>(error.source().begin.line), {}, message};
    }
    table = std::move(result).table();
    return {};
}

} // namespace tolm
