#include "fileio/sound_import.h"

#include <sndfile.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "core/platform.h"
#include "core/wave.h"
#include "fileio/sample_frequency.h"
#include "fileio/wav_format.h"

namespace orv {

namespace {

// Frames asked of libsndfile at a time: big enough that the per-call cost vanishes, small
// enough that a stereo block (256 KB) stays in the cache while it is split into channels.
constexpr std::int32_t kBlockFrames = 1 << 16;

class SndFileCloser {
public:
    explicit SndFileCloser(SNDFILE* f) : f_(f) {}
    ~SndFileCloser() {
        if (f_) sf_close(f_);
    }
    SndFileCloser(const SndFileCloser&) = delete;
    SndFileCloser& operator=(const SndFileCloser&) = delete;

private:
    SNDFILE* f_;
};

// One or two channels of sample storage that grows when a file turns out longer than its
// header said (or did not say).
class ChannelStore {
public:
    explicit ChannelStore(int channels) : channels_(channels) {}
    ~ChannelStore() {
        for (WaveVal* c : data_) freeSamples(c);
    }
    ChannelStore(const ChannelStore&) = delete;
    ChannelStore& operator=(const ChannelStore&) = delete;

    std::int32_t capacity() const { return capacity_; }
    WaveVal* channel(int i) { return data_[i]; }

    // Room for `capacity` samples per channel, keeping the first `kept`. False when the
    // storage cannot be had; the old storage is then still there.
    bool resize(std::int32_t capacity, std::int32_t kept) {
        WaveVal* fresh[2] = {nullptr, nullptr};
        for (int i = 0; i < channels_; ++i) {
            fresh[i] = allocateSamples(capacity);
            if (!fresh[i]) {
                freeSamples(fresh[0]);
                return false;
            }
            if (kept > 0) std::memcpy(fresh[i], data_[i], std::size_t(kept) * sizeof(WaveVal));
            freeSamples(data_[i]);
            data_[i] = fresh[i];
        }
        capacity_ = capacity;
        return true;
    }

    // Hands channel i over as a wave of `count` samples. Storage much larger than needed is
    // traded for an exact copy when one can be had.
    WavePtr release(int i, std::int32_t count) {
        WaveVal* block = data_[i];
        data_[i] = nullptr;
        if (count == 0) {
            freeSamples(block);
            return std::make_unique<Wave>();
        }
        if (capacity_ - count > capacity_ / 8) {
            if (WaveVal* exact = allocateSamples(count)) {
                std::memcpy(exact, block, std::size_t(count) * sizeof(WaveVal));
                freeSamples(block);
                block = exact;
            }
        }
        return std::make_unique<Wave>(block, count);
    }

private:
    int channels_;
    std::int32_t capacity_ = 0;
    WaveVal* data_[2] = {nullptr, nullptr};
};

bool noMemory(std::string& reason, CancelFlag* cancel) {
    showMessage(kMemoryCaption, kMemoryMessage);
    if (cancel) setCancelled(*cancel);
    reason = kMemoryMessage;
    return false;
}

// A sentence of ours, then libsndfile's own text as the detail.
std::string withDetail(std::string_view sentence, const char* detail) {
    std::string text(sentence);
    if (detail && *detail) text += std::string(" (libsndfile: ") + detail + ")";
    return text;
}

bool damaged(SNDFILE* file, std::string& reason) {
    reason = withDetail(kImportDamagedSamples, sf_strerror(file));
    return false;
}

// A float sample (full scale +-1.0) as a 16-bit one: times 32768, rounded to the nearest
// (ties to even, as libsndfile rounds), clipped. So v / 32768, which is how 16-bit samples
// are exported as float, comes back as v.
WaveVal floatToSample(float x) {
    const double scaled = std::nearbyint(double(x) * 32768.0);
    if (!(scaled == scaled)) return 0;  // NaN
    if (scaled >= 32767.0) return 32767;
    if (scaled <= -32768.0) return -32768;
    return toWaveVal(scaled);
}

// Reads up to `want` frames into l (and r). Integer data comes through libsndfile's 16-bit
// reading. libsndfile does not scale floating-point data read as integers (0.5 would come
// out as 0), so that is read as float and scaled here.
class BlockReader {
public:
    BlockReader(SNDFILE* file, int channels, bool floating)
        : file_(file), channels_(channels), floating_(floating) {
        if (floating_)
            floats_.resize(std::size_t(kBlockFrames) * channels_);
        else if (channels_ == 2)
            shorts_.resize(std::size_t(kBlockFrames) * 2);
    }

