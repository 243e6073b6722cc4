#include "render/wave_painter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "core/random15.h"
#include "support/core_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;
using Picture = std::vector<std::string>;

// The colours of the pictures, each written as one letter: paper '.', ink '#', left 'L'
// (red), right 'R' (blue), cursor 'C', grid 'G', red and blue averaged 'M'.
constexpr ColorRef kPaper = 0xFFFFFF, kInk = 0x000000, kLeftC = 0x0000FF, kRightC = 0xFF0000,
                   kCursorC = 0x00FF00, kGridC = 0x808080;

char letter(Pixel p) {
    const Pixel known[] = {pixelOf(kPaper),  pixelOf(kInk),   pixelOf(kLeftC), pixelOf(kRightC),
                           pixelOf(kCursorC), pixelOf(kGridC), rgbPixel(127, 0, 127)};
    const auto at = std::find(std::begin(known), std::end(known), p);
    return at == std::end(known) ? '?' : ".#LRCGM"[at - std::begin(known)];
}

std::string column(const Canvas& c, int x) {
    std::string out;
    for (int y = 0; y < c.height(); ++y) out += letter(c.pixel(x, y));
    return out;
}

Picture picture(const Canvas& c) {
    Picture out(std::size_t(c.height()));
    for (int y = 0; y < c.height(); ++y)
        for (int x = 0; x < c.width(); ++x) out[std::size_t(y)] += letter(c.pixel(x, y));
    return out;
}

// One value per pixel, lines, constant, no grid, one band; the cursor at the end of the
// wave, so on the last sample's column, which the wave itself leaves empty.
WavePaintInput input(const Sound* sound, int width, int height) {
    WavePaintInput in;
    in.sound = sound;
    WaveViewRecord& s = in.settings;
    s.valuesPerPixel = 1;
    s.background = kPaper;
    s.singleWave = kInk;
    s.left = kLeftC;
    s.right = kRightC;
    s.cursor = kCursorC;
    s.grid = kGridC;
    s.drawGrid = s.twoSingleWaves = false;
    in.clientWidth = width;
    in.clientHeight = height;
    in.cursor = in.selEndPos = sound ? sound->GetValues() : 0;
    return in;
}

Canvas paint(const WavePaintInput& in) {
    Canvas c;
    paintWave(c, in);
    return c;
}

// In an 8-row band 0, 8192, 16384 and 32767 sit on rows 4, 3, 2 and 0; -16384 on row 6
// and -32768 on row 8, one past the bottom.
const Samples kSteps = {0, 8192, 16384, 32767, -32768, -16384, 0, 0};

TEST(WavePainter, LinesJoinSuccessiveSamplesFromTopRowToBottomRow) {
    SoundPtr s = mono(kSteps);
    WavePaintInput in = input(s.get(), 8, 8);
    // Column x joins samples x and x + 1: a line from the upper row - 1 down to the lower
    // row, that row left out, so zero lies on row 3 of 0..7. The last column has no next
    // sample; the cursor at n = 8 shows there, on the column of sample 7.
    const Picture lines{"..##...C", ".###...C", "##.#...C", "#..#.##C",
                        "...#.#.C", "...###.C", "...##..C", "...##..C"};
    EXPECT_EQ(picture(paint(in)), lines);
    // Peaks spans the same two samples per column, both included.
    in.settings.distribution = WaveViewRecord::kPickPeaks;
    EXPECT_EQ(picture(paint(in)), lines);
    in.settings.distribution = WaveViewRecord::kPickConstant;
    // One point per column on the sample's own row (zero on row 4); -32768 falls outside.
    in.settings.draw = WaveViewRecord::kDrawPoints;
    EXPECT_EQ(picture(paint(in)), (Picture{"...#...C", ".......C", "..#....C", ".#.....C",
                                           "#.....#C", ".......C", ".....#.C", ".......C"}));
}

TEST(WavePainter, SelectedPartShowsInvertedUnderTheCursor) {
    SoundPtr s = mono(kSteps);
    WavePaintInput in = input(s.get(), 8, 8);
    // Samples 2 .. 5, the anchor (cursor) on the right: columns 2, 3, 4 swap paper and ink.
    in.cursor = 5;
    in.selEndPos = 2;
    EXPECT_EQ(picture(paint(in)), (Picture{"....#C..", ".#..#C..", "###.#C..", "#.#.#C#.",
                                           "..#.#C..", "..#..C..", "..#..C..", "..#..C.."}));
}

