// The child window driven like a user, offscreen: its pixels are the painter's, mouse and
// keys select, zoom keeps its margins across an operation, the peak summary arrives, a wave
// is drawn by hand, and unbalanced brackets stop the program.
//
// Most cases use a wave of 1000 samples at 1000 Hz in a client area 250 columns wide: four
// samples a column, the sample under column x is 4x + 2 and the column of sample s is s / 4.
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <functional>
#include <string>

#include <QMouseEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest>

#include "document/workspace.h"
#include "support/recording_platform.h"
#include "support/window_test_helpers.h"
#include "view/mdi_child_wave.h"

using namespace orv;
using orv::test::differsFrom;
using orv::test::noiseWave;

namespace {

constexpr int kWidth = 250;

SoundPtr wave(std::int32_t n, std::uint64_t seed = 1, bool stereo = false) {
    if (stereo) return std::make_unique<StereoSound>(noiseWave(n, seed), noiseWave(n, seed + 7), 1000);
    return std::make_unique<MonoSound>(noiseWave(n, seed), 1000);
}

std::unique_ptr<TUnitWave> unitOf(SoundPtr sound) {
    return std::make_unique<TUnitWave>(std::move(sound), 2, "/waves/take.wav");
}

void showSized(TMDIChildWave& w, int width, int height) {
    w.resize(width, height);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
}

// A mouse event as the window receives it: the left button pressed, moved with, released.
void mouse(TMDIChildWave& w, QEvent::Type type, int x, int y = 10,
           Qt::KeyboardModifiers mods = Qt::NoModifier) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent e(type, QPointF(x, y), w.mapToGlobal(QPointF(x, y)), button, held, mods);
    QApplication::sendEvent(&w, &e);
}
// The pointer moving over the window with no button held.
void hover(TMDIChildWave& w, int x) {
    QMouseEvent e(QEvent::MouseMove, QPointF(x, 10), w.mapToGlobal(QPointF(x, 10)), Qt::NoButton,
                  Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&w, &e);
}
void click(TMDIChildWave& w, int x, Qt::KeyboardModifiers mods = Qt::NoModifier) {
    mouse(w, QEvent::MouseButtonPress, x, 10, mods);
    mouse(w, QEvent::MouseButtonRelease, x, 10, mods);
}

std::vector<int> marks(const TUnitWave& u) { return {u.getCursor(), u.getSelEndPos()}; }

// Runs `act` in a child process; the text on its standard error if it stopped with abort().
QString deathText(const std::function<void()>& act) {
    int pipeFds[2];
    if (::pipe(pipeFds) != 0) return "no pipe";
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(pipeFds[1], 2);
        ::close(pipeFds[0]);
        act();
        ::_exit(0);
    }
    ::close(pipeFds[1]);
    std::string text;
    char buf[256];
    for (ssize_t got; (got = ::read(pipeFds[0], buf, sizeof buf)) > 0;)
        text.append(buf, std::size_t(got));
    ::close(pipeFds[0]);
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (!WIFSIGNALED(status) || WTERMSIG(status) != SIGABRT) return "did not stop";
    return QString::fromStdString(text).trimmed();
}

}  // namespace

class MdiChildWaveTest : public QObject {
    Q_OBJECT
private slots:
    void init() { TMDIChildWave::setDefaultSettings(WaveViewRecord()); }
    void picturesAreThePaintersAndOnlyChangedColumnsRepaint();
    void mouseSelects();
    void keysSelect();
    void zoomShowsThePartAndScrolls();
    void zoomKeepsItsMarginsAcrossAnOperation();
    void peakSummaryFollowsTheSound();
    void drawsByHand();
    void settingsAndTheirDefault();
    void unbalancedBracketsStop();
    void playCursorInvertsItsColumnAndTurnsThePage();
};

