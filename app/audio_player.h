// AudioPlayer: the program's media player. It plays a WAV file (the play file) and records
// into one (the record file) through the sound server, with the commands the player flow
// drives (MediaPlayer, document/player_flow.h).
//
// The sound-device objects (QAudioSink, QAudioSource) live on a thread of the player's own,
// which streams the play file to the sink with our WAV reader and writes what the source
// records straight into a WAV file beside the record file (RecordingFile: no memory spent,
// nothing lost to a crash), which save() finishes and puts in place of the record file; a
// busy user interface (a picture being painted, a job being committed) never starves the
// sound. Every call below hands its work to that thread and returns when it is done there.
//
// Notifications. An operation (play() or startRecording()) started with notify on sends one
// notification, the signal `notified`, queued to the thread that made the player: when the
// sound runs out (after the last sample has been heard, not when it was handed over), when
// stop() interrupts it, or, once pause() has interrupted it, when that paused operation is
// given up (resumed by play(), stopped or closed). pause() itself sends nothing, and close()
// sends nothing for an operation that runs: the program closes the player before every new
// play, and the old play's end must not be taken for the new one's.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

#include <QObject>
#include <QThread>

#include "core/wave.h"
#include "document/player_flow.h"

namespace orv {

class AudioPlayer final : public QObject, public MediaPlayer {
    Q_OBJECT
public:
    explicit AudioPlayer(QObject* parent = nullptr);
    ~AudioPlayer() override;

    void setFileName(const std::string& file) override;
    // Reads the file's format; false with lastError() when it cannot be read.
    bool open() override;
    void close() override;
    // Starts playing the open file from its beginning, or resumes a paused play or
    // recording. A device that cannot play the file's format ends the operation at once
    // (with its notification) and says why under "Error".
    void play() override;
    void startRecording() override;
    void pause() override;
    void stop() override;
    bool save() override;
    PlayerMode mode() const override { return mode_.load(); }
    void setNotify(bool on) override;
    void setWait(bool on) override;

    // The frame of the open file being heard now (samples per channel from the file's
    // start), from the sink's processed time and the time since it was read; -1 when nothing
    // plays or is paused. Any thread.
    double heardFrame() const;
    // The open file's sample frequency (0 when none is open).
    std::int32_t frequency() const { return freq_.load(); }
    // Times the sink ran dry before the end of the sound since the last play() from the
    // beginning.
    int underruns() const { return underruns_.load(); }
    // Why the last open(), play(), startRecording() or save() failed; empty when it did not.
    std::string lastError() const override;

signals:
    void notified();

private:
    class Device;
    friend class Device;

    // Writes what was recorded with our writer; false with lastError() when it cannot.
    bool writeSaved(const std::string& file, const Wave* left, const Wave* right,
                    std::int32_t freq, int bytesPSample, std::int32_t n);
    // Runs `work` on the player's thread and waits for it.
    template <class Work>
    auto onDevice(Work work);

    QThread thread_;
    Device* device_ = nullptr;
    std::atomic<PlayerMode> mode_{PlayerMode::NotOpen};
    std::atomic<std::int32_t> freq_{0};
    // The heard position, as the player's thread last read it.
    std::atomic<std::int64_t> heardUs_{-1};
    std::atomic<std::int64_t> heardStampNs_{0};
    std::atomic<bool> advancing_{false};
    std::atomic<int> underruns_{0};
    bool wait_ = false;
    mutable std::mutex errorLock_;
    std::string error_;
};

}  // namespace orv
