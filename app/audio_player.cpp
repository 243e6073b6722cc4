#include "app/audio_player.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <type_traits>
#include <utility>

#include <QAudioDevice>
#include <QAudioSink>
#include <QAudioSource>
#include <QIODevice>
#include <QMediaDevices>
#include <QTimer>

#include "app/recording_file.h"
#include "core/platform.h"
#include "fileio/safe_file_writer.h"
#include "fileio/wav_file.h"

namespace orv {

namespace {

std::int64_t nowNs() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// The play file as the sink pulls it: whole frames straight from the file.
class StreamFeed final : public QIODevice {
public:
    explicit StreamFeed(WaveFileStream& stream) : stream_(stream) {
        QIODevice::open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    bool isSequential() const override { return true; }
    // The sink reads nothing from a device that does not say what it has.
    qint64 bytesAvailable() const override {
        return qint64(stream_.frames() - stream_.position()) * qint64(stream_.frameBytes());
    }
    bool atEnd() const override { return stream_.position() >= stream_.frames(); }

protected:
    qint64 readData(char* data, qint64 max) override {
        const std::size_t frameBytes = stream_.frameBytes();
        const std::size_t frames =
            stream_.read(reinterpret_cast<std::uint8_t*>(data), std::size_t(max) / frameBytes);
        return qint64(frames * frameBytes);
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    WaveFileStream& stream_;
};

std::string describe(const QAudioFormat& f) {
    return std::to_string(f.bytesPerSample() * 8) + "-bit " +
           (f.channelCount() == 2 ? "stereo" : "mono") + " sound at " +
           std::to_string(f.sampleRate()) + " Hz";
}

}  // namespace

// The player's half on its own thread: the stream, the sink or the source, and the clock that
// reads the heard position and notices the end.
class AudioPlayer::Device final : public QObject {
public:
    explicit Device(AudioPlayer& owner) : owner_(owner), clock_(this) {
        // Often enough for a cursor that moves every screen frame.
        clock_.setInterval(5);
        clock_.setTimerType(Qt::PreciseTimer);
        connect(&clock_, &QTimer::timeout, this, &Device::tick);
    }
    ~Device() override { close(); }

    std::string file;
    bool notify = false;

    bool open() {
        close();
        const char* message = kWavNoErrors;
        if (!stream_.open(file, message)) {
            setError("Cannot read the file: \"" + file + "\", " + message);
            return false;
        }
        format_.setSampleRate(stream_.freq());
        format_.setChannelCount(stream_.channels());
        format_.setSampleFormat(stream_.bytesPSample() == 1 ? QAudioFormat::UInt8
                                                            : QAudioFormat::Int16);
        owner_.freq_ = stream_.freq();
        setMode(PlayerMode::Stopped);
        return true;
    }

    void close() {
        if (pausedArmed_) post();
        armed_ = pausedArmed_ = false;
        dropSink();
        dropSource();
        recording_.reset();  // not saved: gone
        stream_.close();
        owner_.freq_ = 0;
        setMode(PlayerMode::NotOpen);
    }

    void play() {
        const PlayerMode m = owner_.mode();
        if (m == PlayerMode::Paused) return resume();
        if (m != PlayerMode::Stopped) return;
        armed_ = notify;
        if (!stream_.seek(0) || stream_.frames() == 0) return finish();
        const QAudioDevice device = QMediaDevices::defaultAudioOutput();
        if (device.isNull()) return fail("There is no sound device to play on.");
        if (!device.isFormatSupported(format_))
            return fail("The sound device cannot play " + describe(format_) + ".");
        sink_ = std::make_unique<QAudioSink>(device, format_);
        // Half a second asked for (the server grants about a quarter): sound that keeps
        // playing while every core computes a picture or an operation. It costs no start-up
        // time (the file is at hand) and no precision of the cursor (the sink reports what
        // has been heard, not what it was given).
        sink_->setBufferSize(qsizetype(stream_.freq()) * qsizetype(stream_.frameBytes()) / 2);
        feed_ = std::make_unique<StreamFeed>(stream_);
        connect(sink_.get(), &QAudioSink::stateChanged, this, &Device::sinkState);
        totalUs_ = std::int64_t(stream_.frames()) * 1000000 / stream_.freq();
        draining_ = false;
        owner_.underruns_ = 0;
        setMode(PlayerMode::Playing);
        sink_->start(feed_.get());
        if (sink_->error() != QAudio::NoError)
            return fail("The sound device could not start playing " + describe(format_) + ".");
        publish(0, false);  // the cursor moves once the server has played something
        clock_.start();
    }

