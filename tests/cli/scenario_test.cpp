// Scripts run through the real orvasto-cli program: output, messages on stderr, exit status,
// files written or left alone, and Ctrl-C.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/cli_test_helpers.h"

extern char** environ;

namespace fs = std::filesystem;
using Args = std::vector<std::string>;

namespace {

struct Outcome {
    int status = -1;  // exit status, or 1000 + signal
    std::string out;
    std::string err;
};

class Scenario : public ::testing::Test {
protected:
    std::string file(const std::string& name) const { return tmp / name; }
    void wav(const std::string& name, int freq, int channels, const std::vector<int>& frames) {
        orv::test::writeWav16(file(name), freq, channels, frames);
    }

    // Starts the program with stdout and stderr going into files of the test folder.
    pid_t start(const Args& args) {
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, file("stdout.txt").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0644);
        posix_spawn_file_actions_addopen(&actions, 2, file("stderr.txt").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0644);
        Args all = {ORVASTO_CLI};
        all.insert(all.end(), args.begin(), args.end());
        std::vector<char*> argv;
        for (std::string& a : all) argv.push_back(a.data());
        argv.push_back(nullptr);
        pid_t pid = -1;
        EXPECT_EQ(posix_spawn(&pid, ORVASTO_CLI, &actions, nullptr, argv.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        return pid;
    }
    Outcome finish(pid_t pid) {
        int st = 0;
        waitpid(pid, &st, 0);
        return {WIFEXITED(st) ? WEXITSTATUS(st) : 1000 + WTERMSIG(st),
                orv::test::slurp(file("stdout.txt")), orv::test::slurp(file("stderr.txt"))};
    }
    Outcome run(const Args& args) { return finish(start(args)); }

    orv::test::TempDir tmp;
};

}  // namespace

TEST_F(Scenario, VolumeOverASelection) {
    std::vector<int> ramp;
    for (int i = 0; i < 16; ++i) ramp.push_back(-1000 * (i + 1));
    wav("in.wav", 8, 1, ramp);
    const Outcome o = run({"open", file("in.wav"), "select", "0.5s", "1.5s", "Volume",
                           "Volume Factor=-6 dB", "save", file("out.wav")});
    ASSERT_EQ(o.status, 0) << o.err;
    EXPECT_EQ(o.err, "");
    // 0.5 s .. 1.5 s at 8 Hz is samples 4 .. 11; -6 dB = 0.50118723, truncated toward zero.
    const Outcome d = run({"open", file("out.wav"), "dump", "3", "13"});
    EXPECT_EQ(d.out, "-4000\n-2505\n-3007\n-3508\n-4009\n-4510\n-5011\n-5513\n-6014\n-13000\n");
}

TEST_F(Scenario, NewSinusA4) {
    const Outcome o = run({"new", "44100", "16", "1", "MakeSinus", "Frequency=A4", "Length=2 s",
                           "save", file("a4.wav"), "info", "dump", "0", "6"});
    ASSERT_EQ(o.status, 0) << o.err;
    // A4 = 523.26 x 2^-0.25 Hz, a period of 100.2256 samples; sample k reads the sine table
    // at 8999 x k / 100.2256 and scales by 32766 / 65535.
    EXPECT_EQ(o.out, "2.00000 s\t44.100 kHz\t16\tMO\t172 kb\t\t\n0\n1026\n2048\n3062\n4064\n5050\n");
    EXPECT_EQ(fs::file_size(file("a4.wav")), 44u + 88200u * 2u);
}

TEST_F(Scenario, VolumeByARegisteredEnvelope) {
    wav("env.wav", 8000, 1, {32767, 16384, 0, -32767, 8192});
    wav("voice.wav", 8000, 1, {1000, 2000, -3000, 4000, 30000});
    const Outcome o = run({"open", file("env.wav"), "name", "env", "open", file("voice.wav"),
                           "Volume", "Volume Factor=Envelope", "Envelope=env", "save",
                           file("out.wav"), "dump"});
    ASSERT_EQ(o.status, 0) << o.err;
    // value x envelope / 32767: 2000 x 16384 / 32767 = 1000.03, 30000 x 8192 / 32767 = 7500.2
    EXPECT_EQ(o.out, "1000\n1000\n0\n-4000\n7500\n");
    EXPECT_EQ(run({"open", file("out.wav"), "dump"}).out, o.out);
}

// Every refusal ends the script: its message on stderr, its status, nothing printed or saved
// after it. (The texts of the record checks, the reader, import and export are checked word
// for word in their own tests; here one of each kind.)
TEST_F(Scenario, RefusalsStopTheScriptWithTheirMessageAndStatus) {
    wav("m.wav", 8000, 1, {1, 2, 3});
    wav("st.wav", 8000, 2, {1, 2, 3, 4});
    const std::string m = file("m.wav"), st = file("st.wav"), out = file("out.wav");
    const struct {
        Args args;
        int status;
        std::string err;
    } cases[] = {
        {{"open", m, "Rotate", "Rotate by=Time", "Time=3 s", "save", out}, 2,
         "Input Error: In Time: Time may not be longer than the time of the sound."},
        {{"open", m, "EditTrim", "info"}, 2, "Usage Error: EditTrim is not available now: nothing is selected."},
        {{"open", st, "Balance", "save", out}, 2, "Usage Error: Balance is not available now: the wave is stereo."},
        {{"open", m, "name", "a", "open", m, "name", "a", "info"}, 2,
         "Error: A wave with name \"a\" already exists."},
        {{"use", "ghost"}, 2, "Usage Error: There is no wave named \"ghost\"."},
        {{"dump"}, 2, "Usage Error: dump needs an open wave."},
        {{"new", "8000", "16", "1", "save", out}, 2, "Usage Error: An empty wave cannot be saved."},
        {{}, 2, "Usage: orvasto-cli STEP [STEP ...]; orvasto-cli help lists the steps."},
        {{"open", m, "save", file("missing/out.wav"), "save", out}, 1,
         "Save Error: Cannot save the wave.\n\"" + file("missing/out.wav") + "\": No such file or directory."},
    };
    for (const auto& c : cases) {
        const Outcome o = run(c.args);
        SCOPED_TRACE(c.err);
        EXPECT_EQ(o.status, c.status);
        EXPECT_EQ(o.err, c.err + "\n");
        EXPECT_EQ(o.out, "");
        EXPECT_FALSE(fs::exists(out));
    }
}

// True once /proc shows a handler for `sig` in the process (its SigCgt mask), within 60 s.
bool waitUntilCatching(pid_t pid, int sig) {
    for (int i = 0; i < 600; ++i) {
        std::ifstream status("/proc/" + std::to_string(pid) + "/status");
        std::string line;
        while (std::getline(status, line)) {
            if (line.rfind("SigCgt:", 0) == 0 &&
                (std::stoull(line.substr(7), nullptr, 16) >> (sig - 1) & 1u))
                return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return false;
}

TEST_F(Scenario, CtrlCStopsALongOperationAndSavesNothing) {
    const pid_t pid = start({"new", "44100", "16", "1", "MakeNoise", "Length=3600 s", "FilterLow",
                             "Count=4", "save", file("noise.wav")});
    // Wait until the program catches SIGINT (a fixed sleep is flaky on a loaded machine),
    // then give it a moment to get into the long work.
    ASSERT_TRUE(waitUntilCatching(pid, SIGINT));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    ASSERT_EQ(::kill(pid, SIGINT), 0);
    const Outcome o = finish(pid);
    EXPECT_EQ(o.status, 130) << o.err;
    EXPECT_FALSE(fs::exists(file("noise.wav")));
}

TEST_F(Scenario, HelpAndVersionTheWayShellsExpect) {
    for (const char* flag : {"--help", "-h"}) {
        const Outcome o = run({flag});
        EXPECT_EQ(o.status, 0) << flag;
        EXPECT_EQ(o.out.rfind("Usage: orvasto-cli STEP [STEP ...]\n", 0), 0u) << flag;
        EXPECT_EQ(o.err, "");
    }
    const Outcome v = run({"--version"});
    EXPECT_EQ(v.status, 0);
    EXPECT_EQ(v.out, "orvasto-cli 0.1.0\n");
}

// Hostile and damaged files: a clear message, status 1, nothing written. (Every reason is
// checked in the reader's and the import's own tests; the refusal to save over an import in
// the runner's.)
TEST_F(Scenario, HostileFilesAreRefusedWithClearMessages) {
    orv::test::writeBytes(file("0hz.wav"), orv::test::wavBytes(1, 1, 0, 16, orv::test::Bytes(2000, 0x11)));
    orv::test::Bytes mp3 = {0xFF, 0xFB, 0x90, 0x00};
    mp3.resize(400, 0x55);
    orv::test::writeBytes(file("bad.mp3"), mp3);
    const struct {
        Args args;
        std::string err;
    } cases[] = {
        {{"open", file("0hz.wav"), "FilterLow", "save", file("out.wav")},
         "File Error: Cannot read the file: \"" + file("0hz.wav") +
             "\", The sample frequency 0 Hz is not usable; a wave needs 1 to 1000000 Hz."},
        // No codec chatter on stderr: our message is all there is.
        {{"import", file("bad.mp3"), "save", file("out.wav")},
         "File Error: Cannot import the file: \"" + file("bad.mp3") +
             "\", The file is damaged, or uses a form of its format that cannot be read. (libsndfile: "
             "File does not exist or is not a regular file (possibly a pipe?).)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args[1]);
        const Outcome o = run(c.args);
        EXPECT_EQ(o.status, 1);
        EXPECT_EQ(o.err, c.err + "\n");
        EXPECT_FALSE(fs::exists(file("out.wav")));
    }
}

// A file that claims far more than it holds, and a streamed one that claims 0xFFFFFFFF, open
// with exactly the samples they hold, at once.
TEST_F(Scenario, DataSizesLargerThanTheFileGiveWhatIsThere) {
    orv::test::Bytes huge = orv::test::wavBytes(1, 1, 8000, 16, {});
    huge[40] = 0xF0, huge[41] = 0xFF, huge[42] = 0xFF, huge[43] = 0x7F;  // 2 GB
    orv::test::writeBytes(file("huge.wav"), huge);
    orv::test::Bytes streamed = orv::test::wavBytes(1, 2, 8000, 16, orv::test::le16({1, -1, 2, -2, 3}));
    for (int i = 40; i < 44; ++i) streamed[i] = 0xFF;
    orv::test::writeBytes(file("streamed.wav"), streamed);
    const Outcome o = run({"open", file("huge.wav"), "info", "open", file("streamed.wav"), "dump"});
    EXPECT_EQ(o.status, 0) << o.err;
    EXPECT_EQ(o.out, "0.00000 s\t8.100 kHz\t16\tMO\t0 b\t\t\n1\t-1\n2\t-2\n");
    EXPECT_EQ(o.err, "");
}

// kill -9 at random moments of a save: the folder holds the old file or the new one,
// complete, and nothing else.
TEST_F(Scenario, KilledSavesLeaveNothingBehind) {
    fs::create_directory(file("target"));
    const std::string target = file("target/song.wav");
    // 7 MB: long enough to write that many kills land in the middle of it.
    const Outcome made = run({"new", "44100", "16", "2", "MakeNoise", "Length=40 s", "save", file("big.wav")});
    ASSERT_EQ(made.status, 0) << made.err;
    wav("target/song.wav", 8000, 1, {1, 2, 3});
    const auto oldBytes = orv::test::readBytes(target);
    const auto newBytes = orv::test::readBytes(file("big.wav"));
    std::uint32_t seed = 12345;
    int completed = 0;
    for (int i = 0; i < 24; ++i) {
        orv::test::writeBytes(target, oldBytes);
        const pid_t pid = start({"open", file("big.wav"), "save", target});
        seed = seed * 1664525u + 1013904223u;
        std::this_thread::sleep_for(std::chrono::milliseconds(30 + (seed >> 8) % 250));
        ::kill(pid, SIGKILL);
        finish(pid);
        std::vector<std::string> names;
        for (const auto& e : fs::directory_iterator(file("target"))) names.push_back(e.path().filename());
        ASSERT_EQ(names, std::vector<std::string>{"song.wav"}) << "kill " << i;
        const auto bytes = orv::test::readBytes(target);
        if (bytes == newBytes)
            ++completed;
        else
            EXPECT_EQ(bytes, oldBytes) << "kill " << i;
    }
    std::printf("kill -9 during save: %d of 24 runs had replaced the file\n", completed);
}
