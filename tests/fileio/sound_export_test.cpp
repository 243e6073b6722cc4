// Export through libsndfile: the bytes of the WAV forms worked out by hand, exact FLAC and
// near Ogg Vorbis round trips, ranges, the choice of format and its messages, and every way
// a failed export leaves an existing file alone.
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "fileio/safe_file_writer.h"
#include "fileio/sound_export.h"
#include "fileio/sound_import.h"
#include "fileio/wav_file.h"

namespace orv {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

WavePtr waveOf(const std::vector<WaveVal>& v) {
    WaveVal* s = allocateSamples(std::int32_t(v.size()));
    std::copy(v.begin(), v.end(), s);
    return std::make_unique<Wave>(s, std::int32_t(v.size()));
}

std::vector<WaveVal> samples(const Wave* w) {
    return std::vector<WaveVal>(w->data(), w->data() + w->getValues());
}

Bytes readAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

std::uint32_t le32(const Bytes& b, std::size_t at) {
    return b[at] | (b[at + 1] << 8) | (b[at + 2] << 16) | (std::uint32_t(b[at + 3]) << 24);
}

// The bytes of the "data" chunk of a RIFF file, found by walking the chunks.
Bytes dataChunk(const Bytes& b) {
    for (std::size_t at = 12; at + 8 <= b.size();) {
        const std::uint32_t size = le32(b, at + 4);
        if (std::memcmp(&b[at], "data", 4) == 0)
            return Bytes(b.begin() + long(at + 8), b.begin() + long(at + 8 + size));
        at += 8 + size + (size & 1);
    }
    return {};
}

class ExportTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::temp_directory_path() /
              ("orv-export-" + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override {
        fs::permissions(dir, fs::perms::owner_all, fs::perm_options::add);
        fs::remove_all(dir);
    }
    std::string path(const std::string& name) const { return (dir / name).string(); }

    // An existing file the failed exports must not touch, and nothing else in the folder.
    std::string oldFile() {
        const std::string p = path("old.wav");
        std::ofstream(p, std::ios::binary) << "the old contents";
        return p;
    }
    void expectOnlyOldFileLeft(const std::string& p) {
        const Bytes b = readAll(p);
        EXPECT_EQ(std::string(b.begin(), b.end()), "the old contents");
        int entries = 0;
        for (const auto& e : fs::directory_iterator(dir)) {
            ++entries;
            EXPECT_EQ(e.path().filename(), "old.wav");
        }
        EXPECT_EQ(entries, 1);
    }

    fs::path dir;
};

StereoSound smallStereo() {
    return StereoSound(waveOf({0, 1, -2, 32767, -32768, 16384}),
                       waveOf({-1, 256, 300, -300, 12345, -12345}), 22050);
}

TEST_F(ExportTest, Wav16BytesAreTheSamplesInterleavedAndOurReaderTakesThem) {
    const StereoSound sound = smallStereo();
    std::string reason;
    ASSERT_TRUE(exportSoundFile(path("a.wav"), "", &sound, reason)) << reason;
    const Bytes data = dataChunk(readAll(path("a.wav")));
    const Bytes want = {0x00, 0x00, 0xFF, 0xFF, 0x01, 0x00, 0x00, 0x01, 0xFE, 0xFF, 0x2C,
                        0x01, 0xFF, 0x7F, 0xD4, 0xFE, 0x00, 0x80, 0x39, 0x30, 0x00, 0x40,
                        0xC7, 0xCF};
    EXPECT_EQ(data, want);

    SoundPtr back;
    int width = 0;
    const char* message = nullptr;
    ASSERT_TRUE(readWaveFile(path("a.wav"), back, width, message)) << message;
    EXPECT_EQ(width, 2);
    EXPECT_EQ(back->Freq, 22050);
    EXPECT_EQ(samples(back->GetLeftWave()), samples(sound.GetLeftWave()));
    EXPECT_EQ(samples(back->GetRightWave()), samples(sound.GetRightWave()));
}

TEST_F(ExportTest, Wav24IsTheSampleTimes256AndImportsBackExactly) {
    const MonoSound sound(waveOf({-2, 1, 32767, -32768}), 48000);
    std::string reason;
    ASSERT_TRUE(exportSoundFile(path("a.wav"), "wav24", &sound, reason)) << reason;
    const Bytes data = dataChunk(readAll(path("a.wav")));
    const Bytes want = {0x00, 0xFE, 0xFF, 0x00, 0x01, 0x00, 0x00, 0xFF, 0x7F, 0x00, 0x00, 0x80};
    EXPECT_EQ(data, want);

    SoundPtr back;
    ASSERT_TRUE(importSoundFile(path("a.wav"), back, reason)) << reason;
    EXPECT_EQ(back->MoSt, 1);
    EXPECT_EQ(back->Freq, 48000);
    EXPECT_EQ(samples(back->GetLeftWave()), samples(sound.GetLeftWave()));
}

TEST_F(ExportTest, FloatIsTheSampleOver32768AndImportsBackExactly) {
    const MonoSound sound(waveOf({16384, -32768, 1, 32767, 0}), 44100);
    std::string reason;
    ASSERT_TRUE(exportSoundFile(path("f.wav"), "FLOAT", &sound, reason)) << reason;
    const Bytes data = dataChunk(readAll(path("f.wav")));
    ASSERT_EQ(data.size(), 20u);
    std::vector<float> got(5);
    std::memcpy(got.data(), data.data(), 20);
    EXPECT_EQ(got, (std::vector<float>{0.5f, -1.0f, 1.0f / 32768, 32767.0f / 32768, 0.0f}));

    SoundPtr back;
    ASSERT_TRUE(importSoundFile(path("f.wav"), back, reason)) << reason;
    EXPECT_EQ(samples(back->GetLeftWave()), samples(sound.GetLeftWave()));
}

// Stereo noise over the whole range with the extremes at both ends.
StereoSound noise(std::int32_t n, std::int32_t freq) {
    std::vector<WaveVal> l(static_cast<std::size_t>(n)), r(static_cast<std::size_t>(n));
    std::uint32_t x = 12345;
    for (std::int32_t i = 0; i < n; ++i) {
        x = x * 1664525u + 1013904223u;
        l[std::size_t(i)] = WaveVal(x >> 16);
        r[std::size_t(i)] = WaveVal(x);
    }
    l.front() = -32768;
    r.back() = 32767;
    return StereoSound(waveOf(l), waveOf(r), freq);
}

TEST_F(ExportTest, FlacRoundTripIsExact) {
    const StereoSound sound = noise(150000, 96000);
    std::string reason;
    ASSERT_TRUE(exportSoundFile(path("n.FLAC"), "", &sound, reason)) << reason;
    const Bytes b = readAll(path("n.FLAC"));
    ASSERT_GE(b.size(), 4u);
    EXPECT_EQ(std::string(b.begin(), b.begin() + 4), "fLaC");

    SoundPtr back;
    ASSERT_TRUE(importSoundFile(path("n.FLAC"), back, reason)) << reason;
    EXPECT_EQ(back->MoSt, 2);
    EXPECT_EQ(back->Freq, 96000);
    EXPECT_EQ(samples(back->GetLeftWave()), samples(sound.GetLeftWave()));
    EXPECT_EQ(samples(back->GetRightWave()), samples(sound.GetRightWave()));
}

// Vorbis is lossy: a 1 kHz sine of amplitude 10000 comes back with the same length and an
// error of at most 2% of the amplitude in root mean square (about -34 dB).
TEST_F(ExportTest, OggRoundTripIsCloseToTheOriginal) {
    const std::int32_t n = 44100;
    std::vector<WaveVal> s(static_cast<std::size_t>(n));
    for (std::int32_t i = 0; i < n; ++i)
        s[std::size_t(i)] = toWaveVal(10000 * std::sin(2 * M_PI * 1000 * i / 44100.0));
    const MonoSound sound(waveOf(s), 44100);
    std::string reason;
    ASSERT_TRUE(exportSoundFile(path("s.oga"), "", &sound, reason)) << reason;
    const Bytes b = readAll(path("s.oga"));
    ASSERT_GE(b.size(), 4u);
    EXPECT_EQ(std::string(b.begin(), b.begin() + 4), "OggS");

    SoundPtr back;
    ASSERT_TRUE(importSoundFile(path("s.oga"), back, reason)) << reason;
    ASSERT_EQ(back->GetValues(), n);
    EXPECT_EQ(back->Freq, 44100);
    double sum = 0;
    const Wave* w = back->GetLeftWave();
    for (std::int32_t i = 0; i < n; ++i) {
        const double d = double((*w)[i]) - s[std::size_t(i)];
        sum += d * d;
    }
    EXPECT_LT(std::sqrt(sum / n), 200.0);  // this build gives about 77
}

TEST_F(ExportTest, RangeExportsOnlyTheSelection) {
    const StereoSound sound = noise(5000, 8000);
    std::string reason;
    ASSERT_TRUE(exportSoundRange(path("r.flac"), ExportFormat::Flac, &sound, 1000, 3500,
                                 reason))
        << reason;
    SoundPtr back;
    ASSERT_TRUE(importSoundFile(path("r.flac"), back, reason)) << reason;
    ASSERT_EQ(back->GetValues(), 2500);
    const Wave* l = sound.GetLeftWave();
    const Wave* r = sound.GetRightWave();
    EXPECT_TRUE(std::equal(l->data() + 1000, l->data() + 3500, back->GetLeftWave()->data()));
    EXPECT_TRUE(std::equal(r->data() + 1000, r->data() + 3500, back->GetRightWave()->data()));

    // An empty range is a valid, empty file.
    ASSERT_TRUE(exportSoundRange(path("e.wav"), ExportFormat::Wav24, &sound, 7, 7, reason));
    ASSERT_TRUE(importSoundFile(path("e.wav"), back, reason)) << reason;
    EXPECT_EQ(back->GetValues(), 0);
    EXPECT_EQ(back->MoSt, 2);
}

TEST(ExportFormatChoice, ByNameOrExtensionWithMessagesWordForWord) {
    ExportFormat f{};
    std::string reason;
    ASSERT_TRUE(chooseExportFormat("x/a.WAV", "", f, reason));
    EXPECT_EQ(f, ExportFormat::Wav16);
    ASSERT_TRUE(chooseExportFormat("a.flac", "", f, reason));
    EXPECT_EQ(f, ExportFormat::Flac);
    ASSERT_TRUE(chooseExportFormat("a.ogg", "", f, reason));
    EXPECT_EQ(f, ExportFormat::Ogg);
    ASSERT_TRUE(chooseExportFormat("a.oga", "", f, reason));
    EXPECT_EQ(f, ExportFormat::Ogg);
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
    EXPECT_EQ(exportFailureText("b.xyz", reason),
              "Cannot export the file: \"b.xyz\", Cannot tell the export format from the file "
              "name; give one of wav16, wav24, float, flac, ogg.");
}

TEST(ExportFormatChoice, ThisBuildCanWriteEveryFormat) {
    // A wrong libsndfile format code would be refused here.
    EXPECT_EQ(availableExportFormats().size(), allExportFormats().size());
}

// ---- failures -------------------------------------------------------------------------

TEST_F(ExportTest, MissingFolderIsReportedWithTheSystemsReason) {
    const MonoSound sound(waveOf({1, 2, 3}), 8000);
    std::string reason;
    EXPECT_FALSE(exportSoundFile(path("nowhere/a.flac"), "", &sound, reason));
    EXPECT_EQ(reason, "Cannot create a file in that folder: No such file or directory.");
}

TEST_F(ExportTest, ReadOnlyFolderLeavesTheOldFile) {
    const std::string old = oldFile();
    fs::permissions(dir, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                             fs::perms::others_exec);
    const MonoSound sound(waveOf({1, 2, 3}), 8000);
    // 0: refused as expected, 1: written anyway, 2: another reason.
    auto attempt = [&] {
        std::string reason;
        if (exportSoundFile(old, "flac", &sound, reason)) return 1;
        return reason == "Cannot create a file in that folder: Permission denied." ? 0 : 2;
    };
    int outcome;
    if (::geteuid() == 0) {
        // Root writes into any folder: try as an ordinary user in a child process.
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            if (::setgid(65534) != 0 || ::setuid(65534) != 0) ::_exit(3);
            ::_exit(attempt());
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        outcome = WIFEXITED(status) ? WEXITSTATUS(status) : 4;
    } else {
        outcome = attempt();
    }
    EXPECT_EQ(outcome, 0);
    fs::permissions(dir, fs::perms::owner_all);
    expectOnlyOldFileLeft(old);
}

FileOps failing(int which) {
    FileOps ops = systemFileOps();
    if (which == 0) ops.fsync = [](int) { return errno = EIO, -1; };
    if (which == 1) ops.close = [](int fd) { ::close(fd); return errno = EIO, -1; };
    if (which == 2) ops.rename = [](const char*, const char*) { return errno = EXDEV, -1; };
    return ops;
}

TEST_F(ExportTest, FailedFlushCloseOrRenameLeavesTheOldFile) {
    const std::string old = oldFile();
    const StereoSound sound = noise(3000, 44100);
    for (int which = 0; which < 3; ++which) {
        const FileOps previous = setFileOps(failing(which));
        std::string reason;
        const bool ok = exportSoundFile(old, "wav16", &sound, reason);
        setFileOps(previous);
        EXPECT_FALSE(ok) << which;
        EXPECT_EQ(reason, "Cannot finish writing the file.");
        expectOnlyOldFileLeft(old);
    }
}

TEST_F(ExportTest, FailedWriteLeavesTheOldFile) {
    const std::string old = oldFile();
    const StereoSound sound = noise(100000, 44100);
    // A file size limit makes the disk "full" after 64 KB.
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit previous{};
    ::getrlimit(RLIMIT_FSIZE, &previous);
    rlimit small = previous;
    small.rlim_cur = 65536;
    ::setrlimit(RLIMIT_FSIZE, &small);
    std::string reason;
    const bool ok = exportSoundFile(old, "wav24", &sound, reason);
    ::setrlimit(RLIMIT_FSIZE, &previous);
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_FALSE(ok);
    EXPECT_EQ(reason, "System error : File too large.");
    expectOnlyOldFileLeft(old);
}

TEST_F(ExportTest, CancelledExportLeavesTheOldFile) {
    const std::string old = oldFile();
    const StereoSound sound = noise(200000, 44100);
    CancelFlag cancel{0};
    // Raised when the second block starts.
    struct Raise {
        CancelFlag* flag;
        int calls = 0;
    } raise{&cancel};
    setChunkHook(
        [](void* ctx, std::int32_t, std::int32_t) {
            auto* r = static_cast<Raise*>(ctx);
            if (++r->calls == 2) setCancelled(*r->flag);
        },
        &raise);
    std::string reason;
    const bool ok = exportSoundFile(old, "flac", &sound, reason, &cancel);
    setChunkHook(nullptr, nullptr);
    EXPECT_FALSE(ok);
    EXPECT_EQ(reason, "The export was cancelled.");
    EXPECT_EQ(raise.calls, 2);
    expectOnlyOldFileLeft(old);
}

TEST_F(ExportTest, FrequencyLibsndfileRefusesLeavesTheOldFile) {
    const std::string old = oldFile();
    const MonoSound sound(waveOf({1, 2, 3}), 0);
    std::string reason;
    EXPECT_FALSE(exportSoundFile(old, "wav16", &sound, reason));
    EXPECT_EQ(reason, "This build cannot write WAV, 16-bit PCM files at 0 Hz.");
    expectOnlyOldFileLeft(old);
}

TEST_F(ExportTest, SuccessReplacesTheOldFileAndKeepsItsPermissions) {
    const std::string old = oldFile();
    fs::permissions(old, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    const MonoSound sound(waveOf({5, -5}), 8000);
    std::string reason;
    ASSERT_TRUE(exportSoundFile(old, "", &sound, reason)) << reason;
    EXPECT_EQ(dataChunk(readAll(old)), (Bytes{5, 0, 0xFB, 0xFF}));
    EXPECT_EQ(fs::status(old).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1);
}

}  // namespace
}  // namespace orv
