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

// ---- editing operations that differ from the shared bodies ----------------------------

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

}  // namespace orv
