#include "fileio/safe_file_writer.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

#include "core/platform.h"

namespace orv {

namespace {

FileOps currentOps = systemFileOps();

std::mutex failureMutex;
WriteFailure lastFailure;

constexpr std::string_view kMarker = ".orvasto-";
constexpr std::string_view kSuffix = ".tmp";

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

std::string inFolder(const std::string& folder, const std::string& name) {
    return (folder == "/" ? "/" : folder + "/") + name;
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

std::string systemReason(int error) { return std::string(std::strerror(error)) + "."; }

// The process number in a fallback temporary's name, or -1 when the name is none of ours.
long temporaryOwner(std::string_view name) {
    if (name.size() < 2 || name.front() != '.' || !name.ends_with(kSuffix)) return -1;
    const auto marker = name.rfind(kMarker);
    if (marker == std::string_view::npos) return -1;
    std::string_view rest = name.substr(marker + kMarker.size());
    rest.remove_suffix(kSuffix.size());
    const auto dash = rest.find('-');
    if (dash == 0 || dash == std::string_view::npos || dash + 1 == rest.size()) return -1;
    long pid = 0;
    for (std::size_t i = 0; i < rest.size(); ++i) {
        const char c = rest[i];
        if (i == dash) continue;
        if (c < '0' || c > '9') return -1;
        if (i < dash) {
            if (pid > INT_MAX / 10) return -1;
            pid = pid * 10 + (c - '0');
        }
    }
    return pid;
}

std::atomic<unsigned> tempCounter{0};

constexpr std::size_t kFlushStep = std::size_t(16) << 20;

// Errors that mean "this file system (or kernel) makes no unnamed files".
bool noUnnamedFiles(int error) {
    return error == EOPNOTSUPP || error == EISDIR || error == EINVAL || error == ENOTSUP;
}

}  // namespace

FileOps systemFileOps() {
    return FileOps{::write, ::posix_fallocate, ::fsync, ::close, ::rename, true};
}

FileOps setFileOps(const FileOps& ops) {
    FileOps old = currentOps;
    currentOps = ops;
    return old;
}

WriteFailure lastWriteFailure() {
    std::lock_guard lock(failureMutex);
    return lastFailure;
}

void noteWriteFailure(const std::string& file, const std::string& reason) {
    {
        std::lock_guard lock(failureMutex);
        lastFailure = WriteFailure{file, reason};
    }
    debugTrace("save failed: " + file + ": " + reason + "\n");
}

void clearWriteFailure() {
    std::lock_guard lock(failureMutex);
    lastFailure = WriteFailure{};
}

std::string temporaryName(const std::string& target, long pid, unsigned number) {
    std::string folder, name;
    splitPath(target, folder, name);
    // Room for the marker within the 255 bytes a name may have.
    if (name.size() > 200) name.resize(200);
    return "." + name + std::string(kMarker) + std::to_string(pid) + "-" +
           std::to_string(number) + std::string(kSuffix);
}

int removeStaleTemporaries(const std::string& folder) {
    DIR* dir = ::opendir(folder.c_str());
    if (!dir) return 0;
    const int dfd = ::dirfd(dir);
    const long self = long(::getpid());
    int removed = 0;
    while (const dirent* e = ::readdir(dir)) {
        const long pid = temporaryOwner(e->d_name);
        if (pid <= 0 || pid == self) continue;
        if (::kill(pid_t(pid), 0) == 0 || errno != ESRCH) continue;  // still running
        struct stat st;
        if (::fstatat(dfd, e->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(st.st_mode) ||
            st.st_uid != ::geteuid())
            continue;
        if (::unlinkat(dfd, e->d_name, 0) == 0) ++removed;
    }
    ::closedir(dir);
    return removed;
}

SafeFileWriter::~SafeFileWriter() { abandon(); }

bool SafeFileWriter::failWith(int error) {
    fail(systemReason(error ? error : EIO));
    return false;
}

void SafeFileWriter::fail(const std::string& reason) {
    if (!failed_ || reason_.empty()) {
        reason_ = reason;
        noteWriteFailure(target_, reason_);
    }
    failed_ = true;
    abandon();
}

bool SafeFileWriter::open(const std::string& target, bool durable) {
    abandon();
    failed_ = false;
    reason_.clear();
    durable_ = durable;
    unnamed_ = false;
    written_ = flushStarted_ = 0;
    ops_ = currentOps;
    target_ = resolveTarget(target);
    std::string folder, name;
    splitPath(target_, folder, name);
    struct stat st;
    const bool exists = ::stat(target_.c_str(), &st) == 0;
    if (name.empty() || (exists && S_ISDIR(st.st_mode))) return failWith(EISDIR);
    // A file that may not be overwritten is not replaced behind its back either.
    if (exists && ::access(target_.c_str(), W_OK) != 0) return failWith(EACCES);

    removeStaleTemporaries(folder);
    if (ops_.unnamedTemporaries && ::access("/proc/self/fd", X_OK) == 0) {
        fd_ = ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
        if (fd_ < 0 && !noUnnamedFiles(errno)) return failWith(errno);
        unnamed_ = fd_ >= 0;
    }
    if (fd_ < 0 && !openNamed(folder)) return false;

    // A replaced file keeps its permissions.
    if (exists && S_ISREG(st.st_mode)) (void)::fchmod(fd_, st.st_mode & 07777);
    return true;
}

// A hidden name in the same folder, so the final rename never crosses file systems. O_EXCL
// with a fresh name each try; the mode 0666 is trimmed by the umask as for any new file.
bool SafeFileWriter::openNamed(const std::string& folder) {
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::string candidate =
            inFolder(folder, temporaryName(target_, long(::getpid()), tempCounter.fetch_add(1)));
        const int fd = ::open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0) {
            fd_ = fd;
            temp_ = std::move(candidate);
            return true;
        }
        if (errno != EEXIST) return failWith(errno);
    }
    return failWith(EEXIST);
}

// The complete unnamed file gets a hidden name beside the target, to be renamed over it:
// a link straight onto the target would fail when a file is there already.
bool SafeFileWriter::linkUnnamed(const std::string& folder) {
    const std::string self = "/proc/self/fd/" + std::to_string(fd_);
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::string candidate =
            inFolder(folder, temporaryName(target_, long(::getpid()), tempCounter.fetch_add(1)));
        if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, candidate.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            temp_ = std::move(candidate);
            return true;
        }
        if (errno != EEXIST) return failWith(errno);
    }
    return failWith(EEXIST);
}

