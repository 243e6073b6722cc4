// The reader on hand-made files: every message word for word, the chunk layouts it takes
// and refuses, sample decoding, short files and storage failures.
#include <cstdlib>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "fileio/wav_file.h"
#include "support/file_test_helpers.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

using namespace orv::test;
using V = std::vector<WaveVal>;

// A file as the reader walks it, built field by field so each case can break one field.
struct FileSpec {
    const char* riff = "RIFF";
    const char* waveFmt = "WAVEfmt ";
    std::uint32_t fmtSize = 16;
    std::uint16_t tag = 1;
    std::uint16_t channels = 1;
    std::uint32_t freq = 22050;
    std::uint16_t bits = 16;
    Bytes fmtExtension = {};  // fmtSize - 16 bytes
    Bytes beforeData = {};    // whole chunks between the format chunk and "data"
    std::uint32_t dataSize = 0;
    Bytes data = {};
};

Bytes build(const FileSpec& s) {
    Bytes b;
    putText(b, s.riff);
    put32(b, 0xDEADBEEF);  // never looked at
    putText(b, s.waveFmt);
    put32(b, s.fmtSize);
    put16(b, s.tag);
    put16(b, s.channels);
    put32(b, s.freq);
    put32(b, 12345);  // bytes per second: ignored
    put16(b, 7);      // block align: ignored
    put16(b, s.bits);
    b.insert(b.end(), s.fmtExtension.begin(), s.fmtExtension.end());
    b.insert(b.end(), s.beforeData.begin(), s.beforeData.end());
    putText(b, "data");
    put32(b, s.dataSize);
    b.insert(b.end(), s.data.begin(), s.data.end());
    return b;
}

Bytes cut(Bytes b, std::size_t size) {
    b.resize(size);
    return b;
}

class WavRead : public ::testing::Test {
protected:
    bool read(const Bytes& bytes) {
        writeBytes(dir / "in.wav", bytes);
        return readWaveChannels(dir / "in.wav", out, message);
    }
    TempDir dir;
    WaveFileChannels out;
    const char* message = "stale";
};

TEST_F(WavRead, RefusalsGiveTheirMessagesWordForWord) {
    const std::string pipe = dir / "pipe.wav";  // nobody writes to it: must not hang
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& name : {dir / "missing.wav", dir.path(), pipe}) {
        EXPECT_FALSE(readWaveChannels(name, out, message)) << name;
        EXPECT_STREQ(message, "Cannot open File.") << name;
    }
    const Bytes good = build({});
    const Bytes list = {'L', 'I', 'S', 'T', 4, 0, 0, 0, 'I', 'N', 'F', 'O'};
    const Bytes factThenCue = {'f', 'a', 'c', 't', 4, 0, 0, 0, 9, 0, 0, 0, 'c', 'u', 'e', ' ', 0, 0, 0, 0};
    const struct { Bytes file; const char* message; } cases[] = {
        {build({.riff = "RIFX"}), "\"RIFF\" not found."}, {{}, "\"RIFF\" not found."},
        {cut(good, 8), "\"WAVEfmt \" not found."},  // fields the file cannot supply read as zeros
        {build({.waveFmt = "WAVELIST"}), "\"WAVEfmt \" not found."},
        {build({.waveFmt = "WAVEfmt\t"}), "\"WAVEfmt \" not found."}, {build({.fmtSize = 15}), "chunk too small."},
        {build({.fmtSize = 0x80000000u}), "chunk too small."},  // read as signed: far below 16
        {build({.tag = 3}), "A value must be 1."}, {build({.tag = 0xFFFE}), "A value must be 1."},
        {cut(good, 20), "A value must be 1."}, {build({.channels = 0}), "MonoStereo must be 1 or 2."},
        {build({.channels = 3}), "MonoStereo must be 1 or 2."},
        {build({.channels = 0xFFFF}), "MonoStereo must be 1 or 2."},
        // A chunk other than "fact" before "data" is refused without a message of its own.
        {cut(good, 36), "No errors occurred."},
        {build({.beforeData = list, .dataSize = 4, .data = le16({1, 2})}), "No errors occurred."},
        {build({.beforeData = factThenCue, .dataSize = 4, .data = le16({1, 2})}), "No errors occurred."},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(i);
        message = "stale";
        EXPECT_FALSE(read(cases[i].file));
        EXPECT_STREQ(message, cases[i].message);
        EXPECT_EQ(out.left, nullptr);
    }
}

