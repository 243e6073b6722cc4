// The Volume Diagram in the frame, driven like a user: ViewVold shows its dialog and then the
// picture, computed off the user-interface thread and equal to the painter's own; the
// record's checks keep the dialog open with their messages; a selection repaints from the
// computed picture; the pointer tells time and frequency; ViewWave goes back.
#include <cmath>

#include <QCheckBox>
#include <QSignalSpy>

#include "gui_test_helpers.h"
#include "render/wave_painter.h"
#include "support/recording_platform.h"
#include "support/window_test_helpers.h"
#include "units/value_writer.h"
#include "view/mdi_child_wave.h"

using namespace orv;
using test::control;
using test::differsFrom;
using test::typeText;
using test::whenModal;

namespace {

int pixelsOtherThan(const Canvas& c, Pixel colour) {
    int n = 0;
    for (int y = 0; y < c.height(); ++y)
        for (int x = 0; x < c.width(); ++x) n += c.pixel(x, y) != colour;
    return n;
}

}  // namespace

class VoldViewTest : public QObject {
    Q_OBJECT

    std::unique_ptr<test::RecordingPlatformScope> messages_;
    std::unique_ptr<TMainForm> frame_;

    const std::vector<test::ShownMessage>& messages() const { return messages_->recorder.messages; }
    TUnitWave* active() { return frame_->workspace().active(); }
    TMDIChildWave* child() { return frame_->childOf(active()); }
    // A mono 44.1 kHz wave of a 440 Hz sine, 0.2 s long.
    void sineWave() {
        test::newWaveByDialog(*frame_, "44 kHz", false);
        test::makeSinusByDialog(*frame_, "440 Hz", "0.2 s");
        QCOMPARE(active()->values(), 8820);
    }

private slots:
    void init();
    void cleanup();
    void viewVoldShowsThePainterPictureAndViewWaveGoesBack();
    void refusedFrequenciesKeepTheDialogOpen();
    void useAsDefaultCountsForNewWindows();
};

void VoldViewTest::init() {
    messages_ = std::make_unique<test::RecordingPlatformScope>();
    TMDIChildWave::setDefaultVoldSettings(VoldViewRecord());
    frame_ = std::make_unique<TMainForm>();
    frame_->runner().setInline(true);
    frame_->show();
    QVERIFY(QTest::qWaitForWindowExposed(frame_.get()));
    test::activate(*frame_);
}

void VoldViewTest::cleanup() {
    const bool pending = test::cancelPendingModals();
    frame_.reset();
    messages_.reset();
    QVERIFY2(!pending, "a dialog the test waited for never came");
}

