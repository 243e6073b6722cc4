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
    // Every message as the program prints it; a detail line has no caption.
    Args messages() const {
        Args all;
        for (const auto& m : rec.recorder.messages)
            all.push_back(m.caption.empty() ? m.text : m.caption + ": " + m.text);
        return all;
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
        {{"new", "0", "16", "1"}, "new needs a frequency of 1 to 1000000 samples per second, not \"0\"."},
        {{"new", "1000001", "16", "1"},
         "new needs a frequency of 1 to 1000000 samples per second, not \"1000001\"."},
        {{"select", "1", "2 Hz"},
         "Not a position: \"2 Hz\" (a sample index, a time in s or ms, or end)."},
        {{"dump", "5", "info"}, "dump needs two positions or none."},
        {{"Volumen"}, "Unknown step \"Volumen\". Did you mean \"Volume\"?"},
        {{"exprot", "x.wav"}, "Unknown step \"exprot\". Did you mean \"export\"?"},
        {{"filterres"}, "Unknown step \"filterres\". Did you mean \"FilterRes\"?"},
        {{"Frobnicate"}, "Unknown step \"Frobnicate\"."},
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
                 {"20ms", 44100, 882},    {"1/3 s", 8000, 2666},  // trunc(8000 / 3)
                 {"end", 8000, 12345}, {" end ", 8000, 12345}};
    PositionText p;
    for (const auto& c : cases) {
        ASSERT_TRUE(readPosition(c.text, p)) << c.text;
        EXPECT_EQ(positionSample(p, c.freq, 12345), c.sample) << c.text;
    }
    for (const char* bad : {"", "-4", "12.5", "3 Hz", "1 kHz", "2 s x", "s", "End", "ends"})
        EXPECT_FALSE(readPosition(bad, p)) << bad;
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
    // The message, then the file and the system's reason on a line of their own.
    EXPECT_EQ(messages(), (Args{"Save Error: Cannot save the wave.",
                                "\"" + file("out.wav") + "\": Permission denied."}));
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
        // An imported wave is a new 16-bit wave: it has no file of its own yet.
        EXPECT_EQ(run({"import", exp[0], "dump", "info"}), kExitOk) << last();
        EXPECT_EQ(out.str(), "32767\t-32768\n1\t-1\n0\t12345\n"
                             "0.00027 s\t11.100 kHz\t16\tST\t12 b\tNew\t\n")
            << exp[0];
    }
}

