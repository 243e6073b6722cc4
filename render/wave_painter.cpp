#include "render/wave_painter.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/platform.h"
#include "core/random15.h"

namespace orv {

ViewSpan visibleSpan(std::int32_t values, bool zoomed, std::int64_t scrollRange,
                     std::int64_t scrollPos, int clientWidth) {
    if (!zoomed || scrollRange == 0) return ViewSpan{0.0, double(values)};
    const double n = values, r = double(scrollRange), p = double(scrollPos);
    return ViewSpan{p / r * n, n * (p + clientWidth) / r};
}

namespace {
double map(double v, double a0, double a1, double b0, double b1) {
    return (b1 - b0) * (v - a0) / (a1 - a0) + b0;
}
}  // namespace

double ColumnMap::sampleAt(double x) const {
    return map(x + 0.5, 0.0, width_, view_.begin, view_.end);
}

std::int32_t ColumnMap::columnOf(double sample) const {
    return truncToInt(map(sample, view_.begin, view_.end, 0.0, width_));
}

ViewSpan WavePaintInput::effectiveView() const {
    if (view.end > view.begin) return view;
    return ViewSpan{0.0, sound ? double(sound->GetValues()) : 0.0};
}

namespace {

// The colours one range of columns is drawn with; the selected part exchanges them.
struct Palette {
    Pixel background, single, left, right;
};

// A colour a point is blended in with: its bytes times the strength, worked out once.
struct Ink {
    Pixel colour = 0;
    double r = 0, g = 0, b = 0;
};

Pixel average(Pixel a, Pixel b) {
    return rgbPixel(std::uint8_t((redOf(a) + redOf(b)) / 2),
                    std::uint8_t((greenOf(a) + greenOf(b)) / 2),
                    std::uint8_t((blueOf(a) + blueOf(b)) / 2));
}

struct Band {
    int top, bottom;
    double yScale() const { return -(bottom - top) / 65536.0; }
    double yCentre() const { return (top + bottom) * 0.5; }
};

// One channel walked column by column across a range, as the distribution reads it.
class ChannelColumns {
public:
    ChannelColumns(const WaveVal* samples, std::int32_t n, int channel, const PeakSummary* peaks,
                   const ColumnMap& map, Band band, std::uint8_t pick, std::int32_t perPixel,
                   double pos, double step)
        : samples_(samples), n_(n), channel_(channel), peaks_(peaks), map_(map),
          yScale_(band.yScale()), yCentre_(band.yCentre()), pick_(pick), k_(perPixel),
          pos_(pos), step_(step) {}

    // The extreme rows of column x: its line runs from lo - 1 to hi, hi excluded.
    void lineRows(int x, int& lo, int& hi) {
        if (pick_ == WaveViewRecord::kPickPeaks) {
            const PeakRange p = peaksOf(x);
            lo = row(p.hi);
            hi = row(p.lo);
            return;
        }
        const bool random = pick_ == WaveViewRecord::kPickRandom;
        const double base = pos_, span = k_ * step_;
        lo = hi = row(at(random ? randomIn(base, span) : pos_));
        for (std::int32_t i = 0; i < k_; ++i) {
            double p;
            if (random) {
                p = randomIn(base, span);
            } else {
                pos_ += step_;
                p = pos_;
            }
            const int r = row(at(p));
            lo = std::min(lo, r);
            hi = std::max(hi, r);
        }
        if (random) pos_ += span;
    }

    // The rows of the points of column x.
    void pointRows(int x, std::vector<int>& rows) {
        rows.clear();
        if (pick_ == WaveViewRecord::kPickPeaks) {
            const PeakRange p = peaksOf(x);
            rows.push_back(row(p.hi));
            if (row(p.lo) != rows.back()) rows.push_back(row(p.lo));
            return;
        }
        if (pick_ == WaveViewRecord::kPickRandom) {
            const double base = pos_, span = k_ * step_;
            for (std::int32_t i = 0; i < k_; ++i) rows.push_back(row(at(randomIn(base, span))));
            pos_ += span;
            return;
        }
        for (std::int32_t i = 0; i < k_; ++i) {
            rows.push_back(row(at(pos_)));
            pos_ += step_;
        }
    }

private:
    int row(WaveVal v) const { return truncToInt(v * yScale_ + yCentre_); }
    // The sample at a real position; the clamping of the column range keeps positions inside
    // the wave, this only guards against the last bit of rounding.
    WaveVal at(double pos) const {
        return samples_[std::clamp(truncToInt(pos), std::int32_t(0), n_ - 1)];
    }
    static double randomIn(double base, double span) {
        return base + span * rand15() / double(kRand15Max);
    }
    PeakRange peaksOf(int x) const {
        const std::int32_t first = std::clamp(truncToInt(map_.sampleAt(x)), std::int32_t(0), n_ - 1);
        const std::int32_t last =
            std::clamp(truncToInt(map_.sampleAt(x + 1)), first, n_ - 1);
        if (peaks_) return peaks_->range(channel_, first, last);
        return scanPeaks(samples_, first, std::int64_t(last) + 1);
    }