    void startRecording() {
        if (owner_.mode() != PlayerMode::Stopped) return;
        armed_ = notify;
        const QAudioDevice device = QMediaDevices::defaultAudioInput();
        if (device.isNull()) return fail("There is no sound device to record from.");
        if (!device.isFormatSupported(format_))
            return fail("The sound device cannot record " + describe(format_) + ".");
        // What comes goes straight onto the disk, beside the record file.
        recording_ = std::make_unique<RecordingFile>();
        std::string error;
        if (!recording_->begin(file + ".part", stream_.channels(), stream_.freq(),
                               stream_.bytesPSample() == 1 ? 1 : 2, error)) {
            recording_.reset();
            return fail("The recording cannot be written: " + error);
        }
        source_ = std::make_unique<QAudioSource>(device, format_);
        recordIo_ = source_->start();
        if (!recordIo_ || source_->error() != QAudio::NoError)
            return fail("The sound device could not start recording " + describe(format_) + ".");
        connect(recordIo_, &QIODevice::readyRead, this, &Device::takeRecorded);
        setMode(PlayerMode::Recording);
    }

    void pause() {
        const PlayerMode m = owner_.mode();
        if (m == PlayerMode::Playing) {
            sink_->suspend();
            publish(sink_->processedUSecs(), false);
        } else if (m == PlayerMode::Recording) {
            takeRecorded();
            source_->suspend();
        } else {
            return;
        }
        pausedArmed_ = armed_;
        armed_ = false;
        setMode(PlayerMode::Paused);
    }

    void stop() {
        const PlayerMode m = owner_.mode();
        if (m != PlayerMode::Playing && m != PlayerMode::Recording && m != PlayerMode::Paused)
            return;
        dropSink();
        if (source_) {
            takeRecorded();
            dropSource();
        }
        setMode(PlayerMode::Stopped);
        if (armed_ || pausedArmed_) post();
        armed_ = pausedArmed_ = false;
    }

    // Hands over what was recorded (the caller finishes it); null when nothing was.
    std::unique_ptr<RecordingFile> takeRecording() {
        if (source_) takeRecorded();
        return std::move(recording_);
    }
    const WaveFileStream& stream() const { return stream_; }

private:
    void setMode(PlayerMode m) { owner_.mode_ = m; }

    void setError(std::string text) {
        std::lock_guard lock(owner_.errorLock_);
        owner_.error_ = std::move(text);
    }

    // The notification, queued to the owner's thread.
    void post() {
        AudioPlayer* owner = &owner_;
        QMetaObject::invokeMethod(owner, [owner] { emit owner->notified(); }, Qt::QueuedConnection);
    }

    void publish(std::int64_t us, bool advancing) {
        owner_.heardUs_ = us;
        owner_.heardStampNs_ = nowNs();
        owner_.advancing_ = advancing;
    }

    // The operation could not start or broke off: it ends here, and the user is told why.
    // A recording keeps what it wrote unless `dropRecording`.
    void fail(std::string text, bool dropRecording = true) {
        setError(text);
        AudioPlayer* owner = &owner_;
        QMetaObject::invokeMethod(
            owner, [text] { showMessage("Error", text); }, Qt::QueuedConnection);
        dropSink();
        dropSource();
        if (dropRecording) recording_.reset();
        setMode(PlayerMode::Stopped);
        if (armed_) post();
        armed_ = false;
    }

