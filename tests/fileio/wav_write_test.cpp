// The writer's bytes checked exactly, and every layout written and read back.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fileio/wav_file.h"

namespace orv {
namespace {

using Bytes = std::vector<std::uint8_t>;

WavePtr waveOf(const std::vector<WaveVal>& v) {
    WaveVal* s = allocateSamples(std::int32_t(v.size()));
    if (v.empty()) return std::make_unique<Wave>();
    std::copy(v.begin(), v.end(), s);
    return std::make_unique<Wave>(s, std::int32_t(v.size()));
}

std::vector<WaveVal> samples(const Wave* w) {
    return std::vector<WaveVal>(w->data(), w->data() + w->getValues());
}

class WavWrite : public ::testing::Test {
protected:
    void SetUp() override {
        char tmpl[] = "/tmp/orv-wavwrite-XXXXXX";
        ASSERT_NE(::mkdtemp(tmpl), nullptr);
        dir = tmpl;
        path = dir + "/out.wav";
    }
    void TearDown() override { std::filesystem::remove_all(dir); }

    Bytes fileBytes() const {
        std::ifstream in(path, std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(in), {});
    }

    std::string dir, path;
};

TEST_F(WavWrite, HeaderBytesAreExact) {
    auto l = waveOf({1, -2, 0x1234});
    auto r = waveOf({-32768, 32767, 0});
    ASSERT_TRUE(writeWaveChannels(path, l.get(), r.get(), 44100, 2, 0, 3, false));
    const Bytes expected = {
        'R', 'I', 'F', 'F', 44, 0, 0, 0,  // 12 data bytes + 32
        'W', 'A', 'V', 'E', 'f', 'm', 't', ' ',
        16, 0, 0, 0,                     // format chunk size
        1, 0, 2, 0,                      // PCM, stereo
        0x44, 0xAC, 0, 0,                // 44100
        0x10, 0xB1, 0x02, 0,             // 176400 bytes per second
        4, 0, 16, 0,                     // block align, bits
        'd', 'a', 't', 'a', 12, 0, 0, 0,
        1, 0, 0x00, 0x80,                // left first in each frame
        0xFE, 0xFF, 0xFF, 0x7F,
        0x34, 0x12, 0, 0};
    EXPECT_EQ(fileBytes(), expected);

    // Mono 8-bit at 8000 Hz, three samples: an odd data size and no padding byte.
    ASSERT_TRUE(writeWaveChannels(path, l.get(), nullptr, 8000, 1, 0, 3, false));
    const Bytes mono8 = {'R', 'I', 'F', 'F', 35, 0, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ',
                         16, 0, 0, 0, 1, 0, 1, 0, 0x40, 0x1F, 0, 0, 0x40, 0x1F, 0, 0,
                         1, 0, 8, 0, 'd', 'a', 't', 'a', 3, 0, 0, 0, 128, 128, 146};
    EXPECT_EQ(fileBytes(), mono8);
}

TEST_F(WavWrite, EightBitNarrowingRoundsTowardZero) {
    auto w = waveOf({32767, -32768, -1, -256, 300, -300, 255, -255, 256, 0});
    ASSERT_TRUE(writeWaveChannels(path, w.get(), nullptr, 8000, 1, 0, 10, false));
    const Bytes bytes = fileBytes();
    ASSERT_EQ(bytes.size(), 54u);
    EXPECT_EQ(Bytes(bytes.begin() + 44, bytes.end()),
              (Bytes{255, 0, 128, 127, 129, 127, 128, 128, 129, 128}));

    WaveFileChannels in;
    const char* message = nullptr;
    ASSERT_TRUE(readWaveChannels(path, in, message));
    EXPECT_EQ(in.bytesPSample, 1);
    EXPECT_EQ(samples(in.left.get()),
              (std::vector<WaveVal>{32512, -32768, 0, -256, 256, -256, 0, 0, 256, 0}));
}

TEST_F(WavWrite, EmptyRangeGivesBareHeader) {
    auto l = waveOf({1, 2, 3});
    ASSERT_TRUE(writeWaveChannels(path, l.get(), l.get(), 22050, 2, 2, 2, false));
    const Bytes bytes = fileBytes();
    ASSERT_EQ(bytes.size(), 44u);
    EXPECT_EQ(getLE32(&bytes[4]), 32u);
    EXPECT_EQ(getLE32(&bytes[40]), 0u);

    WaveFileChannels in;
    const char* message = nullptr;
    ASSERT_TRUE(readWaveChannels(path, in, message));
    EXPECT_EQ(in.monoStereo, 2);
    EXPECT_EQ(in.freq, 22050);
    EXPECT_EQ(in.left->getValues(), 0);
    EXPECT_EQ(in.right->getValues(), 0);
}

// Every layout, with ranges that start inside the wave, odd lengths and lengths that
// cross the writer's and the reader's block size.
TEST_F(WavWrite, EveryLayoutReadsBack) {
    const std::int32_t total = 600007;
    std::vector<WaveVal> a(total), b(total);
    for (std::int32_t i = 0; i < total; ++i) {
        a[i] = wrap16(i * 37 - 20000);
        b[i] = wrap16(-i * 11 + 5);
    }
    auto l = waveOf(a);
    auto r = waveOf(b);
    struct Range {
        std::int32_t begin, end;
    };
    for (int channels : {1, 2}) {
        for (int width : {1, 2}) {
            for (Range range : {Range{0, 1}, Range{3, 8}, Range{1, total}, Range{0, 262145}}) {
                SCOPED_TRACE(testing::Message() << channels << " ch, " << width << " B, "
                                                << range.begin << ".." << range.end);
                ASSERT_TRUE(writeWaveChannels(path, l.get(), channels == 2 ? r.get() : nullptr,
                                              96000, width, range.begin, range.end, false));
                const std::int32_t n = range.end - range.begin;
                EXPECT_EQ(std::filesystem::file_size(path),
                          44u + std::uintmax_t(n) * channels * width);
                WaveFileChannels in;
                const char* message = nullptr;
                ASSERT_TRUE(readWaveChannels(path, in, message));
                EXPECT_STREQ(message, "No errors occurred.");
                EXPECT_EQ(in.freq, 96000);
                EXPECT_EQ(in.monoStereo, channels);
                EXPECT_EQ(in.bytesPSample, width);
                ASSERT_EQ(in.left->getValues(), n);
                ASSERT_EQ(in.right != nullptr, channels == 2);
                for (std::int32_t i = 0; i < n; ++i) {
                    WaveVal el = a[range.begin + i], er = b[range.begin + i];
                    if (width == 1) {
                        el = WaveVal(el / 256 * 256);
                        er = WaveVal(er / 256 * 256);
                    }
                    ASSERT_EQ((*in.left)[i], el) << i;
                    if (channels == 2) {
                        ASSERT_EQ((*in.right)[i], er) << i;
                    }
                }
            }
        }
    }
}

TEST_F(WavWrite, UnwritableWidthsAreRefused) {
    auto w = waveOf({1, 2});
    EXPECT_FALSE(writeWaveChannels(path, w.get(), nullptr, 8000, 3, 0, 2, false));
    EXPECT_FALSE(writeWaveChannels(path, w.get(), nullptr, 8000, 0, 0, 2, false));
    EXPECT_FALSE(writeWaveChannels(path, nullptr, nullptr, 8000, 2, 0, 0, false));
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_TRUE(std::filesystem::is_empty(dir));
}

TEST_F(WavWrite, RangeOutsideTheWaveIsAnInternalError) {
    auto w = waveOf({1, 2});
    EXPECT_DEATH(writeWaveChannels(path, w.get(), nullptr, 8000, 2, 0, 3, false),
                 "Assertion failed: end <= left->getValues\\(\\), unit wavfile");
    EXPECT_DEATH(writeWaveChannels(path, w.get(), nullptr, 8000, 2, 2, 1, false),
                 "Assertion failed: begin <= end, unit wavfile");
}

}  // namespace
}  // namespace orv
