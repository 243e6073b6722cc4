// StereoSound: two channels of equal length. Its mono form is a copy of the LEFT channel
// (the two-wave mix over an empty range), not an average: files and envelopes made from
// stereo sounds rely on that. The editing operations run their one body (sound.cpp) on the
// left and then the right channel.
#include <cstdio>
#include <new>
#include <string>

#include "core/filter_support.h"
#include "core/platform.h"
#include "core/sound.h"
#include "core/sound_channels.h"

namespace orv {

using namespace sound_detail;

StereoSound::StereoSound(std::int32_t freq)
    : Sound(freq), WaveLeft(new Wave()), WaveRight(new Wave()) {
    MoSt = 2;
}

StereoSound::StereoSound(Wave* waveLeft, Wave* waveRight, std::int32_t freq)
    : Sound(freq), WaveLeft(waveLeft), WaveRight(waveRight) {
    MoSt = 2;
    ORV_ASSERT(waveLeft->getValues() == waveRight->getValues(), kUnit);
}

StereoSound::StereoSound(WavePtr waveLeft, WavePtr waveRight, std::int32_t freq)
    : StereoSound(waveLeft.release(), waveRight.release(), freq) {}

StereoSound::StereoSound(const Sound& other, CancelFlag* cancel)
    : Sound(other.Freq), WaveLeft(nullptr), WaveRight(nullptr) {
    MoSt = 2;
    if (other.GetValues() != 0) {
        WaveLeft = other.DupLeftWave(cancel, 0).release();
        WaveRight = other.DupRightWave(cancel, 0).release();
    }
    // A failed copy (flag set) still leaves two channels of equal length.
    if (!WaveLeft || !WaveRight) {
        delete WaveLeft;
        delete WaveRight;
        WaveLeft = new Wave();
        WaveRight = new Wave();
    }
}

StereoSound::StereoSound(const StereoSound& other)
    : Sound(other.Freq), WaveLeft(new Wave()), WaveRight(new Wave()) {
    MoSt = 2;
    debugTrace("Fout: StereoSound(const StereoSound &other) mag niet aangeroepen worden!\n");
}

StereoSound::~StereoSound() {
    if (!ProtectWave) {
        delete WaveLeft;
        delete WaveRight;
    }
}

void StereoSound::Dump() const {
    Sound::Dump();
    char buf[32];
    std::snprintf(buf, sizeof buf, "%p", static_cast<const void*>(WaveLeft));
    debugTrace(std::string("StereoSound.WaveLeft = ") + buf + "\n");
    if (WaveLeft) WaveLeft->dump();
    std::snprintf(buf, sizeof buf, "%p", static_cast<const void*>(WaveRight));
    debugTrace(std::string("StereoSound.WaveRight = ") + buf + "\n");
    if (WaveRight) WaveRight->dump();
}

std::int32_t StereoSound::GetValues() const { return WaveLeft ? WaveLeft->getValues() : 0; }

long double StereoSound::GetTime() const { return static_cast<long double>(GetValues()) / Freq; }

Wave* StereoSound::GetMonoWave(CancelFlag* cancel, bool& isNew) const {
    isNew = true;
    return WaveLeft->average(*cancel, WaveRight).release();
}

Wave* StereoSound::GetLeftWave() const { return WaveLeft; }

Wave* StereoSound::GetRightWave() const { return WaveRight; }

Wave* StereoSound::GetMonoWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const {
    Wave* mono = GetMonoWave(cancel, isNew);
    isNew = true;
    if (freq == Freq || !mono) return mono;
    Wave* r = resampleWhole(cancel, mono, freq, Freq);
    delete mono;
    return r;
}

Wave* StereoSound::GetLeftWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const {
    isNew = freq != Freq;
    if (!isNew) return WaveLeft;
    return resampleRange(cancel, WaveLeft, freq, Freq);
}

Wave* StereoSound::GetRightWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const {
    isNew = freq != Freq;
    if (!isNew) return WaveRight;
    return resampleRange(cancel, WaveRight, freq, Freq);
}

Wave* StereoSound::GetMiddleWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const {
    return GetMonoWaveAtFreq(cancel, freq, isNew);
}

long double StereoSound::GetValueAt(CancelFlag* cancel, double fraction) const {
    bool isNew = false;
    Wave* w = GetMonoWave(cancel, isNew);
    FetchedWave mono(w, isNew);
    if (!mono.get()) return 0.0L;
    return valueAt(*mono.get(), fraction);
}

SoundPtr StereoSound::ChangeFreq(CancelFlag* cancel, double newFreq) const {
    if (GetValues() < 1)
        return wrapStereo(cancel, WavePtr(new (std::nothrow) Wave()),
                          WavePtr(new (std::nothrow) Wave()), truncToInt(newFreq));
    return wrapStereo(cancel, WaveLeft->speedWhole(*cancel, newFreq / Freq),
                      WaveRight->speedWhole(*cancel, newFreq / Freq), truncToInt(newFreq));
}

void StereoSound::MixCycleAfterThis(CancelFlag* cancel, const Sound* other, std::int32_t after) {
    debugTrace("in StereoSound::MixCycleAfterThis\n");
    Sound::MixCycleAfterThis(cancel, other, after);
    debugTrace("uit StereoSound::MixCycleAfterThis\n");
}

// ---- editing operations: the shared bodies ---------------------------------------------

SoundPtr StereoSound::Up(CancelFlag* cancel, WaveVal value, std::int32_t begin,
                         std::int32_t& end) const {
    return Sound::Up(cancel, value, begin, end);
}

SoundPtr StereoSound::Block(CancelFlag* cancel, double blockTime, std::int32_t verticalCount,
                            std::int32_t begin, std::int32_t& end) const {
    return Sound::Block(cancel, blockTime, verticalCount, begin, end);
}

SoundPtr StereoSound::MakeSilence(CancelFlag* cancel, double seconds, std::int32_t& begin,
                                  std::int32_t& end) const {
    return Sound::MakeSilence(cancel, seconds, begin, end);
}

SoundPtr StereoSound::MakeSilenceValues(CancelFlag* cancel, double count, std::int32_t& begin,
                                        std::int32_t& end) const {
    return Sound::MakeSilenceValues(cancel, count, begin, end);
}

SoundPtr StereoSound::MakeLine(CancelFlag* cancel, WaveVal first, WaveVal last, double seconds,
                               bool exponential, std::int32_t begin, std::int32_t& end) const {
    return Sound::MakeLine(cancel, first, last, seconds, exponential, begin, end);
}

SoundPtr StereoSound::MakeBlockTriangle(CancelFlag* cancel, WaveVal first, WaveVal second,
                                        double period, double middle, double seconds,
                                        double startPhase, bool triangle, std::int32_t begin,
                                        std::int32_t& end) const {
    return Sound::MakeBlockTriangle(cancel, first, second, period, middle, seconds, startPhase,
                                    triangle, begin, end);
}

SoundPtr StereoSound::MakeBlockTriangleEnv(CancelFlag* cancel, WaveVal first, WaveVal second,
                                           double period, const Sound* middleEnvelope,
                                           double seconds, double startPhase, bool triangle,
                                           std::int32_t begin, std::int32_t& end) const {
    return Sound::MakeBlockTriangleEnv(cancel, first, second, period, middleEnvelope, seconds,
                                       startPhase, triangle, begin, end);
}

SoundPtr StereoSound::MakeSinus(CancelFlag* cancel, WaveVal high, WaveVal low, double period,
                                double count, double startAngle, std::int32_t begin,
                                std::int32_t& end) const {
    return Sound::MakeSinus(cancel, high, low, period, count, startAngle, begin, end);
}

SoundPtr StereoSound::MakeNoise(CancelFlag* cancel, WaveVal volume, double seconds,
                                std::int32_t begin, std::int32_t& end) const {
    return Sound::MakeNoise(cancel, volume, seconds, begin, end);
}

SoundPtr StereoSound::MakeMFreq(CancelFlag* cancel, double seconds, const Sound* form,
                                std::int32_t freqCount, const double* volume, const double* period,
                                const double* startAngle, const double* factor, std::int32_t begin,
                                std::int32_t& end) const {
    return Sound::MakeMFreq(cancel, seconds, form, freqCount, volume, period, startAngle, factor,
                            begin, end);
}

SoundPtr StereoSound::MakeMFreqCount(CancelFlag* cancel, double seconds, const Sound* form,
                                     std::int32_t count, const MFreqPartial* partials,
                                     std::int32_t begin, std::int32_t& end) const {
    return Sound::MakeMFreqCount(cancel, seconds, form, count, partials, begin, end);
}

void StereoSound::DrawLine(CancelFlag* cancel, std::int32_t begin, WaveVal beginValue,
                           std::int32_t end, WaveVal endValue) {
    Sound::DrawLine(cancel, begin, beginValue, end, endValue);
}

SoundPtr StereoSound::Length(CancelFlag* cancel, double factor, std::int32_t begin,
                             std::int32_t& end) const {
    return Sound::Length(cancel, factor, begin, end);
}

SoundPtr StereoSound::Resample(CancelFlag* cancel, double factor) const {
    return Sound::Resample(cancel, factor);
}

SoundPtr StereoSound::RollOutEnv(CancelFlag* cancel, const Sound* speedEnvelope, double speed,
                                 double lengthFactor, double startPos, std::int32_t begin,
                                 std::int32_t& end) const {
    return Sound::RollOutEnv(cancel, speedEnvelope, speed, lengthFactor, startPos, begin, end);
}

SoundPtr StereoSound::RollOut(CancelFlag* cancel, double speed, double lengthFactor,
                              double startPos, std::int32_t begin, std::int32_t& end) const {
    return Sound::RollOut(cancel, speed, lengthFactor, startPos, begin, end);
}

SoundPtr StereoSound::RollIn(CancelFlag* cancel, double seconds, double targetSeconds,
                             std::int32_t begin, std::int32_t& end) const {
    return Sound::RollIn(cancel, seconds, targetSeconds, begin, end);
}

SoundPtr StereoSound::Rotate(CancelFlag* cancel, double seconds, std::int32_t begin,
                             std::int32_t& end) const {
    return Sound::Rotate(cancel, seconds, begin, end);
}

SoundPtr StereoSound::Volume(CancelFlag* cancel, double factor, std::int32_t begin,
                             std::int32_t& end) const {
    return Sound::Volume(cancel, factor, begin, end);
}

void StereoSound::VolumeInPlace(CancelFlag* cancel, double factor, std::int32_t begin,
                                std::int32_t& end) {
    Sound::VolumeInPlace(cancel, factor, begin, end);
}

SoundPtr StereoSound::VolumeEnv(CancelFlag* cancel, const Sound* envelope, std::int32_t begin,
                                std::int32_t& end) const {
    return Sound::VolumeEnv(cancel, envelope, begin, end);
}

SoundPtr StereoSound::MaxVolume(CancelFlag* cancel, std::int32_t begin, std::int32_t& end) const {
    return Sound::MaxVolume(cancel, begin, end);
}

SoundPtr StereoSound::MaxVolumeSoft(CancelFlag* cancel, std::int32_t begin,
                                    std::int32_t& end) const {
    return Sound::MaxVolumeSoft(cancel, begin, end);
}

void StereoSound::MaxVolumeSoftInPlace(CancelFlag* cancel, std::int32_t begin, std::int32_t& end) {
    Sound::MaxVolumeSoftInPlace(cancel, begin, end);
}

SoundPtr StereoSound::MixAlignBegin(CancelFlag* cancel, const Sound* other, std::int32_t& begin,
                                    std::int32_t& end) const {
    return Sound::MixAlignBegin(cancel, other, begin, end);
}

SoundPtr StereoSound::MixAlignEnd(CancelFlag* cancel, const Sound* other, std::int32_t& begin,
                                  std::int32_t& end) const {
    return Sound::MixAlignEnd(cancel, other, begin, end);
}

SoundPtr StereoSound::MixStretch(CancelFlag* cancel, const Sound* other, std::int32_t& begin,
                                 std::int32_t& end) const {
    return Sound::MixStretch(cancel, other, begin, end);
}

void StereoSound::MixCycleAt(CancelFlag* cancel, const Sound* other, double seconds,
                             double factor) {
    Sound::MixCycleAt(cancel, other, seconds, factor);
}

void StereoSound::MixCycle(CancelFlag* cancel, const Sound* other, std::int32_t after,
                           double factor) {
    Sound::MixCycle(cancel, other, after, factor);
}

void StereoSound::MixCycleSimple(CancelFlag* cancel, const Sound* other, std::int32_t after) {
    Sound::MixCycleSimple(cancel, other, after);
}

SoundPtr StereoSound::Remove(CancelFlag* cancel, std::int32_t begin, std::int32_t end) const {
    return Sound::Remove(cancel, begin, end);
}

SoundPtr StereoSound::NewEmpty(CancelFlag* cancel) const { return Sound::NewEmpty(cancel); }

SoundPtr StereoSound::CopyRange(CancelFlag* cancel, std::int32_t begin, std::int32_t end) const {
    return Sound::CopyRange(cancel, begin, end);
}

SoundPtr StereoSound::Insert(CancelFlag* cancel, const Sound* other, std::int32_t begin,
                             std::int32_t& end) const {
    return Sound::Insert(cancel, other, begin, end);
}

SoundPtr StereoSound::Reverse(CancelFlag* cancel, std::int32_t begin, std::int32_t& end) const {
    return Sound::Reverse(cancel, begin, end);
}

SoundPtr StereoSound::Distort(CancelFlag* cancel, const Sound* curve, std::int32_t begin,
                              std::int32_t& end) const {
    return Sound::Distort(cancel, curve, begin, end);
}

SoundPtr StereoSound::ApplyFilter(CancelFlag* cancel, PassFilter filter, double seconds,
                                  double factor, int countBer, int countCmd, std::int32_t begin,
                                  std::int32_t end) const {
    // Low- and high-pass run both channels in one loop: the same results, twice the pace.
    WavePtr left, right;
    if (filter_detail::passPair(filter, WaveLeft, WaveRight, *cancel, periodOf(Freq, seconds),
                                factor, countBer, countCmd, begin, end, left, right))
        return wrapStereo(cancel, std::move(left), std::move(right), Freq);
    return Sound::ApplyFilter(cancel, filter, seconds, factor, countBer, countCmd, begin, end);
}

SoundPtr StereoSound::ApplyFilterEnv(CancelFlag* cancel, PassFilterEnv filter,
                                     const Sound* envelope, double factor, int countBer,
                                     int countCmd, std::int32_t begin, std::int32_t end) const {
    return Sound::ApplyFilterEnv(cancel, filter, envelope, factor, countBer, countCmd, begin, end);
}

SoundPtr StereoSound::PerEcho(CancelFlag* cancel, double seconds, double volumeFactor,
                              std::int32_t count, std::int32_t& begin, std::int32_t& end) const {
    return Sound::PerEcho(cancel, seconds, volumeFactor, count, begin, end);
}

SoundPtr StereoSound::PerEchoEnv(CancelFlag* cancel, double seconds, const Sound* volumeEnvelope,
                                 std::int32_t count, std::int32_t& begin, std::int32_t& end) const {
    return Sound::PerEchoEnv(cancel, seconds, volumeEnvelope, count, begin, end);
}

SoundPtr StereoSound::PerEchoTime(CancelFlag* cancel, double seconds, const Sound* timeEnvelope,
                                  double volumeFactor, std::int32_t count, std::int32_t& begin,
                                  std::int32_t& end) const {
    return Sound::PerEchoTime(cancel, seconds, timeEnvelope, volumeFactor, count, begin, end);
}

SoundPtr StereoSound::PerEchoTimeEnv(CancelFlag* cancel, double seconds, const Sound* timeEnvelope,
                                     const Sound* volumeEnvelope, std::int32_t count,
                                     std::int32_t& begin, std::int32_t& end) const {
    return Sound::PerEchoTimeEnv(cancel, seconds, timeEnvelope, volumeEnvelope, count, begin, end);
}

SoundPtr StereoSound::FilterBlock(CancelFlag* cancel, double seconds, std::int32_t& begin,
                                  std::int32_t& end) const {
    return Sound::FilterBlock(cancel, seconds, begin, end);
}

SoundPtr StereoSound::FilterBlockEnv(CancelFlag* cancel, double maxSeconds, const Sound* envelope,
                                     std::int32_t& begin, std::int32_t& end) const {
    return Sound::FilterBlockEnv(cancel, maxSeconds, envelope, begin, end);
}

SoundPtr StereoSound::TempoPitchEcho(CancelFlag* cancel, double speed, double lengthFactor,
                                     double pitchStep, double blockSeconds,
                                     bool highQuality) const {
    return Sound::TempoPitchEcho(cancel, speed, lengthFactor, pitchStep, blockSeconds, highQuality);
}

SoundPtr StereoSound::TempoPitch(CancelFlag* cancel, double speed, double startPos,
                                 double lengthFactor, double pitchStep, double blockSeconds,
                                 bool highQuality, std::int32_t begin, std::int32_t& end) const {
    return Sound::TempoPitch(cancel, speed, startPos, lengthFactor, pitchStep, blockSeconds,
                             highQuality, begin, end);
}

SoundPtr StereoSound::TempoPitchEnv1(CancelFlag* cancel, double speed, const Sound* speedEnvelope,
                                     double startPos, double lengthFactor, double pitchStep,
                                     double blockSeconds, std::int32_t begin,
                                     std::int32_t& end) const {
    return Sound::TempoPitchEnv1(cancel, speed, speedEnvelope, startPos, lengthFactor, pitchStep,
                                 blockSeconds, begin, end);
}

SoundPtr StereoSound::TempoPitchEnv2(CancelFlag* cancel, double speed, double startPos,
                                     double lengthFactor, double pitchStep,
                                     const Sound* pitchEnvelope, double blockSeconds,
                                     std::int32_t begin, std::int32_t& end) const {
    return Sound::TempoPitchEnv2(cancel, speed, startPos, lengthFactor, pitchStep, pitchEnvelope,
                                 blockSeconds, begin, end);
}

SoundPtr StereoSound::TempoPitchEnv3(CancelFlag* cancel, double speed, const Sound* speedEnvelope,
                                     double startPos, double lengthFactor, double pitchStep,
                                     const Sound* pitchEnvelope, double blockSeconds,
                                     std::int32_t begin, std::int32_t& end) const {
    return Sound::TempoPitchEnv3(cancel, speed, speedEnvelope, startPos, lengthFactor, pitchStep,
                                 pitchEnvelope, blockSeconds, begin, end);
}

SoundPtr StereoSound::ApplyResonantFilter(CancelFlag* cancel, const ResonatorFamily& family,
                                          double period, double width, const Sound* freqEnvelope,
                                          const Sound* widthEnvelope, std::int32_t begin,
                                          std::int32_t end) const {
    return Sound::ApplyResonantFilter(cancel, family, period, width, freqEnvelope, widthEnvelope,
                                      begin, end);
}

}  // namespace orv
