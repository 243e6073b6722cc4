// The reader on hand-made files: every message word for word, the chunk layouts it takes
// and refuses, sample decoding, short files and storage failures.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <gtest/gtest.h>

#include "fileio/wav_file.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

using Bytes = std::vector<std::uint8_t>;

void put16(Bytes& b, std::uint16_t v) {
    b.push_back(std::uint8_t(v));
    b.push_back(std::uint8_t(v >> 8));
}
void put32(Bytes& b, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) b.push_back(std::uint8_t(v >> (8 * i)));
}
void putText(Bytes& b, const char* s) {
    while (*s) b.push_back(std::uint8_t(*s++));
}

// A file as the reader walks it, built field by field so each test can break one field.
struct FileSpec {
    const char* riff = "RIFF";
    const char* waveFmt = "WAVEfmt ";
    std::uint32_t fmtSize = 16;
    std::uint16_t tag = 1;
    std::uint16_t channels = 1;
    std::uint32_t freq = 22050;
    std::uint16_t bits = 16;
    Bytes fmtExtension;  // fmtSize - 16 bytes
    Bytes beforeData;    // whole chunks between the format chunk and "data"
    std::uint32_t dataSize = 0;
    Bytes data;
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

Bytes le16(std::initializer_list<int> values) {
    Bytes b;
    for (int v : values) put16(b, std::uint16_t(v));
    return b;
}

std::vector<WaveVal> samples(const WavePtr& w) {
    if (!w) return {};
    return std::vector<WaveVal>(w->data(), w->data() + w->getValues());
}

class WavRead : public ::testing::Test {
protected:
    void SetUp() override {
        char tmpl[] = "/tmp/orv-wavread-XXXXXX";
        ASSERT_NE(::mkdtemp(tmpl), nullptr);
        dir = tmpl;
    }
    void TearDown() override { std::filesystem::remove_all(dir); }

    std::string file(const Bytes& bytes) {
        const std::string path = dir + "/in.wav";
        std::ofstream(path, std::ios::binary | std::ios::trunc)
            .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        return path;
    }
    bool read(const Bytes& bytes) { return readWaveChannels(file(bytes), out, message); }

