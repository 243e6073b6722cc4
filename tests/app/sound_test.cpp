// Real sound through the sound server: a 1 kHz tone played by the program is recorded back
// from the server's monitor and checked for its frequency, its level and gaps; the program
// records a tone that another player plays. scripts/test starts a private PulseAudio server
// with a null sink and a source that hears it; without a server these tests are skipped and
// say so.
#include <cmath>

#include <QAudioDevice>
#include <QMediaDevices>
#include <QSignalSpy>
#include <QtTest>

#include "app/audio_player.h"
#include "app/main_form.h"
#include "fileio/wav_file.h"
#include "support/file_test_helpers.h"
#include "support/recording_platform.h"
#include "view/mdi_child_wave.h"

using namespace orv;
using namespace orv::test;

namespace {

constexpr std::int32_t kRate = 48000;
constexpr double kToneHz = 1000.0;
constexpr double kAmplitude = 16000.0;

bool haveSoundServer() {
    return !QMediaDevices::audioOutputs().isEmpty() && !QMediaDevices::defaultAudioInput().isNull();
}

#define REQUIRE_SOUND_SERVER()                                                                 \
    if (!haveSoundServer())                                                                    \
    QSKIP("No sound server: the play and record tests were skipped (scripts/test starts one).")

WavePtr tone(double seconds) {
    const auto n = std::int32_t(seconds * kRate);
    auto wave = std::make_unique<Wave>(allocateSamples(n), n);
    for (std::int32_t i = 0; i < n; ++i)
        (*wave)[i] = WaveVal(std::lround(kAmplitude * std::sin(2 * M_PI * kToneHz * i / kRate)));
    return wave;
}

void writeTone(const std::string& file, double seconds) {
    const WavePtr wave = tone(seconds);
    QVERIFY(writeWaveChannels(file, wave.get(), nullptr, kRate, 2, 0, wave->getValues(), true));
}

void writeEmpty(const std::string& file) {
    const Wave empty;
    QVERIFY(writeWaveChannels(file, &empty, nullptr, kRate, 2, 0, 0, true));
}

// What was heard: where the tone lies in a recording, its frequency, level, and the
// quietest 5 ms within it (a gap in the sound shows there).
struct Heard {
    double seconds = 0, hz = 0, rms = 0, quietestRms = 0;
};

Heard analyse(const Wave& w) {
    Heard h;
    const std::int32_t n = w.getValues();
    std::int32_t a = -1, b = -1;
    for (std::int32_t i = 0; i < n; ++i)
        if (std::abs(int(w[i])) > 2000) {
            if (a < 0) a = i;
            b = i;
        }
    if (a < 0 || b - a < kRate / 10) return h;
    h.seconds = double(b - a) / kRate;
    int crossings = 0;
    double sum = 0;
    for (std::int32_t i = a + 1; i <= b; ++i) {
        if ((w[i - 1] < 0) != (w[i] < 0)) ++crossings;
        sum += double(w[i]) * w[i];
    }
    h.hz = crossings / 2.0 / h.seconds;
    h.rms = std::sqrt(sum / (b - a));
    h.quietestRms = 1e9;
    const std::int32_t window = kRate / 200;
    for (std::int32_t s = a + window; s + window < b - window; s += window) {
        double e = 0;
        for (std::int32_t i = s; i < s + window; ++i) e += double(w[i]) * w[i];
        h.quietestRms = std::min(h.quietestRms, std::sqrt(e / window));
    }
    return h;
}

// A second player that records whatever the server plays, as a listener would.
class Listener {
public:
    explicit Listener(const std::string& file) : file_(file) {
        writeEmpty(file);
        player.setFileName(file);
        ok = player.open();
        player.setNotify(false);
        player.startRecording();
        ok = ok && player.mode() == PlayerMode::Recording;
    }
    WavePtr stop() {
        player.stop();
        if (!player.save()) return nullptr;
        player.close();
        WaveFileChannels got;
        const char* message = "";
        if (!readWaveChannels(file_, got, message)) return nullptr;
        return std::move(got.left);
    }
    AudioPlayer player;
    bool ok = false;

private:
    std::string file_;
};

void expectTone(const Wave& recorded, double seconds) {
    const Heard h = analyse(recorded);
    QVERIFY2(std::abs(h.seconds - seconds) < 0.05, qPrintable(QString::number(h.seconds)));
    QVERIFY2(std::abs(h.hz - kToneHz) < 5, qPrintable(QString::number(h.hz)));
    // Full level comes back (a sine's RMS is its amplitude over root 2), within 1 dB.
    const double expected = kAmplitude / std::sqrt(2.0);
    QVERIFY2(std::abs(20 * std::log10(h.rms / expected)) < 1, qPrintable(QString::number(h.rms)));
    // Every 5 ms of it is there: no dropout.
    QVERIFY2(h.quietestRms > expected * 0.7, qPrintable(QString::number(h.quietestRms)));
}

}  // namespace

