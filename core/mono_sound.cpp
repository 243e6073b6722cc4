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

}  // namespace orv
