#include "fileio/wav_file.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "core/platform.h"
#include "fileio/safe_file_writer.h"
#include "fileio/sample_frequency.h"

namespace orv {

namespace {

constexpr const char* kUnit = "wavfile";

// Samples move through a buffer this large (whole frames of every layout). Bigger than a
// disk block by far, so each system call moves a lot; small against any long sound, so
// reading costs little more memory than the samples themselves.
constexpr std::size_t kBlockBytes = std::size_t(1) << 20;

constexpr bool kLittleHost = std::endian::native == std::endian::little;

// A file opened for sequential reading. Reads stop quietly at the end of the file (or at
// a read error); a header field that the file cannot supply reads as zeros.
class InputFile {
public:
    explicit InputFile(const std::string& name) {
        // Not blocking: a named pipe must not hang the program; only plain files are read.
        fd_ = ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (fd_ < 0) return;
        struct stat st;
        if (::fstat(fd_, &st) != 0 || !S_ISREG(st.st_mode)) {
            ::close(fd_);
            fd_ = -1;
            return;
        }
        size_ = std::uint64_t(st.st_size);
        (void)::posix_fadvise(fd_, 0, 0, POSIX_FADV_SEQUENTIAL);
    }
    ~InputFile() {
        if (fd_ >= 0) ::close(fd_);
    }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    bool isOpen() const { return fd_ >= 0; }

    // Bytes from the read position to the end of the file.
    std::uint64_t remaining() const {
        const off_t at = ::lseek(fd_, 0, SEEK_CUR);
        return at < 0 || std::uint64_t(at) >= size_ ? 0 : size_ - std::uint64_t(at);
    }

    // Up to `bytes` bytes; fewer only at the end of the file.
    std::size_t read(void* data, std::size_t bytes) {
        auto* p = static_cast<char*>(data);
        std::size_t got = 0;
        while (got < bytes && !atEnd_) {
            const std::size_t step = std::min(bytes - got, std::size_t(1) << 30);
            const ssize_t n = ::read(fd_, p + got, step);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) {
                atEnd_ = true;
                break;
            }
            got += std::size_t(n);
        }
        return got;
    }

    void field(std::uint8_t* data, std::size_t bytes) {
        std::memset(data, 0, bytes);
        (void)read(data, bytes);
    }
    std::uint32_t u32() {
        std::uint8_t b[4];
        field(b, 4);
        return getLE32(b);
    }
    std::uint16_t u16() {
        std::uint8_t b[2];
        field(b, 2);
        return getLE16(b);
    }
    bool tag(const char* expected, std::size_t bytes) {
        std::uint8_t b[8];
        field(b, bytes);
        return std::memcmp(b, expected, bytes) == 0;
    }

    off_t tell() const { return ::lseek(fd_, 0, SEEK_CUR); }
    bool seek(off_t at) {
        atEnd_ = false;
        return ::lseek(fd_, at, SEEK_SET) == at;
    }