void MdiChildWaveTest::picturesAreThePaintersAndOnlyChangedColumnsRepaint() {
    std::unique_ptr<TUnitWave> unit = unitOf(wave(1000, 3, true));
    TMDIChildWave w(*unit);
    WaveViewRecord settings;
    // 16 reads a column of 4 samples: every read lands on a quarter, so a repaint starting
    // at any column reads what the whole picture read.
    settings.valuesPerPixel = 16;
    w.setSettings(settings);
    unit->setCursor(300);
    unit->setSelEnd(600);
    showSized(w, kWidth, 160);

    auto expected = [&] {
        WavePaintInput in;
        in.sound = unit->getSound();
        in.settings = settings;
        in.cursor = unit->getCursor();
        in.selEndPos = unit->getSelEndPos();
        in.clientWidth = kWidth;
        in.clientHeight = 160;
        Canvas c;
        paintWave(c, in);
        return c;
    };
    QCOMPARE(differsFrom(w, expected()), QString());

    // Shift+Right: the cursor end goes from 300 (column 75) to 306 (column 76).
    QTest::keyClick(&w, Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(marks(*unit), (std::vector<int>{306, 600}));
    QCOMPARE(w.lastRepainted(), (std::vector<std::pair<int, int>>{{75, 77}}));
    QCOMPARE(differsFrom(w, expected()), QString());

    // A click at column 200 (sample 802): the part [306, 600) goes, the cursor moves.
    click(w, 200);
    QCOMPARE(marks(*unit), (std::vector<int>{802, 802}));
    QCOMPARE(w.lastRepainted(), (std::vector<std::pair<int, int>>{{76, 150}, {200, 201}}));
    QCOMPARE(differsFrom(w, expected()), QString());
}

void MdiChildWaveTest::mouseSelects() {
    std::unique_ptr<TUnitWave> unit = unitOf(wave(1000));
    TMDIChildWave w(*unit);
    showSized(w, kWidth, 120);
    QSignalSpy status(&w, &TMDIChildWave::statusChanged);
    QSignalSpy pointer(&w, &TMDIChildWave::pointerPosition);

    click(w, 50);  // sample 202, nothing selected
    QCOMPARE(marks(*unit), (std::vector<int>{202, 202}));
    QVERIFY(status.count() > 0);
    // A drag stretches the part; the cursor follows the pointer.
    mouse(w, QEvent::MouseButtonPress, 50);
    mouse(w, QEvent::MouseMove, 75);
    mouse(w, QEvent::MouseButtonRelease, 75);
    QCOMPARE(marks(*unit), (std::vector<int>{302, 202}));
    QCOMPARE(pointer.last().at(0).toString(), QString("0.30200 s"));
    // A move without the button only reports the position.
    hover(w, 125);
    QCOMPARE(pointer.last().at(0).toString(), QString("0.50200 s"));
    QCOMPARE(marks(*unit), (std::vector<int>{302, 202}));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&w, &leave);
    QCOMPARE(pointer.last().at(0).toString(), QString());

    click(w, 125, Qt::ShiftModifier);  // from the fixed end 202 to 502
    QCOMPARE(marks(*unit), (std::vector<int>{502, 202}));
    // Ctrl: 402 is 200 from 202 and 100 from 502, so 502 stays.
    click(w, 100, Qt::ControlModifier);
    QCOMPARE(marks(*unit), (std::vector<int>{402, 502}));
    // On a tie the upper end stays: 502 lies midway in [402, 602].
    unit->setCursor(402);
    unit->setSelEnd(602);
    click(w, 125, Qt::ControlModifier);
    QCOMPARE(marks(*unit), (std::vector<int>{502, 602}));

    // Dragging past either edge keeps the pointer in the window: the first and last column.
    mouse(w, QEvent::MouseButtonPress, 10);
    mouse(w, QEvent::MouseMove, 900);
    QCOMPARE(marks(*unit), (std::vector<int>{998, 42}));
    mouse(w, QEvent::MouseMove, -40);
    mouse(w, QEvent::MouseButtonRelease, -40);
    QCOMPARE(marks(*unit), (std::vector<int>{2, 42}));

    // Fewer samples than columns: the last column holds the last sample, n - 1.
    std::unique_ptr<TUnitWave> shortUnit = unitOf(wave(10));
    TMDIChildWave s(*shortUnit);
    showSized(s, kWidth, 120);
    click(s, kWidth - 1);
    QCOMPARE(marks(*shortUnit), (std::vector<int>{9, 9}));
    click(s, 0);
    QCOMPARE(marks(*shortUnit), (std::vector<int>{0, 0}));

    // One sample: nothing to choose, the mouse is ignored.
    std::unique_ptr<TUnitWave> one = unitOf(wave(1));
    TMDIChildWave o(*one);
    showSized(o, kWidth, 120);
    one->setCursor(1);
    click(o, 0);
    click(o, 10, Qt::ShiftModifier);
    QCOMPARE(marks(*one), (std::vector<int>{1, 1}));
}

