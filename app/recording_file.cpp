#include "app/recording_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "fileio/wav_format.h"

namespace orv {

namespace {

// The largest data chunk whose RIFF size (data + 32) still fits in 32 bits.
constexpr std::uint64_t kMaxData = 0xFFFFFFFFull - 32;

std::string reason(const std::string& path) { return "\"" + path + "\": " + std::strerror(errno); }

bool writeAll(int fd, const void* data, std::size_t size) {
    const auto* p = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t n = ::write(fd, p, size);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        p += n;
        size -= std::size_t(n);
    }
    return true;
}

}  // namespace

RecordingFile::~RecordingFile() { discard(); }

bool RecordingFile::begin(const std::string& path, int channels, std::int32_t freq,
                          int bytesPSample, std::string& error) {
    discard();
    fd_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd_ < 0) {
        error = reason(path);
        return false;
    }
    path_ = path;
    channels_ = channels;
    freq_ = freq;
    bytesPSample_ = bytesPSample;
    bytes_ = 0;
    const WavHeader header = makeWavHeader(std::uint16_t(channels), freq,
                                           std::uint16_t(bytesPSample), std::uint32_t(kMaxData));
    if (!writeAll(fd_, header.data(), header.size())) {
        error = reason(path);
        discard();
        return false;
    }
    return true;
}

bool RecordingFile::append(const void* data, std::size_t size, std::string& error) {
    if (fd_ < 0) return false;
    // As much as a WAV file holds, and no more samples than a wave can count.
    const std::uint64_t frame = std::uint64_t(channels_) * (bytesPSample_ == 1 ? 1 : 2);
    if (bytes_ + size > std::min<std::uint64_t>(kMaxData, 0x7FFFFFFFull * frame)) {
        error = "The recording has reached the largest WAV file (4 GB).";
        return false;
    }
    if (!writeAll(fd_, data, size)) {
        error = reason(path_);
        return false;
    }
    bytes_ += size;
    return true;
}

bool RecordingFile::finish(const std::string& target, std::string& error) {
    if (fd_ < 0) return false;
    // Only whole frames count.
    const std::uint64_t frame = std::uint64_t(channels_) * (bytesPSample_ == 1 ? 1 : 2);
    const std::uint64_t data = bytes_ - bytes_ % frame;
    const WavHeader header = makeWavHeader(std::uint16_t(channels_), freq_,
                                           std::uint16_t(bytesPSample_), std::uint32_t(data));
    const bool ok = ::pwrite(fd_, header.data(), header.size(), 0) == ssize_t(header.size()) &&
                    ::ftruncate(fd_, off_t(header.size() + data)) == 0;
    if (!ok || ::close(fd_) != 0) {
        error = reason(path_);
        fd_ = -1;
        discard();
        return false;
    }
    fd_ = -1;
    if (::rename(path_.c_str(), target.c_str()) != 0) {
        error = reason(target);
        discard();
        return false;
    }
    path_.clear();
    return true;
}

void RecordingFile::discard() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
    if (!path_.empty()) ::unlink(path_.c_str());
    path_.clear();
}

}  // namespace orv