    void skip(std::uint32_t bytes) {
        if (bytes == 0 || atEnd_) return;
        if (::lseek(fd_, off_t(bytes), SEEK_CUR) >= 0) return;
        std::vector<char> sink(std::min<std::size_t>(bytes, 65536));
        while (bytes > 0 && !atEnd_) {
            const std::size_t got = read(sink.data(), std::min<std::size_t>(bytes, sink.size()));
            bytes -= std::uint32_t(got);
        }
    }

private:
    int fd_ = -1;
    bool atEnd_ = false;
    std::uint64_t size_ = 0;
};

// The memory message is shown here, and it is also the reason the caller gives for the file.
bool noMemory(const char*& message) {
    showMessage(kMemoryCaption, kMemoryMessage);
    message = kMemoryMessage;
    return false;
}

// Fills left (and right) with n samples per channel from the data chunk.
void readSamples(InputFile& file, int channels, int bytesPSample, WaveVal* left,
                 WaveVal* right, std::int32_t n) {
    const std::size_t sampleBytes = bytesPSample == 1 ? 1 : 2;

    if (channels == 1 && sampleBytes == 2) {
        // Straight into the wave.
        const std::size_t got = file.read(left, std::size_t(n) * 2);
        const std::int32_t full = std::int32_t(got / 2);
        if constexpr (!kLittleHost) {
            std::vector<std::uint8_t> copy(reinterpret_cast<std::uint8_t*>(left),
                                           reinterpret_cast<std::uint8_t*>(left) + got);
            decodeMono16(copy.data(), left, full);
        }
        std::fill(left + full, left + n, WaveVal(0));
        return;
    }

    const std::size_t frameBytes = sampleBytes * std::size_t(channels);
    const std::size_t blockFrames =
        std::min<std::size_t>(kBlockBytes / frameBytes, std::size_t(n));
    std::vector<std::uint8_t> block(blockFrames * frameBytes);
    std::int32_t pos = 0;
    while (pos < n) {
        const std::int32_t want = std::int32_t(std::min<std::size_t>(blockFrames, n - pos));
        const std::size_t got = file.read(block.data(), std::size_t(want) * frameBytes);
        const std::int32_t frames = std::int32_t(got / frameBytes);
        if (channels == 1) {
            decodeMono8(block.data(), left + pos, frames);
        } else if (sampleBytes == 1) {
            decodeStereo8(block.data(), left + pos, right + pos, frames);
        } else {
            decodeStereo16(block.data(), left + pos, right + pos, frames);
        }
        pos += frames;
        if (frames == want) continue;
        // The file ended. A left sample that is there completely still counts; whatever
        // the file cannot supply is silence.
        if (channels == 2 && got % frameBytes >= sampleBytes) {
            const std::uint8_t* s = block.data() + std::size_t(frames) * frameBytes;
            left[pos] = sampleBytes == 1 ? decode8(s[0]) : WaveVal(getLE16(s));
            right[pos] = 0;
            ++pos;
        }
        std::fill(left + pos, left + n, WaveVal(0));
        if (right) std::fill(right + pos, right + n, WaveVal(0));
        return;
    }
}

// The format and the data chunk of a file, up to its first sample.
struct DataLayout {
    std::uint32_t freq = 0;
    int channels = 0;
    int bytesPSample = 0;
    std::int32_t frames = 0;  // samples per channel
};

bool readLayout(InputFile& file, DataLayout& layout, const char*& message) {
    message = kWavNoErrors;
    if (!file.isOpen()) {
        message = kWavCannotOpen;
        return false;
    }
    if (!file.tag("RIFF", 4)) {
        message = kWavNoRiff;
        return false;
    }
    (void)file.u32();  // the RIFF size: never trusted
    if (!file.tag("WAVEfmt ", 8)) {
        message = kWavNoWaveFmt;
        return false;
    }
    const auto formatSize = std::int32_t(file.u32());
    if (formatSize < 16) {
        message = kWavChunkTooSmall;
        return false;
    }
    if (file.u16() != 1) {
        message = kWavNotPcm;
        return false;
    }
    const auto channels = std::int16_t(file.u16());
    if (channels != 1 && channels != 2) {
        message = kWavBadChannels;
        return false;
    }
    const std::uint32_t freq = file.u32();
    (void)file.u32();  // bytes per second
    (void)file.u16();  // block align
    const int bytesPSample = bytesPerSampleFromBits(file.u16());
    if (!isUsableSampleFrequency(freq)) {
        message = wavFrequencyMessage(freq);
        return false;
    }
    file.skip(std::uint32_t(formatSize - 16));  // the extension of a longer format chunk

    std::uint8_t id[4];
    file.field(id, 4);
    if (std::memcmp(id, "fact", 4) == 0) {
        // Taken to hold exactly its 4-byte value; its size is not used to skip.
        (void)file.u32();
        (void)file.u32();
        file.field(id, 4);
    }
    if (std::memcmp(id, "data", 4) != 0) return false;  // message stays "No errors occurred."

    // A recording still being written (or streamed) carries 0xFFFFFFFF or a guess here, and a
    // damaged file anything at all: the file itself says how many bytes there really are.
    const std::uint32_t claimed = file.u32();
    const std::uint64_t dataSize = std::min<std::uint64_t>(claimed, file.remaining());
    const std::int64_t count = samplesPerChannel(dataSize, channels, bytesPSample);
    if (count > std::numeric_limits<std::int32_t>::max()) {
        message = kWavTooManySamples;
        return false;
    }
    layout.freq = freq;
    layout.channels = channels;
    layout.bytesPSample = bytesPSample;
    layout.frames = std::int32_t(count);
    return true;
}

}  // namespace

bool readWaveChannels(const std::string& fileName, WaveFileChannels& out, const char*& message) {
    InputFile file(fileName);
    DataLayout layout;
    if (!readLayout(file, layout, message)) return false;
    const int channels = layout.channels;
    const int bytesPSample = layout.bytesPSample;
    const std::uint32_t freq = layout.freq;
    const std::int32_t n = layout.frames;

    WaveFileChannels result;
    result.freq = std::int32_t(freq);
    result.monoStereo = channels;
    result.bytesPSample = bytesPSample;
    if (n == 0) {
        result.left = std::make_unique<Wave>();
        if (channels == 2) result.right = std::make_unique<Wave>();
        out = std::move(result);
        return true;
    }

    WaveVal* left = allocateSamples(n);
    if (!left) return noMemory(message);
    WaveVal* right = nullptr;
    if (channels == 2) {
        right = allocateSamples(n);
        if (!right) {
            freeSamples(left);
            return noMemory(message);
        }
    }
    result.left = std::make_unique<Wave>(left, n);
    if (right) result.right = std::make_unique<Wave>(right, n);
    readSamples(file, channels, bytesPSample, left, right, n);
    out = std::move(result);
    return true;
}

// ---- streaming ---------------------------------------------------------------------------

struct WaveFileStream::Source {
    explicit Source(const std::string& name) : file(name) {}
    InputFile file;
    off_t dataStart = 0;
};

