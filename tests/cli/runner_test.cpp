// Scripts run in-process: the step reader, positions, and the runner over a workspace.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "cli/runner.h"
#include "cli/script.h"
#include "cli/watch.h"
#include "document/records.h"
#include "fileio/safe_file_writer.h"
#include "support/cli_test_helpers.h"
#include "support/recording_platform.h"

namespace fs = std::filesystem;
using namespace orv;
using namespace orv::cli;
using Args = std::vector<std::string>;

namespace {

class RunnerTest : public ::testing::Test {
protected:
    std::string file(const std::string& name) const { return tmp / name; }
    void wav(const std::string& name, int freq, int channels, const std::vector<int>& frames) {
        test::writeWav16(file(name), freq, channels, frames);
    }
    // Parses and runs; `out` gets what the steps print.
    int run(const Args& args) {
        std::vector<Step> steps;
        if (auto e = parseScript(args, steps)) {
            ADD_FAILURE() << "script refused: " << e->text;
            return -1;
        }
        out.str("");
        ScriptRunner runner(out);
        return runner.run(steps);
    }
    std::string last() const {
        const auto& m = rec.recorder.messages;
        return m.empty() ? "(none)" : m.back().caption + ": " + m.back().text;
    }

    test::TempDir tmp;
    std::ostringstream out;
    test::RecordingPlatformScope rec;
};

}  // namespace

// ---- the step reader --------------------------------------------------------------------

TEST(ScriptParse, StepsTakeTheirArgumentsAndActionsTheirFields) {
    std::vector<Step> steps;
    ASSERT_FALSE(parseScript({"open", "in.wav", "select", "0.5s", "1.5s", "Volume",
                              "Volume Factor=-6 dB", "Kind=a=b", "dump", "save", "out.wav",
                              "export", "x.flac", "FLAC", "help", "Volume", "help", "info"},
                             steps));
    ASSERT_EQ(steps.size(), 9u);
    EXPECT_EQ(steps[1].args, (Args{"0.5s", "1.5s"}));
    EXPECT_EQ(steps[2].kind, StepKind::Action);
    // Only the first "=" splits.
    EXPECT_EQ(steps[2].fields, (TypedFields{{"Volume Factor", "-6 dB"}, {"Kind", "a=b"}}));
    EXPECT_EQ(steps[3].kind, StepKind::Dump);
    EXPECT_TRUE(steps[3].args.empty());  // "save" is no position
    EXPECT_EQ(steps[5].args, (Args{"x.flac", "FLAC"}));
    EXPECT_EQ(steps[6].args, Args{"Volume"});
    EXPECT_TRUE(steps[7].args.empty());  // "info" is a step, not an action to explain
}

TEST(ScriptParse, MistakesAreFoundBeforeAnythingRuns) {
    const std::vector<std::pair<Args, std::string>> cases = {
        {{"open"}, "open needs a file name."},
        {{"new", "44100", "16"}, "new needs a frequency, the bits and the channels."},
        {{"new", "44100", "12", "1"}, "new needs 8 or 16 bits, not \"12\"."},
        {{"new", "44100", "16", "3"}, "new needs 1 or 2 channels, not \"3\"."},
        {{"new", "0", "16", "1"}, "new needs a frequency in samples per second, not \"0\"."},
        {{"select", "1", "2 Hz"},
         "Not a position: \"2 Hz\" (a sample index, or a time in s or ms)."},
        {{"dump", "5", "info"}, "dump needs two positions or none."},
        {{"Volumen"}, "Unknown step \"Volumen\"."},
        {{"open", "a.wav", "Volume Factor=3"},
         "The field \"Volume Factor=3\" does not follow an action."},
        {{"FilePlay"}, "FilePlay needs the desktop program."},
        {{"Options"}, "Options needs the desktop program."},
    };
    for (const auto& [args, text] : cases) {
        std::vector<Step> steps;
        const auto e = parseScript(args, steps);
        EXPECT_EQ(e ? e->text : "(accepted)", text);
    }
}

