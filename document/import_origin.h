// Where an imported wave came from, so that saving never replaces that file by accident.
//
// Import reads what other programs write (24-bit or float WAV, FLAC, ...) into 16-bit
// samples. Writing the wave back over its source as a 16-bit WAV file would throw away what
// the import could not keep, so a save (or an export) onto that file is refused, unless the
// file is a plain 8-bit or 16-bit PCM WAV that our own reader opens with exactly the imported
// samples: then it is what a save writes anyway.
#pragma once

#include <optional>
#include <string>
#include <sys/types.h>

#include "core/sound.h"

namespace orv {

struct ImportOrigin {
    std::string file;        // the name the wave was imported from, as given
    bool identified = false; // device and inode below are known
    dev_t device = 0;        // the file itself, whatever name or link reaches it
    ino_t inode = 0;
    bool plainCopy = false;  // a plain 8/16-bit PCM WAV holding exactly the imported samples
};

// Looks at `fileName`, from which `imported` was just read.
ImportOrigin importOrigin(const std::string& fileName, const Sound& imported);

// Whether writing to `target` would replace the origin file; the refusal text then:
// "This wave was imported from "NAME"; saving it over that file would replace the original.
// Save it under another name."
std::optional<std::string> importOverwriteRefusal(const ImportOrigin& origin,
                                                  const std::string& target);

}  // namespace orv