WaveFileStream::WaveFileStream() = default;
WaveFileStream::~WaveFileStream() = default;

bool WaveFileStream::open(const std::string& fileName, const char*& message) {
    source_ = std::make_unique<Source>(fileName);
    DataLayout layout;
    if (!readLayout(source_->file, layout, message)) {
        close();
        return false;
    }
    source_->dataStart = source_->file.tell();
    freq_ = std::int32_t(layout.freq);
    channels_ = layout.channels;
    bytesPSample_ = layout.bytesPSample;
    frames_ = layout.frames;
    position_ = 0;
    return true;
}

bool WaveFileStream::isOpen() const { return source_ != nullptr; }

void WaveFileStream::close() {
    source_.reset();
    freq_ = channels_ = bytesPSample_ = 0;
    frames_ = position_ = 0;
}

std::size_t WaveFileStream::frameBytes() const {
    return std::size_t(channels_) * (bytesPSample_ == 1 ? 1 : 2);
}

std::size_t WaveFileStream::read(std::uint8_t* out, std::size_t frames) {
    if (!source_) return 0;
    frames = std::min<std::size_t>(frames, std::size_t(frames_ - position_));
    const std::size_t bytes = source_->file.read(out, frames * frameBytes());
    const std::size_t got = bytes / frameBytes();
    position_ += std::int32_t(got);
    if (got < frames) frames_ = position_;  // the file shrank: its end is here now
    return got;
}

bool WaveFileStream::seek(std::int32_t frame) {
    if (!source_ || frame < 0 || frame > frames_) return false;
    if (!source_->file.seek(source_->dataStart + off_t(frame) * off_t(frameBytes()))) return false;
    position_ = frame;
    return true;
}

bool writeWaveChannels(const std::string& fileName, const Wave* left, const Wave* right,
                       std::int32_t freq, int bytesPSample, std::int32_t begin,
                       std::int32_t end, bool temporary, const CancelFlag* cancel) {
    clearWriteFailure();
    if (!left) {
        noteWriteFailure(fileName, "There is no sound to write.");
        return false;
    }
    ORV_ASSERT(begin >= 0, kUnit);
    ORV_ASSERT(begin <= end, kUnit);
    ORV_ASSERT(end <= left->getValues(), kUnit);
    ORV_ASSERT_TEXT(!right || right->getValues() == left->getValues(),
                    "waveLeft->getValues() == waveRight->getValues()", kUnit);
    // Only these two widths can be written; anything else would give a file whose header
    // and samples disagree.
    if (bytesPSample != 1 && bytesPSample != 2) {
        noteWriteFailure(fileName, "Only 8-bit and 16-bit WAV files can be written.");
        return false;
    }

    const int channels = right ? 2 : 1;
    const std::int32_t count = end - begin;
    const std::uint64_t dataSize = std::uint64_t(channels) * std::uint64_t(count) * bytesPSample;
    if (dataSize > std::numeric_limits<std::uint32_t>::max() - 32u) {
        noteWriteFailure(fileName, "The wave is too long for a WAV file (4 GB at most).");
        return false;
    }

    SafeFileWriter file;
    if (!file.open(fileName, !temporary)) return false;
    if (!file.reserve(kWavHeaderSize + dataSize)) return false;
    const WavHeader header = makeWavHeader(std::uint16_t(channels), freq,
                                           std::uint16_t(bytesPSample), std::uint32_t(dataSize));
    if (!file.write(header.data(), header.size())) return false;
    // Ctrl-C on a long save: stop writing, and above all do not replace the old file.
    auto interrupted = [&] {
        if (!cancel || !isCancelled(*cancel)) return false;
        file.fail(kWavSaveInterrupted);
        return true;
    };

    const WaveVal* l = left->data() + begin;
    const WaveVal* r = right ? right->data() + begin : nullptr;
    const std::size_t frameBytes = std::size_t(channels) * bytesPSample;
    const std::size_t blockFrames =
        std::min<std::size_t>(kBlockBytes / frameBytes, std::size_t(count));
    const bool straight = channels == 1 && bytesPSample == 2 && kLittleHost;
    std::vector<std::uint8_t> block(straight ? 0 : blockFrames * frameBytes);
    for (std::int32_t pos = 0; pos < count;) {
        if (interrupted()) return false;
        const std::int32_t m = std::int32_t(std::min<std::size_t>(blockFrames, count - pos));
        if (straight) {
            // Straight from the wave.
            if (!file.write(l + pos, std::size_t(m) * 2)) return false;
        } else {
            if (channels == 1) {
                if (bytesPSample == 1)
                    encodeMono8(l + pos, block.data(), m);
                else
                    encodeMono16(l + pos, block.data(), m);
            } else if (bytesPSample == 1) {
                encodeStereo8(l + pos, r + pos, block.data(), m);
            } else {
                encodeStereo16(l + pos, r + pos, block.data(), m);
            }
            if (!file.write(block.data(), std::size_t(m) * frameBytes)) return false;
        }
        pos += m;
    }
    if (interrupted()) return false;
    return file.commit();
}

}  // namespace orv
