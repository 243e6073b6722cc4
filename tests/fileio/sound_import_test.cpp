// Import on hand-made files: the WAV layouts our own reader refuses, 24-bit and float
// conversion to 16 bits (clipped, never wrapped), refusals word for word, cancelling, storage
// failure, and damaged files.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "fileio/sound_export.h"
#include "fileio/sound_import.h"
#include "fileio/wav_file.h"
#include "support/cli_test_helpers.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

using namespace orv::test;
using Values = std::vector<WaveVal>;

// A stereo 16-bit file of n frames: left i, right -i (wrapped).
Bytes rampFile(std::int32_t n) {
    Bytes data;
    for (std::int32_t i = 0; i < n; ++i) {
        put16(data, std::uint16_t(i));
        put16(data, std::uint16_t(-i));
    }
    return wavBytes(1, 2, 44100, 16, data);
}

class ImportTest : public ::testing::Test {
protected:
    std::string file(const std::string& name, const Bytes& bytes) {
        writeBytes(tmp / name, bytes);
        return tmp / name;
    }
    // Imports a file made of `bytes`; false with the reason in `reason`.
    bool import(const Bytes& bytes, CancelFlag* cancel = nullptr) {
        return importSoundFile(file("in.wav", bytes), sound, reason, cancel);
    }
    TempDir tmp;
    SoundPtr sound;
    std::string reason;
};

TEST_F(ImportTest, ListChunkBeforeDataIsRefusedByTheWavReaderButImported) {
    Bytes list;
    putText(list, "LIST");
    put32(list, 12);
    putText(list, "INFOISFT");
    put32(list, 0);
    const Bytes bytes = wavBytes(1, 1, 11025, 16, le16({0, 1, -1, 32767, -32768, 1234, -4321}), list);

    SoundPtr viaReader;
    int width = 0;
    const char* message = nullptr;
    EXPECT_FALSE(readWaveFile(file("list.wav", bytes), viaReader, width, message));
    EXPECT_STREQ(message, "No errors occurred.");

    ASSERT_TRUE(import(bytes)) << reason;
    EXPECT_EQ(sound->MoSt, 1);
    EXPECT_EQ(sound->Freq, 11025);
    EXPECT_EQ(samplesOf(sound->GetLeftWave()), (Values{0, 1, -1, 32767, -32768, 1234, -4321}));
    // The same from memory.
    SoundPtr fromMemory;
    ASSERT_TRUE(importSoundMemory(bytes.data(), bytes.size(), fromMemory, reason)) << reason;
    EXPECT_EQ(samplesOf(fromMemory->GetLeftWave()), samplesOf(sound->GetLeftWave()));
}