TEST(WavePainter, PointsBlendPerByteWithTruncation) {
    // Two values per pixel: column x reads samples 2x + 1 and 2x + 2. Sample i is 16384
    // (row 1) when i % 4 == 1, else 0 (row 2): even columns put one point on each of rows
    // 1 and 2, odd columns two points on row 2.
    Samples v(16, 0);
    for (int i = 1; i < 16; i += 4) v[std::size_t(i)] = 16384;
    SoundPtr s = mono(v);
    WavePaintInput in = input(s.get(), 8, 4);
    in.settings.draw = WaveViewRecord::kDrawPoints;
    in.settings.valuesPerPixel = 2;
    in.settings.singleWave = 0x033264;  // red 100, green 50, blue 3
    in.settings.strength.value = 0.5;
    in.settings.cursor = kPaper;
    const Canvas c = paint(in);
    // Once: trunc(255 * 0.5 + 100 * 0.5) = 177, trunc(127.5 + 25) = 152, trunc(127.5 + 1.5)
    // = 129. Twice: trunc(177 * 0.5 + 50) = 138, trunc(76 + 25) = 101, trunc(64.5 + 1.5) = 66.
    const Pixel once = rgbPixel(177, 152, 129), twice = rgbPixel(138, 101, 66), paper = pixelOf(kPaper);
    for (int x = 0; x < 8; ++x) {
        const bool drawn = x < 7;
        EXPECT_EQ((std::vector<Pixel>{c.pixel(x, 0), c.pixel(x, 1), c.pixel(x, 2), c.pixel(x, 3)}),
                  (std::vector<Pixel>{paper, drawn && x % 2 == 0 ? once : paper,
                                      !drawn ? paper : x % 2 == 0 ? once : twice, paper}))
            << x;
    }
    in.settings.strength.value = 0.0;
    EXPECT_EQ(paint(in).pixel(3, 2), paper);
}

TEST(WavePainter, StereoAsTwoSingleWavesLeftAbove) {
    // Left at 16384 in rows 0..3: row 1, drawn on row 0. Right at -16384 in rows 4..7: row 7,
    // drawn on row 6. Column 1 is selected: the background takes the single-wave colour and
    // the channels exchange theirs.
    SoundPtr s = stereo(Samples(4, 16384), Samples(4, -16384));
    WavePaintInput in = input(s.get(), 4, 8);
    in.settings.twoSingleWaves = true;
    in.cursor = 2;
    in.selEndPos = 1;
    EXPECT_EQ(picture(paint(in)),
              (Picture{"LRC.", ".#C.", ".#C.", ".#C.", ".#C.", ".#C.", "RLC.", ".#C."}));
}

TEST(WavePainter, StereoInOneBandByEachCombineRule) {
    // Left covers rows 1..3 of every column, right rows 3..5: they share row 3.
    SoundPtr s = stereo({16384, 0, 16384, 0}, {0, -16384, 0, -16384});
    WavePaintInput in = input(s.get(), 4, 8);
    in.settings.cursor = kPaper;
    for (auto [rule, shared] : {std::pair{WaveViewRecord::kCombineMixed, "MMM."},
                                {WaveViewRecord::kLeftAtFront, "LLL."},
                                {WaveViewRecord::kRightAtFront, "RRR."}}) {
        in.settings.combine = rule;
        EXPECT_EQ(picture(paint(in)),
                  (Picture{"....", "LLL.", "LLL.", shared, "RRR.", "RRR.", "....", "...."}));
    }
    // Mixed points: a pixel both channels hit mixes, any other keeps its channel's colour.
    SoundPtr p = stereo({16384, 0, 16384, 0}, {16384, 16384, 0, 0});
    WavePaintInput pts = input(p.get(), 4, 8);
    pts.settings.cursor = kPaper;
    pts.settings.draw = WaveViewRecord::kDrawPoints;
    EXPECT_EQ(picture(paint(pts)),
              (Picture{"....", "....", "MRL.", "....", ".LR.", "....", "....", "...."}));
}

TEST(WavePainter, EmptyWavePaintsOnlyTheBackground) {
    SoundPtr s = mono({});
    for (const Sound* sound : {static_cast<const Sound*>(s.get()), static_cast<const Sound*>(nullptr)}) {
        WavePaintInput in = input(sound, 7, 5);
        in.settings.drawGrid = true;
        in.selEndPos = 3;
        EXPECT_EQ(picture(paint(in)), Picture(5, "......."));
    }
}

// Noise from a fixed sequence, with a few full-scale spikes.
Samples noise(int n, unsigned seed) {
    Samples v(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        seed = seed * 1664525u + 1013904223u;
        v[std::size_t(i)] = i % 9973 == 17 ? (i / 9973 % 2 ? 32767 : -32768)
                                           : int(seed >> 16) % 12000 - 6000;
    }
    return v;
}

