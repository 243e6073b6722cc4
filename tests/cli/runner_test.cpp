// Scripts run in-process: the step reader, positions, and the runner over a workspace.
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "cli/runner.h"
#include "cli/script.h"
#include "cli/watch.h"
#include "document/records.h"
#include "fileio/safe_file_writer.h"
#include "support/recording_platform.h"

namespace fs = std::filesystem;
using namespace orv;
using namespace orv::cli;

namespace {

// A 16-bit PCM WAV file written by hand, so the inputs do not depend on our writer.
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

class RunnerTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::temp_directory_path() /
              ("orvasto-cli-runner-" + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }

    std::string file(const std::string& name) const { return (dir / name).string(); }

    // Parses and runs; `out` gets what the steps print.
    int run(const std::vector<std::string>& args) {
        std::vector<Step> steps;
        if (auto e = parseScript(args, steps)) {
            ADD_FAILURE() << "script refused: " << e->text;
            return -1;
        }
        out.str("");
        ScriptRunner runner(out);
        return runner.run(steps);
    }

    fs::path dir;
    std::ostringstream out;
    test::RecordingPlatformScope rec;
};

std::string lastMessage(const test::RecordingPlatform& r) {
    if (r.messages.empty()) return "(none)";
    return r.messages.back().caption + ": " + r.messages.back().text;
}

}  // namespace

// ---- the step reader --------------------------------------------------------------------

TEST(ScriptParse, StepsTakeTheirArgumentsAndActionsTheirFields) {
    std::vector<Step> steps;
    ASSERT_FALSE(parseScript({"open", "in.wav", "select", "0.5s", "1.5s", "Volume",
                              "Volume Factor=-6 dB", "Kind=a=b", "dump", "save", "out.wav",
                              "export", "x.flac", "FLAC", "help", "Volume", "help", "info"},
                             steps));
    ASSERT_EQ(steps.size(), 9u);
    EXPECT_EQ(steps[0].kind, StepKind::Open);
    EXPECT_EQ(steps[0].args, std::vector<std::string>{"in.wav"});
    EXPECT_EQ(steps[1].args, (std::vector<std::string>{"0.5s", "1.5s"}));
    EXPECT_EQ(steps[2].kind, StepKind::Action);
    ASSERT_EQ(steps[2].fields.size(), 2u);
    EXPECT_EQ(steps[2].fields[0], (std::pair<std::string, std::string>{"Volume Factor", "-6 dB"}));
    // Only the first "=" splits.
    EXPECT_EQ(steps[2].fields[1], (std::pair<std::string, std::string>{"Kind", "a=b"}));
    EXPECT_EQ(steps[3].kind, StepKind::Dump);
    EXPECT_TRUE(steps[3].args.empty());  // "save" is no position
    EXPECT_EQ(steps[5].args, (std::vector<std::string>{"x.flac", "FLAC"}));
    EXPECT_EQ(steps[6].args, std::vector<std::string>{"Volume"});
    EXPECT_TRUE(steps[7].args.empty());  // "info" is a step, not an action to explain
}

TEST(ScriptParse, MistakesAreFoundBeforeAnythingRuns) {
    std::vector<Step> steps;
    auto error = [&](std::vector<std::string> args) {
        auto e = parseScript(args, steps);
        return e ? e->text : std::string("(accepted)");
    };
    EXPECT_EQ(error({"open"}), "open needs a file name.");
    EXPECT_EQ(error({"new", "44100", "16"}), "new needs a frequency, the bits and the channels.");
    EXPECT_EQ(error({"new", "44100", "12", "1"}), "new needs 8 or 16 bits, not \"12\".");
    EXPECT_EQ(error({"new", "44100", "16", "3"}), "new needs 1 or 2 channels, not \"3\".");
    EXPECT_EQ(error({"new", "0", "16", "1"}),
              "new needs a frequency in samples per second, not \"0\".");
    EXPECT_EQ(error({"select", "1", "2 Hz"}),
              "Not a position: \"2 Hz\" (a sample index, or a time in s or ms).");
    EXPECT_EQ(error({"dump", "5", "info"}), "dump needs two positions or none.");
    EXPECT_EQ(error({"Volumen"}), "Unknown step \"Volumen\".");
    EXPECT_EQ(error({"open", "a.wav", "Volume Factor=3"}),
              "The field \"Volume Factor=3\" does not follow an action.");
    EXPECT_EQ(error({"FilePlay"}), "FilePlay needs the desktop program.");
    EXPECT_EQ(error({"Options"}), "Options needs the desktop program.");
}