void MdiChildWaveTest::keysSelect() {
    std::unique_ptr<TUnitWave> unit = unitOf(wave(1000));
    TMDIChildWave w(*unit);
    showSized(w, kWidth, 120);
    unit->setCursor(500);  // column 125
    auto key = [&](Qt::Key k, Qt::KeyboardModifiers mods = Qt::NoModifier) {
        QTest::keyClick(&w, k, mods);
        return marks(*unit);
    };
    using V = std::vector<int>;
    QCOMPARE(key(Qt::Key_Down), (V{542, 542}));   // column 135
    QCOMPARE(key(Qt::Key_Up), (V{502, 502}));     // column 125
    QCOMPARE(key(Qt::Key_Left), (V{498, 498}));   // column 124
    QCOMPARE(key(Qt::Key_Right), (V{502, 502}));
    QCOMPARE(key(Qt::Key_Right), (V{506, 506}));

    // Shift moves the end at the cursor: Shift+End stretches the part to the end.
    QCOMPARE(key(Qt::Key_End, Qt::ShiftModifier), (V{1000, 506}));
    // Ctrl+Shift+Home moves the part to the start; it keeps its 494 samples and its sides.
    QCOMPARE(key(Qt::Key_Home, Qt::ControlModifier | Qt::ShiftModifier), (V{494, 0}));
    // Ctrl moves the other end one column on (column 0 to 1: sample 6).
    QCOMPARE(key(Qt::Key_Right, Qt::ControlModifier), (V{494, 6}));
    // Ctrl+Shift moves both ends by the cursor's step: 494 to 498 (column 123 to 124).
    QCOMPARE(key(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier), (V{498, 10}));
    QCOMPARE(key(Qt::Key_Up, Qt::ShiftModifier), (V{458, 10}));
    QCOMPARE(key(Qt::Key_End, Qt::ControlModifier | Qt::ShiftModifier), (V{1000, 552}));
    QCOMPARE(key(Qt::Key_Home, Qt::ControlModifier), (V{1000, 0}));
    // Moving the part by steps stops at the wave's ends, keeping its length.
    QCOMPARE(key(Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier), (V{1000, 0}));
    QCOMPARE(key(Qt::Key_Home), (V{0, 0}));

    // Alt leaves the keys to others; PgDn needs Ctrl.
    QCOMPARE(key(Qt::Key_End, Qt::AltModifier), (V{0, 0}));
    QCOMPARE(key(Qt::Key_PageDown), (V{0, 0}));
    // A page is the client width: from column 0 to 250, past the end.
    QCOMPARE(key(Qt::Key_PageDown, Qt::ControlModifier), (V{1000, 1000}));
    QCOMPARE(key(Qt::Key_PageUp, Qt::ControlModifier), (V{2, 2}));
    QCOMPARE(key(Qt::Key_End), (V{1000, 1000}));
}

