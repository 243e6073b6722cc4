#include "render/canvas.h"

#include <algorithm>
#include <cstdlib>

#include "core/platform.h"

namespace orv {

Canvas::Canvas(int width, int height, Pixel fill) {
    resize(width, height);
    std::fill(pixels_.begin(), pixels_.end(), fill);
}

void Canvas::resize(int width, int height) {
    ORV_ASSERT(width >= 0 && height >= 0, "canvas");
    width_ = width;
    height_ = height;
    pixels_.resize(std::size_t(width) * std::size_t(height));
}

void Canvas::fillRect(int left, int top, int right, int bottom, Pixel colour) {
    left = std::max(left, 0);
    top = std::max(top, 0);
    right = std::min(right, width_);
    bottom = std::min(bottom, height_);
    if (left >= right || top >= bottom) return;
    for (int y = top; y < bottom; ++y) {
        Pixel* row = pixels_.data() + std::size_t(y) * std::size_t(width_);
        std::fill(row + left, row + right, colour);
    }
}

void Canvas::lineTo(int x, int y) {
    const int x0 = penX_, y0 = penY_;
    penX_ = x;
    penY_ = y;
    if (x0 == x) {
        // Vertical, the painters' everyday line: rows from y0 up to y, y itself left out.
        if (x < 0 || x >= width_ || y0 == y) return;
        int from = y > y0 ? y0 : y + 1;
        int to = y > y0 ? y : y0 + 1;  // exclusive
        from = std::max(from, 0);
        to = std::min(to, height_);
        if (from >= to) return;
        Pixel* p = pixels_.data() + std::size_t(from) * std::size_t(width_) + std::size_t(x);
        for (int r = from; r < to; ++r, p += width_) *p = pen_;
        return;
    }
    if (y0 == y) {
        if (y < 0 || y >= height_) return;
        int from = x > x0 ? x0 : x + 1;
        int to = x > x0 ? x : x0 + 1;
        from = std::max(from, 0);
        to = std::min(to, width_);
        if (from >= to) return;
        Pixel* row = pixels_.data() + std::size_t(y) * std::size_t(width_);
        std::fill(row + from, row + to, pen_);
        return;
    }
    // Bresenham over the longer axis; as many pixels as steps, so the end is not painted.
    const int dx = std::abs(x - x0), dy = std::abs(y - y0);
    const int sx = x > x0 ? 1 : -1, sy = y > y0 ? 1 : -1;
    int px = x0, py = y0;
    int err = dx - dy;
    const int steps = std::max(dx, dy);
    for (int i = 0; i < steps; ++i) {
        setPixel(px, py, pen_);
        const int e2 = 2 * err;
        if (e2 > -dy) {
            err -= dy;
            px += sx;
        }
        if (e2 < dx) {
            err += dx;
            py += sy;
        }
    }
}

}  // namespace orv
