// The writer's bytes checked exactly, every layout written and read back, and whole sounds
// saved and opened again.
#include <gtest/gtest.h>

#include "fileio/wav_file.h"
#include "support/file_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;
using V = std::vector<WaveVal>;

class WavWrite : public ::testing::Test {
protected:
    TempDir dir;
    std::string path = dir / "out.wav";
    WaveFileChannels in;
    const char* message = nullptr;
};

TEST_F(WavWrite, HeaderBytesAreExact) {
    auto l = waveOf({1, -2, 0x1234});
    auto r = waveOf({-32768, 32767, 0});
    ASSERT_TRUE(writeWaveChannels(path, l.get(), r.get(), 44100, 2, 0, 3, false));
    const Bytes stereo16 = {
        'R', 'I', 'F', 'F', 44, 0, 0, 0,  // 12 data bytes + 32
        'W', 'A', 'V', 'E', 'f', 'm', 't', ' ', 16, 0, 0, 0, 1, 0, 2, 0,  // PCM, stereo
        0x44, 0xAC, 0, 0, 0x10, 0xB1, 0x02, 0,  // 44100 Hz, 176400 bytes per second
        4, 0, 16, 0, 'd', 'a', 't', 'a', 12, 0, 0, 0,  // block align, bits
        1, 0, 0x00, 0x80, 0xFE, 0xFF, 0xFF, 0x7F, 0x34, 0x12, 0, 0};  // left first in each frame
    EXPECT_EQ(readBytes(path), stereo16);

    // Mono 8-bit at 8000 Hz, three samples: an odd data size and no padding byte.
    ASSERT_TRUE(writeWaveChannels(path, l.get(), nullptr, 8000, 1, 0, 3, false));
    const Bytes mono8 = {'R', 'I', 'F', 'F', 35, 0, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ',
                         16, 0, 0, 0, 1, 0, 1, 0, 0x40, 0x1F, 0, 0, 0x40, 0x1F, 0, 0,
                         1, 0, 8, 0, 'd', 'a', 't', 'a', 3, 0, 0, 0, 128, 128, 146};
    EXPECT_EQ(readBytes(path), mono8);
}

TEST_F(WavWrite, EightBitNarrowingRoundsTowardZero) {
    auto w = waveOf({32767, -32768, -1, -256, 300, -300, 255, -255, 256, 0});
    ASSERT_TRUE(writeWaveChannels(path, w.get(), nullptr, 8000, 1, 0, 10, false));
    const Bytes bytes = readBytes(path);
    ASSERT_EQ(bytes.size(), 54u);
    EXPECT_EQ(Bytes(bytes.begin() + 44, bytes.end()), (Bytes{255, 0, 128, 127, 129, 127, 128, 128, 129, 128}));
    ASSERT_TRUE(readWaveChannels(path, in, message));
    EXPECT_EQ(in.bytesPSample, 1);
    EXPECT_EQ(samplesOf(in.left.get()), (V{32512, -32768, 0, -256, 256, -256, 0, 0, 256, 0}));
}

// Every layout, with ranges that start inside the wave, empty ranges, odd lengths and lengths
// that cross the writer's and the reader's block size (the last block only partly filled).
TEST_F(WavWrite, EveryLayoutReadsBack) {
    const std::int32_t total = 600007;
    V a(total), b(total);
    for (std::int32_t i = 0; i < total; ++i) {
        a[i] = wrap16(i * 37 - 20000);
        b[i] = wrap16(-i * 11 + 5);
    }
    auto l = waveOf(a);
    auto r = waveOf(b);
    const struct { int channels, width; std::int32_t begin, end; } cases[] = {
        {1, 2, 0, 1}, {1, 2, 3, 8}, {1, 2, 1, total}, {1, 1, 0, 1}, {1, 1, 3, 8}, {1, 1, 0, 262145}, {2, 2, 0, 1},
        {2, 2, 3, 8}, {2, 2, 1, total}, {2, 1, 0, 1}, {2, 1, 3, 8}, {2, 1, 1, total},
        {1, 2, 5, 5}, {2, 2, 5, 5}, {2, 1, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.channels << " ch, " << c.width << " B, " << c.begin << ".." << c.end);
        ASSERT_TRUE(writeWaveChannels(path, l.get(), c.channels == 2 ? r.get() : nullptr, 96000, c.width, c.begin,
                                      c.end, false));
        const std::int32_t n = c.end - c.begin;
        EXPECT_EQ(std::filesystem::file_size(path), 44u + std::uintmax_t(n) * c.channels * c.width);
        ASSERT_TRUE(readWaveChannels(path, in, message));
        EXPECT_STREQ(message, "No errors occurred.");
        EXPECT_EQ(in.freq, 96000);
        EXPECT_EQ(in.monoStereo, c.channels);
        EXPECT_EQ(in.bytesPSample, c.width);
        ASSERT_EQ(in.left->getValues(), n);
        ASSERT_EQ(in.right != nullptr, c.channels == 2);
        for (std::int32_t i = 0; i < n; ++i) {
            const WaveVal el = a[c.begin + i], er = b[c.begin + i];
            ASSERT_EQ((*in.left)[i], c.width == 1 ? WaveVal(el / 256 * 256) : el) << i;
            if (c.channels == 2) {
                ASSERT_EQ((*in.right)[i], c.width == 1 ? WaveVal(er / 256 * 256) : er) << i;
            }
        }
    }
}

