// Note lists of the command line: "C4 0.5, E4+G4@100 1, R 0.5".

#include "host/Failure.h"
#include "host/Song.h"
#include "host/keyName.h"

namespace tolm {
namespace {

constexpr std::uint8_t kNoteOff = 0x80;
constexpr std::uint8_t kNoteOn = 0x90;
constexpr int kDefaultVelocity = 100;
constexpr double kMaxBeats = 100000.0;

std::uint8_t keyOrFail(std::string_view name)
{
    const std::optional<int> key = keyFromName(name);
    if (!key)
        throw Failure("no such note: " + quoted(std::string(name)) +
                      " (C-1 to G9, with # or b; R is a rest)");
    return static_cast<std::uint8_t>(*key);
}

// One entry: adds its notes at `start` and returns its length in beats.
double addEntry(std::string_view entry, double start, Track& track)
{
    const std::size_t space = entry.find_first_of(" \t");
    std::string_view keys = entry.substr(0, space);
    const std::string_view rest = space == entry.npos ? "" : trimmed(entry.substr(space));
    const std::optional<double> beats = rest.empty() ? 1.0 : decimalNumber(rest);
    if (!beats || *beats <= 0.0 || *beats > kMaxBeats)
        throw Failure("no length in beats: " + quoted(std::string(rest)));

    int velocity = kDefaultVelocity;
    if (const std::size_t at = keys.find('@'); at != keys.npos) {
        velocity = wholeNumber(keys.substr(at + 1)).value_or(0);
        if (velocity < 1 || velocity > 127)
            throw Failure("no velocity from 1 to 127: " + quoted(std::string(keys)));
        keys = keys.substr(0, at);
    }
    if (keys == "R" || keys == "r")
        return *beats;

    std::vector<TimedMessage> releases;
    for (const std::string_view name : split(keys, '+')) {
        const std::uint8_t key = keyOrFail(name);
        track.messages.push_back({start, {kNoteOn, key, static_cast<std::uint8_t>(velocity)}});
        releases.push_back({start + *beats, {kNoteOff, key, 0}});
    }
    track.messages.insert(track.messages.end(), releases.begin(), releases.end());
    return *beats;
}

} // namespace

Song parseNoteList(std::string_view text)
{
    Song song;
    song.tracks.push_back({"notes", {}});
    for (const std::string_view entry : split(text, ','))
        song.lengthQuarters += addEntry(trimmed(entry), song.lengthQuarters, song.tracks[0]);
    if (song.lengthQuarters > kMaxBeats)
        throw Failure("the note list is too long");
    return song;
}

} // namespace tolm
