// A failed save never damages the file that was there: disk full, a failing flush, close
// or rename, a folder that takes no new files. A good save keeps permissions and links.
#include <cerrno>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "fileio/safe_file_writer.h"
#include "fileio/wav_file.h"
#include "support/file_test_helpers.h"

namespace orv {
namespace {

namespace fs = std::filesystem;
using namespace orv::test;

// Fault injection: the disk is "full" after `budget` bytes (a short write first); the
// reservation, flush, close or rename fail on request. Counts the flushes.
struct Faults {
    static inline long budget = -1;  // -1: unlimited
    static inline bool failReserve = false, failFsync = false, failClose = false, failRename = false;
    static inline int fsyncs = 0;

    static ssize_t write(int fd, const void* data, std::size_t bytes) {
        if (budget == 0) return errno = ENOSPC, -1;
        if (budget > 0) budget -= long(bytes = std::min<std::size_t>(bytes, std::size_t(budget)));
        return ::write(fd, data, bytes);
    }
    static int fallocate(int fd, off_t offset, off_t bytes) {
        return failReserve ? ENOSPC : ::posix_fallocate(fd, offset, bytes);
    }
    static int fsync(int fd) {
        ++fsyncs;
        return failFsync ? (errno = EIO, -1) : ::fsync(fd);
    }
    static int close(int fd) {
        ::close(fd);
        return failClose ? (errno = EIO, -1) : 0;
    }
    static int rename(const char* from, const char* to) {
        return failRename ? (errno = EXDEV, -1) : ::rename(from, to);
    }
};

class SafeSave : public ::testing::Test {
protected:
    using V = std::vector<WaveVal>;
    void SetUp() override {
        Faults::budget = -1;
        Faults::failReserve = Faults::failFsync = Faults::failClose = Faults::failRename = false;
        Faults::fsyncs = 0;
        previous = setFileOps(FileOps{Faults::write, Faults::fallocate, Faults::fsync, Faults::close, Faults::rename});
        for (std::size_t i = 0; i < 1000; ++i) old.push_back(std::uint8_t(i * 13));
        writeBytes(path, old);  // the file a failed save must leave alone
        V s(5000);
        for (int i = 0; i < 5000; ++i) s[i] = WaveVal(i);
        wave = waveOf(s);
    }
    void TearDown() override { setFileOps(previous); }

    bool save() { return writeWaveChannels(path, wave.get(), wave.get(), 44100, 2, 0, 5000, false); }
    // Nothing but the old file remains: no temporary left behind.
    void expectOldFileAlone() {
        EXPECT_EQ(readBytes(path), old);
        std::vector<std::string> names;
        for (const auto& e : fs::directory_iterator(dir.path())) names.push_back(e.path().filename());
        EXPECT_EQ(names, std::vector<std::string>{"song.wav"});
    }
    // Runs the save as an unprivileged user in a child process: the super-user writes anywhere.
    void expectRefusedAsUser() {
        EXPECT_EXIT(
            {
                if (::geteuid() == 0 && ::setuid(65534) != 0) std::_Exit(3);
                std::_Exit(save() ? 1 : 0);
            },
            ::testing::ExitedWithCode(0), "");
        ::chmod(dir.path().c_str(), 0700);
        expectOldFileAlone();
    }

