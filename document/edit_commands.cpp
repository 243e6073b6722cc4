// The edits of a unit (delete, trim, cut, paste, swap, extract, maximal volume, reverse,
// conversion of the file properties) and the workspace commands around them: the edit
// flow, the clipboard and duplicating.
#include <cmath>

#include "core/platform.h"
#include "document/workspace.h"

namespace orv {

// ---- the unit's edits ------------------------------------------------------------------------

SoundPtr TUnitWave::copyPart() {
    SoundPtr part = TheSound->CopyRange(&cancel, selBegin(), selEnd());
    if (isCancelled(cancel)) return nullptr;
    return part;
}

bool TUnitWave::deletePart() {
    const std::int32_t begin = selBegin(), end = selEnd();
    if (view) view->showRange(begin, end);
    SoundPtr made = TheSound->Remove(&cancel, begin, end);
    return takeResult(std::move(made), begin, begin);
}

bool TUnitWave::trim() {
    const std::int32_t begin = selBegin(), end = selEnd();
    if (view) view->showRange(begin, end);
    SoundPtr made = TheSound->CopyRange(&cancel, begin, end);
    return takeResult(std::move(made), 0, end - begin);
}

bool TUnitWave::cut(SoundPtr& taken) {
    taken = copyPart();
    if (!taken) return false;
    if (!deletePart()) {
        taken.reset();
        return false;
    }
    return true;
}

bool TUnitWave::paste(const Sound& clip, std::uint16_t clipBytesPSample) {
    ORV_ASSERT_TEXT(clipBytesPSample == BytesPSample, "bytesPSample2 == bytesPSample1", "Main");
    std::int32_t begin, end;
    makeRange(begin, end);
    if (view) view->showRange(begin, end);
    SoundPtr made = TheSound->Insert(&cancel, &clip, begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::swapWith(const Sound& clip, std::uint16_t clipBytesPSample, SoundPtr& taken) {
    ORV_ASSERT_TEXT(clipBytesPSample == BytesPSample, "bytesPSample2 == bytesPSample1", "Main");
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    taken = copyPart();
    if (!taken) return false;
    SoundPtr made = TheSound->Insert(&cancel, &clip, begin, end);
    if (!takeResult(std::move(made), begin, end)) {
        taken.reset();
        return false;
    }
    return true;
}

bool TUnitWave::extract(SoundPtr& taken) {
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    taken = copyPart();
    if (!taken) return false;
    SoundPtr made = TheSound->MakeSilenceValues(&cancel, double(end - begin), begin, end);
    if (!takeResult(std::move(made), begin, end)) {
        taken.reset();
        return false;
    }
    return true;
}

bool TUnitWave::maxVolume() {
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    SoundPtr made = TheSound->MaxVolume(&cancel, begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::reverse() {
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    SoundPtr made = TheSound->Reverse(&cancel, begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::convert(const WaveFileProps& props) {
    ORV_ASSERT(props.MonoStereo == 1 || props.MonoStereo == 2, "unitwave");
    ORV_ASSERT(props.BytesPSample == 1 || props.BytesPSample == 2, "unitwave");
    const std::int32_t oldFreq = getFreq();
    SoundPtr made;
    const Sound* source = TheSound;
    if (props.Freq != oldFreq) {
        made = TheSound->ChangeFreq(&cancel, props.Freq);
        if (!made || isCancelled(cancel)) return false;
        source = made.get();
    }
    if (props.MonoStereo != source->MoSt) {
        SoundPtr converted;
        if (props.MonoStereo == 2)
            converted = std::make_unique<StereoSound>(*source, &cancel);
        else
            converted = std::make_unique<MonoSound>(*source, &cancel);
        if (isCancelled(cancel)) return false;
        made = std::move(converted);
    }
    // Cursor and selection keep their place in time.
    const double ratio = double(props.Freq) / double(oldFreq);
    const std::int32_t newCursor = std::int32_t(std::floor(cursor * ratio));
    const std::int32_t newSelEnd = std::int32_t(std::floor(selEndPos * ratio));
    BytesPSample = props.BytesPSample;
    if (made) releaseSound(swapSound(made.release()));
    changeSelection([&] {
        cursor = clamp(newCursor);
        selEndPos = clamp(newSelEnd);
    });
    if (view) view->repaintAll();
    return true;
}

// ---- the workspace's edit flow and clipboard ------------------------------------------------------

const Sound& Workspace::clipboard() const {
    ORV_ASSERT_TEXT(ClipBoardSound != nullptr, "ClipBoardSound != 0", "Main");
    return *ClipBoardSound;
}

void Workspace::setClipboard(SoundPtr sound, std::uint16_t bytesPSample) {
    ORV_ASSERT(sound != nullptr, "Main");
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

ActionResult Workspace::runEdit(const ActionDef& def, TUnitWave& unit) {
    const std::string_view name = def.name;
    if (name == "EditCopy") {
        unit.clearCancel();
        SoundPtr part = unit.copyPart();
        if (!part) return {ActionResult::Kind::Cancelled, "", ""};
        setClipboard(std::move(part), unit.getBytesPSample());
        return {};
    }
    if (name == "EditClearClipboard") {
        clearClipboard();
        return {};
    }
    if ((name == "EditPaste" || name == "EditSwap") &&
        clipBytesPSample_ != unit.getBytesPSample())
        return refuse(ActionResult::Kind::Refused, kRegisterErrorCaption,
                      kClipboardWidthMessage);

    SoundPtr taken;
    ActionResult result;
    if (name == "EditDelete")
        result = changeDocument(unit, [&] { return unit.deletePart(); });
    else if (name == "EditTrim")
        result = changeDocument(unit, [&] { return unit.trim(); });
    else if (name == "EditCut")
        result = changeDocument(unit, [&] { return unit.cut(taken); });
    else if (name == "EditPaste")
        result = changeDocument(unit, [&] { return unit.paste(clipboard(), clipBytesPSample_); });
    else if (name == "EditSwap")
        result = changeDocument(
            unit, [&] { return unit.swapWith(clipboard(), clipBytesPSample_, taken); });
    else if (name == "EditExtract")
        result = changeDocument(unit, [&] { return unit.extract(taken); });
    else if (name == "MaxVolume")
        result = changeDocument(unit, [&] { return unit.maxVolume(); });
    else if (name == "Reverse")
        result = changeDocument(unit, [&] { return unit.reverse(); });
    else
        return refuse(ActionResult::Kind::Unknown, kUsageErrorCaption,
                      "Unknown action \"" + std::string(name) + "\".");
    if (result.kind == ActionResult::Kind::Done && taken)
        setClipboard(std::move(taken), unit.getBytesPSample());
    return result;
}

}  // namespace orv