TEST(ScriptParse, PositionsAreSampleIndicesOrTimes) {
    const struct {
        const char* text;
        std::int32_t freq;
        std::int64_t sample;
    } cases[] = {{"22050", 44100, 22050}, {"0.5s", 44100, 22050},
                 {"1,5 s", 44100, 66150},  // the decimal comma of the value language
                 {"20ms", 44100, 882},    {"1/3 s", 8000, 2666}};  // trunc(8000 / 3)
    PositionText p;
    for (const auto& c : cases) {
        ASSERT_TRUE(readPosition(c.text, p)) << c.text;
        EXPECT_EQ(positionSample(p, c.freq), c.sample) << c.text;
    }
    for (const char* bad : {"", "-4", "12.5", "3 Hz", "1 kHz", "2 s x", "s"})
        EXPECT_FALSE(readPosition(bad, p)) << bad;
}

TEST(ScriptParse, AnOptionCaptionWithAValueGoesToTheFieldOfThatName) {
    const TypedFields typed = {{"Volume Factor", "-6 dB"}, {"volume factor", "Envelope"},
                               {"Envelope", "env"}, {"Constant", "2"}};
    EXPECT_EQ(resolveOptionValues(VolumeRecord::table(), typed),
              (TypedFields{{"Constant", "-6 dB"}, typed[1], typed[2], typed[3]}));
    // A choice of another option stays with its option.
    EXPECT_EQ(resolveOptionValues(LengthRecord::table(), {{"Length", "0.5"}})[0].first, "Length");
}

TEST(ScriptParse, ProgressLineAndImportName) {
    EXPECT_EQ(progressLine("FilterLow", 2.54, 11000000), "FilterLow: 2.5 s, 11.0 M samples");
    EXPECT_EQ(progressLine("save", 0.4, 999), "save: 0.4 s, 999 samples");
    EXPECT_EQ(wavNameFor("/music/song.flac"), "/music/song.wav");
    EXPECT_EQ(wavNameFor("take.1.ogg"), "take.1.wav");
    EXPECT_EQ(wavNameFor("/a.b/noext"), "/a.b/noext.wav");
    EXPECT_EQ(wavNameFor("dir/.hidden"), "dir/.hidden.wav");
}

// ---- running ------------------------------------------------------------------------------

TEST_F(RunnerTest, ClipboardCarriesAPartToAnotherWave) {
    wav("a.wav", 8000, 1, {1, 2, 3, 32767, -32768});
    wav("b.wav", 8000, 1, {10, 20});
    // Then a wave made as long as itself keeps every sample.
    EXPECT_EQ(run({"open", file("a.wav"), "name", "a", "open", file("b.wav"), "use", "a",
                   "select", "1", "3", "EditCopy", "open", file("b.wav"), "cursor", "1",
                   "EditPaste", "dump", "use", "a", "EditCut", "Length", "Length=Same Length as",
                   "Same Length as=a", "dump"}),
              kExitOk)
        << last();
    EXPECT_EQ(out.str(), "10\n2\n3\n20\n1\n32767\n-32768\n");
}

TEST_F(RunnerTest, EachWaveRemembersItsOwnRecord) {
    wav("a.wav", 8000, 1, {1000});
    wav("b.wav", 8000, 1, {1000});
    // a: x2 then x2 again with the remembered field; b starts from the default 0.5. An undo
    // takes the last change back, a second one redoes it.
    EXPECT_EQ(run({"open", file("a.wav"), "name", "a", "Volume", "Volume Factor=200%", "Volume",
                   "dump", "open", file("b.wav"), "Volume", "dump", "use", "a", "Volume", "dump",
                   "Undo", "dump", "Undo", "dump", "help", "Volume"}),
              kExitOk);
    EXPECT_EQ(out.str(),
              "4000\n500\n8000\n4000\n8000\n"
              "Volume: Change the volume\n"
              "Dialog \"Change Volume\"\n"
              "  Volume Factor (option: Constant|Envelope) = Constant\n"
              "  Envelope (wave name) =  (unused)\n"
              "  Constant (volume factor) = 200 %\n");
}

TEST_F(RunnerTest, InfoShowsThePanelsAndTheName) {
    wav("s.wav", 22050, 2, std::vector<int>(1024, 7));  // 512 frames, 2048 bytes
    EXPECT_EQ(run({"open", file("s.wav"), "info", "name", "voice", "Reverse", "info", "new",
                   "8000", "8", "1", "info"}),
              kExitOk);
    EXPECT_EQ(out.str(),
              "0.02322 s\t22.100 kHz\t16\tST\t2.00 kb\t\t\n"
              "0.02322 s\t22.100 kHz\t16\tST\t2.00 kb\tChanged\tvoice\n"
              "0.00000 s\t8.100 kHz\t8\tMO\t0 b\tNew\t\n");
}

