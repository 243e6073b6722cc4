// The pointer shown while a wave is drawn by hand: a pencil whose point is the hot spot,
// drawn here rather than loaded, so the program needs no picture files.
#pragma once

#include <QCursor>

namespace orv {

const QCursor& drawCursor();

}  // namespace orv
