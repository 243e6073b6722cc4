#include "app/window_placement.h"

#include <algorithm>

namespace orv {

namespace {

// The window from its four sides, grown from its top-left corner to the smallest usable size.
QRect window(int left, int top, int right, int bottom) {
    return QRect(left, top, std::max(right - left, kMinWindowWidth),
                 std::max(bottom - top, kMinWindowHeight));
}

}  // namespace

std::vector<QRect> splitVerticalPlacement(QRect bounds) {
    const int left = bounds.x(), top = bounds.y();
    const int right = left + bounds.width(), bottom = top + bounds.height();
    const int mid = (top + bottom) / 2;
    return {window(left, top, right, mid - 1), window(left, mid, right, bottom)};
}

std::vector<QRect> splitHorizontalPlacement(QRect bounds, int pieces) {
    std::vector<QRect> out;
    const int left = bounds.x(), top = bounds.y();
    const int bottom = top + bounds.height();
    const long long w = bounds.width();
    for (int i = 0; i < pieces; ++i)
        out.push_back(window(left + int(i * w / pieces), top, left + int((i + 1) * w / pieces),
                             bottom));
    return out;
}

QRect mergePlacement(QRect a, QRect b) {
    const int la = a.x(), ta = a.y(), ra = la + a.width(), ba = ta + a.height();
    const int lb = b.x(), tb = b.y(), rb = lb + b.width(), bb = tb + b.height();
    return window((la + lb) / 2, (ta + tb) / 2, (ra + rb) / 2, (ba + bb) / 2);
}

}  // namespace orv
