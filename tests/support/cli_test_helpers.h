// Helpers for the orvasto-cli tests: 16-bit PCM WAV files written by hand, so the inputs do
// not depend on our own writer, and whole files as text.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/file_test_helpers.h"

namespace orv::test {

// `frames` holds the samples interleaved (left, right, left, ...).
inline void writeWav16(const std::string& path, int freq, int channels,
                       const std::vector<int>& frames) {
    const auto data = std::uint32_t(frames.size() * 2);
    Bytes b;
    putText(b, "RIFF");
    put32(b, 36 + data);
    putText(b, "WAVEfmt ");
    put32(b, 16);
    put16(b, 1);
    put16(b, std::uint16_t(channels));
    put32(b, std::uint32_t(freq));
    put32(b, std::uint32_t(freq * channels * 2));
    put16(b, std::uint16_t(channels * 2));
    put16(b, 16);
    putText(b, "data");
    put32(b, data);
    for (int v : frames) put16(b, std::uint16_t(v));
    writeBytes(path, b);
}

inline std::string slurp(const std::string& path) {
    const Bytes b = readBytes(path);
    return std::string(b.begin(), b.end());
}

}  // namespace orv::test
