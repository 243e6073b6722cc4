// The Vold picture of a window: its diagrams and rows, the colours, stereo, selection and
// cursor.
#include "render/vold_picture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "support/core_test_helpers.h"

namespace orv {
namespace {

using test::Samples;

Samples sine(double hz, int freq, int n, double amplitude = 32767.0) {
    Samples s(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i)
        s[std::size_t(i)] = int(std::lround(amplitude * std::sin(2 * M_PI * hz * i / freq)));
    return s;
}

struct Painted {
    std::unique_ptr<VoldPicture> picture;
    Canvas canvas;
};

Painted paint(const Sound* sound, const VoldViewRecord& s, int width, int height,
              std::int32_t cursor = 0, std::int32_t selEnd = 0, bool compute = true) {
    VoldPaintInput in;
    in.sound = sound;
    in.settings = s;
    in.clientWidth = width;
    in.clientHeight = height;
    Painted p{std::make_unique<VoldPicture>(in), Canvas(width, height, rgbPixel(1, 2, 3))};
    CancelFlag cancel{0};
    if (compute) {
        EXPECT_TRUE(p.picture->compute(cancel));
    }
    paintVoldColumns(p.canvas, *p.picture, 0, width, cursor, selEnd);
    return p;
}

// Black volume on white, so a pixel's blue byte reads 255 - 255 * brightness.
VoldViewRecord starkSettings() {
    VoldViewRecord s;
    s.background = kWhite;
    s.volumeBoth = kBlack;
    s.volumeLeft = 0x0000FF;   // red
    s.volumeRight = 0xFF0000;  // blue
    s.cursor = 0x00FF00;       // green
    s.top.value = 1.0 / 4000;  // the waves here run at 8 kHz
    s.bottom.value = 1.0 / 50;
    return s;
}

TEST(VoldPicture, ALowWindowHasOneRowPerPixelATallOneStretchesItsRows) {
    const SoundPtr sound = test::mono(sine(1000, 8000, 800), 8000);
    VoldViewRecord s;  // 50 rows at most
    VoldPaintInput in;
    in.sound = sound.get();
    in.settings = s;
    in.clientWidth = 10;
    in.clientHeight = 20;
    {
        VoldPicture low(in);
        ASSERT_EQ(low.diagrams().size(), 1u);
        EXPECT_EQ(low.bank(0).rows, 20);
        for (int y = 0; y < 20; ++y) EXPECT_EQ(low.rowAt(low.diagrams()[0], y), 19 - y);
    }
    s.vertical = 10;
    in.settings = s;
    in.clientHeight = 25;
    VoldPicture tall(in);
    EXPECT_EQ(tall.bank(0).rows, 10);
    // From the bottom, pixel k shows row trunc(k * 10 / 25).
    const int want[25] = {0, 0, 0, 1, 1, 2, 2, 2, 3, 3, 4, 4, 4, 5, 5, 6, 6, 6, 7, 7, 8, 8, 8, 9, 9};
    for (int k = 0; k < 25; ++k) EXPECT_EQ(tall.rowAt(tall.diagrams()[0], 24 - k), want[k]) << k;
    EXPECT_EQ(tall.frequencyAt(24), tall.bank(0).frequency[0]);
    EXPECT_EQ(tall.frequencyAt(0), tall.bank(0).frequency[9]);
    EXPECT_EQ(tall.frequencyAt(25), 0.0);
    // Without "Fill Window Height": one pixel per row from the bottom, background above.
    s.fillHeight = false;
    in.settings = s;
    VoldPicture bottom(in);
    EXPECT_EQ(bottom.rowAt(bottom.diagrams()[0], 24), 0);
    EXPECT_EQ(bottom.rowAt(bottom.diagrams()[0], 15), 9);
    EXPECT_EQ(bottom.rowAt(bottom.diagrams()[0], 14), -1);
}

TEST(VoldPicture, SilenceAndAnEmptyWaveLeaveTheBackgroundColumnsNotYetDoneToo) {
    const VoldViewRecord s = starkSettings();
    const SoundPtr silent = test::mono(Samples(4000, 0), 8000);
    const SoundPtr empty = test::mono({}, 8000);
    const SoundPtr loud = test::mono(sine(440, 8000, 4000), 8000);
    const Painted painted[] = {paint(silent.get(), s, 40, 30, 4000, 4000),
                               paint(empty.get(), s, 40, 30), paint(nullptr, s, 40, 30),
                               paint(loud.get(), s, 40, 30, 4000, 4000, false)};
    for (const Painted& p : painted)
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 40; ++x)
                // The cursor after the end stands on the last column.
                ASSERT_EQ(p.canvas.pixel(x, y), x == 39 && p.picture->values() == 4000
                                                     ? rgbPixel(0, 255, 0)
                                                     : rgbPixel(255, 255, 255))
                    << x << " " << y;
}

TEST(VoldPicture, APixelIsTheVolumeColourBlendedIntoTheBackground) {
    VoldViewRecord s = starkSettings();
    s.volumeBoth = 0x204080;  // red 0x80, green 0x40, blue 0x20
    s.background = 0x000000;
    const SoundPtr sound = test::mono(sine(700, 8000, 8000), 8000);
    const Painted p = paint(sound.get(), s, 16, 30, 0, 0);
    for (int x = 1; x < 16; ++x)
        for (int y = 0; y < 30; ++y) {
            const float b = p.picture->brightness(0, x, p.picture->rowAt(p.picture->diagrams()[0], y));
            ASSERT_EQ(p.canvas.pixel(x, y), rgbPixel(std::uint8_t(std::lround(0x80 * b)),
                                                     std::uint8_t(std::lround(0x40 * b)),
                                                     std::uint8_t(std::lround(0x20 * b))));
        }
}

// The row of the diagram that lies nearest to `hz`.
int nearestRow(const VoldBank& b, double hz) {
    int best = 0;
    for (int r = 1; r < b.rows; ++r)
        if (std::fabs(std::log(b.frequency[std::size_t(r)] / hz)) <
            std::fabs(std::log(b.frequency[std::size_t(best)] / hz)))
            best = r;
    return best;
}

TEST(VoldPicture, StereoAsTwoDiagramsLeftAboveRight) {
    const VoldViewRecord s = starkSettings();
    const int freq = 8000, n = 8000;
    // On the left only the frequency of the upper diagram's row 12, on the right only that
    // of the lower diagram's row 5.
    const int rl = 12, rr = 5;
    const double hl = makeVoldBank(s, freq, 20).frequency[rl];
    const double hr = makeVoldBank(s, freq, 21).frequency[rr];
    const SoundPtr sound = test::stereo(sine(hl, freq, n), sine(hr, freq, n), freq);
    const Painted p = paint(sound.get(), s, 20, 41);
    const auto& d = p.picture->diagrams();
    ASSERT_EQ(d.size(), 2u);
    EXPECT_EQ(d[0].top, 0);
    EXPECT_EQ(d[0].bottom, 20);
    EXPECT_EQ(d[1].top, 20);
    EXPECT_EQ(d[1].bottom, 41);
    EXPECT_EQ(p.picture->bank(0).rows, 20);
    EXPECT_EQ(p.picture->bank(1).rows, 21);
    const int yl = 19 - rl, yr = 40 - rr;
    // Settled columns: the left tone in red in the upper diagram, the right one in blue in
    // the lower; the left tone's row in the lower diagram stays dark.
    for (int x = 10; x < 20; ++x) {
        const Pixel l = p.canvas.pixel(x, yl), r = p.canvas.pixel(x, yr);
        EXPECT_EQ(redOf(l), 255);
        EXPECT_LT(greenOf(l), 10);
        EXPECT_EQ(blueOf(r), 255);
        EXPECT_LT(greenOf(r), 10);
        EXPECT_GT(greenOf(p.canvas.pixel(x, 40 - nearestRow(p.picture->bank(1), hl))), 200);
    }
}

TEST(VoldPicture, StereoInOneDiagram) {
    VoldViewRecord s = starkSettings();
    s.twoDiagrams = false;
    const int freq = 8000, n = 8000;
    const VoldBank bank = makeVoldBank(s, freq, 30);
    const int rl = 20, rr = 8;
    const Samples a = sine(bank.frequency[rl], freq, n), b = sine(bank.frequency[rr], freq, n);
    // Both channels alike: exactly the mono picture in "Volume Single or Both".
    const SoundPtr same = test::stereo(a, a, freq);
    const SoundPtr mono = test::mono(a, freq);
    const Painted both = paint(same.get(), s, 20, 30);
    EXPECT_EQ(both.picture->diagrams().size(), 1u);
    EXPECT_TRUE(both.picture->diagrams()[0].both);
    EXPECT_EQ(both.canvas, paint(mono.get(), s, 20, 30).canvas);
    // One tone per channel: each shows in its channel's colour, on the same rows.
    const SoundPtr apart = test::stereo(a, b, freq);
    const Painted p = paint(apart.get(), s, 20, 30);
    const Pixel l = p.canvas.pixel(15, 29 - rl), r = p.canvas.pixel(15, 29 - rr);
    EXPECT_GT(redOf(l), 200);  // the right tone reaches this row a little
    EXPECT_LT(greenOf(l), 10);
    EXPECT_LT(blueOf(l), 10);
    EXPECT_GT(blueOf(r), 200);
    EXPECT_LT(greenOf(r), 10);
    EXPECT_LT(redOf(r), 10);
    // Per byte: white + (both - white) * min + (left - white) * (l - min) + (right - white) * (r - min).
    for (int y = 0; y < 30; ++y) {
        const int row = p.picture->rowAt(p.picture->diagrams()[0], y);
        const float bl = p.picture->brightness(0, 15, row), br = p.picture->brightness(1, 15, row);
        const float m = std::min(bl, br);
        const auto mix = [&](int left, int right) {
            return std::uint8_t(std::lround(255 - 255 * m + (left - 255) * (bl - m) + (right - 255) * (br - m)));
        };
        EXPECT_EQ(p.canvas.pixel(15, y), rgbPixel(mix(255, 0), mix(0, 0), mix(0, 255))) << y;
    }
}

TEST(VoldPictureDeathTest, ChannelsOfDifferentLengthCannotShareADiagram) {
    VoldViewRecord s;
    s.twoDiagrams = false;
    auto sound = std::make_unique<StereoSound>(test::makeWave(Samples(10, 1)),
                                               test::makeWave(Samples(10, 1)), 8000);
    WavePtr shorter = test::makeWave(Samples(9, 1));
    delete sound->WaveRight;
    sound->WaveRight = shorter.release();
    VoldPaintInput in;
    in.sound = sound.get();
    in.settings = s;
    in.clientWidth = 10;
    in.clientHeight = 10;
    EXPECT_DEATH(VoldPicture{in}, "Assertion failed: left->getValues\\(\\) == right->getValues\\(\\)");
    s.twoDiagrams = true;
    in.settings = s;
    VoldPicture two(in);  // two diagrams are fine
    EXPECT_EQ(two.diagrams().size(), 2u);
}

TEST(VoldPicture, SelectionExchangesTheColoursCursorDrawnOverAll) {
    const VoldViewRecord s = starkSettings();
    const SoundPtr sound = test::mono(sine(1000, 8000, 1000), 8000);
    // 1000 samples on 10 columns; select 300 .. 600 (columns 3 .. 6), cursor at 300.
    const Painted plain = paint(sound.get(), s, 10, 12, 300, 300);
    const Painted sel = paint(sound.get(), s, 10, 12, 300, 600);
    for (int x = 0; x < 10; ++x)
        for (int y = 0; y < 12; ++y) {
            const Pixel a = plain.canvas.pixel(x, y), b = sel.canvas.pixel(x, y);
            if (x == 3) {
                EXPECT_EQ(a, rgbPixel(0, 255, 0));
            } else if (x >= 4 && x < 6) {
                // Black on white becomes white on black: every byte turned around.
                EXPECT_EQ(redOf(a) + redOf(b), 255) << x << " " << y;
            } else {
                EXPECT_EQ(a, b) << x << " " << y;
            }
        }
    // Without "Show Selection" the selected part looks like the rest.
    VoldViewRecord hidden = s;
    hidden.showSelection = false;
    EXPECT_EQ(paint(sound.get(), hidden, 10, 12, 300, 600).canvas, plain.canvas);
}

}  // namespace
}  // namespace orv
