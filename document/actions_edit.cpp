// The edit menu: the clipboard commands and mixing with the clipboard. Copy, cut, swap and
// extract take the part (the selection, or the whole wave when nothing is selected) into the
// clipboard; paste replaces the selection or inserts at the cursor; mix works over the
// selection, or from the cursor on. Paste and swap refuse a clipboard of another sample width.
#include <array>

#include "document/action_rows.h"
#include "document/register_check.h"
#include "document/workspace.h"

namespace orv {

namespace {

bool clipboardFits(PrepareContext& c) {
    if (c.clipBytesPSample() == c.bytesPSample()) return true;
    c.refuse(kRegisterErrorCaption, kClipboardWidthMessage);
    return false;
}

bool feedCopy(PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    plan.work = workOf(plan.end - plan.begin, c.channels());
    plan.toClipboard = true;
    return true;
}

bool feedDelete(PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    plan.work = workOf(c.values() - (plan.end - plan.begin), c.channels());
    plan.compute = [](const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        SoundPtr made = s.Remove(cancel, b, e);
        e = b;
        return made;
    };
    return true;
}

bool feedCut(PrepareContext& c, Plan& plan) {
    feedDelete(c, plan);
    plan.work += workOf(plan.end - plan.begin, c.channels());
    plan.takePart = true;
    return true;
}

bool feedTrim(PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    plan.work = workOf(plan.end - plan.begin, c.channels());
    plan.compute = [](const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        SoundPtr made = s.CopyRange(cancel, b, e);
        e -= b;
        b = 0;
        return made;
    };
    return true;
}

// Inserts the pinned clipboard in place of [b, e).
ComputeFn insertClipboard(const SoundRef& clip) {
    return [clip](const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        return s.Insert(cancel, clip.get(), b, e);
    };
}

bool feedPaste(PrepareContext& c, Plan& plan) {
    if (!clipboardFits(c)) return false;
    c.makeRange(plan);
    plan.work = workOf(c.clipboard()->GetValues(), c.channels());
    plan.compute = insertClipboard(c.clipboard());
    return true;
}

bool feedSwap(PrepareContext& c, Plan& plan) {
    if (!clipboardFits(c)) return false;
    c.effectRange(plan);
    plan.work = workOf(std::int64_t(plan.end - plan.begin) + c.clipboard()->GetValues(),
                       c.channels());
    plan.takePart = true;
    plan.compute = insertClipboard(c.clipboard());
    return true;
}

bool feedExtract(PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    plan.work = 2 * workOf(plan.end - plan.begin, c.channels());
    plan.takePart = true;
    plan.compute = [](const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        return s.MakeSilenceValues(cancel, double(e - b), b, e);
    };
    return true;
}

bool feedMix(const MixRecord& p, PrepareContext& c, Plan& plan) {
    c.makeRange(plan);  // over the selection, or the whole clip from the cursor on
    const std::int64_t n = plan.end > plan.begin ? plan.end - plan.begin
                                                 : c.clipboard()->GetValues();
    plan.work = workOf(n, c.channels());
    plan.compute = [clip = c.clipboard(), place = p.place](const Sound& s, CancelFlag* cancel,
                                                            std::int32_t& b, std::int32_t& e) {
        switch (place) {
            case MixRecord::kAlignEnd: return s.MixAlignEnd(cancel, clip.get(), b, e);
            case MixRecord::kStretch: return s.MixStretch(cancel, clip.get(), b, e);
            default: return s.MixAlignBegin(cancel, clip.get(), b, e);
        }
    };
    return true;
}

using F = ActionFlow;
using E = EnableRule;
using U = UnitRecords;

constexpr std::array kRows{
    actionRow("EditCut", "Edit", "Cut", "Ctrl+X", "Cut", "Cut the wave", F::Edit, E::Samples, {}, editOperation<feedCut>()),
    actionRow("EditCopy", "Edit", "Copy", "Ctrl+C", "Copy", "Copy the wave", F::Clipboard, E::Samples, {}, editOperation<feedCopy>()),
    actionRow("EditPaste", "Edit", "Paste", "Ctrl+V", "Paste", "Paste the wave", F::Edit, E::ClipInto, {}, editOperation<feedPaste>()),
    actionRow("EditDelete", "Edit", "&Delete", "Ctrl+Del", "Delete", "Delete (a part of) the wave", F::Edit, E::Samples, {}, editOperation<feedDelete>()),
    actionRow("EditTrim", "Edit", "&Trim", "Shift+Ctrl+Del", "Trim", "Delete all except the selected part", F::Edit, E::Part, {}, editOperation<feedTrim>()),
    actionRow("EditClearClipboard", "Edit", "Clear Clipboard", "Shift+Alt+Del", "Clear Clipboard", "Clear the Clipboard", F::Clipboard, E::ClipFull),
    actionRow("EditSwap", "Edit", "Swap", "X", "Swap", "Swap the wave with the contents of the clipboard", F::Edit, E::ClipSwap, {}, editOperation<feedSwap>()),
    actionRow("EditExtract", "Edit", "Extract", "Shift+X", "Extract", "Copy and replace with silence", F::Edit, E::Samples, {}, editOperation<feedExtract>()),
    actionRow("EditMix", "Edit", "&Mix...", "M", "Mix", "Mix with clipboard", F::Operation, E::ClipInto, "Mix", recordOperation<MixRecord, &U::mix, feedMix>()),
};

}  // namespace

std::span<const ActionDef> editActions() { return kRows; }

}  // namespace orv