    sf_count_t read(WaveVal* l, WaveVal* r, std::int32_t want) {
        sf_count_t got;
        if (floating_) {
            got = sf_readf_float(file_, floats_.data(), want);
            const float* s = floats_.data();
            if (channels_ == 1) {
                for (sf_count_t i = 0; i < got; ++i) l[i] = floatToSample(s[i]);
            } else {
                for (sf_count_t i = 0; i < got; ++i) {
                    l[i] = floatToSample(s[2 * i]);
                    r[i] = floatToSample(s[2 * i + 1]);
                }
            }
        } else if (channels_ == 1) {
            got = sf_readf_short(file_, l, want);
        } else {
            got = sf_readf_short(file_, shorts_.data(), want);
            const short* s = shorts_.data();
            for (sf_count_t i = 0; i < got; ++i) {
                l[i] = s[2 * i];
                r[i] = s[2 * i + 1];
            }
        }
        return got < 0 ? 0 : got;
    }

private:
    SNDFILE* file_;
    int channels_;
    bool floating_;
    std::vector<short> shorts_;
    std::vector<float> floats_;
};

// Reads every frame of an opened file into a new sound.
bool readOpened(SNDFILE* file, const SF_INFO& info, SoundPtr& sound, std::string& reason,
                CancelFlag* cancel) {
    const int channels = info.channels;
    if (channels != 1 && channels != 2) {
        reason = importChannelsReason(channels);
        return false;
    }
    if (!isUsableSampleFrequency(info.samplerate)) {
        reason = sampleFrequencyReason(info.samplerate);
        return false;
    }
    // Whatever libsndfile converts to 16 bits itself is clipped, never wrapped.
    sf_command(file, SFC_SET_CLIPPING, nullptr, SF_TRUE);
    const int subtype = info.format & SF_FORMAT_SUBMASK;
    BlockReader reader(file, channels,
                       subtype == SF_FORMAT_FLOAT || subtype == SF_FORMAT_DOUBLE);

    // libsndfile says SF_COUNT_MAX when it does not know the length.
    const bool lengthKnown = info.frames >= 0 && info.frames < SF_COUNT_MAX;
    if (lengthKnown && info.frames > INT32_MAX) {
        reason = kImportTooLong;
        return false;
    }
    ChannelStore store(channels);
    const std::int32_t initial = lengthKnown ? std::int32_t(info.frames) : kBlockFrames;
    if (initial > 0 && !store.resize(initial, 0)) return noMemory(reason, cancel);

    std::int32_t count = 0;
    bool grown = !lengthKnown;
    for (;;) {
        if (cancel && isCancelled(*cancel)) {
            reason = kImportCancelled;
            return false;
        }
        if (count == store.capacity()) {
            // Full. A file of known length normally ends here: look for one more frame
            // before paying for more storage.
            WaveVal probe[2] = {0, 0};
            bool probed = false;
            if (!grown || count == INT32_MAX) {
                if (reader.read(&probe[0], &probe[1], 1) != 1) {
                    if (sf_error(file) != SF_ERR_NO_ERROR) return damaged(file, reason);
                    break;
                }
                probed = true;
                grown = true;
            }
            if (count == INT32_MAX) {
                reason = kImportTooLong;
                return false;
            }
            const auto bigger = std::int32_t(
                std::min<std::int64_t>(INT32_MAX, std::int64_t(count) * 2 + kBlockFrames));
            if (!store.resize(bigger, count)) return noMemory(reason, cancel);
            if (probed) {
                store.channel(0)[count] = probe[0];
                if (channels == 2) store.channel(1)[count] = probe[1];
                ++count;
                continue;
            }
        }
        const std::int32_t want = std::min(kBlockFrames, store.capacity() - count);
        if (chunkHook) callChunkHook(count, count + want);
        const sf_count_t got = reader.read(
            store.channel(0) + count, channels == 2 ? store.channel(1) + count : nullptr, want);
        count += std::int32_t(got);
        samplesWalked.fetch_add(got, std::memory_order_relaxed);
        if (got < want) {
            // The end, or damage that libsndfile noticed: a damaged file is refused with
            // its text rather than silently cut.
            if (sf_error(file) != SF_ERR_NO_ERROR) return damaged(file, reason);
            break;
        }
    }

    if (channels == 2) {
        WavePtr left = store.release(0, count);
        WavePtr right = store.release(1, count);
        sound = std::make_unique<StereoSound>(std::move(left), std::move(right),
                                              std::int32_t(info.samplerate));
    } else {
        sound = std::make_unique<MonoSound>(store.release(0, count),
                                            std::int32_t(info.samplerate));
    }
    return true;
}

// The bytes libsndfile reads: a file (read with pread) or a block of memory, seen through
// sf_open_virtual so that the chunks of a WAV file can be screened first (see below).
class Source {
public:
    Source(const unsigned char* data, sf_count_t size) : data_(data), size_(size) {}
    explicit Source(int fd) : fd_(fd) {
        struct stat st;
        size_ = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) ? sf_count_t(st.st_size) : -1;
    }
    ~Source() {
        if (fd_ >= 0) ::close(fd_);
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    sf_count_t size() const { return size_; }

    // Up to `count` bytes from `at`; fewer at the end.
    sf_count_t read(void* dest, sf_count_t count, sf_count_t at) const {
        if (count <= 0 || at < 0 || at >= size_) return 0;
        count = std::min(count, size_ - at);
        if (data_) {
            std::memcpy(dest, data_ + at, std::size_t(count));
            return count;
        }
        sf_count_t got = 0;
        while (got < count) {
            const ssize_t n = ::pread(fd_, static_cast<char*>(dest) + got,
                                      std::size_t(count - got), off_t(at + got));
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) break;
            got += n;
        }
        return got;
    }