    void resume() {
        if (sink_) {
            sink_->resume();
            publish(sink_->processedUSecs(), true);
            drainStartNs_ = nowNs();  // the time a pause took is not the sink's time to drain
            setMode(PlayerMode::Playing);
        } else if (source_) {
            source_->resume();
            setMode(PlayerMode::Recording);
        } else {
            setMode(PlayerMode::Stopped);
        }
        if (pausedArmed_) post();
        pausedArmed_ = false;
        armed_ = notify;
    }

    // The sound has been heard to its end.
    void finish() {
        dropSink();
        setMode(PlayerMode::Stopped);
        if (armed_) post();
        armed_ = false;
    }

    void sinkState(QAudio::State state) {
        if (!sink_) return;
        if (state == QAudio::IdleState) {
            // The sink has taken the last bytes; what it holds is still to be heard.
            if (feed_->atEnd()) {
                if (!draining_) drainStartNs_ = nowNs();
                draining_ = true;
            } else {
                ++owner_.underruns_;
            }
        } else if (state == QAudio::StoppedState && sink_->error() != QAudio::NoError &&
                   owner_.mode() == PlayerMode::Playing) {
            fail("The sound device stopped playing.");
        }
    }

    void tick() {
        if (!sink_) {
            clock_.stop();
            return;
        }
        if (owner_.mode() != PlayerMode::Playing) return;
        const std::int64_t us = sink_->processedUSecs();
        publish(us, us > 0);
        // The sink's time stops a little short of the sound's length on some servers; a
        // sink that has been idle for a second longer than it held is done in any case.
        constexpr std::int64_t kSlackUs = 2000;
        if (draining_ && (us + kSlackUs >= totalUs_ || nowNs() - drainStartNs_ > 1'500'000'000))
            finish();
    }

    void takeRecorded() {
        if (!recordIo_ || !recording_) return;
        const QByteArray bytes = recordIo_->readAll();
        std::string error;
        if (bytes.isEmpty() || recording_->append(bytes.constData(), std::size_t(bytes.size()), error))
            return;
        // The disk is full, or the file as long as a file can be: the recording ends here,
        // and what it holds so far is kept.
        if (owner_.mode() == PlayerMode::Recording) fail("The recording stopped: " + error, false);
    }

    void dropSink() {
        clock_.stop();
        if (sink_) {
            sink_->disconnect(this);
            sink_->stop();
        }
        sink_.reset();
        feed_.reset();
        draining_ = false;
        publish(-1, false);
    }

    void dropSource() {
        if (source_) {
            source_->disconnect(this);
            if (recordIo_) recordIo_->disconnect(this);
            source_->stop();
        }
        source_.reset();
        recordIo_ = nullptr;
    }

    AudioPlayer& owner_;
    QTimer clock_;
    WaveFileStream stream_;
    QAudioFormat format_;
    std::unique_ptr<QAudioSink> sink_;
    std::unique_ptr<StreamFeed> feed_;
    std::unique_ptr<QAudioSource> source_;
    QIODevice* recordIo_ = nullptr;
    std::unique_ptr<RecordingFile> recording_;
    std::int64_t totalUs_ = 0;
    bool draining_ = false;
    std::int64_t drainStartNs_ = 0;
    bool armed_ = false;        // the running operation notifies when it ends
    bool pausedArmed_ = false;  // the paused operation notifies when it is given up
};

template <class Work>
auto AudioPlayer::onDevice(Work work) {
    using Result = std::invoke_result_t<Work, Device&>;
    if constexpr (std::is_void_v<Result>) {
        QMetaObject::invokeMethod(device_, [&] { work(*device_); }, Qt::BlockingQueuedConnection);
    } else {
        Result result{};
        QMetaObject::invokeMethod(
            device_, [&] { result = work(*device_); }, Qt::BlockingQueuedConnection);
        return result;
    }
}

AudioPlayer::AudioPlayer(QObject* parent) : QObject(parent) {
    thread_.setObjectName("AudioPlayer");
    device_ = new Device(*this);
    device_->moveToThread(&thread_);
    thread_.start();
}

AudioPlayer::~AudioPlayer() {
    onDevice([](Device& d) { delete &d; });
    thread_.quit();
    thread_.wait();
}

void AudioPlayer::setFileName(const std::string& file) {
    onDevice([file](Device& d) { d.file = file; });
}

bool AudioPlayer::open() {
    {
        std::lock_guard lock(errorLock_);
        error_.clear();
    }
    return onDevice([](Device& d) { return d.open(); });
}

void AudioPlayer::close() {
    onDevice([](Device& d) { d.close(); });
}

void AudioPlayer::play() {
    onDevice([](Device& d) { d.play(); });
    if (std::exchange(wait_, false))
        while (mode() == PlayerMode::Playing) QThread::msleep(5);
}

void AudioPlayer::startRecording() {
    wait_ = false;  // a recording runs until it is stopped: nothing to wait for
    onDevice([](Device& d) { d.startRecording(); });
}

void AudioPlayer::pause() {
    onDevice([](Device& d) { d.pause(); });
}

void AudioPlayer::stop() {
    onDevice([](Device& d) { d.stop(); });
}

bool AudioPlayer::save() {
    wait_ = false;  // always done when it returns
    struct Taken {
        std::unique_ptr<RecordingFile> recording;
        std::string file;
        std::int32_t freq = 0;
        int channels = 0;
        int bytesPSample = 0;
    };
    Taken t = onDevice([](Device& d) {
        Taken taken;
        taken.recording = d.takeRecording();
        taken.file = d.file;
        taken.freq = d.stream().freq();
        taken.channels = d.stream().channels();
        taken.bytesPSample = d.stream().bytesPSample();
        return taken;
    });
    if (t.channels == 0) return false;  // nothing open
    // Finished here, on the caller's thread: a message it raises must not wait for a thread
    // that waits for this one.
    if (!t.recording) {  // nothing came: an empty file in the format
        const Wave empty;
        return writeSaved(t.file, &empty, t.channels == 2 ? &empty : nullptr, t.freq,
                          t.bytesPSample, 0);
    }
    std::string error;
    if (t.recording->finish(t.file, error)) return true;
    std::lock_guard lock(errorLock_);
    error_ = error;
    return false;
}

bool AudioPlayer::writeSaved(const std::string& file, const Wave* left, const Wave* right,
                             std::int32_t freq, int bytesPSample, std::int32_t n) {
    if (writeWaveChannels(file, left, right, freq, bytesPSample == 1 ? 1 : 2, 0, n, true))
        return true;
    const WriteFailure failure = lastWriteFailure();
    std::lock_guard lock(errorLock_);
    error_ = "\"" + failure.file + "\": " + failure.reason;
    return false;
}

void AudioPlayer::setNotify(bool on) {
    onDevice([on](Device& d) { d.notify = on; });
}

void AudioPlayer::setWait(bool on) { wait_ = on; }

double AudioPlayer::heardFrame() const {
    std::int64_t us = heardUs_.load();
    const std::int32_t freq = freq_.load();
    if (us < 0 || freq <= 0) return -1;
    if (advancing_.load()) {
        // Between two readings the sound goes on; never guess more than a reading's gap ahead.
        const std::int64_t since = (nowNs() - heardStampNs_.load()) / 1000;
        us += std::clamp<std::int64_t>(since, 0, 20000);
    }
    return double(us) * freq / 1e6;
}

std::string AudioPlayer::lastError() const {
    std::lock_guard lock(errorLock_);
    return error_;
}

}  // namespace orv