    std::string dir;
    WaveFileChannels out;
    const char* message = nullptr;
};

TEST_F(WavRead, FormatFailuresGiveTheirMessagesWordForWord) {
    EXPECT_FALSE(readWaveChannels(dir + "/missing.wav", out, message));
    EXPECT_STREQ(message, "Cannot open File.");
    EXPECT_FALSE(readWaveChannels(dir, out, message));  // a folder is not a file
    EXPECT_STREQ(message, "Cannot open File.");
    const std::string pipe = dir + "/pipe.wav";  // nobody writes to it: must not hang
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(readWaveChannels(pipe, out, message));
    EXPECT_STREQ(message, "Cannot open File.");

    FileSpec s;
    s.riff = "RIFX";
    EXPECT_FALSE(read(build(s)));
    EXPECT_STREQ(message, "\"RIFF\" not found.");
    EXPECT_FALSE(read({}));
    EXPECT_STREQ(message, "\"RIFF\" not found.");

    s = {};
    s.waveFmt = "WAVELIST";
    EXPECT_FALSE(read(build(s)));
    EXPECT_STREQ(message, "\"WAVEfmt \" not found.");
    s.waveFmt = "WAVEfmt\t";
    EXPECT_FALSE(read(build(s)));
    EXPECT_STREQ(message, "\"WAVEfmt \" not found.");

    s = {};
    s.fmtSize = 15;
    EXPECT_FALSE(read(build(s)));
    EXPECT_STREQ(message, "chunk too small.");
    s.fmtSize = 0x80000000u;  // read as signed: far below 16
    EXPECT_FALSE(read(build(s)));
    EXPECT_STREQ(message, "chunk too small.");

    s = {};
    s.tag = 3;  // floating point
    EXPECT_FALSE(read(build(s)));
    EXPECT_STREQ(message, "A value must be 1.");
    s.tag = 0xFFFE;  // extensible
    EXPECT_FALSE(read(build(s)));
    EXPECT_STREQ(message, "A value must be 1.");

    s = {};
    for (std::uint16_t channels : {0, 3, 6, 0xFFFF}) {
        s.channels = channels;
        EXPECT_FALSE(read(build(s))) << channels;
        EXPECT_STREQ(message, "MonoStereo must be 1 or 2.") << channels;
    }
    EXPECT_EQ(out.left, nullptr);
}

TEST_F(WavRead, TruncatedHeaderReadsMissingFieldsAsZero) {
    Bytes b = build(FileSpec{});
    b.resize(8);  // "RIFF" and its size only
    EXPECT_FALSE(read(b));
    EXPECT_STREQ(message, "\"WAVEfmt \" not found.");
    b = build(FileSpec{});
    b.resize(20);  // the format tag is missing: it reads as 0
    EXPECT_FALSE(read(b));
    EXPECT_STREQ(message, "A value must be 1.");
    b = build(FileSpec{});
    b.resize(36);  // no "data" identifier at all
    EXPECT_FALSE(read(b));
    EXPECT_STREQ(message, "No errors occurred.");
}

TEST_F(WavRead, ChunkOtherThanFactBeforeDataIsRefusedWithoutAMessage) {
    FileSpec s;
    s.beforeData = {'L', 'I', 'S', 'T', 4, 0, 0, 0, 'I', 'N', 'F', 'O'};
    s.dataSize = 4;
    s.data = le16({1, 2});
    message = "stale";
    EXPECT_FALSE(read(build(s)));
    EXPECT_STREQ(message, "No errors occurred.");
    EXPECT_EQ(out.left, nullptr);

    // A "fact" chunk followed by another chunk is refused the same way.
    s.beforeData = {'f', 'a', 'c', 't', 4, 0, 0, 0, 9, 0, 0, 0, 'c', 'u', 'e', ' ', 0, 0, 0, 0};
    EXPECT_FALSE(read(build(s)));
    EXPECT_STREQ(message, "No errors occurred.");
}

TEST_F(WavRead, FactChunkAndLongFormatChunkAreStepped) {
    FileSpec s;
    s.channels = 2;
    s.freq = 8000;
    // The fact size is not trusted: the chunk is always taken as 4 bytes of value.
    s.beforeData = {'f', 'a', 'c', 't', 99, 0, 0, 0, 2, 0, 0, 0};
    s.dataSize = 8;
    s.data = le16({100, -100, 32767, -32768});
    ASSERT_TRUE(read(build(s)));
    EXPECT_STREQ(message, "No errors occurred.");
    EXPECT_EQ(out.freq, 8000);
    EXPECT_EQ(out.monoStereo, 2);
    EXPECT_EQ(out.bytesPSample, 2);
    EXPECT_EQ(samples(out.left), (std::vector<WaveVal>{100, 32767}));
    EXPECT_EQ(samples(out.right), (std::vector<WaveVal>{-100, -32768}));

    // An 18-byte format chunk: its 2 extension bytes are skipped.
    s = {};
    s.fmtSize = 18;
    s.fmtExtension = {'d', 'a'};  // would confuse a reader that looked for "data" here
    s.dataSize = 4;
    s.data = le16({-5, 7});
    ASSERT_TRUE(read(build(s)));
    EXPECT_EQ(out.monoStereo, 1);
    EXPECT_EQ(out.right, nullptr);
    EXPECT_EQ(samples(out.left), (std::vector<WaveVal>{-5, 7}));
}

TEST_F(WavRead, WidthsOtherThanEightBitsAreReadAsSixteen) {
    FileSpec s;
    s.bits = 4;
    s.dataSize = 4;
    s.data = le16({0x1234, -2});
    ASSERT_TRUE(read(build(s)));
    EXPECT_EQ(out.bytesPSample, 2);
    EXPECT_EQ(samples(out.left), (std::vector<WaveVal>{0x1234, -2}));

    // 24-bit: reported as 3 bytes, and the bytes are taken in pairs as 16-bit samples.
    s.bits = 24;
    s.dataSize = 6;
    s.data = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06};
    ASSERT_TRUE(read(build(s)));
    EXPECT_EQ(out.bytesPSample, 3);
    EXPECT_EQ(samples(out.left), (std::vector<WaveVal>{0x0201, 0x0403, 0x0605}));
}

TEST_F(WavRead, EightBitSamplesAreWidened) {
    FileSpec s;
    s.bits = 8;
    s.dataSize = 5;
    s.data = {0, 128, 255, 127, 1};
    ASSERT_TRUE(read(build(s)));
    EXPECT_EQ(out.bytesPSample, 1);
    EXPECT_EQ(samples(out.left), (std::vector<WaveVal>{-32768, 0, 32512, -256, -32512}));

    s.channels = 2;
    s.dataSize = 5;  // 5 / 2: two frames, the odd byte is not a frame
    ASSERT_TRUE(read(build(s)));
    EXPECT_EQ(samples(out.left), (std::vector<WaveVal>{-32768, 32512}));
    EXPECT_EQ(samples(out.right), (std::vector<WaveVal>{0, -256}));
}

TEST_F(WavRead, SampleCountsTruncate) {
    FileSpec s;
    s.channels = 2;
    s.dataSize = 6;  // 6 / 4 = 1 frame
    s.data = le16({11, 22, 33});
    ASSERT_TRUE(read(build(s)));
    EXPECT_EQ(samples(out.left), (std::vector<WaveVal>{11}));
    EXPECT_EQ(samples(out.right), (std::vector<WaveVal>{22}));

    s.dataSize = 3;  // not one whole frame: an empty stereo sound
    ASSERT_TRUE(read(build(s)));
    EXPECT_EQ(out.left->getValues(), 0);
    EXPECT_EQ(out.right->getValues(), 0);

    s.channels = 1;
    s.dataSize = 5;  // 2 samples, the odd byte dropped
    s.data = le16({-1, -2, -3});
    ASSERT_TRUE(read(build(s)));
    EXPECT_EQ(samples(out.left), (std::vector<WaveVal>{-1, -2}));
}