void MdiChildWaveTest::zoomShowsThePartAndScrolls() {
    std::unique_ptr<TUnitWave> unit = unitOf(wave(1000));
    TMDIChildWave w(*unit);
    showSized(w, kWidth, 140);
    const int fullHeight = w.clientRect().height();
    w.zoomIn();  // nothing selected: nothing happens
    QVERIFY(!w.zoomed());
    QCOMPARE(w.zoomFactor(), 0);

    unit->setCursor(250);
    unit->setSelEnd(350);
    w.zoomIn();
    // R = trunc(1000 x 250 / 100), P = trunc(250 x 2500 / 1000), step W / 10.
    QVERIFY(w.zoomed());
    QCOMPARE(w.scrollRange(), std::int64_t(2500));
    QCOMPARE(w.scrollPosition(), std::int64_t(625));
    QCOMPARE(w.zoomFactor(), 10);
    QVERIFY(w.scrollBar()->isVisible());
    QCOMPARE(w.scrollBar()->maximum(), 2250);
    QCOMPARE(w.scrollBar()->value(), 625);
    QCOMPARE(w.scrollBar()->singleStep(), 25);
    QCOMPARE(w.scrollBar()->pageStep(), 250);
    QVERIFY(w.clientRect().height() < fullHeight);
    QCOMPARE(w.visibleRange().begin, 250.0);
    QCOMPARE(w.visibleRange().end, 350.0);

    // Zoomed in, a column is 0.4 samples: a click at column 10 is sample 254, and Right moves
    // one sample where a column step would not move at all.
    click(w, 10);
    QCOMPARE(marks(*unit), (std::vector<int>{254, 254}));
    QTest::keyClick(&w, Qt::Key_Right);
    QCOMPARE(marks(*unit), (std::vector<int>{255, 255}));

    // The scroll bar moves the view.
    w.scrollBar()->setValue(700);
    QCOMPARE(w.visibleRange().begin, 280.0);
    QCOMPARE(w.visibleRange().end, 380.0);
    // End puts the cursor at 1000 and the view follows to its last sample, 999 (column 2497).
    QTest::keyClick(&w, Qt::Key_End);
    QCOMPARE(w.scrollPosition(), std::int64_t(2497 - 250 + 1));
    QCOMPARE(w.scrollBar()->value(), 2248);
    // Ctrl+PgDn moves the cursor a page on, and the view the same page: from [800, 900)
    // with the cursor at 850 (column 125) to [900, 1000) with it at 950 (column 125 again).
    w.scrollBar()->setValue(2000);
    click(w, 125);
    QCOMPARE(marks(*unit), (std::vector<int>{850, 850}));
    QTest::keyClick(&w, Qt::Key_PageDown, Qt::ControlModifier);
    QCOMPARE(marks(*unit), (std::vector<int>{950, 950}));
    QCOMPARE(w.scrollPosition(), std::int64_t(2250));

    // A wider window shows the same samples: the scroll bar is fitted to 500 columns.
    unit->setCursor(250);
    unit->setSelEnd(350);
    w.zoomIn();
    w.resize(2 * kWidth, 140);
    QTRY_COMPARE(w.scrollRange(), std::int64_t(5000));
    QCOMPARE(w.scrollPosition(), std::int64_t(1250));
    QCOMPARE(w.scrollStep(), 50);

    w.noZoom();
    QVERIFY(!w.zoomed());
    QVERIFY(!w.scrollBar()->isVisible());
    QCOMPARE(w.clientRect().height(), fullHeight);
    QCOMPARE(w.visibleRange().end, 1000.0);
}

