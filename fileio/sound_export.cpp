#include "fileio/sound_export.h"

#include <sndfile.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

#include "core/platform.h"
#include "fileio/safe_file_writer.h"

namespace orv {

namespace {

constexpr const char* kUnit = "soundexport";

// Frames handed to libsndfile at a time (a stereo block is 256 KB).
constexpr std::int32_t kBlockFrames = 1 << 16;

int sndFormat(ExportFormat f) {
    switch (f) {
    case ExportFormat::Wav16: return SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    case ExportFormat::Wav24: return SF_FORMAT_WAV | SF_FORMAT_PCM_24;
    case ExportFormat::WavFloat: return SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    case ExportFormat::Flac: return SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    case ExportFormat::Ogg: return SF_FORMAT_OGG | SF_FORMAT_VORBIS;
    }
    return 0;
}

const ExportFormatInfo& infoOf(ExportFormat f) {
    for (const auto& i : allExportFormats())
        if (i.format == f) return i;
    ORV_ASSERT_TEXT(false, "known export format", kUnit);
    return allExportFormats().front();
}

std::string lower(std::string s) {
    for (char& c : s) c = char(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

// The file descriptor libsndfile writes through, closed exactly once.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }
    // Flush and close, both checked.
    bool finish() {
        const int fd = fd_;
        fd_ = -1;
        const bool synced = ::fsync(fd) == 0;
        return ::close(fd) == 0 && synced;
    }

private:
    int fd_;
};

// Writes [begin, end) of the channels through an opened libsndfile handle. libsndfile
// stores 16-bit samples in a float file unscaled (16384 would become 16384.0, not 0.5), so
// for float files the samples are scaled to full scale +-1.0 here: v / 32768, exact.
bool writeFrames(SNDFILE* out, bool floating, const Wave* left, const Wave* right,
                 std::int32_t begin, std::int32_t end, std::string& reason, CancelFlag* cancel) {
    const int channels = right ? 2 : 1;
    const std::size_t block = std::size_t(std::min(kBlockFrames, end - begin)) * channels;
    std::vector<short> shorts(!floating && right ? block : 0);
    std::vector<float> floats(floating ? block : 0);
    for (std::int32_t pos = begin; pos < end;) {
        if (cancel && isCancelled(*cancel)) {
            reason = kExportCancelled;
            return false;
        }
        const std::int32_t m = std::min(kBlockFrames, end - pos);
        if (chunkHook) callChunkHook(pos, pos + m);
        const WaveVal* l = left->data() + pos;
        const WaveVal* r = right ? right->data() + pos : nullptr;
        sf_count_t written;
        if (floating) {
            float* d = floats.data();
            for (std::int32_t i = 0; i < m; ++i) {
                d[channels * i] = float(l[i]) * (1.0f / 32768);
                if (r) d[2 * i + 1] = float(r[i]) * (1.0f / 32768);
            }
            written = sf_writef_float(out, d, m);
        } else if (!right) {
            written = sf_writef_short(out, l, m);
        } else {
            short* d = shorts.data();
            for (std::int32_t i = 0; i < m; ++i) {
                d[2 * i] = l[i];
                d[2 * i + 1] = r[i];
            }
            written = sf_writef_short(out, d, m);
        }
        if (written != m || sf_error(out) != SF_ERR_NO_ERROR) {
            reason = sf_strerror(out);
            return false;
        }
        samplesWalked.fetch_add(m, std::memory_order_relaxed);
        pos += m;
    }
    return true;
}

}  // namespace

const std::vector<ExportFormatInfo>& allExportFormats() {
    static const std::vector<ExportFormatInfo> formats = {
        {ExportFormat::Wav16, "wav16", "WAV, 16-bit PCM", "wav"},
        {ExportFormat::Wav24, "wav24", "WAV, 24-bit PCM", ""},
        {ExportFormat::WavFloat, "float", "WAV, 32-bit floating point", ""},
        {ExportFormat::Flac, "flac", "FLAC, 16-bit (lossless)", "flac"},
        {ExportFormat::Ogg, "ogg", "Ogg Vorbis (lossy)", "ogg oga"},
    };
    return formats;
}

std::vector<ExportFormatInfo> availableExportFormats() {
    std::vector<ExportFormatInfo> result;
    for (const auto& f : allExportFormats()) {
        SF_INFO probe{};
        probe.samplerate = 44100;
        probe.channels = 2;
        probe.format = sndFormat(f.format);
        if (sf_format_check(&probe)) result.push_back(f);
    }
    return result;
}

std::string exportFormatNames() {
    std::string names;
    for (const auto& f : allExportFormats()) {
        if (!names.empty()) names += ", ";
        names += f.name;
    }
    return names;
}

bool chooseExportFormat(const std::string& fileName, const std::string& name,
                        ExportFormat& format, std::string& reason) {
    if (!name.empty()) {
        const std::string wanted = lower(name);
        for (const auto& f : allExportFormats()) {
            if (wanted == f.name) {
                format = f.format;
                return true;
            }
        }
        reason = "Unknown export format \"" + name + "\"; the formats are " +
                 exportFormatNames() + ".";
        return false;
    }
    const auto slash = fileName.find_last_of('/');
    const std::string base = slash == std::string::npos ? fileName : fileName.substr(slash + 1);
    const auto dot = base.find_last_of('.');
    if (dot != std::string::npos && dot + 1 < base.size()) {
        const std::string ext = lower(base.substr(dot + 1));
        for (const auto& f : allExportFormats()) {
            std::string list = std::string(" ") + f.extensions + " ";
            if (list.find(" " + ext + " ") != std::string::npos) {
                format = f.format;
                return true;
            }
        }
    }
    reason = "Cannot tell the export format from the file name; give one of " +
             exportFormatNames() + ".";
    return false;
}

bool exportSoundFile(const std::string& fileName, const std::string& formatName,
                     const Sound* sound, std::string& reason, CancelFlag* cancel) {
    ExportFormat format;
    if (!chooseExportFormat(fileName, formatName, format, reason)) return false;
    if (!sound) {
        reason = "There is no sound to export.";
        return false;
    }
    return exportSoundRange(fileName, format, sound, 0, sound->GetValues(), reason, cancel);
}

bool exportSoundRange(const std::string& fileName, ExportFormat format, const Sound* sound,
                      std::int32_t begin, std::int32_t end, std::string& reason,
                      CancelFlag* cancel) {
    if (!sound) {
        reason = "There is no sound to export.";
        return false;
    }
    const Wave* left = nullptr;
    const Wave* right = nullptr;
    WavePtr owned;
    if (sound->MoSt == 2) {
        left = sound->GetLeftWave();
        right = sound->GetRightWave();
    } else {
        CancelFlag local{0};
        bool isNew = false;
        Wave* middle = sound->GetMonoWave(cancel ? cancel : &local, isNew);
        if (isNew) owned.reset(middle);  // a mono sound lends its own wave
        left = middle;
    }
    if (!left || (sound->MoSt == 2 && !right)) {
        reason = "There is no sound to export.";
        return false;
    }
    ORV_ASSERT(begin >= 0, kUnit);
    ORV_ASSERT(begin <= end, kUnit);
    ORV_ASSERT(end <= left->getValues(), kUnit);

    const ExportFormatInfo& fi = infoOf(format);
    SF_INFO info{};
    info.samplerate = sound->Freq;
    info.channels = right ? 2 : 1;
    info.format = sndFormat(format);
    if (sound->Freq <= 0 || !sf_format_check(&info)) {
        reason = std::string("This build cannot write ") + fi.description + " files at " +
                 std::to_string(sound->Freq) + " Hz.";
        return false;
    }

    SafeFileWriter writer;
    if (!writer.open(fileName)) {
        reason = std::string(kExportCannotCreate);
        const std::string& why = writer.failureReason();
        reason += why.empty() ? std::string(".") : ": " + why;
        return false;
    }
    // libsndfile goes back to fill in headers, so it gets a descriptor of its own on the
    // temporary (which may have no name yet); the writer keeps the permissions and puts the
    // file in place.
    Descriptor fd(::fcntl(writer.descriptor(), F_DUPFD_CLOEXEC, 0));
    if (fd.get() < 0) {
        reason = std::string(kExportCannotCreate) + ": " + std::strerror(errno) + ".";
        return false;
    }
    SNDFILE* out = sf_open_fd(fd.get(), SFM_WRITE, &info, SF_FALSE);
    if (!out) {
        reason = sf_strerror(nullptr);
        return false;
    }
    const bool written = writeFrames(out, format == ExportFormat::WavFloat, left, right, begin,
                                     end, reason, cancel);
    // Closing writes the final header (or the last compressed block): its failure counts.
    const int closed = sf_close(out);
    if (!written) return false;
    if (closed != 0) {
        reason = sf_error_number(closed);
        return false;
    }
    if (!fd.finish() || !writer.commit(true)) {
        // "Cannot finish writing the file." with the system's reason before the full stop.
        reason = kExportCannotFinish;
        if (const std::string& why = writer.failureReason(); !why.empty())
            reason = reason.substr(0, reason.size() - 1) + ": " + why;
        return false;
    }
    return true;
}

std::string exportFailureText(const std::string& fileName, const std::string& reason) {
    return "Cannot export the file: \"" + fileName + "\", " + reason;
}

}  // namespace orv