// The samples each layout gives, short files (only the whole frames that are there) and
// odd data sizes (whole frames only).
TEST_F(WavRead, LayoutsWidthsAndShortFiles) {
    const Bytes fact = {'f', 'a', 'c', 't', 99, 0, 0, 0, 2, 0, 0, 0};  // its size is not trusted
    const struct { const char* what; FileSpec spec; int width; V left, right; } cases[] = {
        {"fact chunk, stereo", {.channels = 2, .beforeData = fact, .dataSize = 8, .data = le16({100, -100, 32767, -32768})},
         2, {100, 32767}, {-100, -32768}},
        {"18-byte format chunk", {.fmtSize = 18, .fmtExtension = {'d', 'a'}, .dataSize = 4, .data = le16({-5, 7})},
         2, {-5, 7}, {}},
        {"4-bit as 16", {.bits = 4, .dataSize = 4, .data = le16({0x1234, -2})}, 2, {0x1234, -2}, {}},
        {"24-bit in pairs", {.bits = 24, .dataSize = 6, .data = {1, 2, 3, 4, 5, 6}}, 3, {0x0201, 0x0403, 0x0605}, {}},
        {"8-bit mono", {.bits = 8, .dataSize = 5, .data = {0, 128, 255, 127, 1}}, 1,
         {-32768, 0, 32512, -256, -32512}, {}},
        {"8-bit stereo, odd size", {.channels = 2, .bits = 8, .dataSize = 5, .data = {0, 128, 255, 127, 1}}, 1,
         {-32768, 32512}, {0, -256}},
        {"stereo 6 bytes", {.channels = 2, .dataSize = 6, .data = le16({11, 22, 33})}, 2, {11}, {22}},
        {"stereo 3 bytes", {.channels = 2, .dataSize = 3, .data = le16({11, 22})}, 2, {}, {}},
        {"mono 5 bytes", {.dataSize = 5, .data = le16({-1, -2, -3})}, 2, {-1, -2}, {}},
        // Fewer bytes than the chunk claims: what is there, to the last whole frame.
        {"mono short", {.dataSize = 20, .data = {5, 0, 0xFA, 0xFF, 7, 0, 0x7F}}, 2, {5, -6, 7}, {}},
        {"stereo short", {.channels = 2, .dataSize = 16, .data = {1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 0x11}}, 2,
         {1, 3}, {2, 4}},
        {"8-bit stereo short", {.channels = 2, .bits = 8, .dataSize = 8, .data = {255, 0, 129}}, 1, {32512}, {-32768}},
        {"8-bit, nothing after the size", {.bits = 8, .dataSize = 6}, 1, {}, {}},
        {"streamed: size 0xFFFFFFFF", {.channels = 2, .dataSize = 0xFFFFFFFFu, .data = le16({1, 2, 3, 4, 5, 6})}, 2,
         {1, 3, 5}, {2, 4, 6}},
        {"size past 2 GB", {.dataSize = 0x80000000u, .data = le16({-7, 8})}, 2, {-7, 8}, {}},
        {"empty mono", {}, 2, {}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_TRUE(read(build(c.spec)));
        EXPECT_STREQ(message, "No errors occurred.");
        EXPECT_EQ(out.freq, 22050);
        EXPECT_EQ(out.monoStereo, c.spec.channels);
        EXPECT_EQ(out.bytesPSample, c.width);
        ASSERT_NE(out.left, nullptr);
        EXPECT_EQ(samplesOf(out.left.get()), c.left);
        EXPECT_EQ(out.right != nullptr, c.spec.channels == 2);
        EXPECT_EQ(samplesOf(out.right.get()), c.right);
    }
}

// Frequencies no sound card has are refused with a message that names them; the two ends of
// the usable range open.
TEST_F(WavRead, UnusableSampleFrequenciesAreRefused) {
    const struct { std::uint32_t freq; const char* message; } refused[] = {
        {0, "The sample frequency 0 Hz is not usable; a wave needs 1 to 1000000 Hz."},
        {1000001, "The sample frequency 1000001 Hz is not usable; a wave needs 1 to 1000000 Hz."},
        {0x80000000u, "The sample frequency 2147483648 Hz is not usable; a wave needs 1 to 1000000 Hz."},
        {4000000000u, "The sample frequency 4000000000 Hz is not usable; a wave needs 1 to 1000000 Hz."},
    };
    for (const auto& c : refused) {
        SCOPED_TRACE(c.freq);
        EXPECT_FALSE(read(build({.freq = c.freq, .dataSize = 2, .data = le16({1})})));
        EXPECT_STREQ(message, c.message);
        EXPECT_TRUE(isWavFrequencyMessage(message));
        EXPECT_EQ(out.left, nullptr);
    }
    for (std::uint32_t freq : {1u, 1000000u}) {
        ASSERT_TRUE(read(build({.freq = freq, .dataSize = 2, .data = le16({1})})));
        EXPECT_EQ(out.freq, std::int32_t(freq));
    }
}

struct FailingAllocator {
    static inline int allowed = 0;
    static void* allocate(std::size_t bytes) { return allowed-- <= 0 ? nullptr : std::malloc(bytes); }
};

TEST_F(WavRead, StorageFailureShowsTheMemoryMessage) {
    RecordingPlatformScope rec;
    const SampleAllocator previous = setSampleAllocator(FailingAllocator::allocate);
    FailingAllocator::allowed = 1;  // the left channel is made, the right one fails
    EXPECT_FALSE(read(build({.channels = 2, .dataSize = 8, .data = le16({1, 2, 3, 4})})));
    EXPECT_STREQ(message, "There is not enough memmory for this operation.");
    FailingAllocator::allowed = 0;
    EXPECT_FALSE(read(build({.dataSize = 8, .data = le16({1, 2, 3, 4})})));
    EXPECT_STREQ(message, "There is not enough memmory for this operation.");
    EXPECT_EQ(out.left, nullptr);
    // A 44-byte file that claims 2 GB asks for no storage at all.
    EXPECT_TRUE(read(build({.dataSize = 0x7FFFFFF0u})));
    EXPECT_EQ(out.left->getValues(), 0);
    setSampleAllocator(previous);
    ASSERT_EQ(rec.recorder.messages.size(), 2u);
    for (const auto& m : rec.recorder.messages) {
        EXPECT_EQ(m.caption, "System Error");
        EXPECT_EQ(m.text, "There is not enough memmory for this operation.");
    }
}

// The player's stream: the same header rules, then the data bytes as they lie, in blocks,
// ending where the data ends (a claimed size larger than the file is the file's size), and
// back to any frame.
TEST_F(WavRead, StreamGivesTheDataBytesInBlocksAndSeeks) {
    WaveFileStream stream;
    writeBytes(dir / "bad.wav", build({.riff = "RIFX"}));
    EXPECT_FALSE(stream.open(dir / "bad.wav", message));
    EXPECT_STREQ(message, "\"RIFF\" not found.");
    EXPECT_FALSE(stream.isOpen());
    EXPECT_EQ(stream.read(nullptr, 4), 0u);

    // Stereo 16-bit, 3 frames and a half (the half frame is not played), size claimed huge.
    const Bytes data = le16({1, -1, 2, -2, 3, -3, 4});
    writeBytes(dir / "in.wav", build({.channels = 2, .freq = 8000, .dataSize = 0xFFFFFFFF, .data = data}));
    ASSERT_TRUE(stream.open(dir / "in.wav", message));
    EXPECT_EQ(stream.freq(), 8000);
    EXPECT_EQ(stream.channels(), 2);
    EXPECT_EQ(stream.frames(), 3);
    EXPECT_EQ(stream.frameBytes(), 4u);
    Bytes block(16, 0xAA);
    EXPECT_EQ(stream.read(block.data(), 2), 2u);
    EXPECT_EQ(Bytes(block.begin(), block.begin() + 8), Bytes(data.begin(), data.begin() + 8));
    EXPECT_EQ(stream.read(block.data(), 5), 1u);  // only one whole frame is left
    EXPECT_EQ(Bytes(block.begin(), block.begin() + 4), Bytes(data.begin() + 8, data.begin() + 12));
    EXPECT_EQ(stream.read(block.data(), 5), 0u);
    EXPECT_EQ(stream.position(), 3);
    ASSERT_TRUE(stream.seek(1));
    EXPECT_EQ(stream.read(block.data(), 1), 1u);
    EXPECT_EQ(Bytes(block.begin(), block.begin() + 4), Bytes(data.begin() + 4, data.begin() + 8));
    EXPECT_FALSE(stream.seek(4));

    // 8-bit mono: the unsigned bytes as they are.
    writeBytes(dir / "u8.wav", build({.bits = 8, .dataSize = 3, .data = {0, 128, 255}}));
    ASSERT_TRUE(stream.open(dir / "u8.wav", message));
    EXPECT_EQ(stream.bytesPSample(), 1);
    EXPECT_EQ(stream.read(block.data(), 8), 3u);
    EXPECT_EQ(Bytes(block.begin(), block.begin() + 3), (Bytes{0, 128, 255}));
}

}  // namespace
}  // namespace orv
