// The sound base: construction, the debug dump, the duplicating wave access, and the one
// body of every editing operation. Each operation is written once over "the receiver's
// channels" (sound_channels.h); MonoSound and StereoSound hand their overrides to it, so a
// stereo operation is exactly the mono work done twice.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <new>
#include <string>
#include <vector>

#include "core/platform.h"
#include "core/sound.h"
#include "core/sound_channels.h"

namespace orv {

using namespace sound_detail;

const ResonatorFamily kResonantFamily{Resonant, ResonantFreqEnv, ResonantWidthEnv,
                                      ResonantEnv};
const ResonatorFamily kNotchFamily{Notch, NotchFreqEnv, NotchWidthEnv, NotchEnv};

namespace sound_detail {

FetchedWave argWave(const Sound* arg, CancelFlag* cancel, Side side) {
    if (!arg) return {};
    switch (side) {
        case Side::Left: return {arg->GetLeftWave(), false};
        case Side::Right: return {arg->GetRightWave(), false};
        case Side::Middle: break;
    }
    bool isNew = false;
    Wave* w = arg->GetMonoWave(cancel, isNew);
    return {w, isNew};
}

FetchedWave argWaveAtFreq(const Sound* arg, CancelFlag* cancel, Side side,
                          std::int32_t freq) {
    if (!arg) return {};
    bool isNew = false;
    Wave* w = nullptr;
    switch (side) {
        case Side::Left: w = arg->GetLeftWaveAtFreq(cancel, freq, isNew); break;
        case Side::Right: w = arg->GetRightWaveAtFreq(cancel, freq, isNew); break;
        case Side::Middle: w = arg->GetMonoWaveAtFreq(cancel, freq, isNew); break;
    }
    return {w, isNew};
}

Channels channelsOf(const Sound& s) {
    Channels ch;
    if (s.MoSt == 1) {
        ch.wave[0] = static_cast<const MonoSound&>(s).WaveMiddle;
        ch.side[0] = Side::Middle;
        ch.count = 1;
    } else {
        const auto& st = static_cast<const StereoSound&>(s);
        ch.wave[0] = st.WaveLeft;
        ch.side[0] = Side::Left;
        ch.wave[1] = st.WaveRight;
        ch.side[1] = Side::Right;
        ch.count = 2;
    }
    return ch;
}

SoundPtr wrapMono(CancelFlag* cancel, WavePtr wave, std::int32_t freq) {
    if (isCancelled(*cancel) || !wave) return nullptr;
    Sound* s = new (std::nothrow) MonoSound(wave.get(), freq);
    if (!s) return nullptr;
    wave.release();
    return SoundPtr(s);
}

SoundPtr wrapStereo(CancelFlag* cancel, WavePtr left, WavePtr right, std::int32_t freq) {
    if (isCancelled(*cancel) || !left || !right) return nullptr;
    Sound* s = new (std::nothrow) StereoSound(left.get(), right.get(), freq);
    if (!s) return nullptr;
    left.release();
    right.release();
    return SoundPtr(s);
}

Wave* resampleWhole(CancelFlag* cancel, const Wave* w, std::int32_t to, std::int32_t from) {
    if (w->getValues() == 0) return new (std::nothrow) Wave();
    return w->speedWhole(*cancel, static_cast<double>(to) / from).release();
}

Wave* resampleRange(CancelFlag* cancel, const Wave* w, std::int32_t to, std::int32_t from) {
    if (w->getValues() == 0) return new (std::nothrow) Wave();
    std::int32_t end = w->getValues();
    return w->speed(*cancel, static_cast<double>(to) / from, 0, end).release();
}

long double valueAt(const Wave& w, double fraction) {
    if (w.getValues() == 0) return 0.0L;
    const double x = (w.getValues() - 1) * fraction;
    const std::int32_t last = w.getValues() - 1;
    // Dice may overshoot 1 a little: never read past the last sample.
    long double v = x <= 0 ? w[0] : x >= last ? w[last] : sample(w, x);
    if (v < -32768.0L) v = -32768.0L;
    if (v > 32767.0L) v = 32767.0L;
    return v;
}

}  // namespace sound_detail

namespace {

std::string pointerText(const void* p) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%p", p);
    return buf;
}

// end -1 stands for the end of the wave.
std::int32_t resolvedEnd(const Wave* w, std::int32_t end) {
    return end == -1 ? w->getValues() : end;
}

// A wave of `count` samples of one value.
WavePtr constantWave(CancelFlag& cancel, std::int32_t count, WaveVal value) {
    WavePtr w = newWave(cancel, count);
    if (w) std::fill(w->data(), w->data() + count, value);
    return w;
}

}  // namespace

