#pragma once
// Names of MIDI keys.

#include "host/textNumbers.h"

#include <cctype>

namespace tolm {

// Key number of a name such as "C4" (middle C, 60), "F#3" or "Bb-1".
inline std::optional<int> keyFromName(std::string_view name)
{
    constexpr std::string_view kLetters = "C.D.EF.G.A.B"; // at their semitones
    if (name.empty())
        return std::nullopt;
    const char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(name[0])));
    const std::size_t semitone = kLetters.find(letter);
    if (letter == '.' || semitone == std::string_view::npos)
        return std::nullopt;
    name.remove_prefix(1);
    int key = static_cast<int>(semitone);
    for (; !name.empty() && (name[0] == '#' || name[0] == 'b'); name.remove_prefix(1))
        key += name[0] == '#' ? 1 : -1;
    const std::optional<int> octave = wholeNumber(name);
    if (!octave || *octave < -1 || *octave > 9)
        return std::nullopt;
    key += 12 * (*octave + 1);
    return key >= 0 && key <= 127 ? std::optional(key) : std::nullopt;
}

} // namespace tolm