void MdiChildWaveTest::zoomKeepsItsMarginsAcrossAnOperation() {
    test::RecordingPlatformScope platform;
    Workspace ws;
    TUnitWave& unit = ws.add(unitOf(wave(1000)));
    TMDIChildWave w(unit);
    showSized(w, kWidth, 140);
    unit.setCursor(250);
    unit.setSelEnd(750);
    w.zoomIn();  // R = 500, P = 125: exactly [250, 750)
    QCOMPARE(w.visibleRange().begin, 250.0);
    QCOMPARE(w.visibleRange().end, 750.0);

    // Deleting [500, 600) inside the view keeps 250 samples before the part and 150 after.
    unit.setCursor(500);
    unit.setSelEnd(600);
    w.beginKeepZoom();
    QVERIFY(ws.runAction("EditDelete").ok());
    w.endKeepZoom();
    QCOMPARE(unit.values(), 900);
    QVERIFY(w.zoomed());
    // Zoom onto [250, 650): R = trunc(900 x 250 / 400), P = trunc(250 x 562 / 900).
    QCOMPARE(w.scrollRange(), std::int64_t(562));
    QCOMPARE(w.scrollPosition(), std::int64_t(156));

    // Trim to [300, 400): the margins of 50 and 250 are cut at the new wave's ends.
    unit.setCursor(300);
    unit.setSelEnd(400);
    const ViewSpan before = w.visibleRange();
    w.beginKeepZoom();
    QVERIFY(ws.runAction("EditTrim").ok());
    w.endKeepZoom();
    QVERIFY(before.begin < 300 && before.end > 400 + 150);
    QCOMPARE(unit.values(), 100);
    QVERIFY(w.zoomed());
    QCOMPARE(w.scrollRange(), std::int64_t(kWidth));
    QCOMPARE(w.scrollPosition(), std::int64_t(0));

    // Undo is one more operation of another length; deleting everything leaves zoom.
    w.beginKeepZoom();
    QVERIFY(ws.runAction("Undo").ok());
    w.endKeepZoom();
    QCOMPARE(unit.values(), 900);
    QVERIFY(w.zoomed());
    unit.setCursor(0);
    unit.setSelEnd(900);
    w.beginKeepZoom();
    QVERIFY(ws.runAction("EditDelete").ok());
    w.endKeepZoom();
    QCOMPARE(unit.values(), 0);
    QVERIFY(!w.zoomed());
    QVERIFY(platform.recorder.messages.empty());
}

void MdiChildWaveTest::peakSummaryFollowsTheSound() {
    test::RecordingPlatformScope platform;
    Workspace ws;
    TUnitWave& unit = ws.add(unitOf(wave(100000, 5)));
    TMDIChildWave w(unit);
    WaveViewRecord settings;
    settings.distribution = WaveViewRecord::kPickPeaks;
    w.setSettings(settings);
    showSized(w, kWidth, 120);
    QTRY_VERIFY(w.peaksReady());
    QVERIFY(w.paintInput().peaks != nullptr);

    // From the summary or from the samples: the same picture.
    auto expected = [&] {
        WavePaintInput in = w.paintInput();
        in.peaks = nullptr;
        Canvas c;
        paintWave(c, in);
        return c;
    };
    QCOMPARE(differsFrom(w, expected()), QString());

    // A new sound: the old summary no longer serves, a new one comes.
    const Sound* old = unit.getSound();
    QVERIFY(ws.runAction("Reverse").ok());
    QVERIFY(unit.getSound() != old);
    QVERIFY(!w.peaksReady());
    QCOMPARE(differsFrom(w, expected()), QString());
    QTRY_VERIFY(w.peaksReady());
    QCOMPARE(differsFrom(w, expected()), QString());
}