TEST_F(RunnerTest, AFailedSaveKeepsTheOldFileAndStopsTheScript) {
    wav("in.wav", 8000, 1, {1, 2, 3});
    wav("out.wav", 8000, 1, {9, 9});
    const std::string before = test::slurp(file("out.wav"));
    // The rename over the old file fails, as on a folder that may not be written.
    FileOps failing = systemFileOps();
    failing.rename = [](const char*, const char*) { return errno = EACCES, -1; };
    const FileOps previous = setFileOps(failing);
    const int status = run({"open", file("in.wav"), "Reverse", "save", file("out.wav"), "dump",
                            "save", file("later.wav")});
    setFileOps(previous);
    EXPECT_EQ(status, kExitFile);
    EXPECT_EQ(last(), "Save Error: Cannot save the wave.");
    EXPECT_EQ(test::slurp(file("out.wav")), before);
    EXPECT_EQ(out.str(), "");
    EXPECT_FALSE(fs::exists(file("later.wav")));
}

TEST_F(RunnerTest, SavedFileReadsBackAndEarlierSavesStay) {
    wav("in.wav", 8000, 2, {1, -1, 2, -2, 3, -3});
    EXPECT_EQ(run({"open", file("in.wav"), "Reverse", "save", file("r.wav"), "Volume",
                   "Volume Factor=abc", "save", file("never.wav")}),
              kExitUsage);
    EXPECT_FALSE(fs::exists(file("never.wav")));
    EXPECT_EQ(run({"open", file("r.wav"), "dump", "info"}), kExitOk);
    EXPECT_EQ(out.str(), "3\t-3\n2\t-2\n1\t-1\n0.00037 s\t8.100 kHz\t16\tST\t12 b\t\t\n");
}

TEST_F(RunnerTest, ExportAndImportRoundTrip) {
    wav("s.wav", 11025, 2, {32767, -32768, 1, -1, 0, 12345});
    for (const Args& exp : {Args{file("x.flac")}, Args{file("x24.wav"), "wav24"}}) {
        Args script = {"open", file("s.wav"), "export"};
        script.insert(script.end(), exp.begin(), exp.end());
        EXPECT_EQ(run(script), kExitOk) << last();
        // An imported wave is a changed 16-bit wave.
        EXPECT_EQ(run({"import", exp[0], "dump", "info"}), kExitOk) << last();
        EXPECT_EQ(out.str(), "32767\t-32768\n1\t-1\n0\t12345\n"
                             "0.00027 s\t11.100 kHz\t16\tST\t12 b\tChanged\t\n")
            << exp[0];
    }
}

TEST_F(RunnerTest, HelpListsStepsActionsAndFormats) {
    EXPECT_EQ(run({"help"}), kExitOk);
    const std::string text = out.str();
    for (const char* part : {"select BEGIN END", "RndEcho", "wav16", "130 interrupted"})
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

TEST_F(RunnerTest, AnInterruptedOperationLeavesTheWaveAndStopsTheScript) {
    wav("in.wav", 8000, 1, {10, 20, 30});
    std::vector<Step> steps;
    ASSERT_FALSE(parseScript({"open", file("in.wav"), "Volume", "Volume Factor=2", "MakeNoise",
                              "Length=3600 s", "save", file("out.wav")},
                             steps));
    ScriptRunner runner(out);
    setChunkHook(
        [](void* ctx, std::int32_t pos, std::int32_t) {
            if (pos >= 500000) static_cast<ScriptRunner*>(ctx)->interrupt();
        },
        &runner);
    const int status = runner.run(steps);
    setChunkHook(nullptr, nullptr);
    EXPECT_EQ(status, kExitInterrupted);
    EXPECT_FALSE(fs::exists(file("out.wav")));
    // The noise was thrown away; the volume change is still the one undo takes back.
    TUnitWave& unit = *runner.workspace().active();
    ASSERT_EQ(unit.values(), 3);
    EXPECT_EQ((*unit.getSound()->GetLeftWave())[2], 60);
    EXPECT_EQ(unit.getState(), kStateChanged);
    EXPECT_TRUE(runner.workspace().undo());
    EXPECT_EQ((*unit.getSound()->GetLeftWave())[2], 30);
    EXPECT_TRUE(rec.recorder.messages.empty()) << last();
}
