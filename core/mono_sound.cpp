// MonoSound: one channel. The access operations hand out WaveMiddle itself wherever no
// conversion is needed; the editing operations run their one body (sound.cpp) on it.
#include <cstdio>
#include <new>
#include <string>

#include "core/platform.h"
#include "core/sound.h"
#include "core/sound_channels.h"

namespace orv {

using namespace sound_detail;

MonoSound::MonoSound(std::int32_t freq) : Sound(freq), WaveMiddle(new Wave()) { MoSt = 1; }

MonoSound::MonoSound(Wave* wave, std::int32_t freq) : Sound(freq), WaveMiddle(wave) { MoSt = 1; }

MonoSound::MonoSound(WavePtr wave, std::int32_t freq) : MonoSound(wave.release(), freq) {}

MonoSound::MonoSound(const Sound& other, CancelFlag* cancel)
    : Sound(other.Freq), WaveMiddle(nullptr) {
    MoSt = 1;
    if (other.GetValues() != 0) WaveMiddle = other.DupMonoWave(cancel, 0).release();
    // A failed copy (flag set) still leaves a wave: never a null channel.
    if (!WaveMiddle) WaveMiddle = new Wave();
}

MonoSound::MonoSound(const MonoSound& other) : Sound(other.Freq), WaveMiddle(new Wave()) {
    MoSt = 1;
    debugTrace("Fout: MonoSound(const MonoSound &other) mag niet aangeroepen worden!\n");
}

MonoSound::~MonoSound() {
    if (!ProtectWave) delete WaveMiddle;
}

void MonoSound::Dump() const {
    Sound::Dump();
    char buf[32];
    std::snprintf(buf, sizeof buf, "%p", static_cast<const void*>(WaveMiddle));
    debugTrace(std::string("MonoSound.WaveMiddle = ") + buf + "\n");
    if (WaveMiddle) WaveMiddle->dump();
}

std::int32_t MonoSound::GetValues() const { return WaveMiddle ? WaveMiddle->getValues() : 0; }

long double MonoSound::GetTime() const { return static_cast<long double>(GetValues()) / Freq; }

Wave* MonoSound::GetMonoWave(CancelFlag*, bool& isNew) const {
    isNew = false;
    return WaveMiddle;
}

Wave* MonoSound::GetLeftWave() const { return WaveMiddle; }

Wave* MonoSound::GetRightWave() const { return WaveMiddle; }

Wave* MonoSound::GetMonoWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const {
    if (freq == Freq) return GetMonoWave(cancel, isNew);
    isNew = true;
    return resampleWhole(cancel, WaveMiddle, freq, Freq);
}

Wave* MonoSound::GetLeftWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const {
    isNew = freq != Freq;
    if (!isNew) return WaveMiddle;
    return resampleRange(cancel, WaveMiddle, freq, Freq);
}

Wave* MonoSound::GetRightWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const {
    return GetLeftWaveAtFreq(cancel, freq, isNew);
}

Wave* MonoSound::GetMiddleWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const {
    isNew = freq != Freq;
    if (!isNew) return WaveMiddle;
    return resampleWhole(cancel, WaveMiddle, freq, Freq);
}

long double MonoSound::GetValueAt(CancelFlag* cancel, double fraction) const {
    bool copy = false;
    Wave* w = GetMonoWave(cancel, copy);
    ORV_ASSERT(copy == false, kUnit);
    return valueAt(*w, fraction);
}

SoundPtr MonoSound::ChangeFreq(CancelFlag* cancel, double newFreq) const {
    WavePtr w = GetValues() < 1 ? WavePtr(new (std::nothrow) Wave())
                                : WaveMiddle->speedWhole(*cancel, newFreq / Freq);
    return wrapMono(cancel, std::move(w), truncToInt(newFreq));
}

void MonoSound::MixCycleAfterThis(CancelFlag* cancel, const Sound* other, std::int32_t after) {
    debugTrace("in MonoSound::MixCycleAfterThis\n");
    Sound::MixCycleAfterThis(cancel, other, after);
    debugTrace("uit MonoSound::MixCycleAfterThis\n");
}

// ---- editing operations: the shared bodies ---------------------------------------------

SoundPtr MonoSound::Up(CancelFlag* cancel, WaveVal value, std::int32_t begin,
                       std::int32_t& end) const {
    return Sound::Up(cancel, value, begin, end);
}

SoundPtr MonoSound::Block(CancelFlag* cancel, double blockTime, std::int32_t verticalCount,
                          std::int32_t begin, std::int32_t& end) const {
    return Sound::Block(cancel, blockTime, verticalCount, begin, end);
}

SoundPtr MonoSound::MakeSilence(CancelFlag* cancel, double seconds, std::int32_t& begin,
                                std::int32_t& end) const {
    return Sound::MakeSilence(cancel, seconds, begin, end);
}

SoundPtr MonoSound::MakeSilenceValues(CancelFlag* cancel, double count, std::int32_t& begin,
                                      std::int32_t& end) const {
    return Sound::MakeSilenceValues(cancel, count, begin, end);
}

SoundPtr MonoSound::MakeLine(CancelFlag* cancel, WaveVal first, WaveVal last, double seconds,
                             bool exponential, std::int32_t begin, std::int32_t& end) const {
    return Sound::MakeLine(cancel, first, last, seconds, exponential, begin, end);
}

SoundPtr MonoSound::MakeBlockTriangle(CancelFlag* cancel, WaveVal first, WaveVal second,
                                      double period, double middle, double seconds,
                                      double startPhase, bool triangle, std::int32_t begin,
                                      std::int32_t& end) const {
    return Sound::MakeBlockTriangle(cancel, first, second, period, middle, seconds, startPhase,
                                    triangle, begin, end);
}

SoundPtr MonoSound::MakeBlockTriangleEnv(CancelFlag* cancel, WaveVal first, WaveVal second,
                                         double period, const Sound* middleEnvelope, double seconds,
                                         double startPhase, bool triangle, std::int32_t begin,
                                         std::int32_t& end) const {
    return Sound::MakeBlockTriangleEnv(cancel, first, second, period, middleEnvelope, seconds,
                                       startPhase, triangle, begin, end);
}

SoundPtr MonoSound::MakeSinus(CancelFlag* cancel, WaveVal high, WaveVal low, double period,
                              double count, double startAngle, std::int32_t begin,
                              std::int32_t& end) const {
    return Sound::MakeSinus(cancel, high, low, period, count, startAngle, begin, end);
}

SoundPtr MonoSound::MakeNoise(CancelFlag* cancel, WaveVal volume, double seconds,
                              std::int32_t begin, std::int32_t& end) const {
    return Sound::MakeNoise(cancel, volume, seconds, begin, end);
}

SoundPtr MonoSound::MakeMFreq(CancelFlag* cancel, double seconds, const Sound* form,
                              std::int32_t freqCount, const double* volume, const double* period,
                              const double* startAngle, const double* factor, std::int32_t begin,
                              std::int32_t& end) const {
    return Sound::MakeMFreq(cancel, seconds, form, freqCount, volume, period, startAngle, factor,
                            begin, end);
}

SoundPtr MonoSound::MakeMFreqCount(CancelFlag* cancel, double seconds, const Sound* form,
                                   std::int32_t count, const MFreqPartial* partials,
                                   std::int32_t begin, std::int32_t& end) const {
    return Sound::MakeMFreqCount(cancel, seconds, form, count, partials, begin, end);
}

void MonoSound::DrawLine(CancelFlag* cancel, std::int32_t begin, WaveVal beginValue,
                         std::int32_t end, WaveVal endValue) {
    Sound::DrawLine(cancel, begin, beginValue, end, endValue);
}

SoundPtr MonoSound::Length(CancelFlag* cancel, double factor, std::int32_t begin,
                           std::int32_t& end) const {
    return Sound::Length(cancel, factor, begin, end);
}

SoundPtr MonoSound::Resample(CancelFlag* cancel, double factor) const {
    return Sound::Resample(cancel, factor);
}

SoundPtr MonoSound::RollOutEnv(CancelFlag* cancel, const Sound* speedEnvelope, double speed,
                               double lengthFactor, double startPos, std::int32_t begin,
                               std::int32_t& end) const {
    return Sound::RollOutEnv(cancel, speedEnvelope, speed, lengthFactor, startPos, begin, end);
}

SoundPtr MonoSound::RollOut(CancelFlag* cancel, double speed, double lengthFactor, double startPos,
                            std::int32_t begin, std::int32_t& end) const {
    return Sound::RollOut(cancel, speed, lengthFactor, startPos, begin, end);
}

SoundPtr MonoSound::RollIn(CancelFlag* cancel, double seconds, double targetSeconds,
                           std::int32_t begin, std::int32_t& end) const {
    return Sound::RollIn(cancel, seconds, targetSeconds, begin, end);
}

SoundPtr MonoSound::Rotate(CancelFlag* cancel, double seconds, std::int32_t begin,
                           std::int32_t& end) const {
    return Sound::Rotate(cancel, seconds, begin, end);
}

SoundPtr MonoSound::Volume(CancelFlag* cancel, double factor, std::int32_t begin,
                           std::int32_t& end) const {
    return Sound::Volume(cancel, factor, begin, end);
}

void MonoSound::VolumeInPlace(CancelFlag* cancel, double factor, std::int32_t begin,
                              std::int32_t& end) {
    Sound::VolumeInPlace(cancel, factor, begin, end);
}

SoundPtr MonoSound::VolumeEnv(CancelFlag* cancel, const Sound* envelope, std::int32_t begin,
                              std::int32_t& end) const {
    return Sound::VolumeEnv(cancel, envelope, begin, end);
}

SoundPtr MonoSound::MaxVolume(CancelFlag* cancel, std::int32_t begin, std::int32_t& end) const {
    return Sound::MaxVolume(cancel, begin, end);
}

SoundPtr MonoSound::MaxVolumeSoft(CancelFlag* cancel, std::int32_t begin, std::int32_t& end) const {
    return Sound::MaxVolumeSoft(cancel, begin, end);
}

void MonoSound::MaxVolumeSoftInPlace(CancelFlag* cancel, std::int32_t begin, std::int32_t& end) {
    Sound::MaxVolumeSoftInPlace(cancel, begin, end);
}

SoundPtr MonoSound::MixAlignBegin(CancelFlag* cancel, const Sound* other, std::int32_t& begin,
                                  std::int32_t& end) const {
    return Sound::MixAlignBegin(cancel, other, begin, end);
}

SoundPtr MonoSound::MixAlignEnd(CancelFlag* cancel, const Sound* other, std::int32_t& begin,
                                std::int32_t& end) const {
    return Sound::MixAlignEnd(cancel, other, begin, end);
}

SoundPtr MonoSound::MixStretch(CancelFlag* cancel, const Sound* other, std::int32_t& begin,
                               std::int32_t& end) const {
    return Sound::MixStretch(cancel, other, begin, end);
}

void MonoSound::MixCycleAt(CancelFlag* cancel, const Sound* other, double seconds, double factor) {
    Sound::MixCycleAt(cancel, other, seconds, factor);
}

void MonoSound::MixCycle(CancelFlag* cancel, const Sound* other, std::int32_t after,
                         double factor) {
    Sound::MixCycle(cancel, other, after, factor);
}

void MonoSound::MixCycleSimple(CancelFlag* cancel, const Sound* other, std::int32_t after) {
    Sound::MixCycleSimple(cancel, other, after);
}

SoundPtr MonoSound::Remove(CancelFlag* cancel, std::int32_t begin, std::int32_t end) const {
    return Sound::Remove(cancel, begin, end);
}

SoundPtr MonoSound::NewEmpty(CancelFlag* cancel) const { return Sound::NewEmpty(cancel); }

SoundPtr MonoSound::CopyRange(CancelFlag* cancel, std::int32_t begin, std::int32_t end) const {
    return Sound::CopyRange(cancel, begin, end);
}

SoundPtr MonoSound::Insert(CancelFlag* cancel, const Sound* other, std::int32_t begin,
                           std::int32_t& end) const {
    return Sound::Insert(cancel, other, begin, end);
}

SoundPtr MonoSound::Reverse(CancelFlag* cancel, std::int32_t begin, std::int32_t& end) const {
    return Sound::Reverse(cancel, begin, end);
}

SoundPtr MonoSound::Distort(CancelFlag* cancel, const Sound* curve, std::int32_t begin,
                            std::int32_t& end) const {
    return Sound::Distort(cancel, curve, begin, end);
}

SoundPtr MonoSound::ApplyFilter(CancelFlag* cancel, PassFilter filter, double seconds,
                                double factor, int countBer, int countCmd, std::int32_t begin,
                                std::int32_t end) const {
    return Sound::ApplyFilter(cancel, filter, seconds, factor, countBer, countCmd, begin, end);
}

SoundPtr MonoSound::ApplyFilterEnv(CancelFlag* cancel, PassFilterEnv filter, const Sound* envelope,
                                   double factor, int countBer, int countCmd, std::int32_t begin,
                                   std::int32_t end) const {
    return Sound::ApplyFilterEnv(cancel, filter, envelope, factor, countBer, countCmd, begin, end);
}

SoundPtr MonoSound::PerEcho(CancelFlag* cancel, double seconds, double volumeFactor,
                            std::int32_t count, std::int32_t& begin, std::int32_t& end) const {
    return Sound::PerEcho(cancel, seconds, volumeFactor, count, begin, end);
}

SoundPtr MonoSound::PerEchoEnv(CancelFlag* cancel, double seconds, const Sound* volumeEnvelope,
                               std::int32_t count, std::int32_t& begin, std::int32_t& end) const {
    return Sound::PerEchoEnv(cancel, seconds, volumeEnvelope, count, begin, end);
}

SoundPtr MonoSound::PerEchoTime(CancelFlag* cancel, double seconds, const Sound* timeEnvelope,
                                double volumeFactor, std::int32_t count, std::int32_t& begin,
                                std::int32_t& end) const {
    return Sound::PerEchoTime(cancel, seconds, timeEnvelope, volumeFactor, count, begin, end);
}

SoundPtr MonoSound::PerEchoTimeEnv(CancelFlag* cancel, double seconds, const Sound* timeEnvelope,
                                   const Sound* volumeEnvelope, std::int32_t count,
                                   std::int32_t& begin, std::int32_t& end) const {
    return Sound::PerEchoTimeEnv(cancel, seconds, timeEnvelope, volumeEnvelope, count, begin, end);
}

SoundPtr MonoSound::FilterBlock(CancelFlag* cancel, double seconds, std::int32_t& begin,
                                std::int32_t& end) const {
    return Sound::FilterBlock(cancel, seconds, begin, end);
}

SoundPtr MonoSound::FilterBlockEnv(CancelFlag* cancel, double maxSeconds, const Sound* envelope,
                                   std::int32_t& begin, std::int32_t& end) const {
    return Sound::FilterBlockEnv(cancel, maxSeconds, envelope, begin, end);
}

SoundPtr MonoSound::TempoPitchEcho(CancelFlag* cancel, double speed, double lengthFactor,
                                   double pitchStep, double blockSeconds, bool highQuality) const {
    return Sound::TempoPitchEcho(cancel, speed, lengthFactor, pitchStep, blockSeconds, highQuality);
}

SoundPtr MonoSound::TempoPitch(CancelFlag* cancel, double speed, double startPos,
                               double lengthFactor, double pitchStep, double blockSeconds,
                               bool highQuality, std::int32_t begin, std::int32_t& end) const {
    return Sound::TempoPitch(cancel, speed, startPos, lengthFactor, pitchStep, blockSeconds,
                             highQuality, begin, end);
}

SoundPtr MonoSound::TempoPitchEnv1(CancelFlag* cancel, double speed, const Sound* speedEnvelope,
                                   double startPos, double lengthFactor, double pitchStep,
                                   double blockSeconds, std::int32_t begin,
                                   std::int32_t& end) const {
    return Sound::TempoPitchEnv1(cancel, speed, speedEnvelope, startPos, lengthFactor, pitchStep,
                                 blockSeconds, begin, end);
}

SoundPtr MonoSound::TempoPitchEnv2(CancelFlag* cancel, double speed, double startPos,
                                   double lengthFactor, double pitchStep,
                                   const Sound* pitchEnvelope, double blockSeconds,
                                   std::int32_t begin, std::int32_t& end) const {
    return Sound::TempoPitchEnv2(cancel, speed, startPos, lengthFactor, pitchStep, pitchEnvelope,
                                 blockSeconds, begin, end);
}

SoundPtr MonoSound::TempoPitchEnv3(CancelFlag* cancel, double speed, const Sound* speedEnvelope,
                                   double startPos, double lengthFactor, double pitchStep,
                                   const Sound* pitchEnvelope, double blockSeconds,
                                   std::int32_t begin, std::int32_t& end) const {
    return Sound::TempoPitchEnv3(cancel, speed, speedEnvelope, startPos, lengthFactor, pitchStep,
                                 pitchEnvelope, blockSeconds, begin, end);
}

SoundPtr MonoSound::ApplyResonantFilter(CancelFlag* cancel, const ResonatorFamily& family,
                                        double period, double width, const Sound* freqEnvelope,
                                        const Sound* widthEnvelope, std::int32_t begin,
                                        std::int32_t end) const {
    return Sound::ApplyResonantFilter(cancel, family, period, width, freqEnvelope, widthEnvelope,
                                      begin, end);
}

}  // namespace orv
