// The arithmetic of a window's zoom and of the columns a change touches, without Qt, so that
// the window and the benchmarks use the very same numbers.
//
// A zoomed window shows its wave R columns wide (the scroll range) from column P on (the
// scroll position); visibleSpan() (render/wave_painter.h) turns R and P into samples.
// Zooming onto the samples [begin, end) of a wave of n samples in W columns takes
//     R = trunc(n * W / (end - begin)),   P = trunc(begin * R / n),
// with P kept within 0 .. R - W, so the scroll bar never runs past the wave's end.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "render/wave_painter.h"

namespace orv {

struct ZoomFit {
    std::int64_t range = 0;  // R: the whole wave's width at this scale, in columns
    std::int64_t pos = 0;    // P: the first visible column
};

inline std::int64_t truncToInt64(double x) {
    // Widths stay far below 2^62; anything beyond (or NaN) is a caller's mistake, clamped.
    if (!(x > -4.0e18)) return x != x ? 0 : std::int64_t(-4.0e18);
    if (!(x < 4.0e18)) return std::int64_t(4.0e18);
    return std::int64_t(x);
}

// The fit that shows [begin, end) of n samples across `width` columns. Asserts nothing:
// callers make sure that n > 0, width > 0 and end > begin.
inline ZoomFit fitZoom(std::int32_t n, int width, double begin, double end) {
    ZoomFit f;
    f.range = std::max<std::int64_t>(width, truncToInt64(double(n) * width / (end - begin)));
    f.pos = truncToInt64(begin * double(f.range) / double(n));
    f.pos = std::clamp<std::int64_t>(f.pos, 0, f.range - width);
    return f;
}

// The column of sample s and the sample at (the middle of) column x, as the painter maps
// them, in double precision: a step of many columns from a position far outside a deeply
// zoomed view must not saturate.
inline double columnAt(const ViewSpan& view, int width, double sample) {
    return std::trunc(double(width) * (sample - view.begin) / (view.end - view.begin));
}
inline double sampleAtColumn(const ViewSpan& view, int width, double column) {
    return (view.end - view.begin) * (column + 0.5) / double(width) + view.begin;
}

// What the picture shows of a document's selection: the selected part [lo, hi) (lo == hi:
// none) and the cursor.
struct SelectionMarks {
    std::int32_t lo = 0, hi = 0, cursor = 0;
    bool operator==(const SelectionMarks&) const = default;
};

// The columns whose look differs between two states of the selection in a picture of
// `width` columns: the columns that changed between selected and not, and the columns of
// the old and the new cursor. Calls repaint(x1, x2) for each range of columns [x1, x2), in
// order from left to right, without overlaps.
template <class Repaint>
void changedColumns(const ColumnMap& map, int width, std::int32_t n, const SelectionMarks& was,
                    const SelectionMarks& now, Repaint&& repaint) {
    if (was == now || width <= 0) return;
    auto column = [&](std::int32_t s) { return std::clamp(map.columnOf(s), 0, width); };
    // The painter draws the selected part over the columns [column(lo), column(hi)).
    struct Span {
        int a, b;
    };
    auto selected = [&](const SelectionMarks& m) {
        return m.lo == m.hi ? Span{0, 0} : Span{column(m.lo), column(m.hi)};
    };
    auto cursorColumn = [&](const SelectionMarks& m) {
        const std::int32_t c = n > 0 && m.cursor >= n ? n - 1 : m.cursor;
        const int x = map.columnOf(c);
        return x >= 0 && x < width ? Span{x, x + 1} : Span{0, 0};
    };
    const Span s1 = selected(was), s2 = selected(now);
    Span parts[4];
    int count = 0;
    auto add = [&](int a, int b) {
        if (a < b) parts[count++] = Span{a, b};
    };
    if (s1.a == s1.b || s2.a == s2.b || s1.b <= s2.a || s2.b <= s1.a) {
        add(s1.a, s1.b);  // none before or after, or two parts apart: each one whole
        add(s2.a, s2.b);
    } else {
        add(std::min(s1.a, s2.a), std::max(s1.a, s2.a));
        add(std::min(s1.b, s2.b), std::max(s1.b, s2.b));
    }
    if (was.cursor != now.cursor) {
        const Span c1 = cursorColumn(was), c2 = cursorColumn(now);
        add(c1.a, c1.b);
        add(c2.a, c2.b);
    }
    // Sorted (at most four: by hand) and merged, so no column is painted twice.
    for (int i = 1; i < count; ++i)
        for (int j = i; j > 0 && parts[j].a < parts[j - 1].a; --j) std::swap(parts[j], parts[j - 1]);
    int i = 0;
    while (i < count) {
        int a = parts[i].a, b = parts[i].b;
        for (++i; i < count && parts[i].a <= b; ++i) b = std::max(b, parts[i].b);
        repaint(a, b);
    }
}

}  // namespace orv
