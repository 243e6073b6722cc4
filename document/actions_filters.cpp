// The filter menu. Each filter works on the selection, or on the whole wave.
#include <array>

#include "core/filter.h"
#include "core/filter_passes.h"
#include "document/action_rows.h"

namespace orv {

namespace {

bool feedFilterBlock(const BlockFilterRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    plan.work = workOf(plan.end - plan.begin, c.channels());
    SoundRef env = p.hasEnvelope ? c.pin(p.envelope) : nullptr;
    plan.compute = [env, seconds = p.time.value](const Sound& s, CancelFlag* cancel,
                                                  std::int32_t& b, std::int32_t& e) {
        return env ? s.FilterBlockEnv(cancel, seconds, env.get(), b, e)
                   : s.FilterBlock(cancel, seconds, b, e);
    };
    return true;
}

// Low- and high-pass share a record type; each keeps its own record.
template <bool High>
bool feedHighLow(const HighLowRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    const int count = p.count < 1 ? 1 : p.count;
    // Every pass walks the range; maximizing reads it once more and scales it.
    plan.work = workOf(std::int64_t(plan.end - plan.begin) * (count + (p.maximize ? 2 : 0)),
                       c.channels());
    SoundRef env = p.frequencyKind == kEnvelope ? c.pin(p.frequencyEnvelope) : nullptr;
    HighLowFilter f;
    if (env) {
        f.filterEnv = High ? HighPassEnv : LowPassEnv;
        f.envelope = env.get();
    } else {
        f.filter = High ? HighPass : LowPass;
    }
    f.seconds = p.frequency.value;
    f.factor = p.volume.value;
    plan.compute = [f, env, count, maximize = p.maximize](const Sound& s, CancelFlag* cancel,
                                                          std::int32_t& b, std::int32_t& e) {
        return FilterHighLow(cancel, s, f, count, maximize, b, e);
    };
    return true;
}

// Resonant and notch share a record type and a form; each keeps its own record.
template <bool Notch>
bool feedResonator(const ResNotchRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    plan.work = workOf(plan.end - plan.begin, c.channels());
    SoundRef freqEnv = p.frequencyKind == kEnvelope ? c.pin(p.frequencyEnvelope) : nullptr;
    SoundRef widthEnv = p.widthKind == kEnvelope ? c.pin(p.widthEnvelope) : nullptr;
    plan.compute = [freqEnv, widthEnv, period = p.frequency.value, width = p.width.value](
                       const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        return s.ApplyResonantFilter(cancel, Notch ? kNotchFamily : kResonantFamily, period,
                                     width, freqEnv.get(), widthEnv.get(), b, e);
    };
    return true;
}

using F = ActionFlow;
using E = EnableRule;
using U = UnitRecords;

constexpr std::array kRows{
    actionRow("FilterBlock", "Filter", "FilterBlock", "Ctrl+Alt+B", "Filter using a block", "Filter using a block", F::Operation, E::Samples, "Block Filter", recordOperation<BlockFilterRecord, &U::blockFilter, feedFilterBlock>()),
    actionRow("FilterLow", "Filter", "&Low...", "Ctrl+Alt+L", "Filter Low", "Filter the low sounds", F::Operation, E::Samples, "Low Filter", recordOperation<HighLowRecord, &U::lowFilter, feedHighLow<false>>()),
    actionRow("FilterHigh", "Filter", "&High...", "Ctrl+Alt+H", "Filter High", "Filter the high sounds", F::Operation, E::Samples, "High Filter", recordOperation<HighLowRecord, &U::highFilter, feedHighLow<true>>()),
    actionRow("FilterRes", "Filter", "&Resonant...", "Ctrl+Alt+R", "Filter Resonant", "Filter the sound around a certain frequency", F::Operation, E::Samples, "Resonant Filter", recordOperation<ResNotchRecord, &U::resonant, feedResonator<false>>()),
    actionRow("FilterNotch", "Filter", "&Notch...", "Ctrl+Alt+N", "Filter Notch", "Filter the sound away of a certain frequency", F::Operation, E::Samples, "Notch Filter", recordOperation<ResNotchRecord, &U::notch, feedResonator<true>>()),
};

}  // namespace

std::span<const ActionDef> filterActions() { return kRows; }

}  // namespace orv
