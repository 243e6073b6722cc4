#include "document/player_flow.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "fileio/wav_file.h"
#include "support/document_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;

// A media player that logs every call and changes mode as a device would; a test plays the
// device's part (end of file, what was recorded).
struct FakePlayer : MediaPlayer {
    Lines calls;
    PlayerMode m = PlayerMode::NotOpen;
    std::string file;
    Samples recorded;  // what "the microphone" gives, saved on save()
    std::int32_t recordFreq = 1000;
    void setFileName(const std::string& f) override { file = f; calls.push_back("file"); }
    bool open() override {
        calls.push_back("open");
        if (failedOpen) return false;
        m = PlayerMode::Stopped;
        return true;
    }
    void close() override { m = PlayerMode::NotOpen; calls.push_back("close"); }
    void play() override { m = PlayerMode::Playing; calls.push_back("play"); }
    void startRecording() override { m = PlayerMode::Recording; calls.push_back("record"); }
    void pause() override { m = PlayerMode::Paused; calls.push_back("pause"); }
    void stop() override { m = PlayerMode::Stopped; calls.push_back("stop"); }
    bool damagedSave = false;
    bool failedSave = false;
    bool failedOpen = false;
    std::string lastError() const override { return failedOpen ? "no device" : "disk full"; }
    bool save() override {
        calls.push_back("save");
        if (failedSave) return false;
        if (damagedSave) {
            std::FILE* f = std::fopen(file.c_str(), "wb");
            if (!f) return false;
            std::fputs("RIFX and nothing a reader knows", f);
            return std::fclose(f) == 0;
        }
        CancelFlag c{0};
        SoundPtr s = mono(recorded, recordFreq);
        return writeWaveFile(&c, file, s.get(), 2, 0, s->GetValues(), true);
    }
    PlayerMode mode() const override { return m; }
    void setNotify(bool on) override { calls.push_back(on ? "notify on" : "notify off"); }
    void setWait(bool on) override { calls.push_back(on ? "wait on" : "wait off"); }
};

class PlayerFlowTest : public WorkspaceFixture {
protected:
    PlayerFlowTest() : flow(player, ws, dir.path()) { ws.setPlayer(&flow); }
    ~PlayerFlowTest() override { ws.setPlayer(nullptr); }
    Samples playFile() const {
        SoundPtr s;
        int bytes = 0;
        const char* message = "";
        if (!readWaveFile(flow.playFile(), s, bytes, message)) return {};
        return samplesOf(s->GetLeftWave());
    }
    TempDir dir;
    FakePlayer player;
    PlayerFlow flow;
};

TEST_F(PlayerFlowTest, PlayWritesTheSelectionOrTheWholeWaveAndEndsOnItsNotification) {
    TUnitWave& u = load({1, 2, 3, 4, 5});
    flow.play();
    EXPECT_EQ(playFile(), (Samples{1, 2, 3, 4, 5}));
    EXPECT_EQ(player.calls, (Lines{"close", "file", "open", "notify on", "wait off", "play"}));
    EXPECT_TRUE(flow.playChecked());
    EXPECT_TRUE(ws.status("FileStop").enabled);
    EXPECT_TRUE(ws.status("FilePlay").checked);
    select(u, 1, 3);
    flow.play();
    EXPECT_EQ(playFile(), (Samples{2, 3}));
    player.m = PlayerMode::Stopped;  // the end of the file
    flow.notify();
    EXPECT_FALSE(flow.playChecked());
    EXPECT_FALSE(ws.status("FileStop").enabled);
    EXPECT_EQ(player.m, PlayerMode::NotOpen);
}

TEST_F(PlayerFlowTest, PlayOnAnEmptyWaveDoesNothing) {
    ws.newWave({1000, 1, 2});
    flow.play();
    EXPECT_EQ(player.calls, (Lines{"close"}));
    EXPECT_FALSE(flow.playChecked());
}

