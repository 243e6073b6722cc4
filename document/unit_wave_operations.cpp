// The effects, echoes and filters of a unit. Each works on the selection, or on the whole
// wave when nothing is selected, in the same order: remember the record, take the range and
// show it, run the sound operation under the cancel flag, then take its result (or throw it
// away when cancelled) and select what was made.
#include <cmath>

#include "core/filter.h"
#include "core/filter_passes.h"
#include "core/platform.h"
#include "core/random_echo.h"
#include "document/unit_wave.h"

namespace orv {

namespace {
// A time in seconds that converts back to exactly `samples` samples at `freq` (the sound
// layer truncates Freq x seconds).
double secondsForSamples(std::int32_t samples, std::int32_t freq) {
    return (double(samples) + 0.5) / double(freq);
}

// A position typed as a time from the start of the sound, as a fraction of the range.
double fractionInRange(double seconds, std::int32_t freq, std::int32_t begin, std::int32_t end) {
    const double pos = seconds * freq - begin;
    const double length = end - begin;
    if (length <= 0.0 || pos <= 0.0) return 0.0;
    const double f = pos / length;
    return f < 1.0 ? f : 0.0;
}
}  // namespace

bool TUnitWave::volume(const VolumeRecord& r) {
    records_.volume = r;
    const VolumeRecord& p = records_.volume;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    SoundPtr made = p.kind == kEnvelope
                        ? TheSound->VolumeEnv(&cancel, envelope(p.envelope), begin, end)
                        : TheSound->Volume(&cancel, p.factor.value, begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::up(const UpRecord& r) {
    records_.up = r;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    SoundPtr made = TheSound->Up(&cancel, toWaveVal(records_.up.addValue.value), begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::block(const BlockRecord& r) {
    records_.block = r;
    const BlockRecord& p = records_.block;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    // Horizontal: a count of blocks over the range, a block time, or blocks of one sample
    // (no change). Vertical: a count of levels, the height of one level, or 0 (no change).
    double blockTime = 1.0 / getFreq();
    if (p.horizontal == BlockRecord::kCount && p.horizontalCount > 0)
        blockTime = double(end - begin) / p.horizontalCount / getFreq();
    else if (p.horizontal == BlockRecord::kTimeOrHeight)
        blockTime = p.time.value;
    std::int32_t levels = 0;
    if (p.vertical == BlockRecord::kCount)
        levels = p.verticalCount;
    else if (p.vertical == BlockRecord::kTimeOrHeight && std::fabs(p.height.value) >= 1.0)
        levels = truncToInt(65535.0 / std::fabs(p.height.value)) + 1;
    SoundPtr made = TheSound->Block(&cancel, blockTime, levels, begin, end);
    return takeResult(std::move(made), begin, end);
}

// The length factor of the length options, against the part being edited: a new length of
// the part itself, or that of a registered wave ("Same Length as" this very wave, with
// nothing selected, gives 1).
template <class R>
static double lengthFactorFor(const TUnitWave& unit, const R& p, double sameAsSeconds) {
    return lengthFactorOf(p, sameAsSeconds, unit.selectionSeconds());
}

bool TUnitWave::rollOut(const RollOutRecord& r) {
    records_.rollOut = r;
    const RollOutRecord& p = records_.rollOut;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    const double speed = p.speedFactor.value;
    double factor;
    if (p.lengthKind == kLengthCount)
        factor = speed != 0.0 ? p.lengthCount / std::fabs(speed) : 0.0;  // whole passes
    else
        factor = lengthFactorFor(*this, p, p.lengthKind == kLengthSameAs ? secondsOf(p.sameAs) : 0.0);
    if (factor <= 0.0 || truncToInt(double(end - begin) * factor) < 1) return false;
    const double start = fractionInRange(p.startPosition.value, getFreq(), begin, end);
    SoundPtr made =
        p.speedHasEnvelope
            ? TheSound->RollOutEnv(&cancel, envelope(p.speedEnvelope), speed, factor, start, begin, end)
            : TheSound->RollOut(&cancel, speed, factor, start, begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::rollIn(const RollInRecord& r) {
    records_.rollIn = r;
    const RollInRecord& p = records_.rollIn;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    // The loop is trunc(Freq x length + 1) samples long; the range starts at "Start at"
    // inside it, or is placed so that it ends at "End at", taken round the loop.
    const std::int64_t n = std::int64_t(double(getFreq()) * p.length.value + 1.0);
    if (n < 1) return false;
    std::int64_t target;
    if (p.placement == RollInRecord::kEndAt)
        target = std::int64_t(double(getFreq()) * p.endAt.value) - (end - begin);
    else
        target = std::int64_t(double(getFreq()) * p.startAt.value);
    target = ((target % n) + n) % n;
    SoundPtr made = TheSound->RollIn(&cancel, p.length.value,
                                     secondsForSamples(std::int32_t(target), getFreq()), begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::rotate(const RotateRecord& r) {
    records_.rotate = r;
    const RotateRecord& p = records_.rotate;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    const std::int32_t n = end - begin;
    if (n < 1) return false;
    // By a part of the range or by a time, either way kept within the range; a shift to the
    // right is the complementary shift to the left.
    std::int64_t shift = p.kind == RotateRecord::kByTime
                             ? std::int64_t(double(getFreq()) * p.time.value)
                             : std::int64_t(std::floor(p.factor.value * n));
    shift = ((shift % n) + n) % n;
    if (p.shiftTo == RotateRecord::kRight && shift != 0) shift = n - shift;
    SoundPtr made = TheSound->Rotate(&cancel, secondsForSamples(std::int32_t(shift), getFreq()),
                                     begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::length(const LengthRecord& r) {
    records_.length = r;
    const LengthRecord& p = records_.length;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    const double factor =
        lengthFactorFor(*this, p, p.lengthKind == kLengthSameAs ? secondsOf(p.sameAs) : 0.0);
    SoundPtr made = TheSound->Length(&cancel, factor, begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::distort(const DistortRecord& r) {
    records_.distort = r;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    SoundPtr made = TheSound->Distort(&cancel, envelope(records_.distort.envelope), begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::balance(const BalanceRecord& r) {
    records_.balance = r;
    const BalanceRecord& p = records_.balance;
    // The whole wave becomes a stereo sound.
    if (view) view->showRange(0, values());
    const bool vol = p.volumeDifference == BalanceRecord::kVolume;
    const bool filter = p.volumeDifference == BalanceRecord::kFilter;
    SoundPtr made = p.directionKind == kEnvelope
                        ? TheSound->BalanceEnv(&cancel, envelope(p.directionEnvelope),
                                               p.timeDifference, vol, filter)
                        : TheSound->Balance(&cancel, p.direction.value, p.timeDifference, vol,
                                            filter);
    const std::int32_t made_values = made ? made->GetValues() : 0;
    return takeResult(std::move(made), 0, made_values);
}

bool TUnitWave::mixLeftRight(const LeftRightRecord& r) {
    records_.leftRight = r;
    const LeftRightRecord& p = records_.leftRight;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    auto* stereo = dynamic_cast<StereoSound*>(TheSound);
    ORV_ASSERT_TEXT(stereo != nullptr, "MonoStereo == 2", "unitwave");
    SoundPtr made = stereo->MixLeftRight(&cancel, p.leftToLeft.value, p.leftToRight.value,
                                         p.rightToLeft.value, p.rightToRight.value, begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::perEcho(const PerEchoRecord& r) {
    records_.perEcho = r;
    const PerEchoRecord& p = records_.perEcho;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    if (end - begin < 2) return false;  // an echo needs at least two samples to repeat
    const double seconds = p.time.value;
    SoundPtr made;
    if (!p.timeHasEnvelope) {
        made = p.volumeKind == kEnvelope
                   ? TheSound->PerEchoEnv(&cancel, seconds, envelope(p.volumeEnvelope), p.count,
                                          begin, end)
                   : TheSound->PerEcho(&cancel, seconds, p.volume.value, p.count, begin, end);
    } else {
        // A time envelope stretches the echo distance; it runs forward only.
        const double diff = std::fabs(seconds);
        made = p.volumeKind == kEnvelope
                   ? TheSound->PerEchoTimeEnv(&cancel, diff, envelope(p.timeEnvelope),
                                              envelope(p.volumeEnvelope), p.count, begin, end)
                   : TheSound->PerEchoTime(&cancel, diff, envelope(p.timeEnvelope),
                                           p.volume.value, p.count, begin, end);
    }
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::randomEcho(const RandomEchoRecord& r) {
    records_.randomEcho = r;
    const RandomEchoRecord& p = records_.randomEcho;
    if (view) view->showRange(0, values());
    auto env = [&](std::uint8_t kind, std::uint8_t envelopeKind, const std::string& name) {
        return kind == envelopeKind ? envelope(name) : nullptr;
    };
    RandomEchoParams e;
    e.count = p.count;
    e.seed = p.seed;
    e.timeOption = EchoTimeOption(p.timeKind);
    e.timeDie = p.timeDie;
    e.timeEnvelope = env(p.timeKind, 1, p.timeEnvelope);
    e.timeDifference = p.timeDifference.value;
    e.volumeOption = EchoLinearOption(p.volumeKind);
    e.volumeDie = p.volumeDie;
    e.volumeEnvelope = env(p.volumeKind, 2, p.volumeEnvelope);
    e.lengthOption = EchoEnvelopeOption(p.lengthKind);
    e.lengthDie = p.lengthDie;
    e.lengthEnvelope = env(p.lengthKind, 1, p.lengthEnvelope);
    e.balanceOption = EchoLinearOption(p.balanceKind);
    e.balanceDie = p.balanceDie;
    e.balanceEnvelope = env(p.balanceKind, 2, p.balanceEnvelope);
    e.volumeDifference = EchoVolumeDifference(p.balanceVolumeDifference);
    e.balanceTimeDifference = p.balanceTimeDifference;
    e.pitchOption = EchoEnvelopeOption(p.pitchKind);
    e.pitchDie = p.pitchDie;
    e.pitchEnvelope = env(p.pitchKind, 1, p.pitchEnvelope);
    e.pitchFrequencyFactor = p.pitchFactor.value;
    e.tempoOption = EchoEnvelopeOption(p.tempoKind);
    e.tempoDie = p.tempoDie;
    e.tempoEnvelope = env(p.tempoKind, 1, p.tempoEnvelope);
    e.cyclable = p.cyclable;
    e.quality = EchoQuality(p.quality);
    e.blockSize = p.blockSize.value;
    SoundPtr made = RandomEcho(&cancel, *TheSound, e);
    const std::int32_t madeValues = made ? made->GetValues() : 0;
    return takeResult(std::move(made), 0, madeValues);
}

bool TUnitWave::tempoPitch(const TempoPitchRecord& r) {
    records_.tempoPitch = r;
    const TempoPitchRecord& p = records_.tempoPitch;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    const double speed = p.speedFactor.value;
    const double pitch = p.frequencyFactor.value;
    double factor;
    if (p.lengthKind == kLengthCount)
        factor = speed != 0.0 ? p.lengthCount / std::fabs(speed) : 0.0;  // whole passes
    else
        factor = lengthFactorFor(*this, p, p.lengthKind == kLengthSameAs ? secondsOf(p.sameAs) : 0.0);
    if (speed == 0.0 || factor <= 0.0) return false;
    const double start = fractionInRange(p.startPosition.value, getFreq(), begin, end);
    const double blockSeconds = p.blockSize.value;
    SoundPtr made;
    if (p.speedHasEnvelope && p.frequencyHasEnvelope)
        made = TheSound->TempoPitchEnv3(&cancel, speed, envelope(p.speedEnvelope), start, factor,
                                        pitch, envelope(p.frequencyEnvelope), blockSeconds,
                                        begin, end);
    else if (p.speedHasEnvelope)
        made = TheSound->TempoPitchEnv1(&cancel, speed, envelope(p.speedEnvelope), start, factor,
                                        pitch, blockSeconds, begin, end);
    else if (p.frequencyHasEnvelope)
        made = TheSound->TempoPitchEnv2(&cancel, speed, start, factor, pitch,
                                        envelope(p.frequencyEnvelope), blockSeconds, begin, end);
    else
        made = TheSound->TempoPitch(&cancel, speed, start, factor, pitch, blockSeconds,
                                    p.quality == TempoPitchRecord::kHigh, begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::filterBlock(const BlockFilterRecord& r) {
    records_.blockFilter = r;
    const BlockFilterRecord& p = records_.blockFilter;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    SoundPtr made = p.hasEnvelope
                        ? TheSound->FilterBlockEnv(&cancel, p.time.value, envelope(p.envelope),
                                                   begin, end)
                        : TheSound->FilterBlock(&cancel, p.time.value, begin, end);
    return takeResult(std::move(made), begin, end);
}

namespace {
HighLowFilter highLowFilter(const HighLowRecord& p, bool high, const Sound* env) {
    HighLowFilter f;
    if (env) {
        f.filterEnv = high ? HighPassEnv : LowPassEnv;
        f.envelope = env;
    } else {
        f.filter = high ? HighPass : LowPass;
    }
    f.seconds = p.frequency.value;
    f.factor = p.volume.value;
    return f;
}
}  // namespace

bool TUnitWave::filterLow(const HighLowRecord& r) {
    records_.lowFilter = r;
    const HighLowRecord& p = records_.lowFilter;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    const Sound* env = p.frequencyKind == kEnvelope ? envelope(p.frequencyEnvelope) : nullptr;
    SoundPtr made = FilterHighLow(&cancel, *TheSound, highLowFilter(p, false, env),
                                  p.count < 1 ? 1 : p.count, p.maximize, begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::filterHigh(const HighLowRecord& r) {
    records_.highFilter = r;
    const HighLowRecord& p = records_.highFilter;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    const Sound* env = p.frequencyKind == kEnvelope ? envelope(p.frequencyEnvelope) : nullptr;
    SoundPtr made = FilterHighLow(&cancel, *TheSound, highLowFilter(p, true, env),
                                  p.count < 1 ? 1 : p.count, p.maximize, begin, end);
    return takeResult(std::move(made), begin, end);
}

namespace {
SoundPtr resonator(TUnitWave& unit, const ResNotchRecord& p, const ResonatorFamily& family,
                   const Sound* freqEnv, const Sound* widthEnv, std::int32_t begin,
                   std::int32_t end) {
    return unit.getSound()->ApplyResonantFilter(&unit.cancelFlag(), family, p.frequency.value,
                                                p.width.value, freqEnv, widthEnv, begin, end);
}
}  // namespace

bool TUnitWave::filterResonant(const ResNotchRecord& r) {
    records_.resonant = r;
    const ResNotchRecord& p = records_.resonant;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    SoundPtr made = resonator(*this, p, kResonantFamily,
                              p.frequencyKind == kEnvelope ? envelope(p.frequencyEnvelope) : nullptr,
                              p.widthKind == kEnvelope ? envelope(p.widthEnvelope) : nullptr,
                              begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::filterNotch(const ResNotchRecord& r) {
    records_.notch = r;
    const ResNotchRecord& p = records_.notch;
    std::int32_t begin, end;
    effectRange(begin, end);
    if (view) view->showRange(begin, end);
    SoundPtr made = resonator(*this, p, kNotchFamily,
                              p.frequencyKind == kEnvelope ? envelope(p.frequencyEnvelope) : nullptr,
                              p.widthKind == kEnvelope ? envelope(p.widthEnvelope) : nullptr,
                              begin, end);
    return takeResult(std::move(made), begin, end);
}

bool TUnitWave::mix(const MixRecord& r, const Sound& clip) {
    records_.mix = r;
    std::int32_t begin, end;
    makeRange(begin, end);  // over the selection, or the whole clip from the cursor on
    if (view) view->showRange(begin, end);
    SoundPtr made;
    switch (records_.mix.place) {
        case MixRecord::kAlignEnd: made = TheSound->MixAlignEnd(&cancel, &clip, begin, end); break;
        case MixRecord::kStretch: made = TheSound->MixStretch(&cancel, &clip, begin, end); break;
        default: made = TheSound->MixAlignBegin(&cancel, &clip, begin, end); break;
    }
    return takeResult(std::move(made), begin, end);
}

}  // namespace orv
