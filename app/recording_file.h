// A recording as it comes, straight onto the disk: a WAV file whose header claims as many
// bytes as a WAV file may hold (our reader takes the bytes that are really there), so that
// whatever a crash leaves behind opens as a sound, and a long recording costs no memory.
// Finished, it gets its true sizes and takes the place of the record file in one rename.
#pragma once

#include <cstdint>
#include <string>

namespace orv {

class RecordingFile {
public:
    RecordingFile() = default;
    ~RecordingFile();  // an unfinished file is removed
    RecordingFile(const RecordingFile&) = delete;
    RecordingFile& operator=(const RecordingFile&) = delete;

    // Creates `path` (replacing what is there) with the header of the format.
    bool begin(const std::string& path, int channels, std::int32_t freq, int bytesPSample,
               std::string& error);
    // Appends whole frames; false (and nothing written) once the file would pass the 4 GB a
    // WAV file can hold, or when the disk refuses.
    bool append(const void* data, std::size_t bytes, std::string& error);
    std::uint64_t bytes() const { return bytes_; }
    // Writes the true sizes and renames the file to `target`, which it replaces.
    bool finish(const std::string& target, std::string& error);

private:
    void discard();

    int fd_ = -1;
    std::string path_;
    int channels_ = 0;
    std::int32_t freq_ = 0;
    int bytesPSample_ = 0;
    std::uint64_t bytes_ = 0;
};

}  // namespace orv
