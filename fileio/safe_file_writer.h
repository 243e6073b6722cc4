// Replaces a file without ever damaging the one that is there: the new contents go to a
// temporary file in the same folder, every write, the flush to disk and the close are
// checked, and only then is the temporary renamed over the target. On any failure the
// temporary is removed and the old file stays as it was.
#pragma once

#include <cstddef>
#include <string>
#include <sys/types.h>

namespace orv {

// The system calls the writer goes through. Tests swap them to make a disk "full" after a
// number of bytes, or to make the reservation, the flush, the close or the rename fail.
struct FileOps {
    ssize_t (*write)(int fd, const void* data, std::size_t bytes);
    int (*fallocate)(int fd, off_t offset, off_t bytes);  // posix_fallocate: returns the error
    int (*fsync)(int fd);
    int (*close)(int fd);
    int (*rename)(const char* from, const char* to);
};
// The real system calls.
FileOps systemFileOps();
// Installs `ops` for every writer opened afterwards and returns the previous set.
FileOps setFileOps(const FileOps& ops);

class SafeFileWriter {
public:
    SafeFileWriter() = default;
    ~SafeFileWriter();  // abandons an uncommitted temporary
    SafeFileWriter(const SafeFileWriter&) = delete;
    SafeFileWriter& operator=(const SafeFileWriter&) = delete;

    // Creates the temporary beside `target` (a symbolic link is followed, so the file it
    // points to is the one replaced). False when the folder cannot take a new file.
    // `durable` false: the file is thrown away soon (play and record files) and is not
    // flushed to disk before it replaces the old one.
    bool open(const std::string& target, bool durable = true);
    // Claims disk space for the whole file up front, so a full disk is known before any
    // writing. False (and the writer failed) only when the space is not there.
    bool reserve(std::size_t bytes);
    // Appends bytes. Once a write has failed every later call fails too.
    bool write(const void* data, std::size_t bytes);
    // Flushes to disk (when durable), closes and renames over the target. False on any
    // failure; the temporary is then gone and the target untouched.
    bool commit() { return commit(durable_); }
    // The same, choosing here whether to flush.
    bool commit(bool durable);
    // Closes and removes the temporary; the target is untouched.
    void abandon();

    const std::string& temporaryPath() const { return temp_; }
    const std::string& targetPath() const { return target_; }

private:
    int fd_ = -1;
    bool failed_ = false;
    bool durable_ = true;
    std::size_t written_ = 0;
    std::size_t flushStarted_ = 0;  // bytes handed to the disk ahead of the final flush
    FileOps ops_{};
    std::string target_;
    std::string temp_;
};

}  // namespace orv