// ---- lifecycle, dump, duplicating access ----------------------------------------------

Sound::Sound(std::int32_t freq) : MoSt(0), Freq(freq), ProtectWave(false) {}

Sound::~Sound() = default;

void Sound::Dump() const {
    debugTrace("Sound.this = " + pointerText(this) + "\n");
    debugTrace("Sound.MoSt = " + std::to_string(MoSt) + "\n");
    debugTrace("Sound.Freq = " + std::to_string(Freq) + "\n");
    debugTrace("Sound.ProtectWave = " + std::to_string(ProtectWave ? 1 : 0) + "\n");
}

void Sound::SetProtectWave() { ProtectWave = true; }

namespace {

// The caller always owns what comes back: a borrowed wave is copied.
WavePtr owned(CancelFlag* cancel, Wave* w, bool isNew) {
    if (isNew) return WavePtr(w);
    return copyWave(*cancel, w);
}

}  // namespace

WavePtr Sound::DupMonoWave(CancelFlag* cancel, std::int32_t freq) const {
    bool isNew = false;
    Wave* w = freq != 0 ? GetMonoWaveAtFreq(cancel, freq, isNew) : GetMonoWave(cancel, isNew);
    return owned(cancel, w, isNew);
}

WavePtr Sound::DupLeftWave(CancelFlag* cancel, std::int32_t freq) const {
    bool isNew = false;
    Wave* w = freq != 0 ? GetLeftWaveAtFreq(cancel, freq, isNew) : GetLeftWave();
    return owned(cancel, w, isNew);
}

WavePtr Sound::DupRightWave(CancelFlag* cancel, std::int32_t freq) const {
    bool isNew = false;
    Wave* w = freq != 0 ? GetRightWaveAtFreq(cancel, freq, isNew) : GetRightWave();
    return owned(cancel, w, isNew);
}

// ---- editing operations: one body for both layouts ------------------------------------

SoundPtr Sound::Up(CancelFlag* cancel, WaveVal value, std::int32_t begin,
                   std::int32_t& end) const {
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->up(*cancel, value, b, e);
                     });
}

SoundPtr Sound::Block(CancelFlag* cancel, double blockTime, std::int32_t verticalCount,
                      std::int32_t begin, std::int32_t& end) const {
    const double blockLength = periodOf(Freq, blockTime);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->block(*cancel, blockLength, verticalCount, b, e);
                     });
}

SoundPtr Sound::MakeSilence(CancelFlag* cancel, double seconds, std::int32_t& begin,
                            std::int32_t& end) const {
    const std::int32_t length = lengthOf(Freq, seconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->makeSilence(*cancel, length, b, e);
                     });
}

SoundPtr Sound::MakeSilenceValues(CancelFlag* cancel, double count, std::int32_t& begin,
                                  std::int32_t& end) const {
    const std::int32_t length = truncToInt(count);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->makeSilence(*cancel, length, b, e);
                     });
}

SoundPtr Sound::MakeLine(CancelFlag* cancel, WaveVal first, WaveVal last, double seconds,
                         bool exponential, std::int32_t begin, std::int32_t& end) const {
    const std::int32_t length = lengthOf(Freq, seconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return exponential ? w->makeExpLine(*cancel, first, last, length, b, e)
                                            : w->makeLine(*cancel, first, last, length, b, e);
                     });
}

SoundPtr Sound::MakeBlockTriangle(CancelFlag* cancel, WaveVal first, WaveVal second,
                                  double period, double middle, double seconds,
                                  double startPhase, bool triangle, std::int32_t begin,
                                  std::int32_t& end) const {
    const double per = periodOf(Freq, period);
    const std::int32_t length = lengthOf(Freq, seconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->makeBlockTriangle(*cancel, first, second, per, middle,
                                                     length, startPhase, triangle, b, e);
                     });
}

