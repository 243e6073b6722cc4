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
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace fs = std::filesystem;

namespace {

void writeWav(const fs::path& path, int freq, int channels, const std::vector<int>& frames) {
    std::ofstream f(path, std::ios::binary);
    auto u32 = [&](std::uint32_t v) { f.write(reinterpret_cast<const char*>(&v), 4); };
    auto u16 = [&](std::uint16_t v) { f.write(reinterpret_cast<const char*>(&v), 2); };
    const std::uint32_t data = std::uint32_t(frames.size() * 2);
    f.write("RIFF", 4);
    u32(36 + data);
    f.write("WAVEfmt ", 8);
    u32(16);
    u16(1);
    u16(std::uint16_t(channels));
    u32(std::uint32_t(freq));
    u32(std::uint32_t(freq * channels * 2));
    u16(std::uint16_t(channels * 2));
    u16(16);
    f.write("data", 4);
    u32(data);
    for (int v : frames) u16(std::uint16_t(std::int16_t(v)));
}

std::string slurp(const fs::path& p) {
    std::ifstream f(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(f), {});
}

struct Outcome {
    int status = -1;  // exit status, or 1000 + signal
    std::string out;
    std::string err;
};

class Scenario : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::temp_directory_path() /
              ("orvasto-cli-scenario-" + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override {
        fs::permissions(dir, fs::perms::owner_all, fs::perm_options::add);
        for (auto& e : fs::recursive_directory_iterator(dir))
            if (e.is_directory()) fs::permissions(e, fs::perms::owner_all, fs::perm_options::add);
        fs::remove_all(dir);
    }
    std::string file(const std::string& name) const { return (dir / name).string(); }

    // Starts the program with stdout and stderr going into files of the test folder.
    pid_t start(const std::vector<std::string>& args) {
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, file("stdout.txt").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0644);
        posix_spawn_file_actions_addopen(&actions, 2, file("stderr.txt").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0644);
        std::vector<std::string> all = {ORVASTO_CLI};
        all.insert(all.end(), args.begin(), args.end());
        std::vector<char*> argv;
        for (std::string& a : all) argv.push_back(a.data());
        argv.push_back(nullptr);
        pid_t pid = -1;
        const int rc = posix_spawn(&pid, ORVASTO_CLI, &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        EXPECT_EQ(rc, 0);
        return pid;
    }
    Outcome finish(pid_t pid) {
        Outcome o;
        int st = 0;
        waitpid(pid, &st, 0);
        o.status = WIFEXITED(st) ? WEXITSTATUS(st) : 1000 + WTERMSIG(st);
        o.out = slurp(dir / "stdout.txt");
        o.err = slurp(dir / "stderr.txt");
        return o;
    }
    Outcome run(const std::vector<std::string>& args) { return finish(start(args)); }

    fs::path dir;
};

}  // namespace

TEST_F(Scenario, VolumeOverASelection) {
    std::vector<int> ramp;
    for (int i = 0; i < 16; ++i) ramp.push_back(-1000 * (i + 1));
    writeWav(dir / "in.wav", 8, 1, ramp);
    const Outcome o = run({"open", file("in.wav"), "select", "0.5s", "1.5s", "Volume",
                           "Volume Factor=-6 dB", "save", file("out.wav")});
    ASSERT_EQ(o.status, 0) << o.err;
    EXPECT_EQ(o.err, "");
    // -6 dB = 0.50118723 on samples 4 .. 11, truncated toward zero.
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
    EXPECT_EQ(fs::file_size(dir / "a4.wav"), 44u + 88200u * 2u);
}

TEST_F(Scenario, VolumeByARegisteredEnvelope) {
    writeWav(dir / "env.wav", 8000, 1, {32767, 16384, 0, -32767, 8192});
    writeWav(dir / "voice.wav", 8000, 1, {1000, 2000, -3000, 4000, 30000});
    const Outcome o = run({"open", file("env.wav"), "name", "env", "open", file("voice.wav"),
                           "Volume", "Volume Factor=Envelope", "Envelope=env", "save",
                           file("out.wav"), "dump"});
    ASSERT_EQ(o.status, 0) << o.err;
    // value x envelope / 32767: 2000 x 16384 / 32767 = 1000.03, 30000 x 8192 / 32767 = 7500.2
    EXPECT_EQ(o.out, "1000\n1000\n0\n-4000\n7500\n");
    EXPECT_EQ(run({"open", file("out.wav"), "dump"}).out, o.out);
}

TEST_F(Scenario, InputErrorsAreShownWordForWordAndNothingIsWritten) {
    writeWav(dir / "in.wav", 8000, 1, {1, 2, 3});
    Outcome o = run({"open", file("in.wav"), "Rotate", "Rotate by=Time", "Time=3 s", "save",
                     file("out.wav")});
    EXPECT_EQ(o.status, 2);
    EXPECT_EQ(o.err, "Input Error: In Time: Time may not be longer than the time of the sound.\n");
    EXPECT_FALSE(fs::exists(dir / "out.wav"));

    o = run({"open", file("in.wav"), "MakeLine", "Kind=Exponential", "Begin Value=0", "save",
             file("out.wav")});
    EXPECT_EQ(o.status, 2);
    EXPECT_EQ(o.err, "Input Error: In Begin Value: Exponential Line may not contain value 0.\n");
    EXPECT_FALSE(fs::exists(dir / "out.wav"));
}