    const WaveVal* samples_;
    std::int32_t n_;
    int channel_;
    const PeakSummary* peaks_;
    const ColumnMap& map_;
    double yScale_, yCentre_;
    std::uint8_t pick_;
    std::int32_t k_;
    double pos_, step_;
};

class WavePainter {
public:
    WavePainter(Canvas& canvas, const WavePaintInput& in)
        : canvas_(canvas), in_(in), s_(in.settings), map_(in.columnMap()),
          n_(in.sound ? in.sound->GetValues() : 0), height_(in.clientHeight),
          k_(std::max<std::int32_t>(1, s_.valuesPerPixel)) {
        double strength = s_.strength.value;
        if (!(strength > 0.0)) strength = 0.0;
        strength_ = std::min(strength, 1.0);
        if (n_ > 0) {
            left_ = in.sound->GetLeftWave()->data();
            stereo_ = in.sound->MoSt == 2;
            right_ = stereo_ ? in.sound->GetRightWave()->data() : left_;
            if (in.peaks && in.peaks->describes(*in.sound)) peaks_ = in.peaks;
        }
        marks_.assign(std::size_t(height_) + 2, 0);
    }

    void paint(int x1, int x2) {
        const Palette plain{pixelOf(s_.background), pixelOf(s_.singleWave), pixelOf(s_.left),
                            pixelOf(s_.right)};
        if (n_ == 0) {
            canvas_.fillRect(x1, 0, x2, height_, plain.background);
            return;
        }
        const Palette inverted{plain.single, plain.background, plain.right, plain.left};
        const std::int32_t cursor = std::clamp(in_.cursor, std::int32_t(0), n_);
        const std::int32_t selEnd = std::clamp(in_.selEndPos, std::int32_t(0), n_);
        if (cursor != selEnd) {
            const std::int32_t a =
                std::clamp(map_.columnOf(std::min(cursor, selEnd)), std::int32_t(x1), std::int32_t(x2));
            const std::int32_t b =
                std::clamp(map_.columnOf(std::max(cursor, selEnd)), std::int32_t(x1), std::int32_t(x2));
            drawRange(x1, a, plain);
            drawRange(a, b, inverted);
            drawRange(b, x2, plain);
        } else {
            drawRange(x1, x2, plain);
        }
        // A cursor after the last sample shows on the last sample's column.
        const std::int32_t c = cursor == n_ ? n_ - 1 : cursor;
        const std::int32_t column = map_.columnOf(c);
        if (column >= x1 && column < x2) {
            canvas_.setPen(pixelOf(s_.cursor));
            canvas_.moveTo(column, 0);
            canvas_.lineTo(column, height_);
        }
    }

private:
    void drawRange(int x1, int x2, const Palette& p) {
        const Band whole{0, height_};
        if (!stereo_) {
            drawBand(x1, x2, whole, p.background, left_, 0, p.single);
        } else if (s_.twoSingleWaves) {
            const int middle = height_ / 2;
            drawBand(x1, x2, Band{0, middle}, p.background, left_, 0, p.left);
            drawBand(x1, x2, Band{middle, height_}, p.background, right_, 1, p.right);
        } else {
            drawSharedBand(x1, x2, whole, p);
        }
    }

    // The column range a band is drawn over, and where the reading starts.
    struct Walk {
        int from, to;
        double pos, step;
    };
    Walk walk(int x1, int x2) const {
        Walk w{x1, x2, map_.sampleAt(x1), 0.0};
        const double end = map_.sampleAt(x2);
        w.step = (end - w.pos) / (double(k_) * (x2 - x1));
        if (w.pos < 0.0) {
            w.from = std::clamp(map_.columnOf(0.0), std::int32_t(x1), std::int32_t(x2));
            w.pos = 0.0;
        }
        if (truncToInt(end) > n_ - 1)
            w.to = std::clamp(map_.columnOf(n_ - 1), std::int32_t(w.from), std::int32_t(x2));
        return w;
    }