TEST_F(WavWrite, RefusedWritesLeaveNoFile) {
    auto w = waveOf({1, 2});
    EXPECT_FALSE(writeWaveChannels(path, w.get(), nullptr, 8000, 3, 0, 2, false));
    EXPECT_FALSE(writeWaveChannels(path, w.get(), nullptr, 8000, 0, 0, 2, false));
    EXPECT_FALSE(writeWaveChannels(path, nullptr, nullptr, 8000, 2, 0, 0, false));
    CancelFlag cancel{0};
    EXPECT_FALSE(writeWaveFile(&cancel, path, nullptr, 2, 0, 0, false));
    StereoSound broken(waveOf({1}), waveOf({2}), 8000);  // a stereo sound that lost a channel
    Wave* right = broken.WaveRight;
    broken.WaveRight = nullptr;
    EXPECT_FALSE(writeWaveFile(&cancel, path, &broken, 2, 0, 1, false));
    broken.WaveRight = right;
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
    EXPECT_DEATH(writeWaveChannels(path, w.get(), nullptr, 8000, 2, 0, 3, false),
                 "Assertion failed: end <= left->getValues\\(\\), unit wavfile");
    EXPECT_DEATH(writeWaveChannels(path, w.get(), nullptr, 8000, 2, 2, 1, false),
                 "Assertion failed: begin <= end, unit wavfile");
}

TEST_F(WavWrite, SoundsSavedAndOpenedAgain) {
    CancelFlag cancel{0};
    SoundPtr sound;
    int width = 0;
    EXPECT_FALSE(readWaveFile(dir / "none.wav", sound, width, message));
    EXPECT_STREQ(message, "Cannot open File.");
    EXPECT_EQ(sound, nullptr);
    for (int channels : {1, 2}) {  // empty sounds
        const SoundPtr empty = channels == 1 ? SoundPtr(new MonoSound(22050)) : SoundPtr(new StereoSound(22050));
        ASSERT_TRUE(writeWaveFile(&cancel, path, empty.get(), 2, 0, 0, false));
        ASSERT_TRUE(readWaveFile(path, sound, width, message));
        EXPECT_EQ(sound->MoSt, channels);
        EXPECT_EQ(sound->GetValues(), 0);
    }
    MonoSound mono(waveOf({300, -300, 32767, -32768, 0, 1}), 11025);
    ASSERT_TRUE(writeWaveFile(&cancel, path, &mono, 2, 1, 5, false));
    ASSERT_TRUE(readWaveFile(path, sound, width, message));
    EXPECT_EQ(width, 2);
    auto* m = dynamic_cast<MonoSound*>(sound.get());
    ASSERT_NE(m, nullptr);
    EXPECT_EQ(m->Freq, 11025);
    EXPECT_EQ(samplesOf(m->WaveMiddle), (V{-300, 32767, -32768, 0}));

    StereoSound stereo(waveOf({1, 2, 3, 1000}), waveOf({-1, -2, -3, -1000}), 48000);
    ASSERT_TRUE(writeWaveFile(&cancel, path, &stereo, 1, 1, 4, true));
    ASSERT_TRUE(readWaveFile(path, sound, width, message));
    EXPECT_EQ(width, 1);
    auto* s = dynamic_cast<StereoSound*>(sound.get());
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->Freq, 48000);
    EXPECT_EQ(samplesOf(s->WaveLeft), (V{0, 0, 768}));
    EXPECT_EQ(samplesOf(s->WaveRight), (V{0, 0, -768}));
}

}  // namespace
}  // namespace orv