TEST(ScriptParse, PositionsAreSampleIndicesOrTimes) {
    PositionText p;
    ASSERT_TRUE(readPosition("22050", p));
    EXPECT_FALSE(p.isTime);
    EXPECT_EQ(positionSample(p, 44100), 22050);
    ASSERT_TRUE(readPosition("0.5s", p));
    EXPECT_EQ(positionSample(p, 44100), 22050);
    ASSERT_TRUE(readPosition("1,5 s", p));  // the decimal comma of the value language
    EXPECT_EQ(positionSample(p, 44100), 66150);
    ASSERT_TRUE(readPosition("20ms", p));
    EXPECT_EQ(positionSample(p, 44100), 882);
    ASSERT_TRUE(readPosition("1/3 s", p));  // trunc(8000 / 3)
    EXPECT_EQ(positionSample(p, 8000), 2666);
    for (const char* bad : {"", "-4", "12.5", "3 Hz", "1 kHz", "2 s x", "s"})
        EXPECT_FALSE(readPosition(bad, p)) << bad;
}

TEST(ScriptParse, AnOptionCaptionWithAValueGoesToTheFieldOfThatName) {
    const FormSpec& spec = VolumeRecord::table();
    const TypedFields typed = {{"Volume Factor", "-6 dB"}, {"volume factor", "Envelope"},
                               {"Envelope", "env"}, {"Constant", "2"}};
    const TypedFields resolved = resolveOptionValues(spec, typed);
    ASSERT_EQ(resolved.size(), 4u);
    EXPECT_EQ(resolved[0], (std::pair<std::string, std::string>{"Constant", "-6 dB"}));
    EXPECT_EQ(resolved[1], (std::pair<std::string, std::string>{"volume factor", "Envelope"}));
    EXPECT_EQ(resolved[2], typed[2]);
    EXPECT_EQ(resolved[3], typed[3]);
    // A choice of another option stays with its option.
    const TypedFields other = resolveOptionValues(LengthRecord::table(), {{"Length", "0.5"}});
    EXPECT_EQ(other[0].first, "Length");
}

TEST(Progress, LineShowsStepTimeAndSamples) {
    EXPECT_EQ(progressLine("FilterLow", 2.54, 11000000), "FilterLow: 2.5 s, 11.0 M samples");
    EXPECT_EQ(progressLine("save", 0.4, 999), "save: 0.4 s, 999 samples");
}

// ---- running ------------------------------------------------------------------------------

TEST_F(RunnerTest, VolumeOnTheSelectionOnly) {
    writeWav(dir / "in.wav", 8, 1, {1000, 2000, 3000, 4000, 5000, 6000, 7000, 8000, 9000, 10000,
                                    11000, 12000, 13000, 14000, 15000, 16000});
    // 0.5 s .. 1.5 s at 8 Hz is samples 4 .. 12; -6 dB is 10^-0.3 = 0.50118723.
    EXPECT_EQ(run({"open", file("in.wav"), "select", "0.5s", "1.5s", "Volume",
                   "Volume Factor=-6 dB", "dump", "2", "14"}),
              kExitOk)
        << lastMessage(rec.recorder);
    EXPECT_EQ(out.str(), "3000\n4000\n2505\n3007\n3508\n4009\n4510\n5011\n5513\n6014\n13000\n14000\n");
}

TEST_F(RunnerTest, UndoRestoresAndASecondUndoRedoes) {
    writeWav(dir / "in.wav", 8000, 1, {100, -200, 300});
    EXPECT_EQ(run({"open", file("in.wav"), "Volume", "Volume Factor=3", "dump", "Undo", "dump",
                   "Undo", "dump"}),
              kExitOk);
    EXPECT_EQ(out.str(), "300\n-600\n900\n100\n-200\n300\n300\n-600\n900\n");
}

TEST_F(RunnerTest, ClipboardCarriesAPartToAnotherWave) {
    writeWav(dir / "a.wav", 8000, 1, {1, 2, 3, 4, 5});
    writeWav(dir / "b.wav", 8000, 1, {10, 20});
    EXPECT_EQ(run({"open", file("a.wav"), "name", "a", "open", file("b.wav"), "use", "a",
                   "select", "1", "3", "EditCopy", "open", file("b.wav"), "cursor", "1",
                   "EditPaste", "dump", "use", "a", "EditCut", "dump"}),
              kExitOk)
        << lastMessage(rec.recorder);
    EXPECT_EQ(out.str(), "10\n2\n3\n20\n1\n4\n5\n");
}

