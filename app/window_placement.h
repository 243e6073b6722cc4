// Where the windows made by splitting and merging waves go: inside the bounds of the window
// or windows they replace. A bounds rectangle is a window's geometry; its right and bottom
// are left + width and top + height.
//
//   SplitV   the two channels stacked: mid = (top + bottom) / 2, the upper window from top
//            to mid - 1, the lower one from mid to bottom, both the full width.
//   SplitH   the pieces side by side in time order, each the full height; piece i of n
//            spans left + i * width / n to left + (i + 1) * width / n, so together they
//            cover the width exactly (the last one takes what the division leaves over).
//   MergeH, MergeV
//            one window whose corners are halfway between the corresponding corners of the
//            two source windows.
// Halves are integer divisions (toward zero).
//
// Every window is at least 60 x 40 pixels: anything smaller shows no wave and cannot be
// grabbed to resize it. A rectangle too small keeps its top-left corner and grows to the
// right and down, so small windows may overlap each other or leave the source bounds.
#pragma once

#include <vector>

#include <QRect>

namespace orv {

inline constexpr int kMinWindowWidth = 60;
inline constexpr int kMinWindowHeight = 40;

// The upper (first) and the lower window.
std::vector<QRect> splitVerticalPlacement(QRect bounds);
// `pieces` windows (2 or 3 for a split) from left to right; none for fewer than 1.
std::vector<QRect> splitHorizontalPlacement(QRect bounds, int pieces);
QRect mergePlacement(QRect a, QRect b);

}  // namespace orv
