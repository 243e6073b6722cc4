// Helpers for tests that write and read real files: a private temporary folder, bytes in and
// out of a file, little-endian fields, and waves made from a list of samples.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "core/wave.h"

namespace orv::test {

using Bytes = std::vector<std::uint8_t>;

// A fresh folder under /tmp, removed with everything in it (even after a chmod) at the end.
class TempDir {
public:
    TempDir() {
        char tmpl[] = "/tmp/orv-test-XXXXXX";
        if (::mkdtemp(tmpl)) path_ = tmpl;
    }
    ~TempDir() {
        if (path_.empty()) return;
        ::chmod(path_.c_str(), 0700);
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    bool ok() const { return !path_.empty(); }
    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

inline void writeBytes(const std::string& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

inline Bytes readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

inline void put16(Bytes& b, std::uint16_t v) {
    b.push_back(std::uint8_t(v));
    b.push_back(std::uint8_t(v >> 8));
}
inline void put32(Bytes& b, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) b.push_back(std::uint8_t(v >> (8 * i)));
}
inline void putText(Bytes& b, const char* s) {
    while (*s) b.push_back(std::uint8_t(*s++));
}
// 16-bit samples as file bytes.
inline Bytes le16(std::initializer_list<int> values) {
    Bytes b;
    for (int v : values) put16(b, std::uint16_t(v));
    return b;
}

inline WavePtr waveOf(const std::vector<WaveVal>& v) {
    if (v.empty()) return std::make_unique<Wave>();
    WaveVal* s = allocateSamples(std::int32_t(v.size()));
    std::copy(v.begin(), v.end(), s);
    return std::make_unique<Wave>(s, std::int32_t(v.size()));
}

inline std::vector<WaveVal> samplesOf(const Wave* w) {
    if (!w) return {};
    return std::vector<WaveVal>(w->data(), w->data() + w->getValues());
}

}  // namespace orv::test
