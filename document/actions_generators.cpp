// The menu that makes waves: the generators and freehand drawing (duplicate is with the
// document commands). Each generator
// replaces the selection, or inserts at the cursor when nothing is selected.
#include <array>
#include <cmath>
#include <vector>

#include "core/sample_value.h"
#include "document/action_rows.h"
#include "document/actions_support.h"

namespace orv {

namespace {

// The samples of a generated stretch of `seconds`, the way the sound layer counts them.
std::int64_t samplesOf(double seconds, std::int32_t freq) {
    const double n = double(freq) * seconds + 1.0;
    return n > 0.0 && n < 1e15 ? std::int64_t(n) : 1;
}

bool feedSilence(const SilenceRecord& p, PrepareContext& c, Plan& plan) {
    c.makeRange(plan);
    plan.work = workOf(samplesOf(p.length.value, c.freq()), c.channels());
    plan.compute = [seconds = p.length.value](const Sound& s, CancelFlag* cancel,
                                              std::int32_t& b, std::int32_t& e) {
        return s.MakeSilence(cancel, seconds, b, e);
    };
    return true;
}

bool feedLine(const LineRecord& p, PrepareContext& c, Plan& plan) {
    c.makeRange(plan);
    plan.work = workOf(samplesOf(p.length.value, c.freq()), c.channels());
    plan.compute = [first = toWaveVal(p.beginValue.value), last = toWaveVal(p.endValue.value),
                    seconds = p.length.value, exponential = p.kind == LineRecord::kExponential](
                       const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        return s.MakeLine(cancel, first, last, seconds, exponential, b, e);
    };
    return true;
}

bool feedNoise(const NoiseRecord& p, PrepareContext& c, Plan& plan) {
    c.makeRange(plan);
    plan.work = workOf(samplesOf(p.length.value, c.freq()), c.channels());
    plan.compute = [volume = toWaveVal(p.volume.value), seconds = p.length.value](
                       const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        return s.MakeNoise(cancel, volume, seconds, b, e);
    };
    return true;
}

// One period of the block or triangle wave in seconds, and where its middle lies.
// "Wave in Time" gives the two halves as times; "Frequency" gives the period itself.
void blockTrianglePeriod(const BlockTriangleRecord& p, double& period, double& middle) {
    if (p.BloTriHorKind == BlockTriangleRecord::bloTriTime) {
        period = p.getTime1() + p.getTime2();
        middle = period > 0.0 ? p.getTime1() / period : 0.5;
    } else {
        period = p.frequency.value;
        middle = p.HasMiddleEnvelope() ? 0.5 : p.getMiddle();
    }
}

// The generated length: a factor of the part being replaced (the whole wave when nothing is
// selected), a new length, the length of a registered wave, or a count of periods.
double generatedSeconds(const BlockTriangleRecord& p, double period, double partSeconds,
                        double sameAsSeconds) {
    switch (p.lengthKind) {
        case kLengthFactor: return p.lengthFactor.value * partSeconds;
        case kLengthNew: return p.newLength.value;
        case kLengthSameAs: return sameAsSeconds;
        case kLengthCount: return p.lengthCount * period;
        default: return 0.0;
    }
}

// Block and triangle share one dialog and one generator, but each keeps its own record.
template <bool Triangle>
bool feedBlockTriangle(const BlockTriangleRecord& p, PrepareContext& c, Plan& plan) {
    c.makeRange(plan);
    double period = 0.0, middle = 0.5;
    blockTrianglePeriod(p, period, middle);
    const double sameAs = p.lengthKind == kLengthSameAs ? c.secondsOf(p.sameAs) : 0.0;
    const double seconds = generatedSeconds(p, period, c.selectionSeconds(), sameAs);
    // Nothing to make: both times 0, or a length of nothing.
    if (period <= 0.0 || seconds <= 0.0) return false;
    plan.work = workOf(samplesOf(seconds, c.freq()), c.channels());
    SoundRef env = p.BloTriHorKind == BlockTriangleRecord::bloTriFreq && p.HasMiddleEnvelope()
                       ? c.pin(p.middleEnvelope)
                       : nullptr;
    plan.compute = [env, h1 = toWaveVal(p.height1.value), h2 = toWaveVal(p.height2.value),
                    period, middle, seconds, phase = wrapPhase(p.startPosition.value)](
                       const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        if (env)
            return s.MakeBlockTriangleEnv(cancel, h1, h2, period, env.get(), seconds, phase,
                                          Triangle, b, e);
        return s.MakeBlockTriangle(cancel, h1, h2, period, middle, seconds, phase, Triangle, b,
                                   e);
    };
    return true;
}

bool feedSinus(const SinusRecord& p, PrepareContext& c, Plan& plan) {
    c.makeRange(plan);
    const double period = p.frequency.value;
    if (period <= 0.0) return false;
    // A length is a count of periods that need not be whole.
    const double count = p.kind == SinusRecord::kByCount ? p.count.value : p.length.value / period;
    plan.work = workOf(samplesOf(count * period, c.freq()), c.channels());
    const WaveVal amplitude = toWaveVal(p.amplitude.value);
    plan.compute = [amplitude, low = toWaveVal(-double(amplitude)), period, count,
                    phase = wrapPhase(p.startPhase.value)](const Sound& s, CancelFlag* cancel,
                                                           std::int32_t& b, std::int32_t& e) {
        return s.MakeSinus(cancel, amplitude, low, period, count, phase, b, e);
    };
    return true;
}

bool feedMFreq(const MFreqRecord& p, PrepareContext& c, Plan& plan) {
    c.makeRange(plan);
    SoundRef form = p.use == MFreqRecord::kWaveForm ? c.pin(p.waveForm) : nullptr;
    std::vector<MFreqPartial> partials;
    for (int i = 0; i < p.frequencies.count(); ++i) partials.push_back(p.frequencies.at(i).partial());
    plan.work = workOf(samplesOf(p.length.value, c.freq()) * std::int64_t(partials.size()),
                       c.channels());
    plan.compute = [form, partials, seconds = p.length.value](
                       const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        return s.MakeMFreqCount(cancel, seconds, form.get(), std::int32_t(partials.size()),
                                partials.data(), b, e);
    };
    return true;
}

using F = ActionFlow;
using E = EnableRule;
using U = UnitRecords;

constexpr std::array kRows{
    actionRow("MakeSilence", "MakeWave", "&Silence...", "Alt+S", "Silence", "Make a silence wave", F::Operation, E::NotDrawing, "Make Silence", recordOperation<SilenceRecord, &U::silence, feedSilence>()),
    actionRow("MakeLine", "MakeWave", "&Line...", "Alt+L", "Line", "Make a wave of a straight ro exponential line", F::Operation, E::NotDrawing, "Make Line", recordOperation<LineRecord, &U::line, feedLine>()),
    actionRow("MakeBlock", "MakeWave", "&Block...", "Alt+B", "Block", "Make a block wave", F::Operation, E::NotDrawing, "Make Block", recordOperation<BlockTriangleRecord, &U::makeBlock, feedBlockTriangle<false>>()),
    actionRow("MakeTriangle", "MakeWave", "&Triangle...", "Alt+T", "Triangle", "Make a triangle wave", F::Operation, E::NotDrawing, "Make Triangle", recordOperation<BlockTriangleRecord, &U::makeTriangle, feedBlockTriangle<true>>()),
    actionRow("MakeSinus", "MakeWave", "S&inus...", "Shift+Alt+S", "Sinus", "Make a sinus wave", F::Operation, E::NotDrawing, "Make Sinus", recordOperation<SinusRecord, &U::sinus, feedSinus>()),
    actionRow("MakeNoise", "MakeWave", "&Noise...", "Alt+N", "Noise", "Make a noise wave", F::Operation, E::NotDrawing, "Make Noise", recordOperation<NoiseRecord, &U::noise, feedNoise>()),
    actionRow("MakeMFreq", "MakeWave", "Multi &Frequencies...", "Alt+F", "Multiple Frequencies", "Make wave with one or more frequencies", F::Operation, E::NotDrawing, "Multi Frequency", recordOperation<MFreqRecord, &U::mfreq, feedMFreq>()),
    actionRow("DrawWaveLin", "MakeWave", "Dr&aw Wave Linear", "Alt+D", "Draw Linear", "Draw wave using linear parts", F::Front, E::DrawLinear),
    actionRow("DrawWave3G", "MakeWave", "Draw Wave Smooth", "Shift+Alt+D", "Draw Smooth", "Draw wave using parts connecting smoothly", F::Front, E::DrawSmooth),
};

}  // namespace

std::span<const ActionDef> generatorActions() { return kRows; }

}  // namespace orv
