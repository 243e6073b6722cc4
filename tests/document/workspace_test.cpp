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

#include "support/document_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;
using Kind = ActionResult::Kind;

std::string bytesOf(const std::string& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

Samples layout(const TUnitWave* u) { return {u->getFreq(), u->getMonoStereo(), u->getBytesPSample()}; }

class WorkspaceTest : public WorkspaceFixture {
protected:
    TempDir dir;
};

TEST_F(WorkspaceTest, NewWaveStartsAsStereoSixteenBitAt44100) {
    ASSERT_TRUE(run("FileNewWave"));
    TUnitWave* u = ws.active();
    ASSERT_NE(u, nullptr);
    EXPECT_EQ(u->getFileName(), "NONAME");
    EXPECT_EQ(u->getState(), kStateNew);
    EXPECT_EQ(layout(u), (Samples{44100, 2, 2}));
    ASSERT_TRUE(run("FileNewWave", {{"Mono/Stereo", "Mono"}, {"Sample Frequency", "22 kHz"},
                                    {"Wave Values", "8 Bits"}}));
    EXPECT_EQ(layout(ws.active()), (Samples{22050, 1, 1}));
    EXPECT_EQ(ws.documents().size(), 2u);
}

TEST_F(WorkspaceTest, OpenFailureIsReportedOnceAndOpensNothing) {
    const std::string missing = dir / "gone.wav";
    const ActionResult r = ws.runAction("FileOpenWave", {{"File", missing}});
    EXPECT_EQ(r.kind, Kind::Refused);
    const std::string text = "Cannot read the file: \"" + missing + "\", Cannot open File.";
    EXPECT_EQ(r.caption, "File Error");
    EXPECT_EQ(r.text, text);
    ASSERT_EQ(shown().size(), 1u);
    EXPECT_EQ(shown()[0].text, text);
    EXPECT_EQ(ws.active(), nullptr);
}

TEST_F(WorkspaceTest, SaveAndOpenRoundTripKeepsNameWidthAndSamples) {
    TUnitWave& u = ws.add(std::make_unique<TUnitWave>(mono({-256, 0, 512}), 1, "NONAME"));
    u.setNew();
    // A wave that was never saved is saved under a name given with it.
    const ActionResult unnamed = ws.runAction("FileSave");
    EXPECT_EQ(unnamed.kind, Kind::InputError);
    EXPECT_EQ(unnamed.text, "FileSave needs the field File.");
    const std::string file = dir / "b.wav";
    ASSERT_TRUE(run("FileSave", {{"File", file}}));
    EXPECT_EQ(u.getFileName(), file);
    EXPECT_EQ(u.getState(), kStateSaved);
    EXPECT_EQ(ws.runAction("FileSave").kind, Kind::Disabled);  // nothing to save
    ASSERT_TRUE(run("FileSaveAs", {{"File", dir / "c.wav"}}));
    EXPECT_EQ(u.getFileName(), dir / "c.wav");
    ASSERT_TRUE(run("FileOpenWave", {{"File", file}}));
    TUnitWave* opened = ws.active();
    ASSERT_NE(opened, &u);
    EXPECT_EQ(opened->getFileName(), file);
    EXPECT_EQ(opened->getState(), kStateSaved);
    EXPECT_EQ(layout(opened), (Samples{1000, 1, 1}));
    EXPECT_EQ(samplesOf(*opened), (Samples{-256, 0, 512}));  // 8 bits keep these
}

TEST_F(WorkspaceTest, FailedSaveInAReadOnlyFolderLeavesFileAndState) {
    TUnitWave& u = load({1, 2, 3}, 2, dir / "a.wav");
    ASSERT_TRUE(ws.save(u));
    const std::string before = bytesOf(dir / "a.wav");
    ASSERT_TRUE(run("Reverse"));
    ASSERT_EQ(::chmod(dir.path().c_str(), 0555), 0);
    // As an unprivileged user in a child: the super-user writes anywhere.
    EXPECT_EXIT(
        {
            if (::geteuid() == 0 && ::setuid(65534) != 0) std::_Exit(3);
            const ActionResult r = ws.runAction("FileSave");
            const bool right = r.kind == Kind::Refused && r.caption == "Save Error" &&
                               r.text == "Cannot save the wave." && shown().size() == 1 &&
                               shown()[0].text == "Cannot save the wave." &&
                               u.getState() == kStateChanged;
            std::_Exit(right ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    ::chmod(dir.path().c_str(), 0700);
    EXPECT_EQ(bytesOf(dir / "a.wav"), before);
}

TEST_F(WorkspaceTest, DuplicateIsANewIndependentCopyAndClosingPicksAnother) {
    TUnitWave& u = load({5, 6, 7});
    ASSERT_TRUE(run("Duplicate"));
    TUnitWave* copy = ws.active();
    ASSERT_NE(copy, &u);
    EXPECT_EQ(copy->getFileName(), "NONAME");
    EXPECT_EQ(copy->getState(), kStateNew);
    EXPECT_EQ(copy->getFreq(), 1000);
    ws.setActive(&u);
    ASSERT_TRUE(run("Reverse"));
    EXPECT_EQ(samplesOf(*copy), (Samples{5, 6, 7}));
    ws.setActive(copy);
    ws.close(*copy);
    EXPECT_EQ(ws.active(), &u);
    ws.close(u);
    EXPECT_EQ(ws.active(), nullptr);
}

TEST_F(WorkspaceTest, RegisteringNames) {
    TUnitWave& a = load({1});
    TUnitWave& b = load({2});
    ASSERT_TRUE(run("Register", {{"Name", "drum"}}));
    EXPECT_EQ(b.getName(), "drum");
    EXPECT_EQ(ws.soundByName("drum").get(), b.getSound());
    EXPECT_EQ(ws.waveNames(), (Lines{"drum"}));
    // Another wave may not take it; the old name stays.
    ASSERT_TRUE(ws.registerName(a, "bass"));
    ws.setActive(&a);
    const ActionResult r = ws.runAction("Register", {{"Name", "drum"}});
    EXPECT_EQ(r.kind, Kind::Refused);
    EXPECT_EQ(r.caption, "Error");
    EXPECT_EQ(r.text, "A wave with name \"drum\" already exists.");
    ASSERT_EQ(shown().size(), 1u);
    EXPECT_EQ(shown()[0].text, r.text);
    EXPECT_EQ(a.getName(), "bass");
    EXPECT_TRUE(ws.registerName(b, "drum"));  // its own name again
    EXPECT_TRUE(ws.registerName(b, ""));      // unregistered
    EXPECT_FALSE(ws.waveExists("drum"));
    EXPECT_FALSE(ws.waveExists(""));
    EXPECT_EQ(ws.soundByName("drum"), nullptr);
}

TEST_F(WorkspaceTest, RefusalsOfRunAction) {
    ActionResult r = ws.runAction("Bogus");
    EXPECT_EQ(r.kind, Kind::Unknown);
    EXPECT_EQ(r.caption, "Usage Error");
    EXPECT_EQ(r.text, "Unknown action \"Bogus\".");
    r = ws.runAction("Volume");  // no document
    EXPECT_EQ(r.kind, Kind::Disabled);
    EXPECT_EQ(r.text, "Volume is not available now: no wave window is open.");
    ws.newWave({1000, 1, 2});
    EXPECT_EQ(ws.runAction("Reverse").kind, Kind::Disabled);  // nothing to reverse
    EXPECT_EQ(ws.runAction("FilePlay").kind, Kind::NeedsWindow);
    EXPECT_EQ(ws.runAction("Options").kind, Kind::Nothing);
    EXPECT_EQ(ws.actionForm("Reverse"), nullptr);
    auto form = ws.actionForm("Up");
    ASSERT_NE(form, nullptr);
    EXPECT_EQ(form->spec().caption, "Up / Down");
}

TEST_F(WorkspaceTest, InputErrorLeavesRecordDocumentAndUndoAlone) {
    TUnitWave& u = load({1, 2, 3, 4});  // 4 ms long
    const ActionResult r = ws.runAction("Rotate", {{"Rotate by", "Time"}, {"Time", "10 ms"}});
    EXPECT_EQ(r.kind, Kind::InputError);
    EXPECT_EQ(r.caption, "Input Error");
    EXPECT_EQ(r.text, "In Time: Time may not be longer than the time of the sound.");
    ASSERT_EQ(shown().size(), 1u);
    EXPECT_EQ(shown()[0].text, r.text);
    EXPECT_EQ(u.records().rotate.kind, RotateRecord::kByFactor);
    EXPECT_EQ(samplesOf(u), (Samples{1, 2, 3, 4}));
    EXPECT_EQ(u.getState(), kStateSaved);
    EXPECT_EQ(ws.undoRecord(), nullptr);
}

TEST_F(WorkspaceTest, RecordsAreRememberedPerDocumentAndSameLengthAsItselfIsOne) {
    TUnitWave& a = load({100, 200});
    TUnitWave& b = load({100, 200}, 2, "b.wav");
    ws.setActive(&a);
    ASSERT_TRUE(run("Volume", {{"Constant", "25 %"}}));
    EXPECT_EQ(samplesOf(a), (Samples{25, 50}));
    ws.setActive(&b);
    ASSERT_TRUE(run("Volume"));  // b's own record: the default one half
    EXPECT_EQ(samplesOf(b), (Samples{50, 100}));
    EXPECT_EQ(a.records().volume.factor.value, 0.25);
    EXPECT_EQ(a.records().volume.factor.unit, kUnitPercent);  // shown again as typed
    EXPECT_EQ(ws.frameRecords().volume.factor.value, 0.5);   // the last one used anywhere
    ASSERT_TRUE(ws.registerName(b, "me"));
    ASSERT_TRUE(run("Length", {{"Same Length as", "me"}}));
    EXPECT_EQ(samplesOf(b), (Samples{50, 100}));
    EXPECT_EQ(b.records().length.lengthKind, kLengthSameAs);
}

struct Handshake {
    std::atomic<int> stage{0};  // 1: the worker is inside the operation; 2: the flag is up
};
void waitForCancel(void* context, std::int32_t pos, std::int32_t) {
    auto* h = static_cast<Handshake*>(context);
    if (pos < 1000 || h->stage != 0) return;  // once, well inside the operation
    h->stage = 1;
    while (h->stage != 2) std::this_thread::yield();
}

TEST_F(WorkspaceTest, CancelFromAnotherThreadLeavesEverythingAsItWas) {
    TUnitWave& u = load(rampOf(5000));
    select(u, 4000, 10);
    const Sound* before = u.getSound();
    Handshake h;
    setChunkHook(waitForCancel, &h);
    ActionResult result;
    std::thread worker([&] { result = ws.runAction("Volume", {{"Constant", "2"}}); });
    while (h.stage != 1) std::this_thread::yield();
    ws.requestCancel();  // the user presses stop while the worker runs
    h.stage = 2;
    worker.join();
    setChunkHook(nullptr, nullptr);
    EXPECT_EQ(result.kind, Kind::Cancelled);
    EXPECT_EQ(u.getSound(), before);
    EXPECT_EQ(samplesOf(u), rampOf(5000));
    EXPECT_EQ(u.getState(), kStateSaved);
    EXPECT_EQ(ws.undoRecord(), nullptr);  // there was none before
    EXPECT_TRUE(shown().empty());
    // The next command starts with the flag cleared.
    ASSERT_TRUE(run("Volume", {{"Constant", "0"}}));
    EXPECT_EQ(samplesOf(u)[4999], 4999);  // outside the selection
    EXPECT_EQ(samplesOf(u)[10], 0);
}

}  // namespace
}  // namespace orv
