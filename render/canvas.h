// The raster every picture is painted into: 32-bit pixels, row after row, with the few
// drawing operations the painters need (fill a rectangle, pen colour, move to, line to,
// get and set a pixel). The window shows it through an image that wraps data(); the
// command line writes it as a PNG. Both see the very same pixels.
//
// Pixels are 0xFFRRGGBB, the layout a 32-bit RGB image of the desktop toolkit uses, so the
// window can wrap the buffer without converting it. Colours from the records (0x00BBGGRR)
// become pixels through pixelOf() at the edge.
//
// Coordinates outside the raster are clipped: drawing there does nothing, reading there
// gives kNoPixel.
#pragma once

#include <cstdint>
#include <vector>

#include "document/records_view.h"

namespace orv {

using Pixel = std::uint32_t;

inline constexpr Pixel kNoPixel = 0;  // what pixel() reads outside the raster

// 0x00BBGGRR -> 0xFFRRGGBB, and back.
constexpr Pixel pixelOf(ColorRef colour) {
    const auto c = std::uint32_t(colour);
    return 0xFF000000u | ((c & 0xFFu) << 16) | (c & 0xFF00u) | ((c >> 16) & 0xFFu);
}
constexpr ColorRef colorRefOf(Pixel p) {
    return ColorRef(((p >> 16) & 0xFFu) | (p & 0xFF00u) | ((p & 0xFFu) << 16));
}
constexpr std::uint8_t redOf(Pixel p) { return std::uint8_t(p >> 16); }
constexpr std::uint8_t greenOf(Pixel p) { return std::uint8_t(p >> 8); }
constexpr std::uint8_t blueOf(Pixel p) { return std::uint8_t(p); }
constexpr Pixel rgbPixel(std::uint8_t r, std::uint8_t g, std::uint8_t b) {
    return 0xFF000000u | (std::uint32_t(r) << 16) | (std::uint32_t(g) << 8) | b;
}

class Canvas {
public:
    Canvas() = default;
    // A raster of width x height pixels, all `fill`.
    Canvas(int width, int height, Pixel fill = rgbPixel(0, 0, 0));

    int width() const { return width_; }
    int height() const { return height_; }
    // Row y starts at data() + y * width().
    Pixel* data() { return pixels_.data(); }
    const Pixel* data() const { return pixels_.data(); }
    // New size; the contents are undefined until painted.
    void resize(int width, int height);

    // The rectangle [left, right) x [top, bottom): right and bottom edges excluded.
    void fillRect(int left, int top, int right, int bottom, Pixel colour);

    void setPen(Pixel colour) { pen_ = colour; }
    Pixel pen() const { return pen_; }
    void moveTo(int x, int y) {
        penX_ = x;
        penY_ = y;
    }
    // A straight line in the pen colour from the pen position to (x, y), the end point
    // excluded; the pen then stands at (x, y). Successive lineTo calls therefore never paint
    // a joint twice.
    void lineTo(int x, int y);

    Pixel pixel(int x, int y) const {
        return inside(x, y) ? pixels_[std::size_t(y) * std::size_t(width_) + std::size_t(x)]
                            : kNoPixel;
    }
    void setPixel(int x, int y, Pixel colour) {
        if (inside(x, y)) pixels_[std::size_t(y) * std::size_t(width_) + std::size_t(x)] = colour;
    }
    bool inside(int x, int y) const {
        return x >= 0 && y >= 0 && x < width_ && y < height_;
    }

    bool operator==(const Canvas& other) const {
        return width_ == other.width_ && height_ == other.height_ && pixels_ == other.pixels_;
    }

private:
    int width_ = 0;
    int height_ = 0;
    std::vector<Pixel> pixels_;
    Pixel pen_ = rgbPixel(0, 0, 0);
    int penX_ = 0;
    int penY_ = 0;
};

}  // namespace orv