TEST_F(RunnerTest, SameLengthAsItselfKeepsEverySample) {
    writeWav(dir / "x.wav", 8000, 1, {5, -7, 32767, -32768, 12, 0});
    EXPECT_EQ(run({"open", file("x.wav"), "name", "x", "Length", "Length=Same Length as",
                   "Same Length as=x", "dump"}),
              kExitOk)
        << lastMessage(rec.recorder);
    EXPECT_EQ(out.str(), "5\n-7\n32767\n-32768\n12\n0\n");
}

TEST_F(RunnerTest, EachWaveRemembersItsOwnRecord) {
    writeWav(dir / "a.wav", 8000, 1, {1000});
    writeWav(dir / "b.wav", 8000, 1, {1000});
    // a: x2 then x2 again with the remembered field; b starts from the default 0.5.
    EXPECT_EQ(run({"open", file("a.wav"), "name", "a", "Volume", "Volume Factor=200%", "Volume",
                   "dump", "open", file("b.wav"), "Volume", "dump", "use", "a", "Volume", "dump",
                   "help", "Volume"}),
              kExitOk);
    EXPECT_EQ(out.str(),
              "4000\n500\n8000\n"
              "Volume: Change the volume\n"
              "Dialog \"Change Volume\"\n"
              "  Volume Factor (option: Constant|Envelope) = Constant\n"
              "  Envelope (wave name) =  (unused)\n"
              "  Constant (volume factor) = 200 %\n");
}

TEST_F(RunnerTest, InfoShowsThePanelsAndTheName) {
    writeWav(dir / "s.wav", 22050, 2, std::vector<int>(1024, 7));  // 512 frames, 2048 bytes
    EXPECT_EQ(run({"open", file("s.wav"), "info", "name", "voice", "Reverse", "info", "new",
                   "8000", "8", "1", "info"}),
              kExitOk);
    EXPECT_EQ(out.str(),
              "0.02322 s\t22.100 kHz\t16\tST\t2.00 kb\t\t\n"
              "0.02322 s\t22.100 kHz\t16\tST\t2.00 kb\tChanged\tvoice\n"
              "0.00000 s\t8.100 kHz\t8\tMO\t0 b\tNew\t\n");
}

TEST_F(RunnerTest, RefusalsStopTheScriptWithTheirStatus) {
    writeWav(dir / "m.wav", 8000, 1, {1, 2, 3, 4});
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string message;
    };
    const std::string m = file("m.wav");
    const std::vector<Case> cases = {
        {{"open", m, "Volume", "Volume Factor=abc", "dump"}, kExitUsage,
         "Input Error: In Volume Factor: Input has no value."},
        {{"open", m, "MakeSinus", "Frequency=0 Hz"}, kExitUsage,
         "Input Error: In Frequency: You cannot use 0 with 'Hz'."},
        {{"open", m, "Volume", "Volume Factor=Envelope", "Envelope=nobody"}, kExitUsage,
         "Input Error: In Volume Factor: You have to select a Wave"},
        {{"open", m, "Volume", "Loudness=3"}, kExitUsage,
         "Usage Error: There is no field \"Loudness\" in \"Change Volume\"."},
        {{"open", m, "EditTrim"}, kExitUsage, "Usage Error: EditTrim is not available now."},
        {{"open", m, "FileProperties", "Mono/Stereo=Stereo", "Balance"}, kExitUsage,
         "Usage Error: Balance is not available now."},
        {{"open", m, "name", "a", "open", m, "name", "a"}, kExitUsage,
         "Error: A wave with name \"a\" already exists."},
        {{"use", "ghost"}, kExitUsage, "Usage Error: There is no wave named \"ghost\"."},
        {{"dump"}, kExitUsage, "Usage Error: dump needs an open wave."},
        {{"new", "8000", "16", "1", "save", file("e.wav")}, kExitUsage,
         "Usage Error: An empty wave cannot be saved."},
        {{"open", file("none.wav")}, kExitFile,
         "File Error: Cannot read the file: \"" + file("none.wav") + "\", Cannot open File."},
        {{"help", "Volumen"}, kExitUsage, "Usage Error: Unknown action \"Volumen\"."},
    };
    for (const Case& c : cases) {
        rec.recorder.messages.clear();
        EXPECT_EQ(run(c.args), c.status) << c.args.back();
        EXPECT_EQ(lastMessage(rec.recorder), c.message);
        EXPECT_EQ(out.str(), "") << "a step after the failure ran";
    }
}