SoundPtr Sound::MakeBlockTriangleEnv(CancelFlag* cancel, WaveVal first, WaveVal second,
                                     double period, const Sound* middleEnvelope,
                                     double seconds, double startPhase, bool triangle,
                                     std::int32_t begin, std::int32_t& end) const {
    const double per = periodOf(Freq, period);
    const std::int32_t length = lengthOf(Freq, seconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) {
                         FetchedWave env = argWave(middleEnvelope, cancel, side);
                         return w->makeBlockTriangleEnv(*cancel, first, second, per, env.get(),
                                                        length, startPhase, triangle, b, e);
                     });
}

SoundPtr Sound::MakeSinus(CancelFlag* cancel, WaveVal high, WaveVal low, double period,
                          double count, double startAngle, std::int32_t begin,
                          std::int32_t& end) const {
    const double per = periodOf(Freq, period);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->makeSinus(*cancel, high, low, per, count, startAngle, b, e);
                     });
}

SoundPtr Sound::MakeNoise(CancelFlag* cancel, WaveVal volume, double seconds,
                          std::int32_t begin, std::int32_t& end) const {
    const std::int32_t length = lengthOf(Freq, seconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->makeNoise(*cancel, volume, length, b, e);
                     });
}

SoundPtr Sound::MakeMFreq(CancelFlag* cancel, double seconds, const Sound* form,
                          std::int32_t freqCount, const double* volume, const double* period,
                          const double* startAngle, const double* factor, std::int32_t begin,
                          std::int32_t& end) const {
    const std::int32_t length = lengthOf(Freq, seconds);
    std::vector<double> per(static_cast<std::size_t>(std::max(freqCount, 0)));
    for (std::size_t i = 0; i < per.size(); ++i) per[i] = periodOf(Freq, period[i]);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) {
                         FetchedWave source = argWave(form, cancel, side);
                         return w->makeMFreq(*cancel, length, source.get(), freqCount, volume,
                                             per.data(), startAngle, factor, b, e);
                     });
}

SoundPtr Sound::MakeMFreqCount(CancelFlag* cancel, double seconds, const Sound* form,
                               std::int32_t count, const MFreqPartial* partials,
                               std::int32_t begin, std::int32_t& end) const {
    ORV_ASSERT(count > 0, kUnit);
    const auto n = static_cast<std::size_t>(count);
    std::vector<double> volume(n), period(n), startAngle(n), factor(n);
    for (std::size_t i = 0; i < n; ++i) {
        const MFreqPartial& p = partials[i];
        volume[i] = p.volume;
        period[i] = p.period;
        startAngle[i] = p.startAngle;
        // The volume reaches volumeFactor after volumeFactorTime seconds.
        const double samples = Freq * p.volumeFactorTime;
        factor[i] = samples > 0 ? std::pow(p.volumeFactor, 1.0 / samples) : p.volumeFactor;
    }
    return MakeMFreq(cancel, seconds, form, count, volume.data(), period.data(),
                     startAngle.data(), factor.data(), begin, end);
}

void Sound::DrawLine(CancelFlag* cancel, std::int32_t begin, WaveVal beginValue,
                     std::int32_t end, WaveVal endValue) {
    runInPlace(*this,
               [&](Wave* w, Side) { w->drawLine(*cancel, begin, beginValue, end, endValue); });
}

SoundPtr Sound::Length(CancelFlag* cancel, double factor, std::int32_t begin,
                       std::int32_t& end) const {
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->speed(*cancel, factor, b, e);
                     });
}

SoundPtr Sound::Resample(CancelFlag* cancel, double factor) const {
    if (GetValues() == 0) return NewEmpty(cancel);
    return runPlain(*this, cancel,
                    [&](const Wave* w, Side) { return w->speedWhole(*cancel, factor); });
}

SoundPtr Sound::RollOutEnv(CancelFlag* cancel, const Sound* speedEnvelope, double speed,
                           double lengthFactor, double startPos, std::int32_t begin,
                           std::int32_t& end) const {
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) {
                         FetchedWave env = argWave(speedEnvelope, cancel, side);
                         return w->lengthSpeedEnv(*cancel, env.get(), lengthFactor, speed,
                                                  startPos, b, e);
                     });
}