    TempDir dir;
    std::string path = dir / "song.wav";
    Bytes old;
    WavePtr wave;
    FileOps previous{};
};

TEST_F(SafeSave, DiskFullAtAnyPointLeavesTheOldFile) {
    // In the header, just after it, and in the middle and at the last byte of the samples.
    for (long budget : {0L, 10L, 44L, 45L, 20000L, 20043L}) {
        SCOPED_TRACE(budget);
        Faults::budget = budget;
        EXPECT_FALSE(save());
        expectOldFileAlone();
    }
    Faults::budget = 44 + 20000;  // exactly enough
    EXPECT_TRUE(save());
    EXPECT_EQ(fs::file_size(path), 20044u);
}

TEST_F(SafeSave, FolderOrFileThatTakesNoWritesRefusesTheSave) {
    ASSERT_EQ(::chmod(dir.path().c_str(), 0555), 0);
    expectRefusedAsUser();
    ASSERT_EQ(::chmod(dir.path().c_str(), 0777), 0);
    ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    expectRefusedAsUser();
    EXPECT_FALSE(writeWaveChannels(dir / "", wave.get(), nullptr, 8000, 2, 0, 1, false));
    expectOldFileAlone();
}

TEST_F(SafeSave, GoodSaveReplacesKeepsModeAndFollowsLinks) {
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    fs::create_symlink("song.wav", dir / "link.wav");
    ASSERT_TRUE(writeWaveChannels(dir / "link.wav", wave.get(), nullptr, 8000, 1, 0, 10, false));
    EXPECT_TRUE(fs::is_symlink(dir / "link.wav"));
    EXPECT_EQ(fs::file_size(path), 54u);
    struct stat st;
    ASSERT_EQ(::stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640u);
    EXPECT_EQ(Faults::fsyncs, 1);
    // The play and record files are thrown away soon: no flush for them.
    ASSERT_TRUE(writeWaveChannels(path, wave.get(), nullptr, 8000, 1, 0, 10, true));
    EXPECT_EQ(Faults::fsyncs, 1);
}

TEST_F(SafeSave, WriterStaysFailedAfterAWriteFails) {
    for (bool unnamed : {true, false}) {
        SCOPED_TRACE(unnamed);
        FileOps ops = systemFileOps();
        ops.write = Faults::write;
        ops.unnamedTemporaries = unnamed;
        setFileOps(ops);
        SafeFileWriter w;
        ASSERT_TRUE(w.open(path));
        // The unnamed temporary is nowhere in the folder; the fallback's is hidden beside it.
        const std::string temp = w.temporaryPath();
        EXPECT_EQ(temp.empty(), unnamed);
        if (!unnamed) {
            EXPECT_TRUE(fs::exists(temp));
        }
        Faults::budget = 3;
        EXPECT_FALSE(w.write("abcdef", 6));
        Faults::budget = -1;
        EXPECT_FALSE(w.write("x", 1));
        EXPECT_FALSE(w.commit());
        EXPECT_EQ(w.failureReason(), "No space left on device.");
        expectOldFileAlone();
    }
}

// Every failure leaves the old file alone and says why, in the system's words, for the file
// that was asked for.
TEST_F(SafeSave, FailuresLeaveTheOldFileAndNoteTheSystemsReason) {
    const struct {
        std::string target;
        bool* fault;
        long budget;
        const char* reason;
    } cases[] = {
        {dir / "no/such/x.wav", nullptr, -1, "No such file or directory."},
        {dir.path(), nullptr, -1, "Is a directory."},
        {path, nullptr, 100, "No space left on device."},
        {path, &Faults::failReserve, -1, "No space left on device."},
        {path, &Faults::failFsync, -1, "Input/output error."},
        {path, &Faults::failClose, -1, "Input/output error."},
        {path, &Faults::failRename, -1, "Invalid cross-device link."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.reason);
        if (c.fault) *c.fault = true;
        Faults::budget = c.budget;
        clearWriteFailure();
        EXPECT_FALSE(writeWaveChannels(c.target, wave.get(), nullptr, 8000, 2, 0, 1000, false));
        if (c.fault) *c.fault = false;
        Faults::budget = -1;
        EXPECT_EQ(lastWriteFailure().file, c.target);
        EXPECT_EQ(lastWriteFailure().reason, c.reason);
        expectOldFileAlone();
    }
    EXPECT_TRUE(save());
    EXPECT_EQ(lastWriteFailure().reason, "");  // a good save clears it
}

// A cancel flag raised before the end stops the save; the old file stays.
TEST_F(SafeSave, CancelledSaveLeavesTheOldFile) {
    CancelFlag cancel{1};
    EXPECT_FALSE(writeWaveChannels(path, wave.get(), wave.get(), 44100, 2, 0, 5000, false, &cancel));
    EXPECT_EQ(lastWriteFailure().reason, "The save was interrupted; the file was not replaced.");
    expectOldFileAlone();
    cancel.store(0);
    EXPECT_TRUE(writeWaveChannels(path, wave.get(), wave.get(), 44100, 2, 0, 5000, false, &cancel));
    EXPECT_EQ(fs::file_size(path), 44u + 20000u);
}

// A named temporary is removed by the next save into its folder once its process is gone;
// one of a running process, and files that only look similar, stay.
TEST_F(SafeSave, NextSaveRemovesTemporariesOfDeadProcesses) {
    const pid_t child = ::fork();
    if (child == 0) std::_Exit(0);
    ASSERT_GT(child, 0);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);  // a process number that is gone now
    const std::string dead = temporaryName(path, child, 7);
    const std::string alive = temporaryName(path, ::getppid(), 7);
    EXPECT_EQ(dead, ".song.wav.orvasto-" + std::to_string(child) + "-7.tmp");
    const std::vector<std::string> keep = {alive, ".song.wav.orvasto-x-7.tmp", "song.wav.orvasto-1-1.tmp",
                                           ".notes." + std::to_string(child) + ".1.tmp"};
    writeBytes(dir / dead, {1, 2, 3});
    for (const std::string& name : keep) writeBytes(dir / name, {4});
    FileOps ops = systemFileOps();
    ops.unnamedTemporaries = false;  // the fallback does the cleaning as well
    setFileOps(ops);
    ASSERT_TRUE(save());
    EXPECT_FALSE(fs::exists(dir / dead));
    for (const std::string& name : keep) EXPECT_TRUE(fs::exists(dir / name)) << name;
    EXPECT_EQ(fs::file_size(path), 44u + 20000u);
}

}  // namespace
}  // namespace orv