void MdiChildWaveTest::drawsByHand() {
    // An empty mono wave at 1000 Hz: the drawing is 1000 samples. A client of 334 x 256 maps
    // column x to sample 3x and row y to 32767 - 257y.
    TUnitWave unit("NONAME", WaveFileProps{1000, 1, 2});
    TMDIChildWave w(unit);
    showSized(w, 334, 256);
    QVERIFY(!w.drawing());
    w.beginDrawing(DrawKind::Linear);
    QVERIFY(w.drawing());
    QVERIFY(!w.smoothDrawing());
    QCOMPARE(w.cursor().shape(), Qt::BitmapCursor);
    const WaveDrawing& d = *w.currentDrawing();
    QCOMPARE(d.length(), 1000);
    auto at = [&](std::int32_t i) { return int(d.sound().GetLeftWave()->data()[i]); };
    QCOMPARE(at(500), 0);  // nothing drawn yet: silence

    // From the top left corner down to the bottom, past the window's edge.
    mouse(w, QEvent::MouseButtonPress, 0, 0);
    mouse(w, QEvent::MouseMove, 111, 400);
    QCOMPARE(d.points(), (std::map<std::int32_t, WaveVal>{{0, 32767}, {333, -32768}}));
    // A line of 334 samples from 32767 to -32768 falls 65535 / 333 = 196.8 a sample.
    QCOMPARE((std::vector<int>{at(0), at(1), at(333), at(334), at(999)}),
             (std::vector<int>{32767, 32570, -32768, -32768, -32768}));
    // Back to column 50 at row 128: a point at sample 150 with value -129.
    mouse(w, QEvent::MouseMove, 50, 128);
    mouse(w, QEvent::MouseButtonRelease, 50, 128);
    QCOMPARE(d.points().size(), std::size_t(3));
    QCOMPARE(at(150), -129);
    // The mouse drew; the document's selection never moved.
    QCOMPARE(marks(unit), (std::vector<int>{0, 0}));

    // Smooth: a cubic through the same points, flat at the first one. Midway between 0 and
    // 150: (32767 - 129) / 2 + 150 x 196.8 / 8 = 20009.
    w.setDrawingKind(DrawKind::Smooth);
    QVERIFY(w.smoothDrawing());
    QCOMPARE((std::vector<int>{at(0), at(75), at(150), at(333)}),
             (std::vector<int>{32767, 20009, -129, -32768}));

    // Redrawing over a stretch replaces its points.
    mouse(w, QEvent::MouseButtonPress, 30, 0);
    mouse(w, QEvent::MouseMove, 70, 0);
    mouse(w, QEvent::MouseButtonRelease, 70, 0);
    QCOMPARE(d.points(),
             (std::map<std::int32_t, WaveVal>{
                 {0, 32767}, {90, 32767}, {210, 32767}, {333, -32768}}));

    // The picture is the drawing's, fitted to the window, also after a resize.
    auto expected = [&](int width, int height) {
        WavePaintInput in;
        in.sound = &d.sound();
        in.clientWidth = width;
        in.clientHeight = height;
        Canvas c;
        paintWave(c, in);
        return c;
    };
    QCOMPARE(differsFrom(w, expected(334, 256)), QString());
    w.resize(667, 256);
    QTRY_COMPARE(w.clientRect().width(), 667);
    QCOMPARE(differsFrom(w, expected(667, 256)), QString());
    QCOMPARE(d.positionAt(666, 667), 999);

    std::unique_ptr<Sound> drawn = w.endDrawing();
    QVERIFY(!w.drawing());
    QCOMPARE(w.cursor().shape(), Qt::ArrowCursor);
    QVERIFY(drawn);
    QCOMPARE(drawn->GetValues(), 1000);
    QCOMPARE(int(drawn->GetLeftWave()->data()[90]), 32767);
    QCOMPARE(unit.values(), 0);  // the caller gives it to the document

    // A drawing ended before anything was drawn gives nothing.
    w.beginDrawing(DrawKind::Smooth);
    QVERIFY(!w.endDrawing());
}

void MdiChildWaveTest::settingsAndTheirDefault() {
    std::unique_ptr<TUnitWave> a = unitOf(wave(100)), b = unitOf(wave(100));
    TMDIChildWave first(*a);
    QCOMPARE(first.title(), QString("take.wav"));
    a->setName("drums");
    first.repaintAll();
    QCOMPARE(first.windowTitle(), QString("take.wav [drums]"));

    WaveViewRecord points;
    points.draw = WaveViewRecord::kDrawPoints;
    first.setSettings(points);
    TMDIChildWave second(*b);
    QCOMPARE(second.settings().draw, WaveViewRecord::kDrawLines);  // not the default yet
    TMDIChildWave::setDefaultSettings(points);
    std::unique_ptr<TUnitWave> c = unitOf(wave(100));
    TMDIChildWave third(*c);
    QCOMPARE(third.settings().draw, WaveViewRecord::kDrawPoints);
    QCOMPARE(second.settings().draw, WaveViewRecord::kDrawLines);

    // The window lets go of its document, and the document of a window that goes.
    {
        TMDIChildWave gone(*c);
        QCOMPARE(c->getView(), static_cast<WaveView*>(&gone));
    }
    QCOMPARE(c->getView(), nullptr);
    second.detach();
    QCOMPARE(b->getView(), nullptr);
    QCOMPARE(second.title(), QString());
}

