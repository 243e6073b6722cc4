// Replays every input in tests/data/fuzz-regressions/ (files the WAV reader's fuzzer once
// tripped over, and hand-made nasty ones): reading must end cleanly with one of the reader's
// messages, and whatever it accepts must write and read back unchanged.
#include <cstring>

#include <gtest/gtest.h>

#include "fileio/wav_file.h"
#include "support/file_test_helpers.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

TEST(FuzzRegressions, EveryInputReadsCleanly) {
    std::vector<fs::path> inputs;
    for (const auto& e : fs::directory_iterator(fs::path(ORVASTO_TEST_DATA) / "fuzz-regressions"))
        if (e.is_regular_file() && e.path().filename() != "README") inputs.push_back(e.path());
    ASSERT_FALSE(inputs.empty());
    const test::TempDir dir;
    const std::string out = dir / "out.wav";
    test::RecordingPlatformScope rec;  // memory messages are expected for some inputs
    for (const fs::path& input : inputs) {
        SCOPED_TRACE(input.filename().string());
        SoundPtr sound;
        int width = 0;
        const char* message = nullptr;
        const bool ok = readWaveFile(input.string(), sound, width, message);
        ASSERT_NE(message, nullptr);
        bool known = isWavFrequencyMessage(message);
        for (const char* m : {kWavNoErrors, kWavCannotOpen, kWavNoRiff, kWavNoWaveFmt, kWavChunkTooSmall, kWavNotPcm,
                              kWavBadChannels, kWavTooManySamples, kMemoryMessage})
            known = known || std::strcmp(message, m) == 0;
        EXPECT_TRUE(known) << message;
        EXPECT_EQ(sound != nullptr, ok);
        if (!ok) continue;
        CancelFlag cancel{0};
        ASSERT_TRUE(writeWaveFile(&cancel, out, sound.get(), width == 1 ? 1 : 2, 0, sound->GetValues(), true));
        SoundPtr again;
        ASSERT_TRUE(readWaveFile(out, again, width, message));
        ASSERT_EQ(again->GetValues(), sound->GetValues());
        EXPECT_EQ(again->MoSt, sound->MoSt);
        EXPECT_EQ(again->Freq, sound->Freq);
        for (bool left : {true, false}) {
            const Wave* a = left ? again->GetLeftWave() : again->GetRightWave();
            const Wave* b = left ? sound->GetLeftWave() : sound->GetRightWave();
            EXPECT_EQ(test::samplesOf(a), test::samplesOf(b));
        }
    }
}

}  // namespace
}  // namespace orv
