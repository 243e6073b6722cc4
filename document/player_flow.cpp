#include "document/player_flow.h"

#include "core/platform.h"
#include "document/workspace.h"
#include "fileio/wav_file.h"

namespace orv {

PlayerFlow::PlayerFlow(MediaPlayer& player, Workspace& workspace, std::string folder)
    : player_(player),
      ws_(workspace),
      playFile_(folder + "/" + std::string(kPlayFileName)),
      recordFile_(folder + "/" + std::string(kRecordFileName)) {}

bool PlayerFlow::busy() const {
    const PlayerMode m = player_.mode();
    return m == PlayerMode::Playing || m == PlayerMode::Recording || m == PlayerMode::Paused ||
           playPending_ || recordPending_;
}

bool PlayerFlow::opened() {
    if (player_.open()) return true;
    showMessage("Error", player_.lastError(), MessageIcon::Information);
    return false;
}

void PlayerFlow::start(bool recording) {
    player_.setNotify(true);
    player_.setWait(false);
    if (recording)
        player_.startRecording();
    else
        player_.play();
}

void PlayerFlow::play() {
    player_.close();
    TUnitWave* unit = ws_.active();
    if (!unit || unit->values() == 0) return;
    // The selection, or the whole wave without one.
    if (!unit->saveSelection(playFile_, true)) return;
    player_.setFileName(playFile_);
    if (!opened()) return;
    played_ = unit;
    playedFrom_ = unit->selBegin();
    if (!pausePending_) {
        start(false);
        // Sound that starts while Pause shows checked ends a pause the player reports.
        if (pauseChecked_) ignoreNextNotify_ = true;
    } else {
        playPending_ = true;
    }
    playChecked_ = true;
}

// A paused recording is still a recording: Stop and Record keep what it holds.
bool PlayerFlow::recording() const {
    const PlayerMode m = player_.mode();
    return m == PlayerMode::Recording || (m == PlayerMode::Paused && RecordUnitWave != nullptr);
}

void PlayerFlow::record() {
    if (recording()) {
        stop();
        return;
    }
    player_.close();
    TUnitWave* unit = ws_.active();
    if (!unit || unit->values() != 0) return;  // recording goes into an empty wave only
    // An empty file in the document's format, for the player to fill.
    if (!unit->save(recordFile_, true)) return;
    RecordUnitWave = unit;
    player_.setFileName(recordFile_);
    if (!opened()) {
        RecordUnitWave = nullptr;
        return;
    }
    if (!pausePending_)
        start(true);
    else
        recordPending_ = true;
    recordChecked_ = true;
}

void PlayerFlow::stop() {
    const bool wasRecording = recording();
    playPending_ = recordPending_ = false;
    pausePending_ = pauseChecked_;
    if (!wasRecording) {
        player_.close();
        playChecked_ = false;
        recordChecked_ = false;
        played_ = nullptr;
        return;
    }
    keepRecording();
}

void PlayerFlow::keepRecording() {
    ORV_ASSERT_TEXT(RecordUnitWave != nullptr, "RecordUnitWave != NULL", "Main");
    TUnitWave& unit = *RecordUnitWave;
    RecordUnitWave = nullptr;
    recordChecked_ = false;
    player_.stop();
    player_.setWait(true);
    const bool saved = player_.save();
    const std::string why = player_.lastError();
    player_.close();
    if (!saved) {
        showMessage(kFileErrorCaption, "Cannot keep the recording: " + why,
                    MessageIcon::Information);
        return;
    }
    SoundPtr sound;
    int bytes = 2;
    const char* message = "";
    if (!readWaveFile(recordFile_, sound, bytes, message)) {
        showMessage(kFileErrorCaption,
                    std::string(kCannotReadFile) + "\"" + recordFile_ + "\", " + message,
                    MessageIcon::Information);
        return;
    }
    ORV_ASSERT_TEXT(bytes == unit.getBytesPSample(), "bytesPSample2 == bytesPSample1", "Main");
    const std::int32_t n = sound->GetValues();
    if (n == 0) return;  // nothing was recorded: nothing changes
    ws_.makeUndo(unit);
    unit.takeResult(std::move(sound), 0, n);
    unit.setChanged();
    if (WaveView* view = unit.getView()) view->refreshStatus(unit);
}

void PlayerFlow::pause() {
    if (playPending_ || recordPending_) {
        start(recordPending_);
        pauseChecked_ = false;
        pausePending_ = playPending_ = recordPending_ = false;
        return;
    }
    const PlayerMode mode = player_.mode();
    if (mode == PlayerMode::Playing || mode == PlayerMode::Recording ||
        mode == PlayerMode::Paused) {
        if (pauseChecked_) {
            start(false);
        } else {
            player_.pause();
            ignoreNextNotify_ = true;
        }
        pauseChecked_ = player_.mode() == PlayerMode::Paused;
        return;
    }
    pausePending_ = !pausePending_;
    pauseChecked_ = pausePending_;
}

void PlayerFlow::notify() {
    if (ignoreNextNotify_) {
        ignoreNextNotify_ = false;
        return;
    }
    const PlayerMode mode = player_.mode();
    // A recording that ended without Stop (its device failed or went away) keeps what it got.
    if (RecordUnitWave && !recordPending_ && mode == PlayerMode::Stopped) {
        keepRecording();
        return;
    }
    if (mode == PlayerMode::Stopped || mode == PlayerMode::Playing) {
        player_.close();
        playChecked_ = false;
        pausePending_ = false;
        played_ = nullptr;
    }
}

void PlayerFlow::forget(const TUnitWave& unit) {
    if (played_ == &unit) played_ = nullptr;
    if (RecordUnitWave != &unit) return;
    RecordUnitWave = nullptr;
    player_.stop();
    player_.close();
    recordChecked_ = false;
    recordPending_ = false;
}

}  // namespace orv
