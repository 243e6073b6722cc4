// The tool-bar icons, drawn by the program: the style's own icon where Qt offers one (file,
// player, undo, help), and for the wave commands a small picture of what the command does
// to a wave (a sine for Sinus, a falling curve for the low filter ...).
#pragma once

#include <string_view>

#include <QIcon>

class QStyle;

namespace orv {

// The icon of an action of the table; a null icon for an action that has none.
QIcon toolIcon(std::string_view action, const QStyle* style);
// The program's own icon (window icon, desktop file): a wave and its frequency bars.
QIcon programIcon();

}  // namespace orv