TEST_F(RunnerTest, AFailedSaveKeepsTheOldFileAndStopsTheScript) {
    writeWav(dir / "in.wav", 8000, 1, {1, 2, 3});
    writeWav(dir / "out.wav", 8000, 1, {9, 9});
    const std::string before = slurp(dir / "out.wav");
    // The rename over the old file fails, as on a folder that may not be written.
    FileOps failing = systemFileOps();
    failing.rename = [](const char*, const char*) {
        errno = EACCES;
        return -1;
    };
    const FileOps previous = setFileOps(failing);
    const int status = run({"open", file("in.wav"), "save", file("first.wav"), "Reverse", "save",
                            file("out.wav"), "save", file("later.wav")});
    setFileOps(previous);
    EXPECT_EQ(status, kExitFile);
    EXPECT_EQ(lastMessage(rec.recorder), "Save Error: Cannot save the wave.");
    EXPECT_EQ(slurp(dir / "out.wav"), before);
    EXPECT_FALSE(fs::exists(dir / "later.wav"));
    EXPECT_FALSE(fs::exists(dir / "first.wav"));  // the first save failed the same way
}

TEST_F(RunnerTest, SavedFileReadsBackAndEarlierSavesStay) {
    writeWav(dir / "in.wav", 8000, 2, {1, -1, 2, -2, 3, -3});
    EXPECT_EQ(run({"open", file("in.wav"), "Reverse", "save", file("r.wav"), "Volume",
                   "Volume Factor=abc", "save", file("never.wav")}),
              kExitUsage);
    EXPECT_FALSE(fs::exists(dir / "never.wav"));
    EXPECT_EQ(run({"open", file("r.wav"), "dump", "info"}), kExitOk);
    EXPECT_EQ(out.str(), "3\t-3\n2\t-2\n1\t-1\n0.00037 s\t8.100 kHz\t16\tST\t12 b\t\t\n");
}

TEST_F(RunnerTest, ImportMakesAChangedSixteenBitWave) {
    writeWav(dir / "i.wav", 8000, 1, {4, 5, 6});
    EXPECT_EQ(run({"import", file("i.wav"), "info", "dump"}), kExitOk) << lastMessage(rec.recorder);
    EXPECT_EQ(out.str(), "0.00037 s\t8.100 kHz\t16\tMO\t6 b\tChanged\t\n4\n5\n6\n");
    std::ofstream(dir / "junk.flac") << "not a sound";
    EXPECT_EQ(run({"import", file("junk.flac")}), kExitFile);
    EXPECT_EQ(lastMessage(rec.recorder).rfind("File Error: Cannot import the file: \"" +
                                                  file("junk.flac") + "\", ",
                                              0),
              0u)
        << lastMessage(rec.recorder);
}

TEST(ImportName, ExtensionBecomesWav) {
    EXPECT_EQ(wavNameFor("/music/song.flac"), "/music/song.wav");
    EXPECT_EQ(wavNameFor("take.1.ogg"), "take.1.wav");
    EXPECT_EQ(wavNameFor("x.wav"), "x.wav");
    EXPECT_EQ(wavNameFor("/a.b/noext"), "/a.b/noext.wav");
    EXPECT_EQ(wavNameFor("dir/.hidden"), "dir/.hidden.wav");
}

TEST_F(RunnerTest, ExportAndImportRoundTrip) {
    writeWav(dir / "s.wav", 11025, 2, {32767, -32768, 1, -1, 0, 12345});
    for (const char* target : {"x.flac", "x24.wav"}) {
        const std::string format = std::string(target) == "x24.wav" ? "wav24" : "";
        std::vector<std::string> args = {"open", file("s.wav"), "export", file(target)};
        if (!format.empty()) args.push_back(format);
        EXPECT_EQ(run(args), kExitOk) << lastMessage(rec.recorder);
        EXPECT_EQ(run({"import", file(target), "dump", "info"}), kExitOk)
            << lastMessage(rec.recorder);
        EXPECT_EQ(out.str(), "32767\t-32768\n1\t-1\n0\t12345\n"
                             "0.00027 s\t11.100 kHz\t16\tST\t12 b\tChanged\t\n")
            << target;
    }
    rec.recorder.messages.clear();
    EXPECT_EQ(run({"open", file("s.wav"), "export", file("x.xyz")}), kExitFile);
    ASSERT_EQ(rec.recorder.messages.size(), 1u);
    EXPECT_EQ(rec.recorder.messages[0].caption, "File Error");
    EXPECT_EQ(rec.recorder.messages[0].text.rfind("Cannot export the file: \"" + file("x.xyz") +
                                                      "\", ",
                                                  0),
              0u);
    EXPECT_FALSE(fs::exists(dir / "x.xyz"));
}