TEST_F(WavRead, EmptyDataChunkGivesEmptySound) {
    for (std::uint16_t channels : {1, 2}) {
        FileSpec s;
        s.channels = channels;
        s.freq = 11025;
        ASSERT_TRUE(read(build(s)));
        EXPECT_STREQ(message, "No errors occurred.");
        EXPECT_EQ(out.freq, 11025);
        EXPECT_EQ(out.monoStereo, channels);
        ASSERT_NE(out.left, nullptr);
        EXPECT_EQ(out.left->getValues(), 0);
        EXPECT_EQ(out.right != nullptr, channels == 2);
    }
}

// Samples the file cannot supply are silence (0), never left over memory; a sample only
// partly present is also silence.
TEST_F(WavRead, ShortFileGivesZeros) {
    FileSpec s;
    s.dataSize = 20;  // 10 mono samples promised
    s.data = le16({5, -6, 7});
    s.data.push_back(0x7F);  // half a sample
    ASSERT_TRUE(read(build(s)));
    EXPECT_EQ(samples(out.left), (std::vector<WaveVal>{5, -6, 7, 0, 0, 0, 0, 0, 0, 0}));

    s.channels = 2;
    s.dataSize = 16;  // 4 frames promised; 2.5 frames and one byte there
    s.data = le16({1, 2, 3, 4, 5});
    s.data.push_back(0x11);
    ASSERT_TRUE(read(build(s)));
    EXPECT_EQ(samples(out.left), (std::vector<WaveVal>{1, 3, 5, 0}));
    EXPECT_EQ(samples(out.right), (std::vector<WaveVal>{2, 4, 0, 0}));

    s.bits = 8;
    s.dataSize = 8;  // 4 frames promised, 3 bytes there
    s.data = {255, 0, 129};
    ASSERT_TRUE(read(build(s)));
    EXPECT_EQ(samples(out.left), (std::vector<WaveVal>{32512, 256, 0, 0}));
    EXPECT_EQ(samples(out.right), (std::vector<WaveVal>{-32768, 0, 0, 0}));

    s.channels = 1;
    s.dataSize = 6;
    s.data = {};  // nothing at all after the size
    ASSERT_TRUE(read(build(s)));
    EXPECT_EQ(samples(out.left), (std::vector<WaveVal>(6, 0)));
}

// Crosses the reader's block size with a frame count that does not fill the last block.
TEST_F(WavRead, LongStereoFileReadsAcrossBlocks) {
    const std::int32_t n = 300001;
    FileSpec s;
    s.channels = 2;
    s.dataSize = std::uint32_t(n) * 4;
    for (std::int32_t i = 0; i < n; ++i) {
        put16(s.data, std::uint16_t(i * 7));
        put16(s.data, std::uint16_t(-i));
    }
    ASSERT_TRUE(read(build(s)));
    ASSERT_EQ(out.left->getValues(), n);
    for (std::int32_t i = 0; i < n; ++i) {
        ASSERT_EQ((*out.left)[i], wrap16(i * 7)) << i;
        ASSERT_EQ((*out.right)[i], wrap16(-i)) << i;
    }
}

struct FailingAllocator {
    static inline int allowed = 0;
    static void* allocate(std::size_t bytes) {
        if (allowed-- <= 0) return nullptr;
        return std::malloc(bytes);
    }
};

TEST_F(WavRead, StorageFailureShowsTheMemoryMessage) {
    test::RecordingPlatformScope rec;
    FileSpec s;
    s.channels = 2;
    s.dataSize = 8;
    s.data = le16({1, 2, 3, 4});
    const Bytes bytes = build(s);

    FailingAllocator::allowed = 1;  // the left channel is made, the right one fails
    const SampleAllocator previous = setSampleAllocator(FailingAllocator::allocate);
    EXPECT_FALSE(read(bytes));
    FailingAllocator::allowed = 0;
    s.channels = 1;
    EXPECT_FALSE(read(build(s)));
    setSampleAllocator(previous);

    EXPECT_STREQ(message, "No errors occurred.");
    EXPECT_EQ(out.left, nullptr);
    ASSERT_EQ(rec.recorder.messages.size(), 2u);
    for (const auto& m : rec.recorder.messages) {
        EXPECT_EQ(m.caption, "System Error");
        EXPECT_EQ(m.text, "There is not enough memmory for this operation.");
    }

    // A data size past 2 GB is negative when read as signed: no storage can hold it.
    s.dataSize = 0x80000000u;
    EXPECT_FALSE(read(build(s)));
    EXPECT_STREQ(message, "No errors occurred.");
    EXPECT_EQ(rec.recorder.messages.size(), 3u);
}

}  // namespace
}  // namespace orv
