#include "view/wave_drawing.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/platform.h"

namespace orv {

namespace {

WaveVal clamp16(double v) {
    return WaveVal(std::clamp(std::lround(v), -32768L, 32767L));
}

}  // namespace

WaveDrawing::WaveDrawing(std::int32_t freq, DrawKind kind)
    : kind_(kind), length_(std::max<std::int32_t>(2, freq)) {
    CancelFlag cancel{0};
    WavePtr wave = newWave(cancel, length_);
    ORV_ASSERT(wave != nullptr && !isCancelled(cancel), "ChildWin");
    std::fill(wave->data(), wave->data() + length_, WaveVal(0));
    sound_ = std::make_unique<MonoSound>(std::move(wave), std::max<std::int32_t>(1, freq));
}

void WaveDrawing::setKind(DrawKind kind) {
    if (kind == kind_) return;
    kind_ = kind;
    render();
}

std::int32_t WaveDrawing::positionAt(int x, int width) const {
    if (width < 2) return 0;
    x = std::clamp(x, 0, width - 1);
    return std::int32_t(std::lround(double(x) * (length_ - 1) / (width - 1)));
}

WaveVal WaveDrawing::valueAt(int y, int height) {
    if (height < 2) return 0;
    y = std::clamp(y, 0, height - 1);
    return clamp16(32767.0 - double(y) * 65535.0 / (height - 1));
}

void WaveDrawing::press(std::int32_t pos, WaveVal value) {
    stroking_ = true;
    last_ = std::clamp(pos, std::int32_t(0), length_ - 1);
    setPoint(last_, value);
    render();
}

void WaveDrawing::moveTo(std::int32_t pos, WaveVal value) {
    if (!stroking_) return;
    pos = std::clamp(pos, std::int32_t(0), length_ - 1);
    // What the stroke passed over is drawn anew.
    const std::int32_t a = std::min(last_, pos), b = std::max(last_, pos);
    points_.erase(points_.upper_bound(a), points_.lower_bound(b));
    setPoint(pos, value);
    last_ = pos;
    render();
}

void WaveDrawing::setPoint(std::int32_t pos, WaveVal value) { points_[pos] = value; }

void WaveDrawing::render() {
    WaveVal* w = sound_->GetLeftWave()->data();
    if (points_.empty()) {
        std::fill(w, w + length_, WaveVal(0));
        return;
    }
    const std::vector<std::pair<std::int32_t, WaveVal>> p(points_.begin(), points_.end());
    std::fill(w, w + p.front().first, p.front().second);
    std::fill(w + p.back().first, w + length_, p.back().second);
    if (kind_ == DrawKind::Linear) {
        CancelFlag cancel{0};
        for (std::size_t i = 0; i + 1 < p.size(); ++i)
            sound_->DrawLine(&cancel, p[i].first, p[i].second, p[i + 1].first + 1, p[i + 1].second);
    } else {
        // Slopes in value per sample: flat at both ends, else the chord of the neighbours.
        std::vector<double> slope(p.size(), 0.0);
        for (std::size_t i = 1; i + 1 < p.size(); ++i)
            slope[i] = double(p[i + 1].second - p[i - 1].second) /
                       double(p[i + 1].first - p[i - 1].first);
        for (std::size_t i = 0; i + 1 < p.size(); ++i) {
            const std::int32_t x0 = p[i].first, x1 = p[i + 1].first;
            const double v0 = p[i].second, v1 = p[i + 1].second, h = x1 - x0;
            const double m0 = slope[i] * h, m1 = slope[i + 1] * h;
            for (std::int32_t s = x0; s < x1; ++s) {
                const double t = (s - x0) / h, t2 = t * t, t3 = t2 * t;
                w[s] = clamp16((2 * t3 - 3 * t2 + 1) * v0 + (t3 - 2 * t2 + t) * m0 +
                               (-2 * t3 + 3 * t2) * v1 + (t3 - t2) * m1);
            }
        }
    }
    // Every point keeps exactly its value (a line's running sum may end a hair below it).
    for (const auto& [pos, value] : p) w[pos] = value;
}

}  // namespace orv
