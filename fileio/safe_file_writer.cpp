#include "fileio/safe_file_writer.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orv {

namespace {

FileOps currentOps = systemFileOps();

// The folder part of a path ("." when there is none) and the name part.
void splitPath(const std::string& path, std::string& folder, std::string& name) {
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        folder = std::string(1, '.');
        name = path;
    } else {
        folder = path.substr(0, slash == 0 ? 1 : slash);
        name = path.substr(slash + 1);
    }
}

// Follows a symbolic link to the file it names, so that the link itself survives a save.
std::string resolveTarget(const std::string& target) {
    struct stat st;
    if (::lstat(target.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) return target;
    char* real = ::realpath(target.c_str(), nullptr);
    if (!real) return target;  // a dangling link is replaced like any other name
    std::string result(real);
    std::free(real);
    return result;
}

std::atomic<unsigned> tempCounter{0};

constexpr std::size_t kFlushStep = std::size_t(16) << 20;

}  // namespace

FileOps systemFileOps() { return FileOps{::write, ::posix_fallocate, ::fsync, ::close, ::rename}; }

FileOps setFileOps(const FileOps& ops) {
    FileOps old = currentOps;
    currentOps = ops;
    return old;
}

SafeFileWriter::~SafeFileWriter() { abandon(); }

bool SafeFileWriter::open(const std::string& target, bool durable) {
    abandon();
    failed_ = false;
    durable_ = durable;
    written_ = flushStarted_ = 0;
    ops_ = currentOps;
    target_ = resolveTarget(target);
    std::string folder, name;
    splitPath(target_, folder, name);
    if (name.empty()) return false;
    // A file that may not be overwritten is not replaced behind its back either.
    if (::access(target_.c_str(), F_OK) == 0 && ::access(target_.c_str(), W_OK) != 0)
        return false;

    // A hidden name in the same folder, so the final rename never crosses file systems.
    // O_EXCL with a fresh name each try; the mode 0666 is trimmed by the umask as for any
    // new file.
    for (int attempt = 0; attempt < 100; ++attempt) {
        char suffix[48];
        std::snprintf(suffix, sizeof suffix, ".%ld.%u.tmp", long(::getpid()),
                      tempCounter.fetch_add(1) + unsigned(attempt) * 7919u);
        std::string candidate = (folder == "/" ? "/" : folder + "/") + "." + name + suffix;
        const int fd =
            ::open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0) {
            fd_ = fd;
            temp_ = std::move(candidate);
            break;
        }
        if (errno != EEXIST) return false;
    }
    if (fd_ < 0) return false;

    // A replaced file keeps its permissions.
    struct stat st;
    if (::stat(target_.c_str(), &st) == 0 && S_ISREG(st.st_mode))
        (void)::fchmod(fd_, st.st_mode & 07777);
    return true;
}

bool SafeFileWriter::reserve(std::size_t bytes) {
    if (fd_ < 0 || failed_) return false;
    const int e = ops_.fallocate(fd_, 0, off_t(bytes));
    if (e == ENOSPC || e == EFBIG || e == EDQUOT) {
        failed_ = true;
        return false;
    }
    return true;  // a file system without the call just allocates while writing
}

bool SafeFileWriter::write(const void* data, std::size_t bytes) {
    if (fd_ < 0 || failed_) return false;
    const auto* p = static_cast<const char*>(data);
    while (bytes > 0) {
        const std::size_t step = bytes < std::size_t(1) << 30 ? bytes : std::size_t(1) << 30;
        const ssize_t n = ops_.write(fd_, p, step);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            failed_ = true;
            return false;
        }
        p += n;
        bytes -= std::size_t(n);
        written_ += std::size_t(n);
    }
    // Let the disk start on what is written while more is coming, so the final flush has
    // little left to wait for.
    if (durable_ && written_ - flushStarted_ >= kFlushStep) {
        (void)::sync_file_range(fd_, off_t(flushStarted_), off_t(written_ - flushStarted_),
                                SYNC_FILE_RANGE_WRITE);
        flushStarted_ = written_;
    }
    return true;
}

bool SafeFileWriter::commit(bool durable) {
    if (fd_ < 0) return false;
    if (failed_ || (durable && ops_.fsync(fd_) != 0)) {
        abandon();
        return false;
    }
    const int fd = fd_;
    fd_ = -1;
    // Whatever close says, the descriptor is gone; a failure may mean lost data.
    if (ops_.close(fd) != 0 || ops_.rename(temp_.c_str(), target_.c_str()) != 0) {
        ::unlink(temp_.c_str());
        temp_.clear();
        return false;
    }
    temp_.clear();
    if (durable) {
        // Make the new name itself last. The file is in place already, so a failure here
        // is not reported.
        std::string folder, name;
        splitPath(target_, folder, name);
        const int dir = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (dir >= 0) {
            (void)::fsync(dir);
            ::close(dir);
        }
    }
    return true;
}

void SafeFileWriter::abandon() {
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
    }
    if (!temp_.empty()) {
        ::unlink(temp_.c_str());
        temp_.clear();
    }
}

}  // namespace orv