void VoldViewTest::viewVoldShowsThePainterPictureAndViewWaveGoesBack() {
    sineWave();
    TMDIChildWave* w = child();
    QVERIFY(!w->showsVold());
    active()->setSelection(2000, 4000);
    whenModal([](QDialog* d) {
        QCOMPARE(d->objectName(), QString("TDlgVoldViewProps"));
        QCOMPARE(d->windowTitle(), QString("Volume Diagram"));
        typeText(control<QLineEdit>(d, "editVertical"), "40");
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
    });
    frame_->action("ViewVold")->trigger();
    QVERIFY(messages().empty());
    QVERIFY(w->showsVold());
    QCOMPARE(w->voldSettings().vertical, 40);
    QVERIFY(frame_->action("ViewVold")->isChecked());
    QVERIFY(!frame_->action("ViewWave")->isChecked());
    // Not the one of a new window: the dialog's own record stays with this window only.
    QCOMPARE(TMDIChildWave::defaultVoldSettings().vertical, VoldViewRecord().vertical);

    QTRY_VERIFY_WITH_TIMEOUT(w->voldComplete(), 30000);
    const VoldPicture* shown = w->voldPicture();
    QVERIFY(shown);
    VoldPicture direct(w->voldPaintInput());
    CancelFlag cancel{0};
    QVERIFY(direct.compute(cancel));
    QCOMPARE(direct.width(), w->clientRect().width());
    QCOMPARE(direct.height(), w->clientRect().height());
    QCOMPARE(direct.diagrams().size(), std::size_t(1));
    Canvas expected(direct.width(), direct.height());
    paintVoldColumns(expected, direct, 0, direct.width(), 2000, 4000);
    QCOMPARE(differsFrom(*w, expected), QString());
    // The sine lights more than the selection and the cursor do.
    const VoldViewRecord& s = w->voldSettings();
    QVERIFY(pixelsOtherThan(expected, rgbPixel(s.background & 0xFF, (s.background >> 8) & 0xFF,
                                               (s.background >> 16) & 0xFF)) >
            direct.width() * direct.height() / 20);

    // A new selection repaints from the computed brightness: the same picture, only the
    // columns it changed, and the pixels of a painting with the new marks.
    active()->setSelection(6000, 7000);
    QCOMPARE(w->voldPicture(), shown);
    QVERIFY(w->voldComplete());
    QVERIFY(!w->lastRepainted().empty());
    for (const auto& [x1, x2] : w->lastRepainted()) QVERIFY(x2 - x1 < direct.width());
    paintVoldColumns(expected, direct, 0, direct.width(), 6000, 7000);
    QCOMPARE(differsFrom(*w, expected), QString());
    active()->setCursor(100);
    QCOMPARE(w->voldPicture(), shown);
    paintVoldColumns(expected, direct, 0, direct.width(), 100, 100);
    QCOMPARE(differsFrom(*w, expected), QString());

    // The pointer: the time of the sample under it and the frequency of the row.
    QSignalSpy pointer(w, &TMDIChildWave::pointerPosition);
    const int x = direct.width() / 2, y = direct.height() / 3;
    QMouseEvent move(QEvent::MouseMove, QPointF(x, y), w->mapToGlobal(QPointF(x, y)),
                     Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(w, &move);
    QCOMPARE(pointer.count(), 1);
    const std::int32_t sample = std::int32_t(direct.columnMap().sampleAt(x));
    const QString text = pointer.at(0).at(0).toString();
    QCOMPARE(text, QString::fromStdString(writeTime(sample / 44100.0) + ", " +
                                          writeFrequency(direct.frequencyAt(y))));
    // 40 rows spaced by ratio from 20 Hz at the bottom to one step below 20 kHz at the top.
    QVERIFY(std::abs(direct.frequencyAt(0) - 16827.9028) < 1e-3);
    QVERIFY(std::abs(direct.frequencyAt(direct.height() - 1) - 20.0) < 1e-9);
    QMouseEvent top(QEvent::MouseMove, QPointF(0, 0), w->mapToGlobal(QPointF(0, 0)),
                    Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(w, &top);
    QVERIFY2(pointer.last().at(0).toString().endsWith(", 16.8 kHz"),
             qPrintable(pointer.last().at(0).toString()));

    // ViewWave: its dialog, then the waveform again, painted as the wave painter paints it.
    whenModal([](QDialog* d) {
        QCOMPARE(d->objectName(), QString("TDlgWaveViewProps"));
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
    });
    frame_->action("ViewWave")->trigger();
    QVERIFY(!w->showsVold());
    QCOMPARE(w->voldPicture(), nullptr);
    QVERIFY(frame_->action("ViewWave")->isChecked());
    Canvas waveform;
    paintWave(waveform, w->paintInput());
    QCOMPARE(differsFrom(*w, waveform), QString());
    // The window keeps its Vold settings for the next ViewVold.
    QCOMPARE(w->voldSettings().vertical, 40);
}

void VoldViewTest::refusedFrequenciesKeepTheDialogOpen() {
    sineWave();
    TMDIChildWave* w = child();
    whenModal([&](QDialog* d) {
        auto* top = control<QLineEdit>(d, "editTop");
        auto* bottom = control<QLineEdit>(d, "editBottom");
        auto* ok = control<QPushButton>(d, "OKBtn");
        // Checked against the wave's 44100 Hz; the texts are the record's own, word for word
        // in its test.
        typeText(top, "50 kHz");
        QTest::mouseClick(ok, Qt::LeftButton);
        QCOMPARE(QString::fromStdString(messages().back().text),
                 QString("In Top: Top Frequency may not be higher than the sample Frequency."));
        QVERIFY(d->isVisible());
        QCOMPARE(d->focusWidget(), top);
        typeText(top, "20 Hz");
        QTest::mouseClick(ok, Qt::LeftButton);
        QCOMPARE(messages().size(), std::size_t(2));
        QVERIFY(d->isVisible());
        typeText(top, "10 kHz");
        typeText(bottom, "45 kHz");
        QTest::mouseClick(ok, Qt::LeftButton);
        QCOMPARE(messages().size(), std::size_t(3));
        QVERIFY(d->isVisible());
        QCOMPARE(d->focusWidget(), bottom);
        // Cancel: nothing changes.
        d->reject();
    });
    frame_->action("ViewVold")->trigger();
    QCOMPARE(messages().size(), std::size_t(3));
    QVERIFY(!w->showsVold());
    QCOMPARE(w->voldPicture(), nullptr);
    QCOMPARE(w->voldSettings().top.value, VoldViewRecord().top.value);
}

void VoldViewTest::useAsDefaultCountsForNewWindows() {
    sineWave();
    whenModal([](QDialog* d) {
        typeText(control<QLineEdit>(d, "editVertical"), "12");
        control<QCheckBox>(d, "chkUseAsDefault")->setChecked(true);
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
    });
    frame_->action("ViewVold")->trigger();
    QVERIFY(child()->showsVold());
    QCOMPARE(TMDIChildWave::defaultVoldSettings().vertical, 12);
    QTRY_VERIFY_WITH_TIMEOUT(child()->voldComplete(), 30000);
    test::newWaveByDialog(*frame_, "22 kHz", false);
    // A new window starts with the default settings, showing its waveform.
    QCOMPARE(child()->voldSettings().vertical, 12);
    QVERIFY(!child()->showsVold());
}

QTEST_MAIN(VoldViewTest)
#include "vold_view_test.moc"
