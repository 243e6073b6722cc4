// The command runner: an accepted form reaches the workspace as the fields that count, with
// the text as typed; the busy state brackets every command; a job computes on a worker thread
// with progress and Cancel. (The Multi Frequency list going along with its form is checked
// through the frame.)
#include <atomic>
#include <thread>

#include <QProgressDialog>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

#include "app/command_runner.h"
#include "document/file_props_record.h"
#include "support/document_test_helpers.h"
#include "support/recording_platform.h"

using namespace orv;

class CommandRunnerTest : public QObject {
    Q_OBJECT
private slots:
    void onlyFieldsThatCountInRecordOrder();
    void acceptedFormRunsAsTheDialogRead();
    void busyBracketsTheCommandAndDoneGetsTheResult();
    void aJobComputesOnAWorkerWhileTheWindowStaysLive();
    void cancelInTheProgressDialogChangesNothing();
};

void CommandRunnerTest::onlyFieldsThatCountInRecordOrder() {
    const FormSpec& volume = VolumeRecord::table();
    FormState state = showRecord(VolumeRecord::table(), VolumeRecord(), nullptr);
    typeInto(volume, state, 2, "1/3");
    QCOMPARE(typedFieldsOf(volume, state),
             TypedFields({{"Volume Factor", "Constant"}, {"Constant", "1/3"}}));
    state.fields[1].text = "env";
    chooseEntry(volume, state, 0, kEnvelope);
    QCOMPARE(typedFieldsOf(volume, state),
             TypedFields({{"Volume Factor", "Envelope"}, {"Envelope", "env"}}));

    // A preset is left out (its values are in the fields), so is a list without a choice.
    const FormSpec& leftRight = LeftRightRecord::table();
    FormState lr = showRecord(LeftRightRecord::table(), LeftRightRecord(), nullptr);
    chooseEntry(leftRight, lr, 4, 1);  // Swapped
    QCOMPARE(typedFieldsOf(leftRight, lr),
             TypedFields({{"from Left to Left", "0"}, {"from Left to Right", "1"},
                          {"from Right to Left", "1"}, {"from Right to Right", "0"}}));
    const FormSpec& props = WaveFilePropsRecord::table();
    FormState odd = showRecord(WaveFilePropsRecord::table(), WaveFilePropsRecord(WaveFileProps{48000, 1, 2}), nullptr);
    QCOMPARE(typedFieldsOf(props, odd),
             TypedFields({{"Wave Values", "16 Bits"}, {"Mono/Stereo", "Mono"}}));
}

// That a typed fraction reaches the record exactly is checked by the jobs' test (1/3) and
// through the frame (1/4); here the Wave Properties form makes a new wave.
void CommandRunnerTest::acceptedFormRunsAsTheDialogRead() {
    test::RecordingPlatformScope messages;
    Workspace ws;
    CommandRunner runner(ws);
    runner.setInline(true);
    // Wave Properties: a new stereo 8-bit wave at 11025 Hz.
    const FormSpec& props = WaveFilePropsRecord::table();
    FormState p = showRecord(WaveFilePropsRecord::table(), WaveFilePropsRecord(WaveFileProps{44100, 2, 2}), &ws);
    chooseEntry(props, p, 0, 1);
    chooseEntry(props, p, 1, WaveFilePropsRecord::k8Bits);
    CommandInput input;
    input.form = AcceptedForm{&props, p};
    runner.run("FileNewWave", input);
    QCOMPARE(ws.documents().size(), std::size_t(1));
    QCOMPARE(ws.active()->getFreq(), 11025);
    QCOMPARE(int(ws.active()->getBytesPSample()), 1);
    QCOMPARE(int(ws.active()->getMonoStereo()), 2);
    QVERIFY(messages.recorder.messages.empty());
}

void CommandRunnerTest::busyBracketsTheCommandAndDoneGetsTheResult() {
    test::RecordingPlatformScope messages;
    Workspace ws;
    CommandRunner runner(ws);
    runner.setInline(true);
    QSignalSpy busy(&runner, &CommandRunner::busyChanged);
    QSignalSpy finished(&runner, &CommandRunner::finished);
    bool busyInside = false;
    ActionResult got;
    connect(&runner, &CommandRunner::busyChanged, [&](bool b) { if (b) busyInside = runner.busy(); });
    CommandInput input;
    input.file = "/nonexistent/folder/x.wav";
    runner.run("FileOpenWave", input, [&](const ActionResult& r) { got = r; });
    QVERIFY(busyInside);
    QVERIFY(!runner.busy());
    QCOMPARE(busy.count(), 2);
    QCOMPARE(busy[0][0].toBool(), true);
    QCOMPARE(busy[1][0].toBool(), false);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(finished[0][0].toString(), QString("FileOpenWave"));
    QCOMPARE(int(got.kind), int(ActionResult::Kind::Refused));
    QCOMPARE(messages.recorder.messages.size(), std::size_t(1));
    QCOMPARE(QString::fromStdString(got.text), QString::fromStdString(messages.recorder.messages[0].text));
}

