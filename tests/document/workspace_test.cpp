#include "document/workspace.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "support/recording_platform.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

SoundPtr monoOf(const std::vector<int>& v, std::int32_t freq = 1000) {
    CancelFlag c{0};
    auto w = std::make_unique<Wave>(c, std::int32_t(v.size()));
    for (std::size_t i = 0; i < v.size(); ++i) (*w)[std::int32_t(i)] = WaveVal(v[i]);
    return std::make_unique<MonoSound>(std::move(w), freq);
}
std::vector<int> samplesOf(const TUnitWave& u) {
    std::vector<int> v;
    const Wave* w = u.getSound()->GetLeftWave();
    for (std::int32_t i = 0; i < w->getValues(); ++i) v.push_back((*w)[i]);
    return v;
}
std::string bytesOf(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

class WorkspaceTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::temp_directory_path() /
              ("orv_ws_" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override {
        ::chmod(dir.c_str(), 0700);
        fs::remove_all(dir);
    }
    TUnitWave& load(const std::vector<int>& v, const std::string& name = "a.wav") {
        return ws.add(std::make_unique<TUnitWave>(monoOf(v), 2, (dir / name).string()));
    }
    const std::vector<test::ShownMessage>& shown() const { return rec.recorder.messages; }

    test::RecordingPlatformScope rec;
    Workspace ws;
    fs::path dir;
};

// ---- documents --------------------------------------------------------------------------------

TEST_F(WorkspaceTest, NewWaveStartsAsStereoSixteenBitAt44100) {
    ASSERT_TRUE(ws.runAction("FileNewWave").ok());
    TUnitWave* u = ws.active();
    ASSERT_NE(u, nullptr);
    EXPECT_EQ(u->getFileName(), "NONAME");
    EXPECT_EQ(u->getState(), kStateNew);
    EXPECT_EQ(u->getFreq(), 44100);
    EXPECT_EQ(u->getMonoStereo(), 2);
    EXPECT_EQ(u->getBytesPSample(), 2);

    ASSERT_TRUE(ws.runAction("FileNewWave", {{"Mono/Stereo", "Mono"},
                                              {"Sample Frequency", "22 kHz"},
                                              {"Wave Values", "8 Bits"}})
                    .ok());
    EXPECT_EQ(ws.active()->getFreq(), 22050);
    EXPECT_EQ(ws.active()->getMonoStereo(), 1);
    EXPECT_EQ(ws.active()->getBytesPSample(), 1);
    EXPECT_EQ(ws.documents().size(), 2u);
}

TEST_F(WorkspaceTest, OpenFailureIsReportedAndOpensNothing) {
    const std::string missing = (dir / "gone.wav").string();
    const ActionResult r = ws.runAction("FileOpenWave", {{"File", missing}});
    EXPECT_EQ(r.kind, ActionResult::Kind::Refused);
    const std::string text = "Cannot read the file: \"" + missing + "\", Cannot open File.";
    EXPECT_EQ(r.caption, "File Error");
    EXPECT_EQ(r.text, text);
    ASSERT_EQ(shown().size(), 1u);  // shown once
    EXPECT_EQ(shown()[0].caption, "File Error");
    EXPECT_EQ(shown()[0].text, text);
    EXPECT_TRUE(ws.documents().empty());
    EXPECT_EQ(ws.active(), nullptr);
}

TEST_F(WorkspaceTest, SaveAndOpenRoundTripKeepsNameWidthAndSamples) {
    TUnitWave& u = ws.add(std::make_unique<TUnitWave>(monoOf({-256, 0, 512}), 1, "NONAME"));
    u.setNew();
    // A wave that was never saved is saved under a name given with it.
    const ActionResult unnamed = ws.runAction("FileSave");
    EXPECT_EQ(unnamed.kind, ActionResult::Kind::InputError);
    EXPECT_EQ(unnamed.text, "FileSave needs the field File.");
    const std::string file = (dir / "b.wav").string();
    ASSERT_TRUE(ws.runAction("FileSave", {{"File", file}}).ok());
    EXPECT_EQ(u.getFileName(), file);
    EXPECT_EQ(u.getState(), kStateSaved);
    // Saved and unchanged: there is nothing to save.
    EXPECT_EQ(ws.runAction("FileSave").kind, ActionResult::Kind::Disabled);
    const std::string other = (dir / "c.wav").string();
    ASSERT_TRUE(ws.runAction("FileSaveAs", {{"File", other}}).ok());
    EXPECT_EQ(u.getFileName(), other);
    EXPECT_TRUE(fs::exists(other));

    ASSERT_TRUE(ws.runAction("FileOpenWave", {{"File", file}}).ok());
    TUnitWave* opened = ws.active();
    ASSERT_NE(opened, &u);
    EXPECT_EQ(opened->getFileName(), file);
    EXPECT_EQ(opened->getState(), kStateSaved);
    EXPECT_EQ(opened->getBytesPSample(), 1);
    EXPECT_EQ(samplesOf(*opened), (std::vector<int>{-256, 0, 512}));  // 8 bits keep these
}

TEST_F(WorkspaceTest, FailedSaveInAReadOnlyFolderLeavesFileAndState) {
    TUnitWave& u = load({1, 2, 3});
    ASSERT_TRUE(ws.save(u));
    const std::string before = bytesOf(dir / "a.wav");
    ASSERT_TRUE(ws.runAction("Reverse").ok());
    ASSERT_EQ(::chmod(dir.c_str(), 0555), 0);
    // As an unprivileged user in a child: the super-user writes anywhere.
    EXPECT_EXIT(
        {
            if (::geteuid() == 0 && ::setuid(65534) != 0) std::_Exit(3);
            const ActionResult r = ws.runAction("FileSave");
            const bool right = r.kind == ActionResult::Kind::Refused &&
                               r.caption == "Save Error" && r.text == "Cannot save the wave." &&
                               shown().size() == 1 && shown()[0].caption == "Save Error" &&
                               shown()[0].text == "Cannot save the wave." &&
                               u.getState() == kStateChanged;
            std::_Exit(right ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    ::chmod(dir.c_str(), 0700);
    EXPECT_EQ(bytesOf(dir / "a.wav"), before);
}

TEST_F(WorkspaceTest, DuplicateIsANewIndependentCopy) {
    TUnitWave& u = load({5, 6, 7});
    ASSERT_TRUE(ws.runAction("Duplicate").ok());
    TUnitWave* copy = ws.active();
    ASSERT_NE(copy, &u);
    EXPECT_EQ(copy->getFileName(), "NONAME");
    EXPECT_EQ(copy->getState(), kStateNew);
    EXPECT_EQ(copy->getFreq(), 1000);
    EXPECT_EQ(copy->getBytesPSample(), 2);
    EXPECT_EQ(samplesOf(*copy), (std::vector<int>{5, 6, 7}));
    ws.setActive(&u);
    ASSERT_TRUE(ws.runAction("Reverse").ok());
    EXPECT_EQ(samplesOf(*copy), (std::vector<int>{5, 6, 7}));
}

TEST_F(WorkspaceTest, ClosingPicksAnotherActiveDocument) {
    TUnitWave& a = load({1});
    TUnitWave& b = load({2});
    EXPECT_EQ(ws.active(), &b);
    ws.close(b);
    EXPECT_EQ(ws.active(), &a);
    ws.close(a);
    EXPECT_EQ(ws.active(), nullptr);
}

// ---- names ------------------------------------------------------------------------------------

TEST_F(WorkspaceTest, RegisteringNames) {
    TUnitWave& a = load({1});
    TUnitWave& b = load({2});
    ASSERT_TRUE(ws.runAction("Register", {{"Name", "drum"}}).ok());
    EXPECT_EQ(b.getName(), "drum");
    EXPECT_TRUE(ws.waveExists("drum"));
    EXPECT_EQ(ws.soundByName("drum"), b.getSound());
    EXPECT_EQ(ws.waveNames(), (std::vector<std::string>{"drum"}));

    // Another wave may not take it; the old name stays.
    ASSERT_TRUE(ws.registerName(a, "bass"));
    ws.setActive(&a);
    const ActionResult r = ws.runAction("Register", {{"Name", "drum"}});
    EXPECT_EQ(r.kind, ActionResult::Kind::Refused);
    EXPECT_EQ(r.caption, "Error");
    EXPECT_EQ(r.text, "A wave with name \"drum\" already exists.");
    ASSERT_EQ(shown().size(), 1u);
    EXPECT_EQ(shown()[0].caption, "Error");
    EXPECT_EQ(shown()[0].text, "A wave with name \"drum\" already exists.");
    EXPECT_EQ(a.getName(), "bass");

    EXPECT_TRUE(ws.registerName(b, "drum"));  // its own name again
    EXPECT_TRUE(ws.registerName(b, ""));      // unregistered
    EXPECT_FALSE(ws.waveExists("drum"));
    EXPECT_FALSE(ws.waveExists(""));
    EXPECT_EQ(ws.soundByName("drum"), nullptr);
}

// ---- running actions ---------------------------------------------------------------------------

TEST_F(WorkspaceTest, RefusalsOfRunAction) {
    ActionResult r = ws.runAction("Bogus");
    EXPECT_EQ(r.kind, ActionResult::Kind::Unknown);
    EXPECT_EQ(r.text, "Unknown action \"Bogus\".");
    EXPECT_EQ(r.caption, "Usage Error");

    r = ws.runAction("Volume");  // no document
    EXPECT_EQ(r.kind, ActionResult::Kind::Disabled);
    EXPECT_EQ(r.text, "Volume is not available now.");

    ws.newWave({1000, 1, 2});
    EXPECT_EQ(ws.runAction("Reverse").kind, ActionResult::Kind::Disabled);  // nothing to reverse
    EXPECT_EQ(ws.runAction("FilePlay").kind, ActionResult::Kind::NeedsWindow);
    EXPECT_EQ(ws.runAction("Options").kind, ActionResult::Kind::Nothing);
    EXPECT_FALSE(ws.runAction("Bogus").ok());
}

TEST_F(WorkspaceTest, InputErrorLeavesRecordDocumentAndUndoAlone) {
    TUnitWave& u = load({1, 2, 3, 4});  // 4 ms long
    const ActionResult r =
        ws.runAction("Rotate", {{"Rotate by", "Time"}, {"Time", "10 ms"}});
    EXPECT_EQ(r.kind, ActionResult::Kind::InputError);
    EXPECT_EQ(r.caption, "Input Error");
    EXPECT_EQ(r.text, "In Time: Time may not be longer than the time of the sound.");
    ASSERT_EQ(shown().size(), 1u);
    EXPECT_EQ(shown()[0].text, r.text);
    EXPECT_EQ(u.records().rotate.kind, RotateRecord::kByFactor);
    EXPECT_EQ(samplesOf(u), (std::vector<int>{1, 2, 3, 4}));
    EXPECT_EQ(u.getState(), kStateSaved);
    EXPECT_EQ(ws.undoRecord(), nullptr);
}

TEST_F(WorkspaceTest, AnEnvelopeMustBeARegisteredWave) {
    load({1, 2});
    const ActionResult r = ws.runAction("Volume", {{"Volume Factor", "Envelope"}});
    EXPECT_EQ(r.kind, ActionResult::Kind::InputError);
    EXPECT_EQ(r.text, "In Volume Factor: You have to select a Wave");
}

TEST_F(WorkspaceTest, RecordsAreRememberedPerDocumentAndSameLengthAsItselfIsOne) {
    TUnitWave& a = load({100, 200});
    TUnitWave& b = load({100, 200}, "b.wav");
    ws.setActive(&a);
    ASSERT_TRUE(ws.runAction("Volume", {{"Constant", "25 %"}}).ok());
    EXPECT_EQ(samplesOf(a), (std::vector<int>{25, 50}));
    ws.setActive(&b);
    ASSERT_TRUE(ws.runAction("Volume").ok());  // b's own record: the default one half
    EXPECT_EQ(samplesOf(b), (std::vector<int>{50, 100}));
    EXPECT_EQ(a.records().volume.factor.value, 0.25);
    EXPECT_EQ(a.records().volume.factor.unit, kUnitPercent);  // shown again as typed
    EXPECT_EQ(ws.frameRecords().volume.factor.value, 0.5);   // the last one used anywhere

    ASSERT_TRUE(ws.registerName(b, "me"));
    ASSERT_TRUE(ws.runAction("Length", {{"Same Length as", "me"}}).ok());
    EXPECT_EQ(b.values(), 2);
    EXPECT_EQ(b.records().length.lengthKind, kLengthSameAs);
}

struct Handshake {
    Workspace* ws;
    std::atomic<int> stage{0};  // 1: the worker is inside the operation; 2: the flag is up
};
void waitForCancel(void* context, std::int32_t pos, std::int32_t) {
    auto* h = static_cast<Handshake*>(context);
    if (pos < 1000 || h->stage != 0) return;  // once, well inside the operation
    h->stage = 1;
    while (h->stage != 2) std::this_thread::yield();
}

TEST_F(WorkspaceTest, CancelFromAnotherThreadLeavesEverythingAsItWas) {
    std::vector<int> v(5000);
    for (int i = 0; i < 5000; ++i) v[i] = i;
    TUnitWave& u = load(v);
    u.setCursor(4000);
    u.setSelEnd(10);
    const Sound* before = u.getSound();

    Handshake h{&ws};
    setChunkHook(waitForCancel, &h);
    ActionResult result;
    std::thread worker([&] { result = ws.runAction("Volume", {{"Constant", "2"}}); });
    while (h.stage != 1) std::this_thread::yield();
    ws.requestCancel();  // the user presses stop while the worker runs
    h.stage = 2;
    worker.join();
    setChunkHook(nullptr, nullptr);

    EXPECT_EQ(result.kind, ActionResult::Kind::Cancelled);
    EXPECT_EQ(u.getSound(), before);
    EXPECT_EQ(samplesOf(u), v);
    EXPECT_EQ(u.getCursor(), 4000);
    EXPECT_EQ(u.getSelEndPos(), 10);
    EXPECT_EQ(u.getState(), kStateSaved);
    EXPECT_EQ(ws.undoRecord(), nullptr);  // there was none before
    EXPECT_TRUE(shown().empty());

    // The next command starts with the flag cleared.
    ASSERT_TRUE(ws.runAction("Volume", {{"Constant", "0"}}).ok());
    EXPECT_EQ(samplesOf(u)[4999], 4999);  // outside the selection
    EXPECT_EQ(samplesOf(u)[10], 0);
}

// Every parameter-driven action runs with the dialog's defaults (and, where it reads one,
// with an envelope), changes the wave, and is undone exactly.
TEST_F(WorkspaceTest, EveryOperationRunsAndIsUndoneExactly) {
    std::vector<int> v(3000);
    for (int i = 0; i < 3000; ++i) v[i] = (i * 37) % 2000 - 1000;
    TUnitWave& env = ws.add(std::make_unique<TUnitWave>(monoOf({-20000, 0, 30000}, 8000), 2, "e.wav"));
    ASSERT_TRUE(ws.registerName(env, "env"));

    struct Case {
        const char* action;
        TypedFields fields;
        bool stereo = false;
    };
    const std::vector<Case> cases = {
        {"MakeSilence", {}}, {"MakeLine", {}}, {"MakeBlock", {}}, {"MakeTriangle", {}},
        {"MakeBlock", {{"Middle Envelope", "env"}}}, {"MakeSinus", {}}, {"MakeNoise", {}},
        {"MakeMFreq", {}}, {"MakeMFreq", {{"Wave Form", "env"}}}, {"Volume", {}},
        {"Volume", {{"Envelope", "env"}}}, {"Up", {}}, {"Block", {}}, {"RollOut", {}},
        {"RollOut", {{"Speed Envelope Wave", "env"}}}, {"RollIn", {}}, {"Rotate", {}},
        {"Length", {}}, {"Distort", {{"Distort Envelope", "env"}}}, {"Balance", {}},
        {"Balance", {{"Direction Envelope", "env"}}}, {"MixLeftRight", {{"Example", "Swapped"}}, true},
        {"PerEcho", {}}, {"PerEcho", {{"Echo Volume Envelope", "env"}}}, {"RndEcho", {}},
        {"TempoPitch", {}}, {"TempoPitch", {{"Speed Envelope Wave", "env"}, {"Frequency Envelope Wave", "env"}}},
        {"FilterBlock", {}}, {"FilterLow", {}},
        {"FilterLow", {{"Envelope", "env"}, {"Maximize Volume", "on"}}}, {"FilterHigh", {}},
        {"FilterRes", {}}, {"FilterNotch", {{"Frequency Width Envelope", "env"}}},
    };
    for (const Case& c : cases) {
        SoundPtr sound = monoOf(v, 8000);
        CancelFlag none{0};
        if (c.stereo) sound = std::make_unique<StereoSound>(*sound, &none);
        TUnitWave& u = ws.add(std::make_unique<TUnitWave>(std::move(sound), 2, "a.wav"));
        const ActionResult r = ws.runAction(c.action, c.fields);
        EXPECT_EQ(r.kind, ActionResult::Kind::Done) << c.action << ": " << r.text;
        EXPECT_GT(u.values(), 0) << c.action;
        EXPECT_EQ(u.getState(), kStateChanged) << c.action;
        ASSERT_TRUE(ws.undo());
        EXPECT_EQ(samplesOf(u), v) << c.action;
        ws.close(u);
    }
    EXPECT_TRUE(shown().empty());
}

TEST_F(WorkspaceTest, ActionFormListsTheDocumentsRecord) {
    EXPECT_EQ(ws.actionForm("Volume"), nullptr);
    load({1});
    auto form = ws.actionForm("Up");
    ASSERT_NE(form, nullptr);
    EXPECT_EQ(form->spec().caption, "Up / Down");
    EXPECT_EQ(ws.actionForm("Reverse"), nullptr);
}

}  // namespace
}  // namespace orv
