// Without a sound server (this program is pointed at one that does not exist): Play and Record
// say why they cannot start, and nothing stays checked or running.
#include <QtTest>

#include "app/main_form.h"
#include "support/recording_platform.h"

using namespace orv;

class NoSoundTest : public QObject {
    Q_OBJECT
private slots:
    void playAndRecordSayWhyAndEndAtOnce();
};

void NoSoundTest::playAndRecordSayWhyAndEndAtOnce() {
    test::RecordingPlatformScope platform;
    TMainForm frame;
    frame.runner().setInline(true);
    Workspace& ws = frame.workspace();
    TUnitWave& tone = ws.newWave(WaveFileProps{8000, 1, 2});
    ws.runAction("MakeSinus", {{"Length", "100 ms"}});
    frame.updateActions();
    QAction* play = frame.action("FilePlay");
    play->trigger();
    QTRY_VERIFY(!play->isChecked());
    QVERIFY(!frame.action("FileStop")->isEnabled());
    QCOMPARE(frame.audioPlayer()->mode(), PlayerMode::NotOpen);
    QTRY_COMPARE(platform.recorder.messages.size(), std::size_t(1));
    QCOMPARE(platform.recorder.messages[0].caption, std::string("Error"));
    QCOMPARE(platform.recorder.messages[0].text, std::string("There is no sound device to play on."));

    TUnitWave& empty = ws.newWave(WaveFileProps{8000, 1, 2});
    frame.updateActions();
    QAction* record = frame.action("FileRecord");
    record->trigger();
    QTRY_VERIFY(!record->isChecked());
    QVERIFY(!frame.action("FileStop")->isEnabled());
    QTRY_COMPARE(platform.recorder.messages.size(), std::size_t(2));
    QCOMPARE(platform.recorder.messages[1].text, std::string("There is no sound device to record from."));
    QTest::qWait(50);  // and nothing follows: an empty recording changes nothing
    QCOMPARE(platform.recorder.messages.size(), std::size_t(2));
    QCOMPARE(empty.values(), 0);
    QCOMPARE(tone.values(), 800);
}

QTEST_MAIN(NoSoundTest)
#include "no_sound_test.moc"
