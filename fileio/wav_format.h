// The bytes of a WAV file: the reader's messages, the 44-byte header we write, and the
// sample encodings. No file access here; wav_file.cpp does the reading and writing.
#pragma once

#include <array>
#include <cstdint>

#include "core/sample_value.h"

namespace orv {

// The reader's messages. The first one is also the value on success and on the one
// failure that has no message of its own (a chunk other than "fact" before "data").
// Arrays, not pointers, so that each text has one address in the whole program.
inline constexpr char kWavNoErrors[] = "No errors occurred.";
inline constexpr char kWavCannotOpen[] = "Cannot open File.";
inline constexpr char kWavNoRiff[] = "\"RIFF\" not found.";
inline constexpr char kWavNoWaveFmt[] = "\"WAVEfmt \" not found.";
inline constexpr char kWavChunkTooSmall[] = "chunk too small.";
inline constexpr char kWavNotPcm[] = "A value must be 1.";
inline constexpr char kWavBadChannels[] = "MonoStereo must be 1 or 2.";

// Safety refusals of our own, beyond the reader's classic texts (see readWaveChannels).
inline constexpr char kWavTooManySamples[] =
    "The file holds more samples per channel than a wave can hold.";
// Why a save stopped by its cancel flag did not happen.
inline constexpr char kWavSaveInterrupted[] = "The save was interrupted; the file was not replaced.";
// "The sample frequency N Hz is not usable; ..." (sample_frequency.h) for the frequency N
// of the file. The text lives in a buffer of the calling thread until its next call; the
// reader returns it like its constant texts.
const char* wavFrequencyMessage(std::uint32_t freq);
// Whether `message` is the text wavFrequencyMessage gave this thread last.
bool isWavFrequencyMessage(const char* message);

inline constexpr char kMemoryCaption[] = "System Error";
inline constexpr char kMemoryMessage[] = "There is not enough memmory for this operation.";

inline constexpr std::uint32_t kWavHeaderSize = 44;
using WavHeader = std::array<std::uint8_t, kWavHeaderSize>;

// The header written in front of `dataSize` bytes of samples. The RIFF size is dataSize + 32
// (not + 36): every file this program ever wrote has it so, and the reader ignores it.
WavHeader makeWavHeader(std::uint16_t channels, std::int32_t freq, std::uint16_t bytesPSample,
                        std::uint32_t dataSize);

// Bytes per sample from the "bits per sample" field: 4-bit files are taken as 16-bit, any
// other width is bits / 8 (so 24-bit gives 3 and is then read as 16-bit samples).
constexpr int bytesPerSampleFromBits(std::int32_t bitsPerSample) {
    return bitsPerSample == 4 ? 2 : bitsPerSample / 8;
}

// Samples per channel held by a data chunk of `dataSize` bytes. Every width but 1 byte is
// read as 16-bit. Each division truncates toward zero.
constexpr std::int64_t samplesPerChannel(std::uint64_t dataSize, int channels, int bytesPSample) {
    const std::uint64_t bytes = bytesPSample == 1 ? 1 : 2;
    return std::int64_t(dataSize / (bytes * (channels == 2 ? 2 : 1)));
}

// 8-bit sample written: the quotient v / 256 (toward zero) + 128, modulo 256.
// 32767 -> 255, -32768 -> 0, -1 -> 128, -256 -> 127.
constexpr std::uint8_t encode8(WaveVal v) {
    return static_cast<std::uint8_t>((v / 256 + 128) & 0xFF);
}

// 8-bit sample read: (byte - 128) x 256. 0 -> -32768, 128 -> 0, 255 -> 32512.
constexpr WaveVal decode8(std::uint8_t b) { return wrap16((std::int32_t(b) - 128) * 256); }

// Little-endian field access.
constexpr std::uint16_t getLE16(const std::uint8_t* p) {
    return static_cast<std::uint16_t>(p[0] | (p[1] << 8));
}
constexpr std::uint32_t getLE32(const std::uint8_t* p) {
    return std::uint32_t(p[0]) | (std::uint32_t(p[1]) << 8) | (std::uint32_t(p[2]) << 16) |
           (std::uint32_t(p[3]) << 24);
}
constexpr void putLE16(std::uint8_t* p, std::uint16_t v) {
    p[0] = std::uint8_t(v);
    p[1] = std::uint8_t(v >> 8);
}
constexpr void putLE32(std::uint8_t* p, std::uint32_t v) {
    p[0] = std::uint8_t(v);
    p[1] = std::uint8_t(v >> 8);
    p[2] = std::uint8_t(v >> 16);
    p[3] = std::uint8_t(v >> 24);
}

// ---- sample conversion between file bytes and channels ---------------------------------
// `count` is in samples per channel; the byte buffers hold whole frames.

void decodeMono8(const std::uint8_t* in, WaveVal* out, std::int32_t count);
void decodeMono16(const std::uint8_t* in, WaveVal* out, std::int32_t count);
void decodeStereo8(const std::uint8_t* in, WaveVal* left, WaveVal* right, std::int32_t count);
void decodeStereo16(const std::uint8_t* in, WaveVal* left, WaveVal* right, std::int32_t count);

void encodeMono8(const WaveVal* in, std::uint8_t* out, std::int32_t count);
void encodeMono16(const WaveVal* in, std::uint8_t* out, std::int32_t count);
void encodeStereo8(const WaveVal* left, const WaveVal* right, std::uint8_t* out,
                   std::int32_t count);
void encodeStereo16(const WaveVal* left, const WaveVal* right, std::uint8_t* out,
                    std::int32_t count);

}  // namespace orv