    ChannelColumns columns(const Walk& w, const WaveVal* samples, int channel, Band band) const {
        return ChannelColumns(samples, n_, channel, peaks_, map_, band, s_.distribution, k_,
                              w.pos, w.step);
    }

    void drawBand(int x1, int x2, Band band, Pixel background, const WaveVal* samples,
                  int channel, Pixel colour) {
        canvas_.fillRect(x1, band.top, x2, band.bottom, background);
        if (x1 == x2) return;
        const Walk w = walk(x1, x2);
        ChannelColumns ch = columns(w, samples, channel, band);
        canvas_.setPen(colour);
        const Ink ink = inkOf(colour);
        for (int x = w.from; x < w.to; ++x) {
            if (s_.draw == WaveViewRecord::kDrawPoints) {
                ch.pointRows(x, rows_);
                for (int r : rows_) plot(x, r, ink);
            } else {
                int lo, hi;
                ch.lineRows(x, lo, hi);
                verticalLine(x, lo - 1, hi);
            }
        }
        if (s_.drawGrid) drawGrid(x1, x2, band);
    }

    void drawSharedBand(int x1, int x2, Band band, const Palette& p) {
        canvas_.fillRect(x1, band.top, x2, band.bottom, p.background);
        if (x1 == x2) return;
        const Walk w = walk(x1, x2);
        ChannelColumns left = columns(w, left_, 0, band);
        ChannelColumns right = columns(w, right_, 1, band);
        const Ink leftInk = inkOf(p.left), rightInk = inkOf(p.right);
        const Ink mixedInk = inkOf(average(p.left, p.right));
        const bool leftFront = s_.combine == WaveViewRecord::kLeftAtFront;
        const bool points = s_.draw == WaveViewRecord::kDrawPoints;
        std::vector<int> rightRows;
        for (int x = w.from; x < w.to; ++x) {
            if (s_.combine == WaveViewRecord::kCombineMixed) {
                if (points) {
                    left.pointRows(x, rows_);
                    right.pointRows(x, rightRows);
                    mixedPoints(x, leftInk, rightInk, mixedInk, rightRows);
                } else {
                    int lLo, lHi, rLo, rHi;
                    left.lineRows(x, lLo, lHi);
                    right.lineRows(x, rLo, rHi);
                    canvas_.setPen(p.left);
                    verticalLine(x, lLo - 1, lHi);
                    canvas_.setPen(p.right);
                    verticalLine(x, rLo - 1, rHi);
                    canvas_.setPen(mixedInk.colour);
                    verticalLine(x, std::max(lLo, rLo) - 1, std::min(lHi, rHi));
                }
                continue;
            }
            ChannelColumns& back = leftFront ? right : left;
            ChannelColumns& front = leftFront ? left : right;
            const Ink& backInk = leftFront ? rightInk : leftInk;
            const Ink& frontInk = leftFront ? leftInk : rightInk;
            for (int layer = 0; layer < 2; ++layer) {
                ChannelColumns& ch = layer == 0 ? back : front;
                const Ink& ink = layer == 0 ? backInk : frontInk;
                if (points) {
                    ch.pointRows(x, rows_);
                    for (int r : rows_) plot(x, r, ink);
                } else {
                    int lo, hi;
                    ch.lineRows(x, lo, hi);
                    canvas_.setPen(ink.colour);
                    verticalLine(x, lo - 1, hi);
                }
            }
        }
        if (s_.drawGrid) drawGrid(x1, x2, band);
    }

    // Points of both channels in one column: a row that both hit takes the mixed colour.
    void mixedPoints(int x, const Ink& leftInk, const Ink& rightInk, const Ink& mixedInk,
                     const std::vector<int>& rightRows) {
        enum : std::uint8_t { kLeft = 1, kRight = 2 };
        for (int r : rows_) mark(r) |= kLeft;
        for (int r : rightRows) mark(r) |= kRight;
        for (int r : rows_) plot(x, r, mark(r) == (kLeft | kRight) ? mixedInk : leftInk);
        for (int r : rightRows) plot(x, r, mark(r) == (kLeft | kRight) ? mixedInk : rightInk);
        for (int r : rows_) mark(r) = 0;
        for (int r : rightRows) mark(r) = 0;
    }
    std::uint8_t& mark(int row) {
        // Rows run from the client's top to one past its bottom (the most negative value);
        // anything else shares the spare slot, which nothing reads.
        const std::size_t i =
            row >= -1 && row <= height_ ? std::size_t(row + 1) : marks_.size() - 1;
        return marks_[i];
    }