// Holds a job's worker inside its second chunk until the test lets it go.
struct Gate {
    static inline std::atomic<int> stage{0};  // 1: the worker waits; 2: go on
    static void hook(void*, std::int32_t pos, std::int32_t) {
        if (pos < 1000 || stage != 0) return;
        stage = 1;
        while (stage != 2) std::this_thread::yield();
    }
    Gate() {
        stage = 0;
        setChunkHook(&Gate::hook, nullptr);
    }
    ~Gate() {
        stage = 2;
        setChunkHook(nullptr, nullptr);
    }
};

// A job computes on a worker: run() returns at once, the event loop goes on (a heartbeat
// keeps beating), only what cannot conflict is offered, and the result arrives afterwards.
void CommandRunnerTest::aJobComputesOnAWorkerWhileTheWindowStaysLive() {
    test::RecordingPlatformScope messages;
    Workspace ws;
    CommandRunner runner(ws);
    TUnitWave& u = ws.add(std::make_unique<TUnitWave>(test::mono(test::rampOf(20000)), 2, "a.wav"));
    Gate gate;
    int beats = 0;
    QTimer heartbeat;
    connect(&heartbeat, &QTimer::timeout, [&] { ++beats; });
    heartbeat.start(10);
    ActionResult got{ActionResult::Kind::Unknown, "", ""};
    runner.run("Reverse", {}, [&](const ActionResult& r) { got = r; });
    QVERIFY(runner.busy());
    QTRY_COMPARE(Gate::stage.load(), 1);
    QTRY_VERIFY(beats >= 5);  // the user-interface thread is free while the job waits
    QVERIFY(!ws.status("Volume").enabled);
    QVERIFY(ws.status("FileNewWave").enabled);
    QCOMPARE(int(got.kind), int(ActionResult::Kind::Unknown));  // not yet
    Gate::stage = 2;
    QTRY_VERIFY(!runner.busy());
    QCOMPARE(int(got.kind), int(ActionResult::Kind::Done));
    QCOMPARE(int((*u.getSound()->GetLeftWave())[0]), 19999);
    QVERIFY(ws.status("Volume").enabled);
    QVERIFY(messages.recorder.messages.empty());
}

// The progress dialog comes after the delay; its Cancel leaves the document, its undo slot
// and its state as they were.
void CommandRunnerTest::cancelInTheProgressDialogChangesNothing() {
    test::RecordingPlatformScope messages;
    Workspace ws;
    CommandRunner runner(ws);
    runner.setProgressDelay(0);
    TUnitWave& u = ws.add(std::make_unique<TUnitWave>(test::mono(test::rampOf(20000)), 2, "a.wav"));
    runner.setInline(true);
    runner.run("Up", {}, {});  // an earlier change, which undo must still undo
    runner.setInline(false);
    const TUndoUnit* undo = ws.undoRecord();
    const Sound* before = u.getSound();
    Gate gate;
    ActionResult got;
    runner.run("Reverse", {}, [&](const ActionResult& r) { got = r; });
    QTRY_VERIFY(runner.progressDialog() != nullptr);
    QProgressDialog* dialog = runner.progressDialog();
    QTRY_VERIFY(dialog->isVisible());
    QCOMPARE(dialog->labelText(), QString("Reverse"));
    auto* cancel = dialog->findChild<QPushButton*>();
    QVERIFY(cancel);
    QTest::mouseClick(cancel, Qt::LeftButton);
    Gate::stage = 2;
    QTRY_VERIFY(!runner.busy());
    QCOMPARE(int(got.kind), int(ActionResult::Kind::Cancelled));
    QCOMPARE(u.getSound(), before);
    QCOMPARE(ws.undoRecord(), undo);
    QCOMPARE(int(u.getState()), int(kStateChanged));
    QVERIFY(runner.progressDialog() == nullptr);
}

QTEST_MAIN(CommandRunnerTest)
#include "command_runner_test.moc"
