#include "fileio/wav_format.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "fileio/sample_frequency.h"

namespace orv {

namespace {
constexpr bool kLittleHost = std::endian::native == std::endian::little;

[[maybe_unused]] inline std::uint16_t swap16(std::uint16_t v) {
    return static_cast<std::uint16_t>((v << 8) | (v >> 8));
}
}  // namespace

namespace {
thread_local std::array<char, 160> frequencyText{};
}  // namespace

const char* wavFrequencyMessage(std::uint32_t freq) {
    const std::string text = sampleFrequencyReason(freq);
    const std::size_t n = std::min(text.size(), frequencyText.size() - 1);
    std::memcpy(frequencyText.data(), text.data(), n);
    frequencyText[n] = '\0';
    return frequencyText.data();
}

bool isWavFrequencyMessage(const char* message) { return message == frequencyText.data(); }

WavHeader makeWavHeader(std::uint16_t channels, std::int32_t freq, std::uint16_t bytesPSample,
                        std::uint32_t dataSize) {
    WavHeader h{};
    std::uint8_t* p = h.data();
    std::memcpy(p + 0, "RIFF", 4);
    putLE32(p + 4, dataSize + 32);  // keep the 32: files we wrote before have it
    std::memcpy(p + 8, "WAVEfmt ", 8);
    putLE32(p + 16, 16);
    putLE16(p + 20, 1);
    putLE16(p + 22, channels);
    putLE32(p + 24, std::uint32_t(freq));
    putLE32(p + 28, std::uint32_t(channels) * std::uint32_t(freq) * bytesPSample);
    putLE16(p + 32, static_cast<std::uint16_t>(channels * bytesPSample));
    putLE16(p + 34, static_cast<std::uint16_t>(bytesPSample * 8));
    std::memcpy(p + 36, "data", 4);
    putLE32(p + 40, dataSize);
    return h;
}

void decodeMono8(const std::uint8_t* in, WaveVal* out, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) out[i] = decode8(in[i]);
}

void decodeMono16(const std::uint8_t* in, WaveVal* out, std::int32_t count) {
    std::memcpy(out, in, std::size_t(count) * 2);
    if constexpr (!kLittleHost) {
        auto* u = reinterpret_cast<std::uint16_t*>(out);
        for (std::int32_t i = 0; i < count; ++i) u[i] = swap16(u[i]);
    }
}

void decodeStereo8(const std::uint8_t* in, WaveVal* left, WaveVal* right, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) {
        left[i] = decode8(in[2 * i]);
        right[i] = decode8(in[2 * i + 1]);
    }
}

void decodeStereo16(const std::uint8_t* in, WaveVal* left, WaveVal* right, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) {
        const std::uint8_t* f = in + 4 * std::size_t(i);
        left[i] = static_cast<WaveVal>(getLE16(f));
        right[i] = static_cast<WaveVal>(getLE16(f + 2));
    }
}

void encodeMono8(const WaveVal* in, std::uint8_t* out, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) out[i] = encode8(in[i]);
}

void encodeMono16(const WaveVal* in, std::uint8_t* out, std::int32_t count) {
    std::memcpy(out, in, std::size_t(count) * 2);
    if constexpr (!kLittleHost) {
        for (std::int32_t i = 0; i < count; ++i) putLE16(out + 2 * i, std::uint16_t(in[i]));
    }
}

void encodeStereo8(const WaveVal* left, const WaveVal* right, std::uint8_t* out,
                   std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) {
        out[2 * i] = encode8(left[i]);
        out[2 * i + 1] = encode8(right[i]);
    }
}

void encodeStereo16(const WaveVal* left, const WaveVal* right, std::uint8_t* out,
                    std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) {
        std::uint8_t* f = out + 4 * std::size_t(i);
        putLE16(f, std::uint16_t(left[i]));
        putLE16(f + 2, std::uint16_t(right[i]));
    }
}

}  // namespace orv
