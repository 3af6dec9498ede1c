#pragma once
// Sizes and fixed numbers that several folders share.

#include <cstdint>

namespace tolm {

inline constexpr int kVoiceCount = 72;
inline constexpr int kMaxStack = 8; // unison voices of one key
inline constexpr int kMinPolyphony = 8;
inline constexpr int kKeyCount = 128;

// An engine call never renders more frames than this; longer stretches are cut by the block driver.
inline constexpr int kMaxSliceFrames = 64;

inline constexpr int kParameterCount = 349;       // every id that setParameter knows: 0..348
inline constexpr int kStoredParameterCount = 329; // ids kept in a program: 0..328
inline constexpr int kHostParameterCount = 111;   // ids that the host sees: 0..110

inline constexpr int kProgramCount = 384;
inline constexpr int kBankSize = 128;
inline constexpr int kBankCount = kProgramCount / kBankSize;

inline constexpr int kMatrixRows = 24;       // rows that the engine reads
inline constexpr int kStoredMatrixRows = 32; // rows that a program stores
inline constexpr int kArpSteps = 32;
inline constexpr int kArpTicksPerStep = 32;
inline constexpr int kArpTicks = kArpSteps * kArpTicksPerStep;
inline constexpr int kEffectSlots = 6;

// Pitches are in 1/128 semitone; MIDI key k sounds at table entry (k + 36) * 128.
inline constexpr int kPitchUnitsPerSemitone = 128;
inline constexpr int kPitchUnitsPerOctave = 12 * kPitchUnitsPerSemitone;
inline constexpr int kPitchCount = 19968;
inline constexpr int kSemitoneCount = kPitchCount / kPitchUnitsPerSemitone; // 156
inline constexpr int kFirstKeyPitch = 36 * kPitchUnitsPerSemitone;          // entry of MIDI key 0

// Phases are unsigned 32-bit turns; a table is read at phase >> kTableShift.
inline constexpr int kTableSize = 2048;
inline constexpr int kTableMask = kTableSize - 1;
inline constexpr int kTableShift = 21;
inline constexpr double kPhaseTurn = 4294967296.0;

inline constexpr int kWaveCount = 70;
inline constexpr int kWaveOctaves = 6;

inline constexpr double kDefaultTempo = 120.0; // beats per minute, when the host tells none
inline constexpr double kPi = 3.14159265358979323846;

} // namespace tolm
