// Where split and merge put their new windows, worked out by hand: the halves of a vertical
// split (the middle halved toward zero), the pieces of a horizontal split tiling the width,
// the merged window between the two sources, and the smallest usable window.
#include <QtTest>

#include "app/window_placement.h"

using namespace orv;

using Rects = std::vector<QRect>;

class WindowPlacementTest : public QObject {
    Q_OBJECT
private slots:
    void splitVerticalStacksTheHalves();
    void splitHorizontalTilesTheWidth();
    void mergeTakesTheMidpointsOfTheCorners();
};

void WindowPlacementTest::splitVerticalStacksTheHalves() {
    // top 20, bottom 321: mid 170; the upper one ends at 169.
    QCOMPARE(splitVerticalPlacement(QRect(10, 20, 400, 301)),
             (Rects{QRect(10, 20, 400, 149), QRect(10, 170, 400, 151)}));
    // top -100, bottom 99: mid -1 / 2 = 0 (toward zero, not -1).
    QCOMPARE(splitVerticalPlacement(QRect(0, -100, 200, 199)),
             (Rects{QRect(0, -100, 200, 99), QRect(0, 0, 200, 99)}));
    // 30 x 50: mid 30; halves of 24 and 25 pixels grow to 60 x 40 from their top-left.
    QCOMPARE(splitVerticalPlacement(QRect(5, 5, 30, 50)),
             (Rects{QRect(5, 5, 60, 40), QRect(5, 30, 60, 40)}));
}

void WindowPlacementTest::splitHorizontalTilesTheWidth() {
    // 400 / 3: edges at 0, 133, 266, 400.
    QCOMPARE(splitHorizontalPlacement(QRect(0, 0, 400, 300), 3),
             (Rects{QRect(0, 0, 133, 300), QRect(133, 0, 133, 300), QRect(266, 0, 134, 300)}));
    // 301 / 2 from x = 7: edges at 7, 157, 308.
    QCOMPARE(splitHorizontalPlacement(QRect(7, 9, 301, 120), 2),
             (Rects{QRect(7, 9, 150, 120), QRect(157, 9, 151, 120)}));
    // Pieces of 50 x 30 grow to 60 x 40 and overlap.
    QCOMPARE(splitHorizontalPlacement(QRect(0, 0, 150, 30), 3),
             (Rects{QRect(0, 0, 60, 40), QRect(50, 0, 60, 40), QRect(100, 0, 60, 40)}));
    QVERIFY(splitHorizontalPlacement(QRect(0, 0, 400, 300), 0).empty());
}

void WindowPlacementTest::mergeTakesTheMidpointsOfTheCorners() {
    // Corners (0,0)-(100,100) and (200,100)-(500,150): (100,50)-(300,125).
    QCOMPARE(mergePlacement(QRect(0, 0, 100, 100), QRect(200, 100, 300, 50)),
             QRect(100, 50, 200, 75));
    QCOMPARE(mergePlacement(QRect(200, 100, 300, 50), QRect(0, 0, 100, 100)),
             QRect(100, 50, 200, 75));
    // (-5,-3)-(95,97) and (0,0)-(101,100): -5/2 = -2, -3/2 = -1, 196/2 = 98, 197/2 = 98.
    QCOMPARE(mergePlacement(QRect(-5, -3, 100, 100), QRect(0, 0, 101, 100)),
             QRect(-2, -1, 100, 99));
    // Two 10 x 10 windows make one of 10 x 10, grown from (10,10).
    QCOMPARE(mergePlacement(QRect(0, 0, 10, 10), QRect(20, 20, 10, 10)), QRect(10, 10, 60, 40));
}

QTEST_MAIN(WindowPlacementTest)
#include "window_placement_test.moc"