SoundPtr Sound::RollOut(CancelFlag* cancel, double speed, double lengthFactor, double startPos,
                        std::int32_t begin, std::int32_t& end) const {
    // The constant speed is the envelope form with an envelope held at full scale.
    WavePtr flat = constantWave(*cancel, 2, 32767);
    if (!flat) return nullptr;
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->lengthSpeedEnv(*cancel, flat.get(), lengthFactor, speed,
                                                  startPos, b, e);
                     });
}

SoundPtr Sound::RollIn(CancelFlag* cancel, double seconds, double targetSeconds,
                       std::int32_t begin, std::int32_t& end) const {
    const std::int32_t length = lengthOf(Freq, seconds);
    const std::int32_t target = positionOf(Freq, targetSeconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->rollIn(*cancel, length, target, b, e);
                     });
}

SoundPtr Sound::Rotate(CancelFlag* cancel, double seconds, std::int32_t begin,
                       std::int32_t& end) const {
    const std::int32_t shift = positionOf(Freq, seconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->rotate(*cancel, shift, b, e);
                     });
}

SoundPtr Sound::Volume(CancelFlag* cancel, double factor, std::int32_t begin,
                       std::int32_t& end) const {
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->volume(*cancel, factor, b, e);
                     });
}

void Sound::VolumeInPlace(CancelFlag* cancel, double factor, std::int32_t begin,
                          std::int32_t& end) {
    const Channels ch = channelsOf(*this);
    std::int32_t end1 = end;
    ch.wave[0]->volumeInPlace(*cancel, factor, begin, end1);
    if (ch.count == 2) {
        std::int32_t end2 = end;
        ch.wave[1]->volumeInPlace(*cancel, factor, begin, end2);
        if (!isCancelled(*cancel)) checkSameRange(begin, begin, end1, end2);
    }
    end = end1;
}

SoundPtr Sound::VolumeEnv(CancelFlag* cancel, const Sound* envelope, std::int32_t begin,
                          std::int32_t& end) const {
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) {
                         FetchedWave env = argWave(envelope, cancel, side);
                         return w->volumeEnv(*cancel, env.get(), b, e);
                     });
}

namespace {

inline constexpr double kMaxTarget = 32767.0;
inline constexpr double kSoftTarget = 22936.9;  // 0.7 x 32767: headroom after filtering

// Both channels get the factor of the louder one, so the balance stays.
double maxFactor(const Sound& s, CancelFlag* cancel, std::int32_t begin, std::int32_t end,
                 double target) {
    const Channels ch = channelsOf(s);
    std::int32_t peak = 0;
    for (int i = 0; i < ch.count; ++i)
        peak = std::max(peak, ch.wave[i]->maxAbs(*cancel, begin, end));
    return peak == 0 ? 0.0 : target / peak;
}

}  // namespace

SoundPtr Sound::MaxVolume(CancelFlag* cancel, std::int32_t begin, std::int32_t& end) const {
    return Volume(cancel, maxFactor(*this, cancel, begin, end, kMaxTarget), begin, end);
}

SoundPtr Sound::MaxVolumeSoft(CancelFlag* cancel, std::int32_t begin, std::int32_t& end) const {
    return Volume(cancel, maxFactor(*this, cancel, begin, end, kSoftTarget), begin, end);
}

void Sound::MaxVolumeSoftInPlace(CancelFlag* cancel, std::int32_t begin, std::int32_t& end) {
    VolumeInPlace(cancel, maxFactor(*this, cancel, begin, end, kSoftTarget), begin, end);
}

namespace {

// How much of `other` a mix over [begin, end) uses: -1 (all of it) for an empty range.
std::int32_t otherEndFor(std::int32_t begin, std::int32_t end) {
    return end > begin ? end - begin : -1;
}

std::int32_t usedOf(const Wave* other, std::int32_t otherEnd) {
    return otherEnd >= 0 && otherEnd < other->getValues() ? otherEnd : other->getValues();
}

}  // namespace

