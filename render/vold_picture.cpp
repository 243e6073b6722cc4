#include "render/vold_picture.h"

#include <algorithm>
#include <cmath>

#include "core/platform.h"

namespace orv {

namespace {

ViewSpan effectiveView(const VoldPaintInput& in) {
    if (in.view.end > in.view.begin) return in.view;
    return ViewSpan{0.0, in.sound ? double(in.sound->GetValues()) : 0.0};
}

int rowsFor(const VoldViewRecord& s, int bandHeight) {
    return std::max(0, std::min(s.vertical, bandHeight));
}

// One byte of a blend: bg + sum of (colour - bg) * weight, rounded.
std::uint8_t blendByte(int bg, int c0, float w0, int c1, float w1, int c2, float w2) {
    const float v = float(bg) + float(c0 - bg) * w0 + float(c1 - bg) * w1 + float(c2 - bg) * w2;
    return std::uint8_t(std::clamp(int(std::lround(v)), 0, 255));
}

Pixel blend(Pixel bg, Pixel c0, float w0, Pixel c1 = 0, float w1 = 0, Pixel c2 = 0,
            float w2 = 0) {
    return rgbPixel(blendByte(redOf(bg), redOf(c0), w0, redOf(c1), w1, redOf(c2), w2),
                    blendByte(greenOf(bg), greenOf(c0), w0, greenOf(c1), w1, greenOf(c2), w2),
                    blendByte(blueOf(bg), blueOf(c0), w0, blueOf(c1), w1, blueOf(c2), w2));
}

}  // namespace

VoldPicture::VoldPicture(const VoldPaintInput& in)
    : settings_(in.settings),
      width_(std::max(0, in.clientWidth)),
      height_(std::max(0, in.clientHeight)),
      values_(in.sound ? in.sound->GetValues() : 0),
      map_(effectiveView(in), std::max(0, in.clientWidth)) {
    const bool stereo = in.sound && in.sound->MoSt == 2;
    if (stereo && settings_.twoDiagrams) {
        const int middle = height_ / 2;
        diagrams_.push_back({0, middle, 0, false});
        diagrams_.push_back({middle, height_, 1, false});
    } else {
        diagrams_.push_back({0, height_, 0, stereo});
    }
    if (stereo && !settings_.twoDiagrams)
        ORV_ASSERT_TEXT(in.sound->GetLeftWave()->getValues() == in.sound->GetRightWave()->getValues(),
                        "left->getValues() == right->getValues()", "vold");

    const std::int32_t freq = in.sound ? in.sound->Freq : 0;
    const int channels = stereo ? 2 : 1;
    std::int32_t ringIn = 0;
    for (int c = 0; c < channels; ++c) {
        int rows = 0;
        for (const VoldDiagram& d : diagrams_)
            if (d.channel == c || d.both) rows = rowsFor(settings_, d.bottom - d.top);
        if (values_ == 0 || freq <= 0) rows = 0;
        banks_.push_back(makeVoldBank(settings_, freq > 0 ? freq : 1, rows));
        ringIn = std::max(ringIn, banks_.back().settleSamples);
        const Wave* wave = !in.sound ? nullptr
                           : c == 0  ? in.sound->GetLeftWave()
                                     : in.sound->GetRightWave();
        samples_.push_back(wave && values_ > 0 ? wave->data() : nullptr);
    }
    const ViewSpan view = effectiveView(in);
    span_ = voldSpanOf(view.begin, view.end, width_, values_,
                       settings_.ringInBeforeView ? ringIn : 0);
    for (const VoldBank& b : banks_)
        out_.emplace_back(std::size_t(span_.columns()) * std::size_t(b.rows), 0.0f);
}

bool VoldPicture::compute(const CancelFlag& cancel, const VoldKernelOptions& options) {
    std::vector<VoldChannelRun> runs;
    for (std::size_t c = 0; c < banks_.size(); ++c)
        if (banks_[c].rows > 0) runs.push_back({&banks_[c], samples_[c], out_[c].data()});
    return runVoldKernel(runs, span_, cancel, ready_, options);
}

int VoldPicture::rowAt(const VoldDiagram& d, int y) const {
    const int rows = banks_[std::size_t(d.channel)].rows;
    const int h = d.bottom - d.top;
    if (y < d.top || y >= d.bottom || rows == 0) return -1;
    const int fromBottom = d.bottom - 1 - y;
    if (settings_.fillHeight) return int(std::int64_t(fromBottom) * rows / h);
    return fromBottom < rows ? fromBottom : -1;
}

double VoldPicture::frequencyAt(int y) const {
    for (const VoldDiagram& d : diagrams_) {
        const int row = rowAt(d, y);
        if (row >= 0) return banks_[std::size_t(d.channel)].frequency[std::size_t(row)];
    }
    return 0.0;
}

void paintVoldColumns(Canvas& canvas, const VoldPicture& p, int x1, int x2,
                      std::int32_t cursor, std::int32_t selEnd) {
    ORV_ASSERT(canvas.width() == p.width() && canvas.height() == p.height(), "vold");
    x1 = std::max(x1, 0);
    x2 = std::min(x2, p.width());
    if (x1 >= x2 || p.height() == 0) return;
    const VoldViewRecord& s = p.settings();
    const Pixel bg = pixelOf(s.background);
    const int ready = p.columnsReady();
    const std::int32_t n = p.values();

    // The selected columns [a, b), as the waveform view finds them.
    int a = x2, b = x2;
    if (n > 0 && s.showSelection) {
        const std::int32_t c = std::clamp(cursor, std::int32_t(0), n);
        const std::int32_t e = std::clamp(selEnd, std::int32_t(0), n);
        if (c != e) {
            a = std::clamp(p.columnMap().columnOf(std::min(c, e)), x1, x2);
            b = std::clamp(p.columnMap().columnOf(std::max(c, e)), x1, x2);
        }
    }

    Pixel* pixels = canvas.data();
    const auto w = std::size_t(p.width());
    for (const VoldDiagram& d : p.diagrams()) {
        const Pixel main = pixelOf(d.both || p.channels() == 1 ? s.volumeBoth
                                   : d.channel == 0            ? s.volumeLeft
                                                               : s.volumeRight);
        const Pixel left = pixelOf(s.volumeLeft), right = pixelOf(s.volumeRight);
        for (int x = x1; x < x2; ++x) {
            const bool selected = x >= a && x < b;
            const Pixel back = selected ? main : bg;
            const Pixel fore = selected ? bg : main;
            const bool done = x < ready && n > 0;
            for (int y = d.top; y < d.bottom; ++y) {
                Pixel& px = pixels[std::size_t(y) * w + std::size_t(x)];
                const int row = done ? p.rowAt(d, y) : -1;
                if (row < 0) {
                    px = back;
                } else if (!d.both) {
                    px = blend(back, fore, p.brightness(d.channel, x, row));
                } else {
                    const float l = p.brightness(0, x, row), r = p.brightness(1, x, row);
                    const float common = std::min(l, r);
                    px = blend(back, fore, common, left, l - common, right, r - common);
                }
            }
        }
    }

    if (n > 0) {
        // A cursor after the last sample shows on the last sample's column.
        const std::int32_t c = std::clamp(cursor, std::int32_t(0), n);
        const std::int32_t column = p.columnMap().columnOf(c == n ? n - 1 : c);
        if (column >= x1 && column < x2) {
            canvas.setPen(pixelOf(s.cursor));
            canvas.moveTo(column, 0);
            canvas.lineTo(column, p.height());
        }
    }
}

}  // namespace orv
