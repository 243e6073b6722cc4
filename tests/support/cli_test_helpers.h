// WAV files written by hand, so the inputs do not depend on our own writer, and whole files as
// text.
#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/file_test_helpers.h"

namespace orv::test {

// A well-formed WAV file; `beforeData` holds whole chunks put between "fmt " and "data".
inline Bytes wavBytes(std::uint16_t tag, std::uint16_t channels, std::uint32_t freq,
                      std::uint16_t bits, const Bytes& data, const Bytes& beforeData = {}) {
    Bytes b;
    putText(b, "RIFF");
    put32(b, std::uint32_t(4 + 24 + beforeData.size() + 8 + data.size()));
    putText(b, "WAVEfmt ");
    put32(b, 16);
    put16(b, tag);
    put16(b, channels);
    put32(b, freq);
    put32(b, freq * channels * bits / 8);
    put16(b, std::uint16_t(channels * bits / 8));
    put16(b, bits);
    b.insert(b.end(), beforeData.begin(), beforeData.end());
    putText(b, "data");
    put32(b, std::uint32_t(data.size()));
    b.insert(b.end(), data.begin(), data.end());
    return b;
}

// 16-bit PCM; `frames` holds the samples interleaved (left, right, left, ...).
inline void writeWav16(const std::string& path, int freq, int channels,
                       const std::vector<int>& frames) {
    Bytes data;
    for (int v : frames) put16(data, std::uint16_t(v));
    writeBytes(path, wavBytes(1, std::uint16_t(channels), std::uint32_t(freq), 16, data));
}

// 32-bit floats, little-endian.
inline Bytes floatBytes(std::initializer_list<float> values) {
    Bytes b;
    for (float f : values) {
        std::uint32_t u;
        std::memcpy(&u, &f, 4);
        put32(b, u);
    }
    return b;
}

inline std::string slurp(const std::string& path) {
    const Bytes b = readBytes(path);
    return std::string(b.begin(), b.end());
}

}  // namespace orv::test
