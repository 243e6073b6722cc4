// A wave drawn by hand into an empty mono document, as the window's mouse gives it.
//
// Geometry, chosen so that what the user draws is what the wave becomes:
//   - The drawing is one second long (the document's sample frequency in samples, at least
//     2) and always fills the window's width: column 0 is the first sample, the last column
//     the last one, columns in between linearly (rounded to the nearest sample). A window
//     made wider or narrower shows the same drawing stretched to its new width.
//   - The top row is 32767, the bottom row -32768, rows in between linearly (rounded), so
//     the middle row is (nearly) silence and both extremes can be reached. The pointer is
//     kept inside the window, so dragging past an edge draws along it.
//   - A press puts a point under the pointer; each move while the button is held puts the
//     next one and removes the points the stroke passed over, in either direction, so
//     drawing over a stretch again replaces it. A click alone adds one point that joins
//     its neighbours.
//   - The samples are made from the points at once, after every press and move: at each
//     point exactly its value; between two points a straight line (linear kind, through the
//     sound's own line primitive) or a cubic through the neighbouring points whose slope at
//     each point is that of the line between the point before and the point after it, flat
//     at the first and the last point (smooth kind; kept to 16 bits, as a steep curve may
//     overshoot); before the first point and after the last the wave holds their values.
//     Without any point the drawing is silence.
//   - Switching the kind makes the samples anew from the same points.
//
// The drawing owns its sound until take() hands it over; nothing else ever sees it while it
// is written, so it may be changed in place.
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "core/sample_value.h"
#include "core/sound.h"

namespace orv {

enum class DrawKind : std::uint8_t { Linear, Smooth };

class WaveDrawing {
public:
    WaveDrawing(std::int32_t freq, DrawKind kind);

    DrawKind kind() const { return kind_; }
    void setKind(DrawKind kind);
    std::int32_t length() const { return length_; }

    // The sample under column x of a window `width` columns wide, and the value under row y
    // of one `height` rows high; both clamp the pointer into the window first.
    std::int32_t positionAt(int x, int width) const;
    static WaveVal valueAt(int y, int height);

    // One stroke: press, any number of moves, release.
    void press(std::int32_t pos, WaveVal value);
    void moveTo(std::int32_t pos, WaveVal value);
    void release() { stroking_ = false; }
    bool stroking() const { return stroking_; }

    // The points, by position.
    const std::map<std::int32_t, WaveVal>& points() const { return points_; }
    bool empty() const { return points_.empty(); }
    // The wave as drawn so far.
    const Sound& sound() const { return *sound_; }
    // Hands the sound over; the drawing is of no further use.
    std::unique_ptr<Sound> take() { return std::move(sound_); }

private:
    void setPoint(std::int32_t pos, WaveVal value);
    void render();

    DrawKind kind_;
    std::int32_t length_;
    std::unique_ptr<Sound> sound_;
    std::map<std::int32_t, WaveVal> points_;
    std::int32_t last_ = 0;  // where the stroke stands
    bool stroking_ = false;
};

}  // namespace orv
