// Reader of Standard MIDI Files. Every length and data byte is checked before it is used, so that
// a damaged file ends in one message: the packaged MIDI file library aborts the whole program on
// some of them.

#include "host/Failure.h"
#include "host/Song.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <span>

namespace tolm {
namespace {

constexpr std::size_t kMaxFileBytes = std::size_t{16} << 20;
constexpr std::size_t kReadBytes = 64 << 10;
constexpr double kMaxSeconds = 24.0 * 3600.0;
constexpr double kMicrosecondsPerMinute = 60e6;

enum Meta : std::uint8_t {
    metaTrackName = 3,
    metaEndOfTrack = 0x2F,
    metaTempo = 0x51,
    metaTimeSignature = 0x58
};

class Bytes {
public:
    explicit Bytes(std::span<const std::uint8_t> data) : data_(data) {}

    bool empty() const { return data_.empty(); }
    std::uint8_t peek() const { return need(1)[0]; }
    std::uint8_t byte() { return take(1)[0]; }

    std::span<const std::uint8_t> take(std::size_t count)
    {
        const auto taken = need(count);
        data_ = data_.subspan(count);
        return taken;
    }

    std::uint32_t bigEndian(std::size_t count)
    {
        std::uint32_t value = 0;
        for (const std::uint8_t b : take(count))
            value = value << 8 | b;
        return value;
    }

    std::uint8_t dataByte()
    {
        const std::uint8_t b = byte();
        if (b > 127)
            throw Failure("a data byte of " + std::to_string(b));
        return b;
    }

    // Seven bits per byte, most significant first, at most four bytes.
    std::uint32_t variableLength()
    {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i) {
            const std::uint8_t b = byte();
            value = value << 7 | (b & 0x7Fu);
            if (b < 128)
                return value;
        }
        throw Failure("a length of more than four bytes");
    }

private:
    std::span<const std::uint8_t> need(std::size_t count) const
    {
        if (count > data_.size())
            throw Failure("it ends too early");
        return data_.first(count);
    }

    std::span<const std::uint8_t> data_;
};

struct TempoChange {
    double quarter;
    double bpm;
};

struct Reader {
    double ticksPerQuarter = 1.0;
    bool clockTime = false; // ticks are fractions of a second; tempo events mean nothing
    Song song;
    std::vector<TempoChange> tempos;
    std::vector<TimeSignature> signatures;

    void readHeader(Bytes header);
    void readTrack(Bytes chunk);
    void readMeta(Bytes& chunk, double quarter, Track& track);
    void buildTempoMap();
};

void Reader::readHeader(Bytes header)
{
    const std::uint32_t format = header.bigEndian(2);
    if (format > 1)
        throw Failure("format " + std::to_string(format) + " is not played, only 0 and 1");
    header.take(2); // the number of tracks is counted, not believed
    const std::uint32_t division = header.bigEndian(2);
    clockTime = (division & 0x8000u) != 0;
    const int framesPerSecond = 256 - static_cast<int>(division >> 8);
    const double realRate = framesPerSecond == 29 ? 30000.0 / 1001.0 : framesPerSecond;
    ticksPerQuarter = clockTime ? realRate * (division & 0xFFu) * 60.0 / TempoMap::kDefaultBpm
                                : static_cast<double>(division);
    if (ticksPerQuarter <= 0.0)
        throw Failure("a beat of no ticks");
}

void Reader::readMeta(Bytes& chunk, double quarter, Track& track)
{
    const std::uint8_t kind = chunk.byte();
    Bytes content(chunk.take(chunk.variableLength()));
    if (kind == metaTrackName && track.name.empty()) {
        while (!content.empty())
            track.name.push_back(static_cast<char>(content.byte()));
    } else if (kind == metaTempo) {
        if (const std::uint32_t microseconds = content.bigEndian(3); microseconds > 0)
            tempos.push_back({quarter, kMicrosecondsPerMinute / microseconds});
    } else if (kind == metaTimeSignature) {
        const int numerator = content.byte();
        const int power = content.byte();
        if (numerator > 0 && power <= 6)
            signatures.push_back({quarter, numerator, 1 << power});
    }
}

void Reader::readTrack(Bytes chunk)
{
    Track track;
    std::int64_t tick = 0;
    std::uint8_t status = 0;
    while (!chunk.empty()) {
        tick += chunk.variableLength();
        const double quarter = static_cast<double>(tick) / ticksPerQuarter;
        song.lengthQuarters = std::max(song.lengthQuarters, quarter);
        const std::uint8_t first = chunk.peek() >= 0x80 ? chunk.byte() : status;
        if (first == 0xFF) {
            const bool end = chunk.peek() == metaEndOfTrack;
            readMeta(chunk, quarter, track);
            if (end)
                break;
        } else if (first == 0xF0 || first == 0xF7) {
            chunk.take(chunk.variableLength());
        } else if (first >= 0x80 && first < 0xF0) {
            status = first; // following messages of this kind may leave it out
            const bool oneByte = (first & 0xE0) == 0xC0;
            TimedMessage message{quarter, {first, chunk.dataByte(), 0}};
            if (!oneByte)
                message.bytes[2] = chunk.dataByte();
            track.messages.push_back(message);
        } else {
            throw Failure("a message without a status");
        }
    }
    song.tracks.push_back(std::move(track));
}

void Reader::buildTempoMap()
{
    const auto earlier = [](const auto& a, const auto& b) { return a.quarter < b.quarter; };
    std::stable_sort(tempos.begin(), tempos.end(), earlier);
    std::stable_sort(signatures.begin(), signatures.end(), earlier);
    if (!clockTime)
        for (const TempoChange& change : tempos)
            song.tempo.addTempo(change.quarter, change.bpm);
    for (const TimeSignature& signature : signatures)
        song.tempo.addSignature(signature);
}

Song parse(Bytes file)
{
    const auto isChunk = [](std::span<const std::uint8_t> id, std::string_view name) {
        return std::equal(id.begin(), id.end(), name.begin(), name.end());
    };
    if (!isChunk(file.take(4), "MThd"))
        throw Failure("no header");
    Reader reader;
    reader.readHeader(Bytes(file.take(file.bigEndian(4))));
    while (!file.empty()) {
        const auto id = file.take(4);
        const auto content = file.take(file.bigEndian(4));
        if (isChunk(id, "MTrk"))
            reader.readTrack(Bytes(content));
    }
    if (reader.song.tracks.empty())
        throw Failure("no track");
    reader.buildTempoMap();
    if (reader.song.tempo.secondsAt(reader.song.lengthQuarters) > kMaxSeconds)
        throw Failure("it lasts more than 24 hours");
    return std::move(reader.song);
}

} // namespace

Song readMidiFile(const std::filesystem::path& path)
{
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        throw Failure(quoted(path.string()) + " is a directory, not a MIDI file");
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw Failure("cannot open the MIDI file " + quoted(path.string()));
    std::vector<std::uint8_t> bytes;
    for (std::size_t size = 0; file && size <= kMaxFileBytes; size = bytes.size()) {
        bytes.resize(size + kReadBytes);
        file.read(reinterpret_cast<char*>(bytes.data()) + size, kReadBytes);
        bytes.resize(size + static_cast<std::size_t>(file.gcount()));
    }
    if (bytes.size() > kMaxFileBytes)
        throw Failure(quoted(path.string()) + " is too large for a MIDI file");
    try {
        return parse(Bytes(bytes));
    } catch (const Failure& reason) {
        throw Failure(quoted(path.string()) + " is no playable MIDI file: " + reason.what());
    }
}

} // namespace tolm
