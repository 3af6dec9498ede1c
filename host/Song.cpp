// Musical time to frames, and the release of what a song leaves sounding.

#include "host/Song.h"

#include <algorithm>
#include <bitset>
#include <cmath>

namespace tolm {
namespace {

constexpr std::uint8_t kNoteOff = 0x80;
constexpr std::uint8_t kNoteOn = 0x90;
constexpr std::uint8_t kController = 0xB0;
constexpr std::uint8_t kProgramChange = 0xC0;
constexpr std::uint8_t kBankSelect = 0;
constexpr std::uint8_t kSustainPedal = 64;
constexpr std::size_t kChannels = 16;
constexpr std::size_t kKeys = 128;

bool selectsProgram(const FrameEvent& event)
{
    const int kind = event.bytes[0] & 0xF0;
    return kind == kProgramChange || (kind == kController && event.bytes[1] == kBankSelect);
}

// Which keys and pedals of the 16 channels are down.
struct Held {
    std::bitset<kChannels * kKeys> keys;
    std::bitset<kChannels> pedals;

    void follow(const FrameEvent& event)
    {
        const std::size_t channel = event.bytes[0] & 0x0Fu;
        const std::size_t key = channel * kKeys + event.bytes[1];
        const int kind = event.bytes[0] & 0xF0;
        if (kind == kNoteOn || kind == kNoteOff)
            keys[key] = kind == kNoteOn && event.bytes[2] > 0;
        else if (kind == kController && event.bytes[1] == kSustainPedal)
            pedals[channel] = event.bytes[2] >= 64;
    }

    void release(std::vector<FrameEvent>& events, std::int64_t frame) const
    {
        const auto byte = [](std::size_t value) { return static_cast<std::uint8_t>(value); };
        for (std::size_t i = 0; i < keys.size(); ++i)
            if (keys[i])
                events.push_back({
                    frame, {byte(kNoteOff | i / kKeys), byte(i % kKeys), 0}
                });
        for (std::size_t i = 0; i < pedals.size(); ++i)
            if (pedals[i])
                events.push_back({
                    frame, {byte(kController | i), kSustainPedal, 0}
                });
    }
};

} // namespace

std::int64_t frameAt(double seconds, double sampleRateHz)
{
    constexpr double kHalfUp = 0.5 + 1e-6;
    return static_cast<std::int64_t>(std::floor(seconds * sampleRateHz + kHalfUp));
}

std::vector<FrameEvent> eventsOf(const Song& song, const std::vector<std::size_t>& tracks,
                                 double sampleRateHz, bool keepProgramChanges)
{
    std::vector<FrameEvent> events;
    for (const std::size_t track : tracks)
        for (const TimedMessage& message : song.tracks[track].messages)
            events.push_back(
                {frameAt(song.tempo.secondsAt(message.quarter), sampleRateHz), message.bytes});
    if (!keepProgramChanges)
        std::erase_if(events, selectsProgram);
    std::stable_sort(events.begin(), events.end(),
                     [](const FrameEvent& a, const FrameEvent& b) { return a.frame < b.frame; });
    Held held;
    for (const FrameEvent& event : events)
        held.follow(event);
    held.release(events, frameAt(song.tempo.secondsAt(song.lengthQuarters), sampleRateHz));
    return events;
}

} // namespace tolm
