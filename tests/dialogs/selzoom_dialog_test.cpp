// The two view dialogs driven by keys and clicks. "Select and Zoom": Apply refuses what does
// not fit the current wave with the messages word for word and stays open, turns times into
// sample positions, and does nothing without a wave; Close hides it. "Wave View": the
// controls of the other choice are disabled, a colour that is not #RRGGBB is refused, and
// "Use As Default" is reported.
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

#include "dialogs/selzoom_dialog.h"
#include "dialogs/wave_view_dialog.h"
#include "support/qt_test_helpers.h"
#include "support/recording_platform.h"

using namespace orv;
using orv::test::control;
using orv::test::typeText;

namespace {

// A check box is toggled from the keyboard: a click in its middle may miss a wide box's text.
void toggle(QCheckBox* box) {
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Space);
}

QString lastMessage(const test::RecordingPlatform& p) {
    if (p.messages.empty()) return {};
    const test::ShownMessage& m = p.messages.back();
    return QString::fromStdString(m.caption + " | " + m.text);
}

}  // namespace

class ViewDialogsTest : public QObject {
    Q_OBJECT
private slots:
    void selectAndZoomRefusesAndApplies();
    void selectAndZoomNeedsAWave();
    void waveViewEnablesAndChecks();
};

void ViewDialogsTest::selectAndZoomRefusesAndApplies() {
    test::RecordingPlatformScope platform;
    SelZoomTarget target{1000, 1000};  // one second
    TDlgSelZoom dialog([&] { return std::optional<SelZoomTarget>(target); });
    std::vector<SelZoomRequest> applied;
    connect(&dialog, &TDlgSelZoom::applyRequested, &dialog,
            [&](const SelZoomRequest& r) { applied.push_back(r); });
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(dialog.objectName(), QString("TDlgSelZoom"));
    QCOMPARE(dialog.windowTitle(), QString("Select and Zoom"));
    QVERIFY(!dialog.isModal());
    auto* apply = control<QPushButton>(&dialog, "ApplyBtn");
    auto* at = control<QLineEdit>(&dialog, "editCursorAt");
    auto* partBegin = control<QLineEdit>(&dialog, "editPartBegin");
    auto* partEnd = control<QLineEdit>(&dialog, "editPartEnd");
    auto* zoomBegin = control<QLineEdit>(&dialog, "editZoomBegin");
    auto* zoomEnd = control<QLineEdit>(&dialog, "editZoomEnd");
    QCOMPARE(at->text(), QString("0 s"));
    QCOMPARE(zoomEnd->text(), QString("0 s"));
    QVERIFY(control<QRadioButton>(&dialog, "optSelectCursor")->isChecked());

    auto press = [&]() -> QString {
        const std::size_t before = platform.recorder.messages.size();
        QTest::mouseClick(apply, Qt::LeftButton);
        if (!dialog.isVisible()) return "closed";  // Apply never closes it
        return platform.recorder.messages.size() > before ? lastMessage(platform.recorder)
                                                          : QString();
    };

    typeText(at, "1 s");
    QCOMPARE(press(), QString("Input Error | "
                              "In Cursor At: Must be prior before the end of the wave."));
    QCOMPARE(QApplication::focusWidget(), at);
    typeText(at, "250 ms");
    QCOMPARE(press(), QString());
    QCOMPARE(applied.size(), std::size_t(1));
    QVERIFY(!applied[0].part && !applied[0].zoomed);
    QCOMPARE(applied[0].cursor, 250);

    // Typing into a part field chooses "Part"; its end is still at 0 s.
    typeText(partBegin, "0.5 s");
    QVERIFY(control<QRadioButton>(&dialog, "optSelectPart")->isChecked());
    QCOMPARE(press(), QString("Input Error | Part Begin must be prior before Part End."));
    QCOMPARE(QApplication::focusWidget(), partEnd);
    typeText(partEnd, "5");
    QCOMPARE(press(), QString("Input Error | "
                              "In Part End: Wrong unit used, use: 's', 'ms', 'Hz', 'kHz'."));
    typeText(partEnd, "750 ms");
    QCOMPARE(press(), QString());
    QCOMPARE(applied.size(), std::size_t(2));
    QVERIFY(applied[1].part && !applied[1].zoomed);
    QCOMPARE((std::vector<int>{applied[1].begin, applied[1].end}), (std::vector<int>{500, 750}));

    // The zoom, once switched on, is checked too: first against the wave's end, then its order.
    toggle(control<QCheckBox>(&dialog, "chkZoomed"));
    QCOMPARE(press(), QString("Input Error | Zoom Begin must be prior before Zoom End."));
    typeText(zoomEnd, "2 s");
    QCOMPARE(press(), QString("Input Error | "
                              "In Zoom End: Must be prior before the end of the wave."));
    QCOMPARE(QApplication::focusWidget(), zoomEnd);
    typeText(zoomBegin, "0.1 s");
    typeText(zoomEnd, "0.9 s");
    QCOMPARE(press(), QString());
    QVERIFY(applied[2].zoomed);
    QCOMPARE((std::vector<int>{applied[2].zoomBegin, applied[2].zoomEnd}),
             (std::vector<int>{100, 900}));
    QCOMPARE(applied.size(), std::size_t(3));

    // The same fields against a shorter wave (0.8 s at 1000 Hz): the zoom's end is past it.
    target = SelZoomTarget{800, 1000};
    QCOMPARE(press(), QString("Input Error | "
                              "In Zoom End: Must be prior before the end of the wave."));
    target = SelZoomTarget{2000, 2000};  // a second at 2000 Hz: times become other positions
    QCOMPARE(press(), QString());
    QCOMPARE((std::vector<int>{applied[3].begin, applied[3].end, applied[3].zoomBegin,
                               applied[3].zoomEnd}),
             (std::vector<int>{1000, 1500, 200, 1800}));

    QTest::mouseClick(control<QPushButton>(&dialog, "CloseBtn"), Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(applied.size(), std::size_t(4));
}

void ViewDialogsTest::selectAndZoomNeedsAWave() {
    test::RecordingPlatformScope platform;
    std::optional<SelZoomTarget> target;
    TDlgSelZoom dialog([&] { return target; });
    int applied = 0;
    connect(&dialog, &TDlgSelZoom::applyRequested, &dialog, [&] { ++applied; });
    dialog.show();
    // No wave window: Apply does nothing at all.
    QTest::mouseClick(control<QPushButton>(&dialog, "ApplyBtn"), Qt::LeftButton);
    QCOMPARE(applied, 0);
    QVERIFY(platform.recorder.messages.empty());
    // An empty wave has no position before its end, not even 0 s.
    target = SelZoomTarget{0, 22050};
    QTest::mouseClick(control<QPushButton>(&dialog, "ApplyBtn"), Qt::LeftButton);
    QCOMPARE(lastMessage(platform.recorder),
             QString("Input Error | "
                              "In Cursor At: Must be prior before the end of the wave."));
    QCOMPARE(applied, 0);
    QVERIFY(dialog.isVisible());
}

void ViewDialogsTest::waveViewEnablesAndChecks() {
    test::RecordingPlatformScope platform;
    WaveViewRecord start;
    start.background = 0x00FFFF;  // yellow, as 0x00BBGGRR
    TDlgWaveViewProps dialog(start);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(dialog.objectName(), QString("TDlgWaveViewProps"));
    auto* strength = control<QLineEdit>(&dialog, "editStrength");
    auto* grid = control<QLineEdit>(&dialog, "editGrid");
    auto* background = control<QLineEdit>(&dialog, "editBackground");
    QCOMPARE(background->text(), QString("#FFFF00"));
    // Lines: no strength; the grid is drawn: its colour counts.
    QVERIFY(!strength->isEnabled());
    QVERIFY(grid->isEnabled());
    QTest::mouseClick(control<QRadioButton>(&dialog, "optDrawPoints"), Qt::LeftButton);
    QVERIFY(strength->isEnabled());
    toggle(control<QCheckBox>(&dialog, "chkDrawGrid"));
    QVERIFY(!grid->isEnabled());

    typeText(background, "#12345");
    QTest::mouseClick(dialog.buttons().ok, Qt::LeftButton);
    QCOMPARE(lastMessage(platform.recorder),
             QString("Input Error | "
                              "In Background: Colour must be written as #RRGGBB."));
    QVERIFY(dialog.isVisible());
    QCOMPARE(QApplication::focusWidget(), background);

    typeText(background, "#0000ff");
    typeText(strength, "0.5");
    toggle(control<QCheckBox>(&dialog, "chkUseAsDefault"));
    QTest::mouseClick(dialog.buttons().ok, Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.record().background, ColorRef(0xFF0000));
    QCOMPARE(dialog.record().draw, WaveViewRecord::kDrawPoints);
    QCOMPARE(dialog.record().strength.value, 0.5);
    QVERIFY(!dialog.record().drawGrid);
    QVERIFY(dialog.useAsDefault());
    QCOMPARE(platform.recorder.messages.size(), std::size_t(1));
}

QTEST_MAIN(ViewDialogsTest)
#include "selzoom_dialog_test.moc"
