// Playing and recording through a media player: the commands Play, Record, Stop and Pause
// and the player's end notification, with the flags that tie them together. The player
// itself (a sound device behind the MediaPlayer interface) belongs to the front end; this is
// the logic that drives it, so it can be tested with a fake one.
//
// Play writes the part to be heard into the play file and hands that file to the player:
// the selection when there is one, the whole wave otherwise (what a user means by "play
// this"). Record has the player fill the record file, made empty in the document's format,
// and reads it back into the document on Stop; that is undoable like any change.
//
// Pause pressed while nothing plays arms "pause pending": the next Play or Record then only
// writes its file and opens the player, and the Pause after that starts it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orv {

class TUnitWave;
class Workspace;

enum class PlayerMode : std::uint8_t { NotOpen, Stopped, Playing, Recording, Paused };

// What the commands need of a media player.
class MediaPlayer {
public:
    virtual ~MediaPlayer() = default;
    virtual void setFileName(const std::string& file) = 0;
    virtual bool open() = 0;
    virtual void close() = 0;
    virtual void play() = 0;  // also resumes after pause
    virtual void startRecording() = 0;
    virtual void pause() = 0;
    virtual void stop() = 0;
    // Writes what was recorded into the file name.
    virtual bool save() = 0;
    virtual PlayerMode mode() const = 0;
    // One notification when the present operation ends or is interrupted.
    virtual void setNotify(bool on) = 0;
    // The next operation returns only when it is done.
    virtual void setWait(bool on) = 0;
    // Why the last open or save failed, in a user's words.
    virtual std::string lastError() const { return {}; }
};

inline constexpr std::string_view kPlayFileName = "ovtempplaywave.wav";
inline constexpr std::string_view kRecordFileName = "ovtemprecwave.wav";

class PlayerFlow {
public:
    // `folder` holds the play and record files; it exists (the front end made it, or
    // disabled play and record).
    PlayerFlow(MediaPlayer& player, Workspace& workspace, std::string folder);

    void play();    // FilePlay
    void record();  // FileRecord
    void stop();    // FileStop
    void pause();   // FilePause
    void notify();  // the player's end notification, on the user-interface thread

    // The checked states of FilePlay, FilePause, FileRecord, and whether FileStop is offered.
    bool playChecked() const { return playChecked_; }
    bool pauseChecked() const { return pauseChecked_; }
    bool recordChecked() const { return recordChecked_; }
    bool busy() const;

    bool pausePending() const { return pausePending_; }
    bool playPending() const { return playPending_; }
    bool recordPending() const { return recordPending_; }
    bool ignoreNextNotify() const { return ignoreNextNotify_; }
    const TUnitWave* recordUnit() const { return RecordUnitWave; }
    // A document closes: a recording into it is stopped without reading it back.
    void forget(const TUnitWave& unit);

    // The document whose sound the player holds, and the sample of it the play file starts
    // at (the play cursor is drawn there); null when nothing plays or the document closed.
    const TUnitWave* playedUnit() const { return played_; }
    std::int32_t playedFrom() const { return playedFrom_; }

    const std::string& playFile() const { return playFile_; }
    const std::string& recordFile() const { return recordFile_; }

private:
    void start(bool recording);
    bool opened();
    bool recording() const;
    // Stops the recording and puts what it holds into its document.
    void keepRecording();

    MediaPlayer& player_;
    Workspace& ws_;
    std::string playFile_;
    std::string recordFile_;
    TUnitWave* RecordUnitWave = nullptr;
    const TUnitWave* played_ = nullptr;
    std::int32_t playedFrom_ = 0;
    bool pausePending_ = false;
    bool playPending_ = false;
    bool recordPending_ = false;
    bool ignoreNextNotify_ = false;
    bool playChecked_ = false;
    bool pauseChecked_ = false;
    bool recordChecked_ = false;
};

}  // namespace orv