SoundPtr Sound::MixAlignBegin(CancelFlag* cancel, const Sound* other, std::int32_t& begin,
                              std::int32_t& end) const {
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) -> WavePtr {
                         FetchedWave o = argWaveAtFreq(other, cancel, side, Freq);
                         if (!o.get()) return nullptr;
                         e = resolvedEnd(w, e);
                         const std::int32_t otherEnd = otherEndFor(b, e);
                         e = b + usedOf(o.get(), otherEnd);
                         return w->mixAt(*cancel, o.get(), b, otherEnd, false);
                     });
}

SoundPtr Sound::MixAlignEnd(CancelFlag* cancel, const Sound* other, std::int32_t& begin,
                            std::int32_t& end) const {
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) -> WavePtr {
                         FetchedWave o = argWaveAtFreq(other, cancel, side, Freq);
                         if (!o.get()) return nullptr;
                         e = resolvedEnd(w, e);
                         const std::int32_t otherEnd = otherEndFor(b, e);
                         const std::int32_t position = e;
                         const std::int32_t offset = position - usedOf(o.get(), otherEnd);
                         const std::int32_t lead = offset < 0 ? -offset : 0;
                         b = offset + lead;
                         e = position + lead;
                         return w->mixEndingAt(*cancel, o.get(), position, otherEnd, true);
                     });
}

SoundPtr Sound::MixStretch(CancelFlag* cancel, const Sound* other, std::int32_t& begin,
                           std::int32_t& end) const {
    if (end != -1 && end <= begin) return MixAlignBegin(cancel, other, begin, end);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) -> WavePtr {
                         FetchedWave o = argWaveAtFreq(other, cancel, side, Freq);
                         if (!o.get()) return nullptr;
                         e = resolvedEnd(w, e);
                         if (o.get()->getValues() == 0) return copyWave(*cancel, w);
                         if (e <= b) {  // nothing to stretch over: all of it at begin
                             e = b + o.get()->getValues();
                             return w->mixAt(*cancel, o.get(), b, -1, false);
                         }
                         WavePtr stretched = o.get()->stretchWhole(*cancel, e - b, false);
                         if (!stretched) return nullptr;
                         return w->mixAt(*cancel, stretched.get(), b, -1, false);
                     });
}

void Sound::MixCycleAt(CancelFlag* cancel, const Sound* other, double seconds, double factor) {
    MixCycle(cancel, other, positionOf(Freq, seconds), factor);
}

void Sound::MixCycle(CancelFlag* cancel, const Sound* other, std::int32_t after,
                     double factor) {
    runInPlace(*this, [&](Wave* w, Side side) {
        FetchedWave o = argWaveAtFreq(other, cancel, side, Freq);
        if (o.get()) w->mixAfter(*cancel, o.get(), after, factor);
    });
}

void Sound::MixCycleSimple(CancelFlag* cancel, const Sound* other, std::int32_t after) {
    runInPlace(*this, [&](Wave* w, Side side) {
        FetchedWave o = argWaveAtFreq(other, cancel, side, Freq);
        if (o.get()) w->mixAfter(*cancel, o.get(), after);
    });
}

void Sound::MixCycleAfterThis(CancelFlag* cancel, const Sound* other, std::int32_t after) {
    runInPlace(*this, [&](Wave* w, Side side) {
        FetchedWave o = argWaveAtFreq(other, cancel, side, Freq);
        if (o.get()) w->mixAfterCyclic(*cancel, o.get(), after);
    });
}

SoundPtr Sound::Remove(CancelFlag* cancel, std::int32_t begin, std::int32_t end) const {
    if (begin == 0 && (end == GetValues() || end == -1)) return NewEmpty(cancel);
    return runPlain(*this, cancel,
                    [&](const Wave* w, Side) { return w->remove(*cancel, begin, end); });
}

SoundPtr Sound::NewEmpty(CancelFlag*) const {
    Sound* s = MoSt == 1 ? static_cast<Sound*>(new (std::nothrow) MonoSound(Freq))
                         : static_cast<Sound*>(new (std::nothrow) StereoSound(Freq));
    return SoundPtr(s);
}

SoundPtr Sound::CopyRange(CancelFlag* cancel, std::int32_t begin, std::int32_t end) const {
    if (begin == end) return NewEmpty(cancel);
    return runPlain(*this, cancel,
                    [&](const Wave* w, Side) { return w->extract(*cancel, begin, end); });
}

