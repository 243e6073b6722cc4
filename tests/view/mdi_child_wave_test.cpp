// The placeholder child window: it attaches itself to its document, shows the wave's
// properties and follows its changes, and asks its guard before it closes.
#include <QLabel>
#include <QSignalSpy>
#include <QtTest>

#include "view/mdi_child_wave.h"

using namespace orv;

class MdiChildWaveTest : public QObject {
    Q_OBJECT
private slots:
    void showsTheWaveAndFollowsIt();
    void guardDecidesAboutClosing();
};

void MdiChildWaveTest::showsTheWaveAndFollowsIt() {
    TUnitWave unit("/music/take one.wav", WaveFileProps{22050, 2, 1});
    auto child = std::make_unique<TMDIChildWave>(unit);
    QCOMPARE(unit.getView(), static_cast<WaveView*>(child.get()));
    QCOMPARE(child->title(), QString("take one.wav"));
    QCOMPARE(child->windowTitle(), QString("take one.wav"));
    QVERIFY(child->text().contains("Frequency: 22050 Hz\nBits: 8, stereo\n"));
    QVERIFY(child->text().contains("Length: 0.00000 s (0 samples)"));

    QSignalSpy status(child.get(), &TMDIChildWave::statusChanged);
    unit.setName("drums");
    unit.setChanged();
    child->refreshStatus(unit);
    QCOMPARE(status.count(), 1);
    QCOMPARE(child->windowTitle(), QString("take one.wav [drums]"));
    QVERIFY(child->text().contains("Name: drums\n"));
    QVERIFY(child->text().contains("State: New\n"));

    // Gone before its document: the document no longer points at it.
    child.reset();
    QCOMPARE(unit.getView(), nullptr);
    TMDIChildWave other(unit);
    other.detach();
    QCOMPARE(unit.getView(), nullptr);
    QCOMPARE(other.text(), QString());
}

void MdiChildWaveTest::guardDecidesAboutClosing() {
    TUnitWave unit("NONAME", WaveFileProps{44100, 1, 2});
    TMDIChildWave child(unit);
    QSignalSpy closed(&child, &TMDIChildWave::closed);
    int asked = 0;
    bool allow = false;
    child.setCloseGuard([&](TMDIChildWave& c) {
        ++asked;
        return &c == &child && allow;
    });
    child.show();
    QVERIFY(!child.close());
    QCOMPARE(asked, 1);
    QCOMPARE(closed.count(), 0);
    QVERIFY(child.isVisible());
    allow = true;
    QVERIFY(child.close());
    QCOMPARE(closed.count(), 1);
}

QTEST_MAIN(MdiChildWaveTest)
#include "mdi_child_wave_test.moc"