TEST_F(RunnerTest, HelpListsStepsActionsThatRunHereAndFormats) {
    EXPECT_EQ(run({"help"}), kExitOk);
    const std::string text = out.str();
    for (const char* part : {"select BEGIN END", "RndEcho", "wav16", "130 interrupted"})
        EXPECT_NE(text.find(part), std::string::npos) << part;
    EXPECT_EQ(text.find("FilePlay"), std::string::npos);  // needs the desktop program
    // Every action the list names runs here.
    const auto from = text.find("Actions:\n"), to = text.find("\nExport formats:");
    ASSERT_NE(from, std::string::npos);
    std::istringstream lines(text.substr(from + 9, to - from - 9));
    int listed = 0;
    for (std::string line; std::getline(lines, line); ++listed) {
        std::string action;
        std::istringstream(line) >> action;
        std::vector<Step> steps;
        const auto error = parseScript({"open", file("m.wav"), action}, steps);
        EXPECT_FALSE(error) << action << ": " << error->text;
    }
    EXPECT_GT(listed, 40);
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

// ---- imported waves, the resonator's limits, command-line conveniences ---------------------

TEST_F(RunnerTest, AnImportNeverOverwritesItsSource) {
    test::writeBytes(file("orig24.wav"), test::wavBytes(1, 1, 8000, 24, {0x12, 0x34, 0x56, 0x9A, 0xBC, 0xDE}));
    const test::Bytes original = test::readBytes(file("orig24.wav"));
    const std::string refusal = "Save Error: This wave was imported from \"" + file("orig24.wav") +
                                "\"; saving it over that file would replace the original. Save it "
                                "under another name.";
    const struct {
        Args script;
        int status;
        std::string message;
    } cases[] = {
        {{"save", file("orig24.wav")}, kExitFile, refusal},
        {{"FileSaveAs", "File=" + file("orig24.wav")}, kExitFile, refusal},
        {{"FileSave", "File=" + file("orig24.wav")}, kExitFile, refusal},
        // Like a wave never saved, it has no file of its own to save to.
        {{"FileSave"}, kExitUsage, "Usage Error: FileSave needs the field File."},
        {{"Duplicate", "save", file("orig24.wav")}, kExitFile, refusal},
        {{"export", file("orig24.wav"), "wav24"}, kExitFile,
         "File Error: Cannot export the file: \"" + file("orig24.wav") + "\", This wave was imported from \"" +
             file("orig24.wav") + "\"; saving it over that file would replace the original. Save it "
                                  "under another name."},
        // Saved elsewhere first, it still may not go back over the original.
        {{"save", file("copy.wav"), "Reverse", "FileSave", "FileSaveAs", "File=" + file("orig24.wav")},
         kExitFile, refusal},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message);
        rec.recorder.messages.clear();
        Args script = {"import", file("orig24.wav")};
        script.insert(script.end(), c.script.begin(), c.script.end());
        EXPECT_EQ(run(script), c.status);
        EXPECT_EQ(messages(), Args{c.message});
        EXPECT_EQ(test::readBytes(file("orig24.wav")), original);
    }
    // A plain 16-bit file holds exactly what was imported: saving over it loses nothing.
    wav("plain.wav", 8000, 1, {1, -2, 3});
    EXPECT_EQ(run({"import", file("plain.wav"), "Reverse", "save", file("plain.wav")}), kExitOk) << last();
    EXPECT_EQ(run({"open", file("plain.wav"), "dump"}), kExitOk);
    EXPECT_EQ(out.str(), "3\n-2\n1\n");
}

TEST_F(RunnerTest, ResonatorRefusesWhatTheWaveCannotCarry) {
    wav("m.wav", 44100, 1, {100, -200, 300});
    wav("slow.wav", 1, 1, {100, -200, 300});
    const struct {
        Args script;
        int status;
        std::string message;
    } cases[] = {
        {{"open", file("m.wav"), "FilterRes", "Frequency Constant=50 kHz"}, kExitUsage,
         "Input Error: In Frequency Constant: Frequency is too high. (maximum: 44100 Hz, the sample "
         "frequency of the wave)"},
        {{"open", file("m.wav"), "FilterNotch", "Frequency Constant=44101 Hz"}, kExitUsage,
         "Input Error: In Frequency Constant: Frequency is too high. (maximum: 44100 Hz, the sample "
         "frequency of the wave)"},
        // One sample per period is the limit the filter itself has.
        {{"open", file("m.wav"), "FilterNotch", "Frequency Constant=44100 Hz"}, kExitOk, ""},
        // The default 1 kHz is too high for a wave of 1 Hz; an envelope is not limited.
        {{"open", file("slow.wav"), "FilterRes"}, kExitUsage,
         "Input Error: In Frequency Constant: Frequency is too high. (maximum: 1 Hz, the sample "
         "frequency of the wave)"},
        {{"open", file("slow.wav"), "name", "e", "FilterRes", "Frequency=Envelope", "Frequency Envelope=e"},
         kExitOk, ""},
        {{"open", file("m.wav"), "FilterRes", "Width Constant=1.5"}, kExitUsage,
         "Input Error: In Width Constant: Value must be no more than 1."},
        {{"open", file("m.wav"), "FilterRes", "Width Constant=1"}, kExitOk, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script.back());
        rec.recorder.messages.clear();
        Args script = c.script;
        script.push_back("dump");
        EXPECT_EQ(run(script), c.status);
        EXPECT_EQ(messages(), c.message.empty() ? Args{} : Args{c.message});
        if (c.status != kExitOk) {
            EXPECT_EQ(out.str(), "");  // nothing ran after the refusal
        }
    }
}