TEST_F(Scenario, UnreadableFileAndUsageMistakes) {
    std::ofstream(dir / "bad.wav") << "garbage";
    Outcome o = run({"open", file("bad.wav"), "info"});
    EXPECT_EQ(o.status, 1);
    EXPECT_EQ(o.err, "File Error: Cannot read the file: \"" + file("bad.wav") +
                         "\", \"RIFF\" not found.\n");
    EXPECT_EQ(o.out, "");

    o = run({"new", "8000", "16", "1", "info", "open"});
    EXPECT_EQ(o.status, 2);
    EXPECT_EQ(o.err, "Usage Error: open needs a file name.\n");
    EXPECT_EQ(o.out, "");  // nothing ran

    o = run({});
    EXPECT_EQ(o.status, 2);
    EXPECT_EQ(o.err, "Usage: orvasto-cli STEP [STEP ...]; orvasto-cli help lists the steps.\n");
}

TEST_F(Scenario, DisabledActionsSaySo) {
    writeWav(dir / "st.wav", 8000, 2, {1, 2, 3, 4});
    Outcome o = run({"open", file("st.wav"), "EditTrim"});
    EXPECT_EQ(o.status, 2);
    EXPECT_EQ(o.err, "Usage Error: EditTrim is not available now.\n");
    o = run({"open", file("st.wav"), "Balance", "save", file("x.wav")});
    EXPECT_EQ(o.status, 2);
    EXPECT_EQ(o.err, "Usage Error: Balance is not available now.\n");
    EXPECT_FALSE(fs::exists(dir / "x.wav"));
    o = run({"open", file("st.wav"), "EditPaste"});
    EXPECT_EQ(o.err, "Usage Error: EditPaste is not available now.\n");
}

TEST_F(Scenario, SaveIntoAMissingFolderStopsTheScript) {
    writeWav(dir / "in.wav", 8000, 1, {1, 2, 3});
    Outcome o = run({"open", file("in.wav"), "save", file("first.wav"), "save",
                     file("missing/out.wav"), "save", file("later.wav")});
    EXPECT_EQ(o.status, 1);
    EXPECT_EQ(o.err, "Save Error: Cannot save the wave.\n");
    EXPECT_TRUE(fs::exists(dir / "first.wav"));
    EXPECT_FALSE(fs::exists(dir / "later.wav"));
}

TEST_F(Scenario, SaveIntoAFolderThatCannotBeWritten) {
    if (::geteuid() == 0) GTEST_SKIP() << "permissions do not stop root";
    writeWav(dir / "in.wav", 8000, 1, {1, 2, 3});
    fs::create_directories(dir / "ro");
    writeWav(dir / "ro" / "out.wav", 8000, 1, {7});
    const std::string before = slurp(dir / "ro" / "out.wav");
    Outcome o;
    fs::permissions(dir / "ro", fs::perms::owner_read | fs::perms::owner_exec);
    o = run({"open", file("in.wav"), "Reverse", "save", file("ro/out.wav"), "save",
             file("later.wav")});
    EXPECT_EQ(o.status, 1);
    EXPECT_EQ(o.err, "Save Error: Cannot save the wave.\n");
    EXPECT_EQ(slurp(dir / "ro" / "out.wav"), before);
    EXPECT_FALSE(fs::exists(dir / "later.wav"));
}

TEST_F(Scenario, HelpShowsFieldsWithCurrentValues) {
    writeWav(dir / "in.wav", 8000, 1, {1, 2, 3});
    const Outcome o = run({"open", file("in.wav"), "FilterLow", "Frequency=2 kHz", "Count=3",
                           "help", "FilterLow"});
    ASSERT_EQ(o.status, 0) << o.err;
    EXPECT_NE(o.out.find("Dialog \"High Low Filter\"\n"), std::string::npos) << o.out;
    EXPECT_NE(o.out.find("(time) = 2 kHz\n"), std::string::npos) << o.out;
    EXPECT_NE(o.out.find("  Count (count) = 3\n"), std::string::npos) << o.out;
    EXPECT_NE(o.out.find("  Maximize Volume (flag) = off\n"), std::string::npos) << o.out;
}

TEST_F(Scenario, CtrlCStopsALongOperationAndSavesNothing) {
    const pid_t pid = start({"new", "44100", "16", "1", "MakeNoise", "Length=3600 s", "FilterLow",
                             "Count=4", "save", file("noise.wav")});
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    ASSERT_EQ(::kill(pid, SIGINT), 0);
    const Outcome o = finish(pid);
    EXPECT_EQ(o.status, 130) << o.err;
    EXPECT_FALSE(fs::exists(dir / "noise.wav"));
}