TEST_F(RunnerTest, HelpListsStepsActionsAndFormats) {
    EXPECT_EQ(run({"help"}), kExitOk);
    const std::string text = out.str();
    for (const char* part : {"select BEGIN END", "RndEcho", "Make a sinus wave", "wav16",
                             "130 interrupted"})
        EXPECT_NE(text.find(part), std::string::npos) << part;
    EXPECT_EQ(text.find("FilePlay"), std::string::npos);  // needs the desktop program
    EXPECT_EQ(run({"help", "EditCut"}), kExitOk);
    EXPECT_EQ(out.str(), "EditCut: Cut the wave\n  No fields.\n");
    // Without a wave the defaults show, in the unit they are first written in.
    EXPECT_EQ(run({"help", "MakeSinus"}), kExitOk);
    EXPECT_EQ(out.str(),
              "MakeSinus: Make a sinus wave\n"
              "Dialog \"Make Sinus\"\n"
              "  Amplitude (wave value) = 0.5\n"
              "  Frequency (time) = 1 kHz\n"
              "  Start Phase (phase) = 0\n"
              "  Length (time) = 500 ms\n"
              "  Count (factor) = 500 (unused)\n"
              "  Length or Count (option: Length|Count) = Length\n");
}

// ---- interrupting -----------------------------------------------------------------------

namespace {
struct InterruptAt {
    ScriptRunner* runner = nullptr;
    std::int32_t at = 0;
    bool raiseSignal = false;
    bool done = false;
};
void interruptHook(void* context, std::int32_t pos, std::int32_t) {
    auto* c = static_cast<InterruptAt*>(context);
    if (c->done || pos < c->at) return;
    c->done = true;
    if (c->raiseSignal)
        std::raise(SIGINT);
    else
        c->runner->interrupt();
}
}  // namespace

TEST_F(RunnerTest, AnInterruptedOperationLeavesTheWaveAndStopsTheScript) {
    writeWav(dir / "in.wav", 8000, 1, {10, 20, 30});
    std::vector<Step> steps;
    ASSERT_FALSE(parseScript({"open", file("in.wav"), "Volume", "Volume Factor=2", "MakeNoise",
                              "Length=3600 s", "save", file("out.wav")},
                             steps));
    ScriptRunner runner(out);
    InterruptAt at{&runner, 500000};
    setChunkHook(interruptHook, &at);
    const int status = runner.run(steps);
    setChunkHook(nullptr, nullptr);
    EXPECT_EQ(status, kExitInterrupted);
    EXPECT_TRUE(at.done);
    EXPECT_FALSE(fs::exists(dir / "out.wav"));
    // The noise was thrown away; the volume change is still the one undo takes back.
    TUnitWave& unit = *runner.workspace().active();
    ASSERT_EQ(unit.values(), 3);
    EXPECT_EQ((*unit.getSound()->GetLeftWave())[2], 60);
    EXPECT_EQ(unit.getState(), kStateChanged);
    EXPECT_TRUE(runner.workspace().undo());
    EXPECT_EQ((*unit.getSound()->GetLeftWave())[2], 30);
    EXPECT_TRUE(rec.recorder.messages.empty()) << lastMessage(rec.recorder);
}

TEST_F(RunnerTest, CtrlCReachesTheRunningCommandThroughTheWatcher) {
    std::vector<Step> steps;
    ASSERT_FALSE(parseScript({"new", "44100", "16", "1", "MakeNoise", "Length=3600 s", "save",
                              file("out.wav")},
                             steps));
    ScriptRunner runner(out);
    Console console(stderr);
    InterruptAt at{&runner, 100000, true};
    setChunkHook(interruptHook, &at);
    const int status = runWatched(runner, steps, console, false);
    setChunkHook(nullptr, nullptr);
    EXPECT_EQ(status, kExitInterrupted);
    EXPECT_FALSE(fs::exists(dir / "out.wav"));
    EXPECT_EQ(runner.workspace().active()->values(), 0);
}
