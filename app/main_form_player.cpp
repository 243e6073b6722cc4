// The frame's part in playing and recording: it owns the media player and the flow that
// drives it, runs FilePlay, FileStop, FilePause and FileRecord, takes the player's end
// notification, and moves the play cursor across the played window while sound is heard.
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

#include "app/main_form.h"
#include "view/mdi_child_wave.h"

namespace orv {

void TMainForm::startPlayer(const std::string& folder) {
    audio_ = std::make_unique<AudioPlayer>();
    flow_ = std::make_unique<PlayerFlow>(*audio_, workspace_, folder);
    workspace_.setPlayer(flow_.get());
    connect(audio_.get(), &AudioPlayer::notified, this, &TMainForm::playerNotified);

    // One step of the play cursor per frame of the screen.
    playClock_ = new QTimer(this);
    playClock_->setTimerType(Qt::PreciseTimer);
    const QScreen* screen = QGuiApplication::primaryScreen();
    const qreal rate = screen && screen->refreshRate() >= 20 ? screen->refreshRate() : 60.0;
    playClock_->setInterval(std::max(4, int(1000.0 / rate)));
    connect(playClock_, &QTimer::timeout, this, &TMainForm::followPlay);
}

void TMainForm::stopPlayer() {
    if (playClock_) playClock_->stop();
    workspace_.setPlayer(nullptr);
    flow_.reset();
    audio_.reset();
}

void TMainForm::playerCommand(std::string_view name) {
    if (!flow_) return;
    if (name == "FilePlay")
        flow_->play();
    else if (name == "FileStop")
        flow_->stop();
    else if (name == "FilePause")
        flow_->pause();
    else
        flow_->record();
    followPlay();
    if (audio_->mode() == PlayerMode::Playing || audio_->mode() == PlayerMode::Paused)
        playClock_->start();
    // Stop after a recording has put it into its document.
    afterCommand();
}

void TMainForm::playerNotified() {
    if (!flow_) return;
    flow_->notify();
    followPlay();
    updateActions();
}

void TMainForm::followPlay() {
    TMDIChildWave* child = flow_ ? childOf(flow_->playedUnit()) : nullptr;
    const double frame = child ? audio_->heardFrame() : -1.0;
    if (playCursorChild_ && playCursorChild_ != child) playCursorChild_->setPlayCursor(-1);
    playCursorChild_ = child;
    if (!child) {
        playClock_->stop();
        return;
    }
    child->setPlayCursor(frame < 0 ? -1.0 : flow_->playedFrom() + frame);
    if (frame < 0) playClock_->stop();
}

}  // namespace orv
