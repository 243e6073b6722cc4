// The workspace's clipboard and duplicating a document.
#include "core/platform.h"
#include "document/workspace.h"

namespace orv {

// ---- the workspace's edit flow and clipboard ------------------------------------------------------

const Sound& Workspace::clipboard() const {
    ORV_ASSERT_TEXT(ClipBoardSound != nullptr, "ClipBoardSound != 0", "Main");
    return *ClipBoardSound;
}

void Workspace::setClipboard(SoundPtr sound, std::uint16_t bytesPSample) {
    ORV_ASSERT(sound != nullptr, "Main");
    // A job that reads the old contents keeps them alive.
    ClipBoardSound = std::move(sound);
    clipBytesPSample_ = bytesPSample;
}

void Workspace::clearClipboard() {
    ORV_ASSERT_TEXT(ClipBoardSound != nullptr, "ClipBoardSound != 0", "Main");
    ClipBoardSound.reset();
}

TUnitWave* Workspace::duplicate(TUnitWave& unit) {
    unit.clearCancel();
    SoundPtr copy = unit.getSound()->CopyRange(&unit.cancelFlag(), 0, unit.values());
    if (!copy || unit.cancelled()) return nullptr;
    auto made = std::make_unique<TUnitWave>(std::move(copy), unit.getBytesPSample(), kNoName);
    made->setNew();
    return &add(std::move(made));
}

}  // namespace orv
