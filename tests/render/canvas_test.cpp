#include "render/canvas.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orv {
namespace {

constexpr Pixel kPaper = rgbPixel(255, 255, 255), kInk = rgbPixel(0, 0, 0);

std::vector<std::string> rows(const Canvas& c) {
    std::vector<std::string> out(std::size_t(c.height()));
    for (int y = 0; y < c.height(); ++y)
        for (int x = 0; x < c.width(); ++x)
            out[std::size_t(y)] += c.pixel(x, y) == kPaper ? '.' : c.pixel(x, y) == kInk ? '#' : '?';
    return out;
}

TEST(Canvas, ColoursConvertAtTheEdge) {
    EXPECT_EQ(pixelOf(0x0000FF), 0xFFFF0000u);  // red is the low byte of a record colour
    EXPECT_EQ(pixelOf(0x123456), rgbPixel(0x56, 0x34, 0x12));
    EXPECT_EQ(colorRefOf(rgbPixel(0x56, 0x34, 0x12)), 0x123456);
}

TEST(Canvas, FillsAndLinesLeaveTheirFarEdgeOutAndClip) {
    Canvas c(8, 6, kPaper);
    c.fillRect(6, -2, 9, 1, kInk);  // cut at the top right corner: (6,0) (7,0)
    c.fillRect(2, 4, 4, 6, kInk);   // right and bottom edges left out: (2..3, 4..5)
    c.setPen(kInk);
    c.moveTo(0, 0);
    c.lineTo(4, 2);   // (0,0) (1,0) (2,1) (3,1); the end point stays paper
    c.moveTo(7, 5);
    c.lineTo(7, 2);   // upwards: rows 5, 4, 3
    c.lineTo(5, 2);   // on from the pen: (7,2) (6,2)
    c.moveTo(0, 9);
    c.lineTo(0, 3);   // from below the raster: rows 5 and 4
    c.moveTo(5, 5);
    c.lineTo(5, 5);   // nothing at all
    c.setPixel(8, 0, kPaper);
    EXPECT_EQ(rows(c), (std::vector<std::string>{"##....##", "..##....", "......##",
                                                 ".......#", "#.##...#", "#.##...#"}));
    EXPECT_EQ(c.pixel(8, 0), kNoPixel);
    EXPECT_EQ(c.pixel(0, -1), kNoPixel);
}

}  // namespace
}  // namespace orv
