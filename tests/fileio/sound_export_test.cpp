// Export: the bytes of the WAV forms worked out by hand, exact FLAC and near Ogg Vorbis round
// trips, ranges, the choice of format and its messages, and failed exports that leave an
// existing file alone.
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "fileio/safe_file_writer.h"
#include "fileio/sound_export.h"
#include "fileio/sound_import.h"
#include "fileio/wav_file.h"
#include "support/cli_test_helpers.h"

namespace orv {
namespace {

namespace fs = std::filesystem;
using namespace orv::test;

// The bytes of the "data" chunk of a RIFF file, found by walking the chunks.
Bytes dataChunk(const Bytes& b) {
    auto le32 = [&](std::size_t at) {
        return b[at] | (b[at + 1] << 8) | (b[at + 2] << 16) | (std::uint32_t(b[at + 3]) << 24);
    };
    for (std::size_t at = 12; at + 8 <= b.size();) {
        const std::uint32_t size = le32(at + 4);
        if (std::memcmp(&b[at], "data", 4) == 0)
            return Bytes(b.begin() + long(at + 8), b.begin() + long(at + 8 + size));
        at += 8 + size + (size & 1);
    }
    return {};
}

// Stereo noise over the whole range with the extremes at both ends.
StereoSound noise(std::int32_t n, std::int32_t freq) {
    std::vector<WaveVal> l(static_cast<std::size_t>(n)), r(static_cast<std::size_t>(n));
    std::uint32_t x = 12345;
    for (std::size_t i = 0; i < l.size(); ++i) {
        x = x * 1664525u + 1013904223u;
        l[i] = WaveVal(x >> 16);
        r[i] = WaveVal(x);
    }
    l.front() = -32768;
    r.back() = 32767;
    return StereoSound(waveOf(l), waveOf(r), freq);
}

class ExportTest : public ::testing::Test {
protected:
    // Exports and imports back; the samples must come back as they went.
    void roundTrip(const std::string& name, const std::string& format, const Sound& sound) {
        ASSERT_TRUE(exportSoundFile(tmp / name, format, &sound, reason)) << reason;
        SoundPtr back;
        ASSERT_TRUE(importSoundFile(tmp / name, back, reason)) << reason;
        EXPECT_EQ(back->MoSt, sound.MoSt);
        EXPECT_EQ(back->Freq, sound.Freq);
        EXPECT_EQ(samplesOf(back->GetLeftWave()), samplesOf(sound.GetLeftWave()));
        EXPECT_EQ(samplesOf(back->GetRightWave()), samplesOf(sound.GetRightWave()));
    }
    std::string magic(const std::string& name) {
        const Bytes b = readBytes(tmp / name);
        return std::string(b.begin(), b.begin() + long(std::min<std::size_t>(4, b.size())));
    }
    // An export over an existing file that must fail with `want` and leave that file alone,
    // and nothing else in the folder.
    void expectFailureOverOldFile(const char* format, const Sound& sound, const char* want,
                                  CancelFlag* cancel = nullptr) {
        writeBytes(tmp / "old.wav", Bytes{'o', 'l', 'd'});
        EXPECT_FALSE(exportSoundFile(tmp / "old.wav", format, &sound, reason, cancel));
        EXPECT_EQ(reason, want);
        EXPECT_EQ(readBytes(tmp / "old.wav"), (Bytes{'o', 'l', 'd'}));
        EXPECT_EQ(std::distance(fs::directory_iterator(tmp.path()), fs::directory_iterator()), 1);
    }
    TempDir tmp;
    std::string reason;
};

TEST_F(ExportTest, WavBytesWorkedOutByHandAndImportedBackExactly) {
    const StereoSound st(waveOf({0, 1, -2, 32767, -32768, 16384}),
                         waveOf({-1, 256, 300, -300, 12345, -12345}), 22050);
    const MonoSound m24(waveOf({-2, 1, 32767, -32768}), 48000);
    const MonoSound mf(waveOf({16384, -32768, 1, 32767, 0}), 44100);
    const struct {
        const char* format;
        const Sound* sound;
        Bytes data;
    } cases[] = {
        {"", &st, {0x00, 0x00, 0xFF, 0xFF, 0x01, 0x00, 0x00, 0x01, 0xFE, 0xFF, 0x2C, 0x01,
                   0xFF, 0x7F, 0xD4, 0xFE, 0x00, 0x80, 0x39, 0x30, 0x00, 0x40, 0xC7, 0xCF}},
        {"wav24", &m24, {0x00, 0xFE, 0xFF, 0x00, 0x01, 0x00, 0x00, 0xFF, 0x7F, 0x00, 0x00, 0x80}},
        {"FLOAT", &mf, floatBytes({0.5f, -1.0f, 1.0f / 32768, 32767.0f / 32768, 0.0f})},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.format);
        roundTrip("a.wav", c.format, *c.sound);
        EXPECT_EQ(dataChunk(readBytes(tmp / "a.wav")), c.data);
    }
    // Our own reader takes the 16-bit form.
    SoundPtr back;
    int width = 0;
    const char* message = nullptr;
    ASSERT_TRUE(exportSoundFile(tmp / "b.wav", "", &st, reason)) << reason;
    ASSERT_TRUE(readWaveFile(tmp / "b.wav", back, width, message)) << message;
    EXPECT_EQ(samplesOf(back->GetRightWave()), samplesOf(st.GetRightWave()));
}

TEST_F(ExportTest, FlacRoundTripIsExact) {
    roundTrip("n.FLAC", "", noise(150000, 96000));
    EXPECT_EQ(magic("n.FLAC"), "fLaC");
}

// Vorbis is lossy: a 1 kHz sine of amplitude 10000 comes back with the same length and an
// error of at most 2% of the amplitude in root mean square (about -34 dB).
TEST_F(ExportTest, OggRoundTripIsCloseToTheOriginal) {
    const std::int32_t n = 44100;
    std::vector<WaveVal> s(static_cast<std::size_t>(n));
    for (std::int32_t i = 0; i < n; ++i)
        s[std::size_t(i)] = toWaveVal(10000 * std::sin(2 * M_PI * 1000 * i / 44100.0));
    const MonoSound sound(waveOf(s), 44100);
    ASSERT_TRUE(exportSoundFile(tmp / "s.oga", "", &sound, reason)) << reason;
    EXPECT_EQ(magic("s.oga"), "OggS");
    SoundPtr back;
    ASSERT_TRUE(importSoundFile(tmp / "s.oga", back, reason)) << reason;
    ASSERT_EQ(back->GetValues(), n);
    double sum = 0;
    for (std::int32_t i = 0; i < n; ++i)
        sum += std::pow(double((*back->GetLeftWave())[i]) - s[std::size_t(i)], 2);
    EXPECT_LT(std::sqrt(sum / n), 200.0);  // this build gives about 77
}

TEST_F(ExportTest, RangeExportsOnlyTheSelection) {
    const StereoSound sound = noise(5000, 8000);
    ASSERT_TRUE(
        exportSoundRange(tmp / "r.flac", ExportFormat::Flac, &sound, 1000, 3500, reason))
        << reason;
    SoundPtr back;
    ASSERT_TRUE(importSoundFile(tmp / "r.flac", back, reason)) << reason;
    ASSERT_EQ(back->GetValues(), 2500);
    const Wave* l = sound.GetLeftWave();
    const Wave* r = sound.GetRightWave();
    EXPECT_TRUE(std::equal(l->data() + 1000, l->data() + 3500, back->GetLeftWave()->data()));
    EXPECT_TRUE(std::equal(r->data() + 1000, r->data() + 3500, back->GetRightWave()->data()));

    // An empty range is a valid, empty file.
    ASSERT_TRUE(exportSoundRange(tmp / "e.wav", ExportFormat::Wav24, &sound, 7, 7, reason));
    ASSERT_TRUE(importSoundFile(tmp / "e.wav", back, reason)) << reason;
    EXPECT_EQ(back->GetValues(), 0);
    EXPECT_EQ(back->MoSt, 2);
}

TEST(ExportFormatChoice, ByNameOrExtensionWithMessagesWordForWord) {
    const std::pair<const char*, ExportFormat> byExtension[] = {
        {"x/a.WAV", ExportFormat::Wav16}, {"a.flac", ExportFormat::Flac},
        {"a.ogg", ExportFormat::Ogg}, {"a.oga", ExportFormat::Ogg}};
    ExportFormat f{};
    std::string reason;
    for (const auto& [name, format] : byExtension) {
        ASSERT_TRUE(chooseExportFormat(name, "", f, reason)) << name;
        EXPECT_EQ(f, format) << name;
    }
    ASSERT_TRUE(chooseExportFormat("a.wav", "Wav24", f, reason));  // the name wins
    EXPECT_EQ(f, ExportFormat::Wav24);

    EXPECT_FALSE(chooseExportFormat("a.wav", "mp3", f, reason));
    EXPECT_EQ(reason,
              "Unknown export format \"mp3\"; the formats are wav16, wav24, float, flac, ogg.");
    for (const char* name : {"a.mp3", "dir.flac/a", "a.", "wav"}) {
        EXPECT_FALSE(chooseExportFormat(name, "", f, reason)) << name;
        EXPECT_EQ(reason, "Cannot tell the export format from the file name; give one of "
                          "wav16, wav24, float, flac, ogg.");
    }
    EXPECT_EQ(exportFailureText("b.xyz", "Why."), "Cannot export the file: \"b.xyz\", Why.");
    // A wrong format code would make this build refuse one.
    EXPECT_EQ(availableExportFormats().size(), allExportFormats().size());
}

// ---- failures -------------------------------------------------------------------------

TEST_F(ExportTest, MissingFolderOrRefusedFrequency) {
    const MonoSound sound(waveOf({1, 2, 3}), 8000);
    EXPECT_FALSE(exportSoundFile(tmp / "nowhere/a.flac", "", &sound, reason));
    EXPECT_EQ(reason, "Cannot create a file in that folder: No such file or directory.");

    expectFailureOverOldFile("wav16", MonoSound(waveOf({1, 2, 3}), 0),
                             "This build cannot write WAV, 16-bit PCM files at 0 Hz.");
}

// The flush and close failures of the writer have their own tests; here its verdict must reach
// the caller with the old file intact.
TEST_F(ExportTest, FailedRenameLeavesTheOldFile) {
    FileOps ops = systemFileOps();
    ops.rename = [](const char*, const char*) { return errno = EXDEV, -1; };
    const FileOps previous = setFileOps(ops);
    expectFailureOverOldFile("wav16", noise(3000, 44100),
                             "Cannot finish writing the file: Invalid cross-device link.");
    setFileOps(previous);
}

TEST_F(ExportTest, FailedWriteLeavesTheOldFile) {
    const StereoSound sound = noise(100000, 44100);
    // A file size limit makes the disk "full" after 64 KB.
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit previous{};
    ::getrlimit(RLIMIT_FSIZE, &previous);
    rlimit small = previous;
    small.rlim_cur = 65536;
    ::setrlimit(RLIMIT_FSIZE, &small);
    expectFailureOverOldFile("wav24", sound, "System error : File too large.");
    ::setrlimit(RLIMIT_FSIZE, &previous);
    std::signal(SIGXFSZ, previousHandler);
}

TEST_F(ExportTest, CancelledExportLeavesTheOldFile) {
    const StereoSound sound = noise(200000, 44100);
    struct Raise {
        CancelFlag flag{0};
        int calls = 0;
    } raise;
    setChunkHook(  // raised when the second block starts
        [](void* ctx, std::int32_t, std::int32_t) {
            auto* r = static_cast<Raise*>(ctx);
            if (++r->calls == 2) setCancelled(r->flag);
        },
        &raise);
    expectFailureOverOldFile("flac", sound, "The export was cancelled.", &raise.flag);
    setChunkHook(nullptr, nullptr);
    EXPECT_EQ(raise.calls, 2);
}

}  // namespace
}  // namespace orv
