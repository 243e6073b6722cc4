// Sounds saved and opened again: the kind of sound, its frequency, its samples.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fileio/wav_file.h"

namespace orv {
namespace {

WavePtr waveOf(const std::vector<WaveVal>& v) {
    if (v.empty()) return std::make_unique<Wave>();
    WaveVal* s = allocateSamples(std::int32_t(v.size()));
    std::copy(v.begin(), v.end(), s);
    return std::make_unique<Wave>(s, std::int32_t(v.size()));
}

std::vector<WaveVal> samples(const Wave* w) {
    return std::vector<WaveVal>(w->data(), w->data() + w->getValues());
}

class WavFile : public ::testing::Test {
protected:
    void SetUp() override {
        char tmpl[] = "/tmp/orv-wavfile-XXXXXX";
        ASSERT_NE(::mkdtemp(tmpl), nullptr);
        dir = tmpl;
        path = dir + "/sound.wav";
    }
    void TearDown() override { std::filesystem::remove_all(dir); }

    std::string dir, path;
    CancelFlag cancel{0};
    SoundPtr in;
    int width = 0;
    const char* message = nullptr;
};

TEST_F(WavFile, MonoSoundRoundTrips) {
    MonoSound mono(waveOf({300, -300, 32767, -32768, 0, 1}), 11025);
    ASSERT_TRUE(writeWaveFile(&cancel, path, &mono, 2, 1, 5, false));
    ASSERT_TRUE(readWaveFile(path, in, width, message));
    EXPECT_STREQ(message, "No errors occurred.");
    EXPECT_EQ(width, 2);
    auto* m = dynamic_cast<MonoSound*>(in.get());
    ASSERT_NE(m, nullptr);
    EXPECT_EQ(m->MoSt, 1);
    EXPECT_EQ(m->Freq, 11025);
    EXPECT_EQ(samples(m->WaveMiddle), (std::vector<WaveVal>{-300, 32767, -32768, 0}));

    ASSERT_TRUE(writeWaveFile(&cancel, path, &mono, 1, 0, 6, false));
    ASSERT_TRUE(readWaveFile(path, in, width, message));
    EXPECT_EQ(width, 1);
    EXPECT_EQ(samples(in->GetLeftWave()),
              (std::vector<WaveVal>{256, -256, 32512, -32768, 0, 0}));
    EXPECT_EQ(isCancelled(cancel), false);
}

TEST_F(WavFile, StereoSoundRoundTripsLeftFirst) {
    StereoSound stereo(waveOf({1, 2, 3, 1000}), waveOf({-1, -2, -3, -1000}), 48000);
    for (int w : {1, 2}) {
        ASSERT_TRUE(writeWaveFile(&cancel, path, &stereo, w, 1, 4, false));
        EXPECT_EQ(std::filesystem::file_size(path), 44u + 3u * 2u * unsigned(w));
        ASSERT_TRUE(readWaveFile(path, in, width, message));
        EXPECT_EQ(width, w);
        auto* s = dynamic_cast<StereoSound*>(in.get());
        ASSERT_NE(s, nullptr);
        EXPECT_EQ(s->MoSt, 2);
        EXPECT_EQ(s->Freq, 48000);
        if (w == 2) {
            EXPECT_EQ(samples(s->WaveLeft), (std::vector<WaveVal>{2, 3, 1000}));
            EXPECT_EQ(samples(s->WaveRight), (std::vector<WaveVal>{-2, -3, -1000}));
        } else {
            EXPECT_EQ(samples(s->WaveLeft), (std::vector<WaveVal>{0, 0, 768}));
            EXPECT_EQ(samples(s->WaveRight), (std::vector<WaveVal>{0, 0, -768}));
        }
    }
}

TEST_F(WavFile, EmptySoundsRoundTrip) {
    StereoSound stereo(8000);
    ASSERT_TRUE(writeWaveFile(&cancel, path, &stereo, 2, 0, 0, true));
    EXPECT_EQ(std::filesystem::file_size(path), 44u);
    ASSERT_TRUE(readWaveFile(path, in, width, message));
    EXPECT_EQ(in->MoSt, 2);
    EXPECT_EQ(in->Freq, 8000);
    EXPECT_EQ(in->GetValues(), 0);

    MonoSound mono(22050);
    ASSERT_TRUE(writeWaveFile(&cancel, path, &mono, 1, 0, 0, false));
    ASSERT_TRUE(readWaveFile(path, in, width, message));
    EXPECT_EQ(in->MoSt, 1);
    EXPECT_EQ(in->GetValues(), 0);
    ASSERT_NE(in->GetLeftWave(), nullptr);
}

TEST_F(WavFile, FailuresLeaveTheSoundUnset) {
    EXPECT_FALSE(readWaveFile(dir + "/none.wav", in, width, message));
    EXPECT_STREQ(message, "Cannot open File.");
    EXPECT_EQ(in, nullptr);
    EXPECT_EQ(width, 0);

    EXPECT_FALSE(writeWaveFile(&cancel, path, nullptr, 2, 0, 0, false));
    // A stereo sound that has lost a channel cannot be saved.
    StereoSound broken(waveOf({1}), waveOf({2}), 8000);
    Wave* right = broken.WaveRight;
    broken.WaveRight = nullptr;
    EXPECT_FALSE(writeWaveFile(&cancel, path, &broken, 2, 0, 1, false));
    broken.WaveRight = right;
    EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
}  // namespace orv