    Ink inkOf(Pixel colour) const {
        return Ink{colour, redOf(colour) * strength_, greenOf(colour) * strength_,
                   blueOf(colour) * strength_};
    }

    void plot(int x, int y, const Ink& ink) {
        if (strength_ >= 1.0) {
            canvas_.setPixel(x, y, ink.colour);
            return;
        }
        if (!canvas_.inside(x, y)) return;
        const Pixel old = canvas_.pixel(x, y);
        const double keep = 1.0 - strength_;
        canvas_.setPixel(x, y, rgbPixel(std::uint8_t(redOf(old) * keep + ink.r),
                                        std::uint8_t(greenOf(old) * keep + ink.g),
                                        std::uint8_t(blueOf(old) * keep + ink.b)));
    }

    void verticalLine(int x, int from, int to) {
        if (from >= to) return;
        canvas_.moveTo(x, from);
        canvas_.lineTo(x, to);
    }

    void drawGrid(int x1, int x2, Band band) {
        const Pixel colour = pixelOf(s_.grid);
        const double yScale = band.yScale(), yCentre = band.yCentre();
        for (int v : {16384, 0, -16384}) {
            // The row a line through that value is drawn on.
            const int y = truncToInt(v * yScale + yCentre) - 1;
            if (y < band.top || y >= band.bottom) continue;
            for (int x = x1 + (x1 & 1); x < x2; x += 2) canvas_.setPixel(x, y, colour);
        }
        const std::int32_t freq = in_.sound->Freq;
        const ViewSpan view = in_.effectiveView();
        if (freq <= 0 || in_.clientWidth <= 0) return;
        const double secondsPerColumn = (view.end - view.begin) / in_.clientWidth / freq;
        const double interval = gridInterval(80.0 * secondsPerColumn);
        if (!(interval > 0.0)) return;
        const double every = interval * freq;  // samples between two lines
        const double first = std::max(1.0, std::ceil(view.begin / every));
        const double last = std::floor(view.end / every);
        if (!(last - first < 4.0 * in_.clientWidth)) return;
        for (double m = first; m <= last; ++m) {
            const std::int32_t x = map_.columnOf(m * every);
            if (x < x1 || x >= x2) continue;
            for (int y = band.top + (band.top & 1); y < band.bottom; y += 2)
                canvas_.setPixel(x, y, colour);
        }
    }

    // The smallest round time at least `seconds` (give or take the last bits of rounding,
    // so that 80 columns of 0.0025 s still make 0.2 s).
    static double gridInterval(double seconds) {
        if (!(seconds > 0.0) || !std::isfinite(seconds)) return 0.0;
        const double atLeast = seconds * (1.0 - 1e-9);
        static const double kRounds[] = {1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600};
        if (seconds < 1.0) {
            const double decade = std::pow(10.0, std::floor(std::log10(seconds)));
            for (double m : {1.0, 2.0, 5.0, 10.0})
                if (m * decade >= atLeast) return m * decade;
        }
        for (double r : kRounds)
            if (r >= atLeast) return r;
        return std::ceil(atLeast / 3600.0) * 3600.0;
    }

    Canvas& canvas_;
    const WavePaintInput& in_;
    const WaveViewRecord& s_;
    ColumnMap map_;
    std::int32_t n_;
    int height_;
    std::int32_t k_;
    double strength_ = 1.0;
    const WaveVal* left_ = nullptr;
    const WaveVal* right_ = nullptr;
    bool stereo_ = false;
    const PeakSummary* peaks_ = nullptr;
    std::vector<int> rows_;
    std::vector<std::uint8_t> marks_;
};

}  // namespace

void paintWave(Canvas& canvas, const WavePaintInput& input) {
    canvas.resize(std::max(input.clientWidth, 0), std::max(input.clientHeight, 0));
    paintWaveColumns(canvas, input, 0, input.clientWidth);
}

void paintWaveColumns(Canvas& canvas, const WavePaintInput& input, int x1, int x2) {
    ORV_ASSERT(canvas.width() == input.clientWidth && canvas.height() == input.clientHeight,
               "painter");
    x1 = std::clamp(x1, 0, input.clientWidth);
    x2 = std::clamp(x2, x1, input.clientWidth);
    if (input.clientHeight <= 0 || x1 == x2) return;
    WavePainter(canvas, input).paint(x1, x2);
}

}  // namespace orv