SoundPtr Sound::Insert(CancelFlag* cancel, const Sound* other, std::int32_t begin,
                       std::int32_t& end) const {
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) -> WavePtr {
                         FetchedWave o = argWaveAtFreq(other, cancel, side, Freq);
                         if (!o.get()) return nullptr;
                         e = resolvedEnd(w, e);
                         WavePtr r = w->replace(*cancel, o.get(), b, e);
                         e = b + o.get()->getValues();
                         return r;
                     });
}

SoundPtr Sound::Reverse(CancelFlag* cancel, std::int32_t begin, std::int32_t& end) const {
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->reverse(*cancel, b, e);
                     });
}

SoundPtr Sound::Distort(CancelFlag* cancel, const Sound* curve, std::int32_t begin,
                        std::int32_t& end) const {
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) {
                         FetchedWave c = argWave(curve, cancel, side);
                         return w->distort(*cancel, c.get(), b, e);
                     });
}

SoundPtr Sound::ApplyFilter(CancelFlag* cancel, PassFilter filter, double seconds,
                            double factor, int countBer, int countCmd, std::int32_t begin,
                            std::int32_t end) const {
    const double time = periodOf(Freq, seconds);
    return runPlain(*this, cancel, [&](const Wave* w, Side) {
        return filter(w, *cancel, time, factor, countBer, countCmd, begin, end);
    });
}

SoundPtr Sound::ApplyFilterEnv(CancelFlag* cancel, PassFilterEnv filter, const Sound* envelope,
                               double factor, int countBer, int countCmd, std::int32_t begin,
                               std::int32_t end) const {
    return runPlain(*this, cancel, [&](const Wave* w, Side side) {
        FetchedWave env = argWave(envelope, cancel, side);
        return filter(w, *cancel, env.get(), factor, countBer, countCmd, Freq, begin, end);
    });
}

SoundPtr Sound::PerEcho(CancelFlag* cancel, double seconds, double volumeFactor,
                        std::int32_t count, std::int32_t& begin, std::int32_t& end) const {
    const double diffTime = periodOf(Freq, seconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return w->perEcho(*cancel, diffTime, volumeFactor, count, b, e);
                     });
}

SoundPtr Sound::PerEchoEnv(CancelFlag* cancel, double seconds, const Sound* volumeEnvelope,
                           std::int32_t count, std::int32_t& begin, std::int32_t& end) const {
    const double diffTime = periodOf(Freq, seconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) {
                         FetchedWave vol = argWave(volumeEnvelope, cancel, side);
                         return w->perEchoVolumeEnv(*cancel, diffTime, vol.get(), count, b, e);
                     });
}

SoundPtr Sound::PerEchoTime(CancelFlag* cancel, double seconds, const Sound* timeEnvelope,
                            double volumeFactor, std::int32_t count, std::int32_t& begin,
                            std::int32_t& end) const {
    const double diffTime = periodOf(Freq, seconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) {
                         FetchedWave time = argWave(timeEnvelope, cancel, side);
                         return w->perEchoTimeEnv(*cancel, diffTime, time.get(), volumeFactor,
                                                  count, b, e);
                     });
}

SoundPtr Sound::PerEchoTimeEnv(CancelFlag* cancel, double seconds, const Sound* timeEnvelope,
                               const Sound* volumeEnvelope, std::int32_t count,
                               std::int32_t& begin, std::int32_t& end) const {
    const double diffTime = periodOf(Freq, seconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) {
                         FetchedWave time = argWave(timeEnvelope, cancel, side);
                         FetchedWave vol = argWave(volumeEnvelope, cancel, side);
                         return w->perEchoEnv(*cancel, diffTime, time.get(), vol.get(), count, b,
                                              e);
                     });
}

SoundPtr Sound::FilterBlock(CancelFlag* cancel, double seconds, std::int32_t& begin,
                            std::int32_t& end) const {
    const double time = periodOf(Freq, seconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         return BlockFilter(w, *cancel, time, b, e);
                     });
}

