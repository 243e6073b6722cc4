// The window's Volume Diagram on its own, offscreen: a resize, a new sound or new settings
// stop the computation under way at once and start it again; the finished picture is the
// painter's, zoomed or not.

#include <QtTest>

#include "document/unit_wave.h"
#include "support/recording_platform.h"
#include "support/window_test_helpers.h"
#include "view/mdi_child_wave.h"

using namespace orv;
using orv::test::differsFrom;
using orv::test::noiseWave;

namespace {

// The picture computed and painted apart from the window, for the window's present state.
Canvas painterPicture(const TMDIChildWave& w) {
    VoldPicture direct(w.voldPaintInput());
    CancelFlag cancel{0};
    direct.compute(cancel);
    Canvas c(direct.width(), direct.height());
    const TUnitWave& u = *w.unit();
    paintVoldColumns(c, direct, 0, direct.width(), u.getCursor(), u.getSelEndPos());
    return c;
}

}  // namespace

class VoldWindowTest : public QObject {
    Q_OBJECT
private slots:
    void changesCancelAndRestart();
};

void VoldWindowTest::changesCancelAndRestart() {
    test::RecordingPlatformScope messages;
    // Two minutes of stereo noise at 44.1 kHz with 300 rows: far more than a moment's work.
    auto unit = std::make_unique<TUnitWave>(
        std::make_unique<StereoSound>(noiseWave(120 * 44100, 1), noiseWave(120 * 44100, 2), 44100), 2,
        "/waves/long.wav");
    TMDIChildWave w(*unit);
    VoldViewRecord settings;
    settings.vertical = 300;
    w.showVold(settings);
    QVERIFY(w.showsVold());
    w.resize(300, 200);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    w.picture();
    const VoldPicture* first = w.voldPicture();
    QVERIFY(first);
    QCOMPARE(first->width(), 300);

    // A resize stops it before it returns: the old picture stays unfinished.
    w.resize(320, 200);
    const int stopped = first->columnsReady();
    QVERIFY(stopped < first->width());
    // Its thread is gone, not merely told to go, and no new one starts before a paint.
    QVERIFY(!w.voldComputing());
    QCOMPARE(first->columnsReady(), stopped);
    QVERIFY(!w.voldComplete());
    w.picture();
    const VoldPicture* second = w.voldPicture();
    QVERIFY(second != first);
    QCOMPARE(second->width(), 320);

    // A new sound stops that one too; the short one's picture then completes.
    unit->takeResult(std::make_shared<MonoSound>(noiseWave(3000, 3), 8000), 0, 3000);
    QVERIFY(second->columnsReady() < second->width());
    QTRY_VERIFY_WITH_TIMEOUT(w.voldComplete(), 30000);
    QCOMPARE(w.voldPicture()->values(), 3000);
    QCOMPARE(w.voldPicture()->channels(), 1);
    QCOMPARE(differsFrom(w, painterPicture(w)), QString());

    // The same settings again keep the finished picture; new settings compute again, and so
    // does a zoomed view, over the samples it shows.
    const VoldPicture* third = w.voldPicture();
    w.showVold(settings);
    w.picture();
    QCOMPARE(w.voldPicture(), third);
    QVERIFY(w.voldComplete());
    settings.vertical = 25;
    settings.sensitivity = VoldViewRecord::kHigh;
    w.setVoldSettings(settings);
    QTRY_VERIFY_WITH_TIMEOUT(w.voldComplete(), 30000);
    QVERIFY(w.voldPicture() != third);
    QCOMPARE(w.voldPicture()->bank(0).rows, 25);
    QCOMPARE(differsFrom(w, painterPicture(w)), QString());

    unit->setSelection(1000, 1600);
    w.zoomIn();
    QVERIFY(w.zoomed());
    QTRY_VERIFY_WITH_TIMEOUT(w.voldComplete(), 30000);
    QCOMPARE(w.voldPaintInput().view.begin, w.visibleRange().begin);
    QCOMPARE(differsFrom(w, painterPicture(w)), QString());

    // Back to the waveform: nothing computes any more.
    w.showWave();
    QVERIFY(!w.showsVold());
    QCOMPARE(w.voldPicture(), nullptr);
    QVERIFY(!w.voldComplete());
}

QTEST_MAIN(VoldWindowTest)
#include "vold_window_test.moc"
