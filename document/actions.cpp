#include "document/actions.h"

#include <algorithm>
#include <vector>

#include "document/unit_wave.h"

namespace orv {

std::span<const ActionDef> actionTable() {
    static const std::vector<ActionDef> table = [] {
        std::vector<ActionDef> all;
        for (auto part : {fileActions(), windowActions(), generatorActions(), editActions(),
                          effectActions(), complexActions(), filterActions(), helpActions()})
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }();
    return table;
}

const ActionDef* findAction(std::string_view name) {
    for (const ActionDef& a : actionTable())
        if (a.name == name) return &a;
    return nullptr;
}

std::vector<const FormSpec*> operationFormSpecs() {
    std::vector<const FormSpec*> specs;
    for (const ActionDef& a : actionTable()) {
        if (!a.operation || !a.operation->spec) continue;
        const FormSpec* spec = a.operation->spec();
        if (std::find(specs.begin(), specs.end(), spec) == specs.end()) specs.push_back(spec);
    }
    specs.push_back(&FrequencyRecord::table());
    return specs;
}

ActionStatus actionStatus(std::string_view name, const ActionContext& c) {
    const ActionDef* def = findAction(name);
    if (!def) return {false, false, "there is no such action"};
    return actionStatus(*def, c);
}

namespace {
using R = EnableRule;

constexpr std::string_view kNoWindow = "no wave window is open";
constexpr std::string_view kDrawing = "a freehand drawing is in progress";
constexpr std::string_view kNoSamples = "the wave has no samples";

// The rule alone, for a context that has an active window (except Free and Player).
ActionStatus evaluate(EnableRule rule, const ActionContext& c) {
    const TUnitWave* u = c.active.unit;
    const bool D = c.active.drawing;
    const std::int32_t n = u ? u->values() : 0;
    const bool part = u && u->getCursor() != u->getSelEndPos();
    const bool clip = c.clipboardFull;
    const bool stereo = u && u->getMonoStereo() == 2;

    // The first condition that fails gives the reason.
    struct Need {
        bool ok;
        std::string_view reason;
    };
    auto all = [](std::initializer_list<Need> needs, bool checked = false) {
        for (const Need& need : needs)
            if (!need.ok) return ActionStatus{false, false, need.reason};
        return ActionStatus{true, checked, {}};
    };
    const Need notDrawing{!D, kDrawing};
    const Need samples{n > 0, kNoSamples};
    const Need clipFull{clip, "the clipboard is empty"};
    const Need player{c.playAndRecord, "the temporary folder for playing is missing"};

    switch (rule) {
        case R::Never: return {false, false, "it has no command yet"};
        case R::Free: return {true, false, {}};
        case R::Player: return all({{c.playerBusy, "nothing plays or records"}});
        case R::Pause: return {true, c.pauseChecked, {}};
        default: break;
    }
    if (!u) return {false, false, kNoWindow};
    switch (rule) {
        case R::NotDrawing: return all({notDrawing});
        case R::MaySave:
            return all({samples, {u->needsSave(), "the wave is saved as it is"}});
        case R::HasSamples: return all({samples});
        case R::Playable: return all({player, samples}, c.playChecked);
        case R::Recordable:
            return all({player, {n == 0, "recording goes into an empty wave only"}},
                       c.recordChecked);
        case R::Samples: return all({notDrawing, samples});
        case R::Part: return all({notDrawing, samples, {part, "nothing is selected"}});
        case R::ClipInto: return all({notDrawing, clipFull});
        case R::ClipSwap: return all({notDrawing, samples, clipFull});
        case R::ClipFull: return all({clipFull});
        case R::Zoomed:
            return all({notDrawing, samples, {c.active.zoomFactor != 0, "the wave is not zoomed"}});
        case R::ViewWave: return {true, !c.active.showsVold, {}};
        case R::ViewVold: return all({notDrawing}, c.active.showsVold);
        case R::SeveralWindows: return all({{c.windowCount > 1, "only one wave window is open"}});
        case R::Stereo: return all({{stereo, "the wave is not stereo"}});
        case R::SplitPart: {
            const std::int32_t lo = std::min(u->getCursor(), u->getSelEndPos());
            const std::int32_t hi = std::max(u->getCursor(), u->getSelEndPos());
            return all({{lo > 0 && hi < n - 1,
                         "the part must leave samples before and after it"}});
        }
        case R::DrawLinear:
        case R::DrawSmooth: {
            const bool drawable = D || (n == 0 && !stereo && !c.active.showsVold);
            const bool smooth = rule == R::DrawSmooth;
            ActionStatus s = all({{drawable, "drawing needs an empty mono wave shown as a wave"}});
            s.checked = D && c.active.smoothDrawing == smooth;
            return s;
        }
        case R::Window: return {true, false, {}};
        case R::StereoSamples:
            return all({notDrawing, samples, {stereo, "the wave is not stereo"}});
        case R::MonoSamples: return all({notDrawing, samples, {!stereo, "the wave is stereo"}});
        default: break;
    }
    return {false, false, "it has no command yet"};
}
}  // namespace

ActionStatus actionStatus(const ActionDef& def, const ActionContext& c) {
    ActionStatus s = evaluate(def.rule, c);
    if (!s.enabled || !c.jobRunning) return s;
    // While a job computes, only what cannot conflict with it stays.
    switch (def.duringJob) {
        case DuringJob::Allowed: return s;
        case DuringJob::OtherWindow:
            if (c.active.unit != c.jobUnit) return s;
            break;
        case DuringJob::Blocked: break;
    }
    return {false, s.checked, "an operation is running"};
}

}  // namespace orv