bool SafeFileWriter::reserve(std::size_t bytes) {
    if (fd_ < 0 || failed_) return false;
    const int e = ops_.fallocate(fd_, 0, off_t(bytes));
    if (e == ENOSPC || e == EFBIG || e == EDQUOT) return failWith(e);
    return true;  // a file system without the call just allocates while writing
}

bool SafeFileWriter::write(const void* data, std::size_t bytes) {
    if (fd_ < 0 || failed_) return false;
    const auto* p = static_cast<const char*>(data);
    while (bytes > 0) {
        const std::size_t step = bytes < std::size_t(1) << 30 ? bytes : std::size_t(1) << 30;
        const ssize_t n = ops_.write(fd_, p, step);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return failWith(n < 0 ? errno : ENOSPC);
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
    if (fd_ < 0 || failed_) {
        abandon();
        return false;
    }
    if (durable && ops_.fsync(fd_) != 0) return failWith(errno);
    std::string folder, name;
    splitPath(target_, folder, name);
    if (unnamed_ && !linkUnnamed(folder)) return false;
    const int fd = fd_;
    fd_ = -1;
    // Whatever close says, the descriptor is gone; a failure may mean lost data.
    if (ops_.close(fd) != 0) return failWith(errno);
    if (ops_.rename(temp_.c_str(), target_.c_str()) != 0) return failWith(errno);
    temp_.clear();
    if (durable) {
        // Make the new name itself last. The file is in place already, so a failure here
        // is not reported.
        const int dir = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (dir >= 0) {
            (void)::fsync(dir);
            ::close(dir);
        }
    }
    return true;
}

void SafeFileWriter::abandon() {
    const int saved = errno;
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
    }
    if (!temp_.empty()) {
        ::unlink(temp_.c_str());
        temp_.clear();
    }
    errno = saved;
}

}  // namespace orv