// Per column, the rows that are not paper.
std::vector<std::set<int>> waveRows(const Canvas& c) {
    std::vector<std::set<int>> out(std::size_t(c.width()));
    for (int x = 0; x < c.width(); ++x)
        for (int y = 0; y < c.height(); ++y)
            if (c.pixel(x, y) != pixelOf(kPaper)) out[std::size_t(x)].insert(y);
    return out;
}

TEST(WavePainter, PeaksDrawTheExactExtremesOfEachColumn) {
    const int n = 100003, width = 37, height = 64;
    const Samples v = noise(n, 5);
    SoundPtr s = mono(v);
    WavePaintInput in = input(s.get(), width, height);
    in.settings.distribution = WaveViewRecord::kPickPeaks;
    in.settings.cursor = kPaper;
    CancelFlag cancel{0};
    const auto summary = buildPeakSummary(*s, cancel);
    ASSERT_TRUE(summary);
    in.peaks = summary.get();
    const Canvas c = paint(in);
    const auto rows = waveRows(c);
    const ColumnMap map = in.columnMap();
    auto row = [&](int value) { return int(value * (-height / 65536.0) + height * 0.5); };
    // Column 36 would need sample n: the picture ends at column(n - 1) = 36.
    for (int x = 0; x < width; ++x) {
        std::set<int> want;
        if (x < 36) {
            const int first = int(map.sampleAt(x)), last = std::min(n - 1, int(map.sampleAt(x + 1)));
            const auto [lo, hi] = std::minmax_element(v.begin() + first, v.begin() + last + 1);
            for (int y = std::max(0, row(*hi) - 1); y < row(*lo); ++y) want.insert(y);
        }
        EXPECT_EQ(rows[std::size_t(x)], want) << x;
    }
    // The same pixels straight from the samples, and with a summary of another sound.
    WavePaintInput raw = in;
    raw.peaks = nullptr;
    EXPECT_EQ(paint(raw), c);
    SoundPtr other = mono(noise(n, 6));
    const auto otherSummary = buildPeakSummary(*other, cancel);
    raw.peaks = otherSummary.get();
    EXPECT_EQ(paint(raw), c);
}

TEST(WavePainter, ConstantRepeatsRandomVariesAndNeitherLeavesThePeaks) {
    Samples v = noise(20000, 9);  // on a slope, so that every column has rows of its own
    for (int i = 0; i < 20000; ++i) v[std::size_t(i)] += 2 * i - 20000;
    SoundPtr s = mono(v);
    WavePaintInput in = input(s.get(), 50, 64);
    in.settings.valuesPerPixel = 15;
    in.settings.cursor = kPaper;
    const Canvas constant = paint(in);
    EXPECT_EQ(paint(in), constant);
    in.settings.distribution = WaveViewRecord::kPickRandom;
    srand15(7);
    const Canvas random = paint(in);
    srand15(7);
    EXPECT_EQ(paint(in), random);       // the same random numbers, the same picture
    EXPECT_FALSE(paint(in) == random);  // the next ones, another
    in.settings.draw = WaveViewRecord::kDrawPoints;
    const auto points = waveRows(paint(in));  // random points, each on its sample's row
    in.settings.draw = WaveViewRecord::kDrawLines;
    in.settings.distribution = WaveViewRecord::kPickPeaks;
    const auto peaks = waveRows(paint(in)), c = waveRows(constant), r = waveRows(random);
    for (std::size_t x = 0; x < peaks.size(); ++x) {
        EXPECT_TRUE(std::includes(peaks[x].begin(), peaks[x].end(), c[x].begin(), c[x].end())) << x;
        EXPECT_TRUE(std::includes(peaks[x].begin(), peaks[x].end(), r[x].begin(), r[x].end())) << x;
        for (int y : points[x])  // a line covers its samples' rows shifted up by one
            EXPECT_TRUE(y == 0 || peaks[x].count(y - 1)) << x << " " << y;
    }
}