    // Where the renamed chunk identifiers lie; read() leaves them to the caller.
    std::vector<sf_count_t> junked;
    sf_count_t pos = 0;
    // The sample frequency a WAV file's format chunk gives, -1 when there is none.
    std::int64_t wavFrequency = -1;

private:
    const unsigned char* data_ = nullptr;
    int fd_ = -1;
    sf_count_t size_ = 0;
};

// libsndfile's parsers of some WAV metadata chunks ("LIST" among them) can loop for minutes
// over a chunk whose inner sizes are damaged, before a single sample is read. Nothing in
// those chunks matters for import, so every chunk of a RIFF WAVE file but "fmt ", "fact" and
// "data" is shown to libsndfile as "JUNK", which it skips by its size.
void screenWaveChunks(Source& src) {
    unsigned char head[12];
    if (src.read(head, 12, 0) != 12 || std::memcmp(head, "RIFF", 4) != 0 ||
        std::memcmp(head + 8, "WAVE", 4) != 0)
        return;
    sf_count_t at = 12;
    for (int chunks = 0; chunks < 100000 && at + 8 <= src.size(); ++chunks) {
        unsigned char c[8];
        if (src.read(c, 8, at) != 8) break;
        if (std::memcmp(c, "fmt ", 4) != 0 && std::memcmp(c, "fact", 4) != 0 &&
            std::memcmp(c, "data", 4) != 0)
            src.junked.push_back(at);
        unsigned char rate[4];
        if (std::memcmp(c, "fmt ", 4) == 0 && src.read(rate, 4, at + 12) == 4)
            src.wavFrequency = std::int64_t(getLE32(rate));
        const sf_count_t size = sf_count_t(c[4]) | sf_count_t(c[5]) << 8 |
                                sf_count_t(c[6]) << 16 | sf_count_t(c[7]) << 24;
        at += 8 + size + (size & 1);
    }
}

sf_count_t srcLength(void* user) { return static_cast<Source*>(user)->size(); }

sf_count_t srcSeek(sf_count_t offset, int whence, void* user) {
    auto* s = static_cast<Source*>(user);
    const sf_count_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? s->pos : s->size();
    if (offset < -base || offset > INT64_MAX - base) return -1;
    s->pos = base + offset;  // past the end is allowed, as for a file; reads there give nothing
    return s->pos;
}

sf_count_t srcRead(void* dest, sf_count_t count, void* user) {
    auto* s = static_cast<Source*>(user);
    const sf_count_t got = s->read(dest, count, s->pos);
    for (const sf_count_t j : s->junked) {
        for (int k = 0; k < 4; ++k) {
            const sf_count_t i = j + k - s->pos;
            if (i >= 0 && i < got) static_cast<char*>(dest)[i] = "JUNK"[k];
        }
    }
    s->pos += got;
    return got;
}

sf_count_t srcWrite(const void*, sf_count_t, void*) { return 0; }

sf_count_t srcTell(void* user) { return static_cast<Source*>(user)->pos; }

bool importFrom(Source& src, SoundPtr& sound, std::string& reason, CancelFlag* cancel) {
    screenWaveChunks(src);
    SF_VIRTUAL_IO io{srcLength, srcSeek, srcRead, srcWrite, srcTell};
    SF_INFO info{};
    SNDFILE* file = sf_open_virtual(&io, SFM_READ, &info, &src);
    if (!file) {
        // libsndfile's texts are written for programmers ("Internal error : SF_INFO struct
        // incomplete." for a WAV file of 0 Hz); the user gets a sentence of ours first.
        const int error = sf_error(nullptr);
        if (src.size() == 0)
            reason = kImportEmpty;
        else if (src.wavFrequency >= 0 && !isUsableSampleFrequency(src.wavFrequency))
            reason = sampleFrequencyReason(src.wavFrequency);
        else
            reason = withDetail(error == SF_ERR_UNRECOGNISED_FORMAT ? kImportUnknownKind
                                                                      : kImportDamagedHeader,
                                sf_strerror(nullptr));
        return false;
    }
    SndFileCloser closer(file);
    SoundPtr result;
    if (!readOpened(file, info, result, reason, cancel)) return false;
    sound = std::move(result);
    return true;
}

}  // namespace