void MdiChildWaveTest::unbalancedBracketsStop() {
    std::unique_ptr<TUnitWave> unit = unitOf(wave(100));
    TMDIChildWave w(*unit);
    QVERIFY(deathText([&] { w.endKeepZoom(); })
                .startsWith("Assertion failed: OldZoomDepth-- == 1, unit ChildWin, line "));
    QVERIFY(deathText([&] {
                w.beginKeepZoom();
                w.beginKeepZoom();
            }).startsWith("Assertion failed: OldZoomDepth++ == 0, unit ChildWin, line "));
    QVERIFY(deathText([&] { w.endDrawing(); })
                .startsWith("Assertion failed: UserDrawing, unit ChildWin, line "));
    QVERIFY(deathText([&] {
                w.beginDrawing(DrawKind::Linear);
                w.beginDrawing(DrawKind::Smooth);
            }).startsWith("Assertion failed: !UserDrawing, unit ChildWin, line "));
    // The parent never ran any of it.
    w.beginKeepZoom();
    w.endKeepZoom();
    QVERIFY(!w.drawing());
}

// The play cursor: one column inverted over the picture, the picture back when it goes; a
// zoomed view turns the page when the cursor runs past its right edge, unless the user had
// scrolled the cursor out of sight.
void MdiChildWaveTest::playCursorInvertsItsColumnAndTurnsThePage() {
    std::unique_ptr<TUnitWave> unit = unitOf(wave(1000, 5));
    TMDIChildWave w(*unit);
    showSized(w, kWidth, 100);
    QCOMPARE(w.clientRect().width(), 250);
    const QImage plain = w.grab().toImage();
    w.setPlayCursor(250.0);  // column trunc(250 x 250 / 1000) = 62
    QCOMPARE(w.playCursorColumn(), 62);
    const QImage shown = w.grab().toImage();
    for (int y : {0, 37, 99}) {
        QCOMPARE(shown.pixel(62, y) & 0xFFFFFF, ~plain.pixel(62, y) & 0xFFFFFF);
        QCOMPARE(shown.pixel(61, y), plain.pixel(61, y));
        QCOMPARE(shown.pixel(63, y), plain.pixel(63, y));
    }
    w.setPlayCursor(-1);
    QCOMPARE(w.playCursorColumn(), -1);
    QCOMPARE(w.grab().toImage(), plain);

    // Zoomed onto the first 100 samples: the whole wave is 2500 columns wide.
    w.zoomTo(0, 100);
    QCOMPARE(w.scrollRange(), std::int64_t(2500));
    w.setPlayCursor(50.0);
    QCOMPARE(w.playCursorColumn(), 125);
    w.setPlayCursor(99.5);
    QCOMPARE(w.scrollPosition(), std::int64_t(0));
    w.setPlayCursor(101.0);  // past the edge: the page turns to begin at floor(101 x 2.5)
    QCOMPARE(w.scrollPosition(), std::int64_t(252));
    QCOMPARE(w.playCursorColumn(), 0);
    w.scrollTo(1000);  // the user looks elsewhere: the view stays there
    w.setPlayCursor(150.0);
    QCOMPARE(w.scrollPosition(), std::int64_t(1000));
    QCOMPARE(w.playCursorColumn(), -1);
}

QTEST_MAIN(MdiChildWaveTest)
#include "mdi_child_wave_test.moc"
