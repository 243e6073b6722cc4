// Replaces a file without ever damaging the one that is there: the new contents go to a
// temporary file in the same folder, every write, the flush to disk and the close are
// checked, and only then is the temporary put in place of the target. On any failure the
// temporary is removed and the old file stays as it was.
//
// The temporary has no name while it is written (Linux O_TMPFILE), so a process killed in
// the middle of a save leaves nothing behind; it gets a name only once it is complete, to be
// renamed over the target at once. Where the file system cannot make unnamed files, it is a
// hidden file ".NAME.orvasto-PID-N.tmp" instead, and every later save into that folder
// removes those whose process is gone.
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
    // False: behave as on a file system without unnamed files (the named fallback).
    bool unnamedTemporaries = true;
};
// The real system calls.
FileOps systemFileOps();
// Installs `ops` for every writer opened afterwards and returns the previous set.
FileOps setFileOps(const FileOps& ops);

// Why the last save or export of this process failed: the file it was for and the system's
// reason ("No space left on device."). Front ends show it beside their own message; the
// writer also passes it to the debug trace.
struct WriteFailure {
    std::string file;
    std::string reason;
};
WriteFailure lastWriteFailure();
void noteWriteFailure(const std::string& file, const std::string& reason);
void clearWriteFailure();

// The name part of a temporary left by process `pid`, as the fallback names them.
std::string temporaryName(const std::string& target, long pid, unsigned number);
// Removes the fallback temporaries in `folder` whose process is gone (files of this user
// only); returns how many went.
int removeStaleTemporaries(const std::string& folder);

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
    // Flushes to disk (when durable), closes and puts the file in place of the target.
    // False on any failure; the temporary is then gone and the target untouched.
    bool commit() { return commit(durable_); }
    // The same, choosing here whether to flush.
    bool commit(bool durable);
    // Closes and removes the temporary; the target is untouched.
    void abandon();
    // Marks the writer failed for a reason of the caller's (the save was interrupted, ...);
    // the temporary is removed and the reason noted as the last write failure.
    void fail(const std::string& reason);

    // The temporary's descriptor, for a library that writes through one of its own (dup it).
    int descriptor() const { return fd_; }
    // The named temporary; empty while it has no name.
    const std::string& temporaryPath() const { return temp_; }
    const std::string& targetPath() const { return target_; }
    // The reason of the first failure, empty when there was none.
    const std::string& failureReason() const { return reason_; }

private:
    bool failWith(int error);  // notes strerror(error); always false
    bool openNamed(const std::string& folder);
    bool linkUnnamed(const std::string& folder);

    int fd_ = -1;
    bool failed_ = false;
    bool durable_ = true;
    bool unnamed_ = false;
    std::size_t written_ = 0;
    std::size_t flushStarted_ = 0;  // bytes handed to the disk ahead of the final flush
    FileOps ops_{};
    std::string target_;
    std::string temp_;
    std::string reason_;
};

}  // namespace orv