TEST_F(ImportTest, WiderSamplesBecomeSixteenBitsClippedNeverWrapped) {
    Bytes pcm24;  // dropping the low byte rounds toward minus infinity
    for (std::uint32_t v : {0x7FFFFFu, 0x800000u, 0x000001u, 0xFFFFFFu, 0x123456u, 0xFFFF00u,
                            0xFF0000u, 0x0000FFu})
        for (int i = 0; i < 3; ++i) pcm24.push_back(std::uint8_t(v >> (8 * i)));
    // Floats: x 32768, rounded to nearest, clipped.
    const Bytes floats = floatBytes({1.5f, -2.0f, 0.5f, -0.5f, 1.0f, -1.0f, 0.25f, 3.0f / 65536,
                                     -3.0f / 65536, 100.0f, 0.0f, 32767.0f / 32768, 1.0f / 65536,
                                     -32767.0f / 32768});
    const struct {
        const char* name;
        std::uint16_t tag, bits;
        Bytes data;
        Values want;
    } cases[] = {
        {"24-bit", 1, 24, pcm24, {32767, -32768, 0, -1, 0x1234, -1, -256, 0}},
        {"float", 3, 32, floats,
         {32767, -32768, 16384, -16384, 32767, -32768, 8192, 2, -2, 32767, 0, 32767, 0, -32767}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(import(wavBytes(c.tag, 1, 48000, c.bits, c.data))) << reason;
        EXPECT_EQ(sound->Freq, 48000);
        EXPECT_EQ(samplesOf(sound->GetLeftWave()), c.want);
    }
}

TEST_F(ImportTest, RefusalsWordForWord) {
    EXPECT_FALSE(import(wavBytes(1, 6, 44100, 16, Bytes(24, 1))));
    EXPECT_FALSE(sound);
    EXPECT_EQ(reason, "The file has 6 channels; only mono and stereo files can be imported.");
    EXPECT_EQ(importFailureText("six.wav", reason),
              "Cannot import the file: \"six.wav\", The file has 6 channels; only mono and "
              "stereo files can be imported.");

    // Nobody writes to the pipe: a blocking open would wait forever.
    const std::string pipe = tmp / "pipe.flac";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    Bytes mp3 = {0xFF, 0xFB, 0x90, 0x00};
    mp3.resize(400, 0x55);
    const struct {
        std::string file;
        std::string reason;
    } cases[] = {
        {tmp / "missing.flac", "The file does not exist."},
        {tmp.path(), "This is a folder, not a sound file."},
        {pipe, "This is not a plain file (a pipe or a device); only files can be imported."},
        {file("empty.wav", {}), "The file is empty."},
        {file("junk.flac", Bytes(300, 0x5A)),
         "The file is not a sound file of a kind that can be imported. (libsndfile: Format not "
         "recognised.)"},
        // libsndfile says "File does not exist or is not a regular file (possibly a pipe?)."
        {file("bad.mp3", mp3),
         "The file is damaged, or uses a form of its format that cannot be read. (libsndfile: "
         "File does not exist or is not a regular file (possibly a pipe?).)"},
        // Not "Internal error : SF_INFO struct incomplete."
        {file("0hz.wav", wavBytes(1, 1, 0, 16, Bytes(8, 1))),
         "The sample frequency 0 Hz is not usable; a wave needs 1 to 1000000 Hz."},
        {file("4ghz.wav", wavBytes(1, 2, 4000000000u, 16, Bytes(8, 1))),
         "The sample frequency 4000000000 Hz is not usable; a wave needs 1 to 1000000 Hz."},
        {file("2mhz.wav", wavBytes(1, 1, 2000000, 16, Bytes(8, 1))),
         "The sample frequency 2000000 Hz is not usable; a wave needs 1 to 1000000 Hz."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        EXPECT_FALSE(importSoundFile(c.file, sound, reason));
        EXPECT_EQ(reason, c.reason);
        EXPECT_FALSE(sound);
    }
    ASSERT_TRUE(import(wavBytes(1, 1, 1000000, 16, le16({3})))) << reason;
    EXPECT_EQ(sound->Freq, 1000000);
}

// mpg123 warns on stderr about a damaged MP3; under QuietStderr nothing reaches it, and
// stderr works again afterwards.
TEST_F(ImportTest, QuietStderrSilencesCodecChatter) {
    Bytes mp3 = {0xFF, 0xFB, 0x90, 0x00};
    mp3.resize(400, 0x55);
    const std::string bad = file("bad.mp3", mp3), log = tmp / "stderr.txt";
    const int saved = ::dup(2);
    const int capture = ::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ASSERT_GE(capture, 0);
    ::dup2(capture, 2);
    ::close(capture);
    {
        QuietStderr quiet;
        EXPECT_FALSE(importSoundFile(bad, sound, reason));
        EXPECT_EQ(::write(2, "hidden\n", 7), 7);
    }
    EXPECT_EQ(::write(2, "shown\n", 6), 6);
    ::dup2(saved, 2);
    ::close(saved);
    EXPECT_EQ(slurp(log), "shown\n");
}

// Found by the fuzzer: a "LIST" chunk with damaged inner sizes kept the decoder busy for
// minutes before it gave up. Such chunks are skipped unread now.
TEST_F(ImportTest, DamagedListChunkIsRefusedAtOnce) {
    const auto ff = [](std::size_t n) { return std::string(2 * n, 'F'); };
    const std::string hex = "524946467000000057415645666D74201000000001000200225600008858FFF504001000"
                            "4C4953540400E8FEFFFB" + ff(30) + "53540400E8" + ff(27) +
                            "58800000100000000300001FC0" + ff(32);
    Bytes bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2)
        bytes.push_back(std::uint8_t(std::stoi(hex.substr(i, 2), nullptr, 16)));
    EXPECT_FALSE(import(bytes));
    EXPECT_EQ(reason, "The file is damaged, or uses a form of its format that cannot be read. "
                      "(libsndfile: Error in WAV file. No 'data' chunk marker.)");
}

TEST_F(ImportTest, ShortOrEmptyDataGivesTheSamplesThatAreThere) {
    Bytes bytes = wavBytes(1, 2, 8000, 16, le16({5, -5, 7, -7, 9}));  // 2.5 frames
    bytes[40] = 200;  // the data chunk claims 200 bytes
    ASSERT_TRUE(import(bytes)) << reason;
    EXPECT_EQ(samplesOf(sound->GetLeftWave()), (Values{5, 7}));
    EXPECT_EQ(samplesOf(sound->GetRightWave()), (Values{-5, -7}));

    ASSERT_TRUE(import(wavBytes(1, 2, 8000, 16, {}))) << reason;
    EXPECT_EQ(sound->MoSt, 2);
    EXPECT_EQ(sound->GetValues(), 0);
}

struct HookLog {
    std::vector<std::pair<std::int32_t, std::int32_t>> chunks;
    CancelFlag* raise = nullptr;
    static void hook(void* ctx, std::int32_t pos, std::int32_t end) {
        auto* log = static_cast<HookLog*>(ctx);
        log->chunks.emplace_back(pos, end);
        if (log->raise) setCancelled(*log->raise);
    }
};

TEST_F(ImportTest, LongFilesAreReadInLargeBlocksAndCanBeCancelledBetweenThem) {
    const Bytes bytes = rampFile(150000);
    CancelFlag cancel{0};
    HookLog log;
    setChunkHook(HookLog::hook, &log);
    const bool ok = import(bytes, &cancel);
    setChunkHook(nullptr, nullptr);
    ASSERT_TRUE(ok) << reason;
    EXPECT_EQ(log.chunks, (decltype(log.chunks){{0, 65536}, {65536, 131072}, {131072, 150000}}));
    ASSERT_EQ(sound->GetValues(), 150000);
    EXPECT_EQ((*sound->GetLeftWave())[149999], wrap16(149999));
    EXPECT_EQ((*sound->GetRightWave())[70000], wrap16(-70000));

    HookLog raising;
    raising.raise = &cancel;
    setChunkHook(HookLog::hook, &raising);
    const bool cancelled = import(bytes, &cancel);
    setChunkHook(nullptr, nullptr);
    EXPECT_FALSE(cancelled);
    EXPECT_FALSE(sound);
    EXPECT_EQ(reason, "The import was cancelled.");
    EXPECT_EQ(raising.chunks.size(), 1u);
}

TEST_F(ImportTest, NoStorageShowsTheMemoryMessageAndSetsTheFlag) {
    RecordingPlatformScope rec;
    const SampleAllocator old = setSampleAllocator([](std::size_t) -> void* { return nullptr; });
    CancelFlag cancel{0};
    const bool ok = import(rampFile(100), &cancel);
    setSampleAllocator(old);
    EXPECT_FALSE(ok);
    EXPECT_FALSE(sound);
    EXPECT_TRUE(isCancelled(cancel));
    EXPECT_EQ(reason, "There is not enough memmory for this operation.");
    ASSERT_EQ(rec.recorder.messages.size(), 1u);
    EXPECT_EQ(rec.recorder.messages[0].caption + ": " + rec.recorder.messages[0].text, "System Error: " + reason);
}

TEST_F(ImportTest, TruncatedFlacIsRefusedNeverInvented) {
    std::vector<WaveVal> noise(100000);
    std::uint32_t x = 7;
    for (WaveVal& v : noise) v = WaveVal((x = x * 1664525u + 1013904223u) >> 16);
    const StereoSound original(waveOf(noise), waveOf(noise), 44100);
    ASSERT_TRUE(exportSoundFile(tmp / "whole.flac", "", &original, reason)) << reason;
    Bytes bytes = readBytes(tmp / "whole.flac");
    bytes.resize(bytes.size() / 2);
    // The decoder notices the cut inside a frame: the file is refused with its text.
    EXPECT_FALSE(importSoundFile(file("half.flac", bytes), sound, reason));
    EXPECT_EQ(reason, "The file is damaged: its samples cannot all be decoded. (libsndfile: "
                      "Error : flac decoder lost sync.)");
    EXPECT_FALSE(sound);
}

}  // namespace
}  // namespace orv