// Pausing a playing wave makes the player report; that is not the end of playing.
TEST_F(PlayerFlowTest, APausedPlayIsNotTakenAsItsEnd) {
    load({1, 2, 3});
    flow.play();
    flow.pause();
    EXPECT_TRUE(flow.pauseChecked());
    EXPECT_TRUE(flow.ignoreNextNotify());
    flow.notify();  // caused by the pause
    EXPECT_TRUE(flow.playChecked());
    EXPECT_EQ(player.m, PlayerMode::Paused);
    flow.pause();  // resume
    EXPECT_EQ(player.m, PlayerMode::Playing);
    EXPECT_FALSE(flow.pauseChecked());
    flow.notify();  // now the real end
    EXPECT_FALSE(flow.playChecked());
}

// Pause first: Play writes its file and opens the player, the next Pause starts the sound.
TEST_F(PlayerFlowTest, PauseThenPlayWaitsForTheNextPause) {
    load({1, 2, 3});
    flow.pause();
    EXPECT_TRUE(flow.pausePending());
    EXPECT_TRUE(ws.status("FilePause").checked);
    EXPECT_FALSE(ws.status("FileStop").enabled);
    flow.play();
    EXPECT_TRUE(flow.playPending());
    EXPECT_EQ(player.m, PlayerMode::Stopped);  // open, silent
    EXPECT_EQ(playFile(), (Samples{1, 2, 3}));
    EXPECT_TRUE(ws.status("FileStop").enabled);
    flow.pause();
    EXPECT_EQ(player.m, PlayerMode::Playing);
    EXPECT_FALSE(flow.pausePending());
    EXPECT_FALSE(flow.playPending());
    EXPECT_FALSE(flow.pauseChecked());
    // Pause pressed twice while idle disarms again.
    flow.stop();
    flow.pause();
    flow.pause();
    EXPECT_FALSE(flow.pausePending());
}

TEST_F(PlayerFlowTest, RecordFillsTheEmptyWaveOnStopAndASecondRecordStops) {
    TUnitWave& u = ws.newWave({1000, 1, 2});
    flow.record();
    EXPECT_EQ(player.file, flow.recordFile());
    EXPECT_EQ(player.m, PlayerMode::Recording);
    EXPECT_TRUE(ws.status("FileRecord").checked);
    EXPECT_EQ(flow.recordUnit(), &u);
    {  // the empty file is in the document's format
        SoundPtr s;
        int bytes = 0;
        const char* message = "";
        ASSERT_TRUE(readWaveFile(flow.recordFile(), s, bytes, message));
        EXPECT_EQ(s->GetValues(), 0);
        EXPECT_EQ(s->Freq, 1000);
    }
    player.recorded = {5, -5, 7};
    player.calls.clear();
    flow.record();  // the second press is Stop
    EXPECT_EQ(player.calls, (Lines{"stop", "wait on", "save", "close"}));
    EXPECT_EQ(samplesOf(u), (Samples{5, -5, 7}));
    EXPECT_EQ(u.getState(), kStateNew);  // changed, and a new wave stays New
    EXPECT_FALSE(flow.recordChecked());
    EXPECT_EQ(flow.recordUnit(), nullptr);
    ASSERT_TRUE(ws.undo());  // the recording can be undone
    EXPECT_EQ(u.values(), 0);
}

TEST_F(PlayerFlowTest, AnUnreadableRecordingIsReportedAndTheWaveStaysEmpty) {
    TUnitWave& u = ws.newWave({1000, 1, 2});
    flow.record();
    player.damagedSave = true;  // the device leaves a broken file behind
    flow.stop();
    EXPECT_EQ(u.values(), 0);
    EXPECT_EQ(ws.undoRecord(), nullptr);
    ASSERT_EQ(shown().size(), 1u);
    EXPECT_EQ(shown()[0].caption, "File Error");
    const std::string start = "Cannot read the file: \"" + flow.recordFile() + "\", ";
    EXPECT_EQ(shown()[0].text.substr(0, start.size()), start);
    EXPECT_GT(shown()[0].text.size(), start.size());  // the reader's reason follows
    EXPECT_FALSE(flow.recordChecked());
}