class SoundTest : public QObject {
    Q_OBJECT
private slots:
    void thePlayerPlaysTheFileToItsEndAndTheCursorFollows();
    void theFramePlaysWithoutGapsWhileAPictureAndAnOperationCompute();
    void theFrameRecordsIntoTheEmptyWave();
    void pauseHoldsThePositionAndResumeGoesOn();
};

void SoundTest::thePlayerPlaysTheFileToItsEndAndTheCursorFollows() {
    REQUIRE_SOUND_SERVER();
    TempDir dir;
    writeTone(dir / "tone.wav", 1.0);
    Listener listener(dir / "heard.wav");
    QVERIFY(listener.ok);

    AudioPlayer player;
    QSignalSpy ended(&player, &AudioPlayer::notified);
    player.setFileName(dir / "tone.wav");
    QVERIFY(player.open());
    QCOMPARE(player.frequency(), kRate);
    player.setNotify(true);
    QElapsedTimer clock;
    clock.start();
    player.play();
    QCOMPARE(player.mode(), PlayerMode::Playing);
    // The heard position only goes forward (by more than jitter never back) and reaches
    // the end before the notification comes.
    double last = 0, highest = 0;
    while (ended.isEmpty() && clock.elapsed() < 10000) {
        QTest::qWait(10);
        const double now = player.heardFrame();
        if (now < 0) continue;
        QVERIFY2(now >= last - kRate * 0.005, qPrintable(QString("%1 after %2").arg(now).arg(last)));
        last = now;
        highest = std::max(highest, now);
    }
    QCOMPARE(ended.count(), 1);
    QVERIFY2(highest > 0.9 * kRate, qPrintable(QString::number(highest)));
    // The notification comes once the sound was heard, not when it was handed over.
    QVERIFY2(clock.elapsed() >= 950, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(player.mode(), PlayerMode::Stopped);
    QCOMPARE(player.heardFrame(), -1.0);
    QCOMPARE(player.underruns(), 0);
    QTest::qWait(150);
    const WavePtr heard = listener.stop();
    QVERIFY(heard);
    expectTone(*heard, 1.0);
    QTest::qWait(50);
    QCOMPARE(ended.count(), 1);  // one notification only
}

void SoundTest::theFramePlaysWithoutGapsWhileAPictureAndAnOperationCompute() {
    REQUIRE_SOUND_SERVER();
    RecordingPlatformScope platform;
    TempDir dir;
    writeTone(dir / "tone.wav", 1.5);
    {  // a long noise for the picture, which keeps both cores busy
        const auto n = std::int32_t(30 * kRate);
        Wave noise(allocateSamples(n), n);
        std::uint32_t x = 1;
        for (std::int32_t i = 0; i < n; ++i) noise[i] = WaveVal((x = x * 1664525u + 1013904223u) >> 16);
        QVERIFY(writeWaveChannels(dir / "noise.wav", &noise, nullptr, kRate, 2, 0, n, true));
    }
    TMainForm frame;
    frame.show();
    QVERIFY(QTest::qWaitForWindowExposed(&frame));
    frame.openFiles({QString::fromStdString(dir / "noise.wav")});
    TMDIChildWave* noise = frame.childOf(frame.workspace().active());
    QVERIFY(noise);
    noise->showVold(noise->voldSettings());
    QTRY_VERIFY(noise->voldComputing());
    frame.openFiles({QString::fromStdString(dir / "tone.wav")});
    TUnitWave* toneUnit = frame.workspace().active();
    TMDIChildWave* toneChild = frame.childOf(toneUnit);
    QVERIFY(toneChild && toneChild != noise);

    Listener listener(dir / "heard.wav");
    QVERIFY(listener.ok);
    QAction* play = frame.action("FilePlay");
    QAction* stop = frame.action("FileStop");
    QVERIFY(play->isEnabled());
    QVERIFY(!stop->isEnabled());
    play->trigger();
    QVERIFY(play->isChecked());
    QVERIFY(stop->isEnabled());
    // And an operation computes on the noise while the tone plays.
    frame.workspace().setActive(noise->unit());
    noise->unit()->records().tempoPitch.lengthFactor.value = 32;  // seconds of work
    QElapsedTimer clock;
    clock.start();
    qint64 computedAt = 0;
    bool computed = false;
    frame.runner().run("TempoPitch", {}, [&](const ActionResult& r) {
        computed = r.kind == ActionResult::Kind::Done;
        computedAt = clock.elapsed();
    });
    // The play cursor moves across the played window.
    QTRY_VERIFY_WITH_TIMEOUT(toneChild->playCursor() > 0.25 * kRate, 5000);
    const int column = toneChild->playCursorColumn();
    QTRY_VERIFY_WITH_TIMEOUT(toneChild->playCursorColumn() > column, 5000);
    QVERIFY(noise->voldComputing() || noise->voldComplete());
    QTRY_VERIFY_WITH_TIMEOUT(!play->isChecked(), 10000);
    const qint64 playedFor = clock.elapsed();
    QTRY_VERIFY_WITH_TIMEOUT(computed, 60000);
    qInfo("played for %lld ms; the operation computed for %lld ms", playedFor, computedAt);
    QVERIFY(!stop->isEnabled());
    QCOMPARE(toneChild->playCursor(), -1.0);
    QTest::qWait(150);
    const WavePtr heard = listener.stop();
    QVERIFY(heard);
    expectTone(*heard, 1.5);
    QCOMPARE(frame.audioPlayer()->underruns(), 0);
    QVERIFY(platform.recorder.messages.empty());
}

void SoundTest::theFrameRecordsIntoTheEmptyWave() {
    REQUIRE_SOUND_SERVER();
    RecordingPlatformScope platform;
    TempDir dir;
    writeTone(dir / "tone.wav", 1.0);
    writeEmpty(dir / "empty.wav");
    TMainForm frame;
    frame.openFiles({QString::fromStdString(dir / "empty.wav")});
    TUnitWave* unit = frame.workspace().active();
    QVERIFY(unit && unit->values() == 0);
    QAction* record = frame.action("FileRecord");
    QVERIFY(record->isEnabled());
    QVERIFY(!frame.action("FilePlay")->isEnabled());  // nothing to play in an empty wave
    record->trigger();
    QVERIFY(record->isChecked());
    QVERIFY(frame.action("FileStop")->isEnabled());
    QCOMPARE(frame.audioPlayer()->mode(), PlayerMode::Recording);

    AudioPlayer other;
    QSignalSpy ended(&other, &AudioPlayer::notified);
    other.setFileName(dir / "tone.wav");
    QVERIFY(other.open());
    other.setNotify(true);
    other.play();
    QTRY_COMPARE_WITH_TIMEOUT(ended.count(), 1, 10000);
    QTest::qWait(150);
    frame.action("FileStop")->trigger();
    QVERIFY(!record->isChecked());
    QVERIFY(!frame.action("FileStop")->isEnabled());
    QVERIFY(unit->values() > kRate);
    expectTone(*unit->getSound()->GetLeftWave(), 1.0);
    QVERIFY(frame.action("Undo")->isEnabled());  // the recording can be undone
    QVERIFY(platform.recorder.messages.empty());
}

void SoundTest::pauseHoldsThePositionAndResumeGoesOn() {
    REQUIRE_SOUND_SERVER();
    TempDir dir;
    writeTone(dir / "tone.wav", 1.0);
    AudioPlayer player;
    QSignalSpy notes(&player, &AudioPlayer::notified);
    player.setFileName(dir / "tone.wav");
    QVERIFY(player.open());
    player.setNotify(true);
    player.play();
    QTRY_VERIFY_WITH_TIMEOUT(player.heardFrame() > 0.2 * kRate, 5000);
    player.pause();
    QCOMPARE(player.mode(), PlayerMode::Paused);
    const double held = player.heardFrame();
    QTest::qWait(300);
    QCOMPARE(player.heardFrame(), held);
    QCOMPARE(notes.count(), 0);  // pausing itself says nothing
    player.setNotify(true);
    player.play();  // resumes; the paused operation is given up and says so
    QCOMPARE(player.mode(), PlayerMode::Playing);
    QTRY_COMPARE(notes.count(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(notes.count() == 2, 10000);  // the end
    QCOMPARE(player.mode(), PlayerMode::Stopped);
    // Closing a running play says nothing: the frame closes before every new play.
    player.play();
    QCOMPARE(player.mode(), PlayerMode::Playing);
    player.close();
    QCOMPARE(player.mode(), PlayerMode::NotOpen);
    QTest::qWait(100);
    QCOMPARE(notes.count(), 2);
}

QTEST_MAIN(SoundTest)
#include "sound_test.moc"
