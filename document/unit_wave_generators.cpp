// The generators of a unit: each replaces the selection, or inserts at the cursor when
// nothing is selected.
#include <cmath>
#include <vector>

#include "core/platform.h"
#include "document/unit_wave.h"

namespace orv {

namespace {
// A phase of either sign as a fraction in [0, 1).
double wrapPhase(double p) {
    const double w = p - std::floor(p);
    return w < 1.0 ? w : 0.0;
}
}  // namespace

bool TUnitWave::makeSilence(const SilenceRecord& r) {
    records_.silence = r;
    std::int32_t begin, end;
    makeRange(begin, end);
    if (view) view->showRange(begin, end);
    SoundPtr made = TheSound->MakeSilence(&cancel, records_.silence.length.value, begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::makeLine(const LineRecord& r) {
    records_.line = r;
    const LineRecord& p = records_.line;
    std::int32_t begin, end;
    makeRange(begin, end);
    if (view) view->showRange(begin, end);
    SoundPtr made = TheSound->MakeLine(&cancel, toWaveVal(p.beginValue.value),
                                       toWaveVal(p.endValue.value), p.length.value,
                                       p.kind == LineRecord::kExponential, begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::makeNoise(const NoiseRecord& r) {
    records_.noise = r;
    std::int32_t begin, end;
    makeRange(begin, end);
    if (view) view->showRange(begin, end);
    SoundPtr made = TheSound->MakeNoise(&cancel, toWaveVal(records_.noise.volume.value),
                                        records_.noise.length.value, begin, end);
    return takeResult(std::move(made), begin, end);
}

namespace {
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
}  // namespace

// The generated length: a factor of the part being replaced (the whole wave when nothing is
// selected), a new length, the length of a registered wave, or a count of periods.
static double generatedSeconds(const BlockTriangleRecord& p, double period, double partSeconds,
                               double sameAsSeconds) {
    switch (p.lengthKind) {
        case kLengthFactor: return p.lengthFactor.value * partSeconds;
        case kLengthNew: return p.newLength.value;
        case kLengthSameAs: return sameAsSeconds;
        case kLengthCount: return p.lengthCount * period;
        default: return 0.0;
    }
}

static bool makeBlockOrTriangle(TUnitWave& unit, const BlockTriangleRecord& p, bool triangle,
                                double sameAsSeconds, const Sound* middleEnvelope,
                                std::int32_t begin, std::int32_t end,
                                SoundPtr& made, std::int32_t& madeEnd) {
    double period = 0.0, middle = 0.5;
    blockTrianglePeriod(p, period, middle);
    const double seconds = generatedSeconds(p, period, unit.selectionSeconds(), sameAsSeconds);
    // Nothing to make: both times 0, or a length of nothing.
    if (period <= 0.0 || seconds <= 0.0) return false;
    const double phase = wrapPhase(p.startPosition.value);
    madeEnd = end;
    if (middleEnvelope)
        made = unit.getSound()->MakeBlockTriangleEnv(&unit.cancelFlag(), toWaveVal(p.height1.value),
                                                     toWaveVal(p.height2.value), period,
                                                     middleEnvelope, seconds, phase, triangle,
                                                     begin, madeEnd);
    else
        made = unit.getSound()->MakeBlockTriangle(&unit.cancelFlag(), toWaveVal(p.height1.value),
                                                  toWaveVal(p.height2.value), period, middle,
                                                  seconds, phase, triangle, begin, madeEnd);
    return true;
}

bool TUnitWave::makeBlock(const BlockTriangleRecord& r) {
    return makeBlockTriangle(records_.makeBlock, r, false);
}

bool TUnitWave::makeTriangle(const BlockTriangleRecord& r) {
    return makeBlockTriangle(records_.makeTriangle, r, true);
}

// Block and triangle share one dialog and one generator, but each keeps its own record.
bool TUnitWave::makeBlockTriangle(BlockTriangleRecord& remembered, const BlockTriangleRecord& r,
                                  bool triangle) {
    remembered = r;
    const BlockTriangleRecord& p = remembered;
    std::int32_t begin, end;
    makeRange(begin, end);
    if (view) view->showRange(begin, end);
    const double sameAs = p.lengthKind == kLengthSameAs ? secondsOf(p.sameAs) : 0.0;
    const Sound* env = p.BloTriHorKind == BlockTriangleRecord::bloTriFreq && p.HasMiddleEnvelope()
                           ? envelope(p.middleEnvelope)
                           : nullptr;
    SoundPtr made;
    if (!makeBlockOrTriangle(*this, p, triangle, sameAs, env, begin, end, made, end))
        return false;
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::makeSinus(const SinusRecord& r) {
    records_.sinus = r;
    const SinusRecord& p = records_.sinus;
    std::int32_t begin, end;
    makeRange(begin, end);
    if (view) view->showRange(begin, end);
    const double period = p.frequency.value;
    if (period <= 0.0) return false;
    // A length is a count of periods that need not be whole.
    const double count = p.kind == SinusRecord::kByCount ? p.count.value : p.length.value / period;
    const WaveVal amplitude = toWaveVal(p.amplitude.value);
    SoundPtr made = TheSound->MakeSinus(&cancel, amplitude, toWaveVal(-double(amplitude)), period,
                                        count, wrapPhase(p.startPhase.value), begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::makeMFreq(const MFreqRecord& r) {
    records_.mfreq = r;
    const MFreqRecord& p = records_.mfreq;
    std::int32_t begin, end;
    makeRange(begin, end);
    if (view) view->showRange(begin, end);
    const Sound* form = p.use == MFreqRecord::kWaveForm ? envelope(p.waveForm) : nullptr;
    std::vector<MFreqPartial> partials;
    for (int i = 0; i < freqCount(); ++i) partials.push_back(mFreqBrowseRecord(i).partial());
    SoundPtr made = TheSound->MakeMFreqCount(&cancel, p.length.value, form,
                                             std::int32_t(partials.size()), partials.data(),
                                             begin, end);
    return takeResult(std::move(made), begin, end);
}

}  // namespace orv