TEST_F(PlayerFlowTest, ClosingTheRecordedWaveStopsTheRecording) {
    TUnitWave& u = ws.newWave({1000, 1, 2});
    flow.record();
    ws.close(u);
    EXPECT_EQ(flow.recordUnit(), nullptr);
    EXPECT_EQ(player.m, PlayerMode::NotOpen);
    EXPECT_FALSE(flow.recordChecked());
}

// Stop and Record on a paused recording keep it; a recording the player could not save
// is reported, and the wave stays as it was.
TEST_F(PlayerFlowTest, APausedRecordingIsKeptAndAFailedSaveIsReported) {
    TUnitWave& u = ws.newWave({1000, 1, 2});
    flow.record();
    flow.pause();
    ASSERT_EQ(player.m, PlayerMode::Paused);
    player.recorded = {3, 4};
    flow.stop();
    EXPECT_EQ(samplesOf(u), (Samples{3, 4}));
    EXPECT_FALSE(flow.recordChecked());

    TUnitWave& v = ws.newWave({1000, 1, 2});
    flow.record();
    flow.pause();
    flow.record();  // the second press stops the paused recording too
    EXPECT_EQ(samplesOf(v), (Samples{3, 4}));

    TUnitWave& w = ws.newWave({1000, 1, 2});
    flow.record();
    player.failedSave = true;
    flow.stop();
    EXPECT_EQ(w.values(), 0);
    EXPECT_EQ(ws.undoRecord()->unit(), &v);  // the last undo is still the one before
    ASSERT_EQ(shown().size(), 1u);
    EXPECT_EQ(shown()[0].caption, "File Error");
    EXPECT_EQ(shown()[0].text, "Cannot keep the recording: disk full");
}

TEST_F(PlayerFlowTest, APlayerThatCannotOpenSaysWhyAndNothingIsChecked) {
    TUnitWave& u = load({1, 2, 3});
    select(u, 1, 3);
    player.failedOpen = true;
    flow.play();
    EXPECT_FALSE(flow.playChecked());
    EXPECT_EQ(flow.playedUnit(), nullptr);
    ASSERT_EQ(shown().size(), 1u);
    EXPECT_EQ(shown()[0].caption, "Error");
    EXPECT_EQ(shown()[0].text, "no device");
    player.failedOpen = false;
    flow.play();
    EXPECT_EQ(flow.playedUnit(), &u);
    EXPECT_EQ(flow.playedFrom(), 1);  // the play file starts at the selection
    player.m = PlayerMode::Stopped;
    flow.notify();
    EXPECT_EQ(flow.playedUnit(), nullptr);
}

// A recording whose device gives up ends with the player's notification: what it got is
// kept, and Record is no longer checked. Nothing recorded changes nothing.
TEST_F(PlayerFlowTest, ARecordingThatEndsByItselfKeepsWhatItGot) {
    TUnitWave& u = ws.newWave({1000, 1, 2});
    flow.record();
    player.recorded = {9, 8};
    player.m = PlayerMode::Stopped;  // the device went away
    flow.notify();
    EXPECT_EQ(samplesOf(u), (Samples{9, 8}));
    EXPECT_FALSE(flow.recordChecked());
    EXPECT_EQ(flow.recordUnit(), nullptr);
    EXPECT_FALSE(ws.status("FileStop").enabled);

    TUnitWave& v = ws.newWave({1000, 1, 2});
    flow.record();
    player.recorded = {};
    player.m = PlayerMode::Stopped;
    flow.notify();
    EXPECT_EQ(v.values(), 0);
    EXPECT_EQ(ws.undoRecord()->unit(), &u);  // no undo for nothing
    EXPECT_FALSE(flow.recordChecked());
    EXPECT_TRUE(shown().empty());
}

}  // namespace
}  // namespace orv