SoundPtr Sound::FilterBlockEnv(CancelFlag* cancel, double maxSeconds, const Sound* envelope,
                               std::int32_t& begin, std::int32_t& end) const {
    const double maxTime = periodOf(Freq, maxSeconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) {
                         FetchedWave env = argWave(envelope, cancel, side);
                         return BlockFilterEnv(w, *cancel, maxTime, env.get(), b, e);
                     });
}

SoundPtr Sound::TempoPitchEcho(CancelFlag* cancel, double speed, double lengthFactor,
                               double pitchStep, double blockSeconds, bool highQuality) const {
    if (GetValues() == 0) return NewEmpty(cancel);
    std::int32_t end = -1;
    return TempoPitch(cancel, speed, 0.0, lengthFactor, pitchStep, blockSeconds, highQuality, 0,
                      end);
}

SoundPtr Sound::TempoPitch(CancelFlag* cancel, double speed, double startPos,
                           double lengthFactor, double pitchStep, double blockSeconds,
                           bool highQuality, std::int32_t begin, std::int32_t& end) const {
    const double blockTime = periodOf(Freq, blockSeconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side, std::int32_t& b, std::int32_t& e) {
                         if (highQuality)
                             return w->tempoPitchCross(*cancel, speed, nullptr, startPos,
                                                       lengthFactor, pitchStep, nullptr,
                                                       blockTime, b, e);
                         return w->tempoPitch(*cancel, speed, startPos, lengthFactor, pitchStep,
                                              blockTime, b, e);
                     });
}

SoundPtr Sound::TempoPitchEnv1(CancelFlag* cancel, double speed, const Sound* speedEnvelope,
                               double startPos, double lengthFactor, double pitchStep,
                               double blockSeconds, std::int32_t begin,
                               std::int32_t& end) const {
    return TempoPitchEnv3(cancel, speed, speedEnvelope, startPos, lengthFactor, pitchStep,
                          nullptr, blockSeconds, begin, end);
}

SoundPtr Sound::TempoPitchEnv2(CancelFlag* cancel, double speed, double startPos,
                               double lengthFactor, double pitchStep,
                               const Sound* pitchEnvelope, double blockSeconds,
                               std::int32_t begin, std::int32_t& end) const {
    return TempoPitchEnv3(cancel, speed, nullptr, startPos, lengthFactor, pitchStep,
                          pitchEnvelope, blockSeconds, begin, end);
}

SoundPtr Sound::TempoPitchEnv3(CancelFlag* cancel, double speed, const Sound* speedEnvelope,
                               double startPos, double lengthFactor, double pitchStep,
                               const Sound* pitchEnvelope, double blockSeconds,
                               std::int32_t begin, std::int32_t& end) const {
    const double blockTime = periodOf(Freq, blockSeconds);
    return runRanged(*this, cancel, begin, end,
                     [&](const Wave* w, Side side, std::int32_t& b, std::int32_t& e) {
                         FetchedWave sp = argWave(speedEnvelope, cancel, side);
                         FetchedWave pi = argWave(pitchEnvelope, cancel, side);
                         return w->tempoPitchCross(*cancel, speed, sp.get(), startPos,
                                                   lengthFactor, pitchStep, pi.get(), blockTime,
                                                   b, e);
                     });
}

SoundPtr Sound::ApplyResonantFilter(CancelFlag* cancel, const ResonatorFamily& family,
                                    double period, double width, const Sound* freqEnvelope,
                                    const Sound* widthEnvelope, std::int32_t begin,
                                    std::int32_t end) const {
    const double per = periodOf(Freq, period);
    const double freq = Freq;
    return runPlain(*this, cancel, [&](const Wave* w, Side side) {
        FetchedWave fe = argWave(freqEnvelope, cancel, side);
        FetchedWave we = argWave(widthEnvelope, cancel, side);
        if (freqEnvelope && widthEnvelope)
            return family.bothEnv(w, *cancel, fe.get(), we.get(), freq, begin, end);
        if (freqEnvelope) return family.freqEnv(w, *cancel, fe.get(), width, freq, begin, end);
        if (widthEnvelope) return family.widthEnv(w, *cancel, per, we.get(), begin, end);
        return family.constant(w, *cancel, per, width, begin, end);
    });
}

}  // namespace orv