TEST_F(RunnerTest, UnknownFieldsGetASuggestionAndTheList) {
    wav("m.wav", 8000, 1, {1});
    EXPECT_EQ(run({"open", file("m.wav"), "Volume", "Volume Facter=2"}), kExitUsage);
    EXPECT_EQ(last(), "Usage Error: There is no field \"Volume Facter\" in \"Change Volume\". Did you "
                      "mean \"Volume Factor\"? Its fields: Volume Factor, Envelope, Constant.");
    EXPECT_EQ(run({"open", file("m.wav"), "Volume", "Loudness=3"}), kExitUsage);
    EXPECT_EQ(last(), "Usage Error: There is no field \"Loudness\" in \"Change Volume\". Its fields: "
                      "Volume Factor, Envelope, Constant.");
    EXPECT_EQ(run({"help", "Volumen"}), kExitUsage);
    EXPECT_EQ(last(), "Usage Error: Unknown action \"Volumen\". Did you mean \"Volume\"?");
}

TEST_F(RunnerTest, EndIsAPosition) {
    wav("m.wav", 4, 1, {1, 2, 3, 4, 5, 6});
    // 1 s at 4 Hz is sample 4.
    EXPECT_EQ(run({"open", file("m.wav"), "select", "1s", "end", "EditCut", "dump", "cursor", "end",
                   "EditPaste", "dump", "3", "end"}),
              kExitOk)
        << last();
    EXPECT_EQ(out.str(), "1\n2\n3\n4\n" "4\n5\n6\n");
}

// Ctrl-C during a save: either the old file stays and the status is 130, or the new file is
// in place and the script counts it as done.
TEST_F(RunnerTest, InterruptedSaveIsEitherUndoneOrDone) {
    wav("in.wav", 8000, 1, {1, 2, 3});
    wav("out.wav", 8000, 1, {9, 9});
    const std::string before = test::slurp(file("out.wav"));
    static ScriptRunner* running = nullptr;
    const auto runWith = [&](FileOps ops, const Args& args) {
        std::vector<Step> steps;
        EXPECT_FALSE(parseScript(args, steps));
        ScriptRunner runner(out);
        running = &runner;
        const FileOps previous = setFileOps(ops);
        const int status = runner.run(steps);
        setFileOps(previous);
        return status;
    };
    // While the samples are written: nothing replaced.
    FileOps during = systemFileOps();
    during.write = [](int fd, const void* data, std::size_t bytes) {
        running->interrupt();
        return ::write(fd, data, bytes);
    };
    EXPECT_EQ(runWith(during, {"open", file("in.wav"), "Reverse", "save", file("out.wav")}), kExitInterrupted);
    EXPECT_EQ(test::slurp(file("out.wav")), before);
    EXPECT_EQ(messages().back(), "\"" + file("out.wav") + "\": The save was interrupted; the file was not replaced.");
    // Just after the rename: the save is done; the script stops before any later step.
    FileOps after = systemFileOps();
    after.rename = [](const char* from, const char* to) {
        const int r = ::rename(from, to);
        running->interrupt();
        return r;
    };
    EXPECT_EQ(runWith(after, {"open", file("in.wav"), "Reverse", "save", file("out.wav")}), kExitOk);
    EXPECT_NE(test::slurp(file("out.wav")), before);
    EXPECT_EQ(runWith(after, {"open", file("in.wav"), "save", file("out.wav"), "save", file("later.wav")}),
              kExitInterrupted);
    EXPECT_FALSE(fs::exists(file("later.wav")));
}
