// Pictures on disk: a canvas written as an 8-bit RGB PNG through libpng.
//
// The file is replaced safely: the picture goes to a temporary file in the same folder,
// which is renamed over the target only when everything was written, so a failed write
// never damages a file that was there.
#pragma once

#include <string>

#include "render/canvas.h"

namespace orv {

// False with `error` set to one sentence, for example
//   Cannot write the picture "out/wave.png": No such file or directory.
bool writePng(const Canvas& canvas, const std::string& path, std::string& error);

}  // namespace orv