TEST(WavePainter, PartialRepaintMatchesTheFullPicture) {
    // 16000 samples in 200 columns, 16 values per pixel: every position is a whole or half
    // number, so a repaint starting anywhere reads what the full paint read. At 1 kHz the
    // grid has a time line at 10 s, column 125.
    SoundPtr s = stereo(noise(16000, 1), noise(16000, 2), 1000);
    WavePaintInput in = input(s.get(), 200, 30);
    in.settings.valuesPerPixel = 16;
    in.settings.drawGrid = in.settings.twoSingleWaves = true;
    in.cursor = 1500;    // column 18
    in.selEndPos = 800;  // column 10
    const Pixel marker = rgbPixel(1, 2, 3);
    for (std::uint8_t pick : {WaveViewRecord::kPickConstant, WaveViewRecord::kPickPeaks}) {
        in.settings.distribution = pick;
        const Canvas full = paint(in);
        ASSERT_EQ(std::string{letter(full.pixel(125, 0))} + letter(full.pixel(125, 2)), "GG");
        for (auto [x1, x2] : {std::pair{0, 200}, {3, 11}, {10, 19}, {18, 19}, {120, 130}, {199, 200}}) {
            Canvas part(200, 30, marker);
            paintWaveColumns(part, in, x1, x2);
            for (int x = 0; x < 200; ++x)
                for (int y = 0; y < 30; ++y)
                    ASSERT_EQ(part.pixel(x, y), x >= x1 && x < x2 ? full.pixel(x, y) : marker)
                        << int(pick) << " [" << x1 << ", " << x2 << ") " << x << "," << y;
        }
    }
}

TEST(WavePainter, ZoomShowsThePartTheScrollBarPoints) {
    const ViewSpan spans[] = {visibleSpan(16, false, 16, 8, 8), visibleSpan(16, true, 0, 5, 8),
                              visibleSpan(16, true, 16, 8, 8), visibleSpan(1000, true, 4000, 1000, 800)};
    std::vector<double> got;
    for (const ViewSpan& v : spans) got.insert(got.end(), {v.begin, v.end});
    EXPECT_EQ(got, (std::vector<double>{0, 16, 0, 16, 8, 16, 250, 450}));
    const ColumnMap map(ViewSpan{0, 16}, 8);
    EXPECT_EQ((std::vector<double>{map.sampleAt(0), map.sampleAt(7), double(map.columnOf(16)),
                                   double(map.columnOf(15.99)), double(map.columnOf(-1))}),
              (std::vector<double>{1, 15, 8, 7, 0}));  // trunc(-0.5) is 0: toward zero

    // Zoomed on its second half, a wave looks exactly as that half alone.
    const Samples v = noise(16, 4);
    SoundPtr s = mono(v), half = mono(Samples(v.begin() + 8, v.end()));
    WavePaintInput zoomed = input(s.get(), 8, 16), alone = input(half.get(), 8, 16);
    zoomed.view = spans[2];
    zoomed.cursor = zoomed.selEndPos = 12;
    alone.cursor = alone.selEndPos = 4;
    EXPECT_EQ(picture(paint(zoomed)), picture(paint(alone)));
    // A view that starts before the wave starts drawing at the column of sample 0. Here a
    // column spans two samples, so the right half shows samples 0, 2, 4, 6 joined.
    WavePaintInput early = input(half.get(), 8, 16);
    early.view = ViewSpan{-8, 8};
    SoundPtr even = mono({v[8], v[10], v[12], v[14]});
    const Picture evenAlone = picture(paint(input(even.get(), 4, 16)));
    for (const std::string& row : picture(paint(early)))
        EXPECT_EQ(row.substr(0, 4), "....");
    Picture right;
    for (const std::string& row : picture(paint(early))) right.push_back(row.substr(4));
    EXPECT_EQ(right, evenAlone);
}

TEST(WavePainter, GridOfValuesAndRoundTimes) {
    auto timeLines = [](const Canvas& c) {  // row 0 is only ever dotted by time lines
        std::vector<int> xs;
        for (int x = 0; x < c.width(); ++x)
            if (letter(c.pixel(x, 0)) == 'G') xs.push_back(x);
        return xs;
    };
    // 400 s at 1 kHz in 400 columns: lines at least 80 columns apart are 120 s apart. Rows
    // 1, 3, 5 carry 16384, 0 and -16384, dotted on even columns; the silence lies on row 3.
    SoundPtr s = mono(Samples(400000, 0)), brief = mono(Samples(1000, 0));
    WavePaintInput in = input(s.get(), 400, 8);
    in.settings.drawGrid = true;
    const Canvas c = paint(in);
    EXPECT_EQ((std::vector<std::string>{column(c, 0), column(c, 118), column(c, 119), column(c, 120)}),
              (std::vector<std::string>{".G.G.G..", ".G.G.G..", "...#....", "GGGGGGG."}));
    EXPECT_EQ(timeLines(c), (std::vector<int>{120, 240, 360}));
    in.sound = brief.get();  // one second: 0.2 s apart
    EXPECT_EQ(timeLines(paint(in)), (std::vector<int>{80, 160, 240, 320}));
}

}  // namespace
}  // namespace orv
