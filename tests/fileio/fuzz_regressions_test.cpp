// Replays every input in tests/data/fuzz-regressions/ (files the WAV reader's fuzzer once
// tripped over, and hand-made nasty ones): reading must end cleanly with one of the reader's
// messages, and whatever it accepts must write and read back unchanged.
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fileio/wav_file.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

bool isReaderMessage(const char* m) {
    for (const char* known : {kWavNoErrors, kWavCannotOpen, kWavNoRiff, kWavNoWaveFmt,
                              kWavChunkTooSmall, kWavNotPcm, kWavBadChannels})
        if (std::strcmp(m, known) == 0) return true;
    return false;
}

TEST(FuzzRegressions, EveryInputReadsCleanly) {
    const fs::path folder = fs::path(ORVASTO_TEST_DATA) / "fuzz-regressions";
    std::vector<fs::path> inputs;
    for (const auto& e : fs::directory_iterator(folder))
        if (e.is_regular_file() && e.path().filename() != "README") inputs.push_back(e.path());
    ASSERT_FALSE(inputs.empty());

    char tmpl[] = "/tmp/orv-fuzzreg-XXXXXX";
    ASSERT_NE(::mkdtemp(tmpl), nullptr);
    const std::string out = std::string(tmpl) + "/out.wav";
    test::RecordingPlatformScope rec;  // memory messages are expected for some inputs
    for (const fs::path& input : inputs) {
        SCOPED_TRACE(input.filename().string());
        SoundPtr sound;
        int width = 0;
        const char* message = nullptr;
        const bool ok = readWaveFile(input.string(), sound, width, message);
        ASSERT_NE(message, nullptr);
        EXPECT_TRUE(isReaderMessage(message)) << message;
        if (!ok) {
            EXPECT_EQ(sound, nullptr);
            continue;
        }
        CancelFlag cancel{0};
        const int writeWidth = width == 1 ? 1 : 2;
        ASSERT_TRUE(writeWaveFile(&cancel, out, sound.get(), writeWidth, 0, sound->GetValues(),
                                  true));
        SoundPtr again;
        ASSERT_TRUE(readWaveFile(out, again, width, message));
        ASSERT_EQ(again->GetValues(), sound->GetValues());
        EXPECT_EQ(again->MoSt, sound->MoSt);
        EXPECT_EQ(again->Freq, sound->Freq);
        const std::size_t n = std::size_t(sound->GetValues()) * 2;
        if (n) {
            EXPECT_EQ(std::memcmp(again->GetLeftWave()->data(), sound->GetLeftWave()->data(), n), 0);
            EXPECT_EQ(std::memcmp(again->GetRightWave()->data(), sound->GetRightWave()->data(), n), 0);
        }
    }
    fs::remove_all(tmpl);
}

}  // namespace
}  // namespace orv
