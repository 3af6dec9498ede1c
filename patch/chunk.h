#pragma once
// The plug-in's state as hosts and preset files keep it: a 40-byte header and the programs of one
// bank, little-endian.

#include "patch/chunkRecord.h"
#include "patch/programStore.h"

#include <cstdint>
#include <span>

namespace tolm {

inline constexpr std::size_t kChunkHeaderBytes = 40;
inline constexpr std::size_t kChunkBytes = kChunkHeaderBytes + kBankSize * kRecordBytes;
static_assert(kChunkBytes == 235560);

inline constexpr int kChunkVersion = 16;
inline constexpr int kMaxBendRange = 64; // semitones

// What a chunk keeps besides the programs.
struct ChunkState {
    int currentProgram = 0; // 0..383
    int currentBank = 0;    // 0..2, the bank that is written
    int polyphony = 12;
    int bendUpRange = 2; // semitones, 0..64
    int bendDownRange = 2;
    int engineVersion = kChunkVersion;
};

// Fills the whole buffer.
void writeChunk(const ProgramStore& store, const ChunkState& state,
                std::span<std::uint8_t, kChunkBytes> to);

// What loading needs of the plug-in. Called on the loading thread, in the order of the load.
class ChunkHost {
public:
    virtual ~ChunkHost() = default;

    // Semitones 0..64. The only call that a rejected chunk may lead to.
    virtual void setBendRanges(int up, int down) = 0;

    // Brackets all that follows: no block runs between them and the audio thread never waits. False
    // when processing cannot be paused; the load is then given up.
    virtual bool pauseProcessing() = 0;
    virtual void resumeProcessing() = 0;

    virtual int currentProgram() const = 0;     // 0..383
    virtual int currentBank() const = 0;        // 0..2
    virtual bool isLoadingFromFile() const = 0; // a preset file, not the host, brings the chunk

    virtual void setEngineVersion(int version) = 0;
    // Smoothing of the modulation wheel per engine call, and of pitch bend out of 128.
    virtual void setSmoothing(double modWheelFactor, int bendSmoothing) = 0;

    // The full selection: bank, index, engine load and editor. `program` is 0..383.
    virtual void setProgram(int program) = 0;
    // The engine's load alone.
    virtual void loadProgram(int program) = 0;
};

enum class ChunkMessage { none, veryOld, resaveOldProgram };

inline constexpr const char* kChunkMessageTitle = "Info";
const char* chunkMessageText(ChunkMessage message); // nullptr for none

struct ChunkResult {
    bool loaded = false;                       // false: nothing changed but the bend ranges
    ChunkMessage message = ChunkMessage::none; // to be shown
};

// Loads a bank, or with `isPreset` one program into the current one. All checks come before the
// first write, and nothing after them can fail.
ChunkResult readChunk(std::span<const std::uint8_t> bytes, bool isPreset, ProgramStore& store,
                      ChunkHost& host);

} // namespace tolm