std::string importChannelsReason(int channels) {
    return "The file has " + std::to_string(channels) +
           " channels; only mono and stereo files can be imported.";
}

bool importSoundFile(const std::string& fileName, SoundPtr& sound, std::string& reason,
                     CancelFlag* cancel) {
    sound.reset();
    // Not blocking: opening a named pipe for reading would wait for a writer forever. Only
    // a plain file ever reaches libsndfile.
    const int fd = ::open(fileName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        reason = errno == ENOENT ? std::string(kImportMissing)
                                 : std::string(kImportCannotOpen) + std::strerror(errno) + ".";
        return false;
    }
    Source src(fd);
    if (src.size() < 0) {
        struct stat st;
        reason = ::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode) ? kImportFolder : kImportNotAFile;
        return false;
    }
    (void)::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
    return importFrom(src, sound, reason, cancel);
}

bool importSoundMemory(const void* data, std::size_t size, SoundPtr& sound,
                       std::string& reason, CancelFlag* cancel) {
    sound.reset();
    Source src(static_cast<const unsigned char*>(data), sf_count_t(size));
    return importFrom(src, sound, reason, cancel);
}

QuietStderr::QuietStderr() {
    std::fflush(stderr);
    const int null = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (null < 0) return;
    saved_ = ::fcntl(2, F_DUPFD_CLOEXEC, 3);
    if (saved_ >= 0 && ::dup2(null, 2) < 0) {
        ::close(saved_);
        saved_ = -1;
    }
    ::close(null);
}

QuietStderr::~QuietStderr() {
    if (saved_ < 0) return;
    std::fflush(stderr);
    ::dup2(saved_, 2);
    ::close(saved_);
}

std::string importFailureText(const std::string& fileName, const std::string& reason) {
    return "Cannot import the file: \"" + fileName + "\", " + reason;
}

std::vector<ImportFormat> importFormats() {
    std::vector<ImportFormat> formats;
    int count = 0;
    sf_command(nullptr, SFC_GET_FORMAT_MAJOR_COUNT, &count, sizeof count);
    for (int i = 0; i < count; ++i) {
        SF_FORMAT_INFO f{};
        f.format = i;
        if (sf_command(nullptr, SFC_GET_FORMAT_MAJOR, &f, sizeof f) != 0) continue;
        formats.push_back({f.name ? f.name : "", f.extension ? f.extension : ""});
    }
    return formats;
}

}  // namespace orv
