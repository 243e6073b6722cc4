// How a sound runs one Wave operation over its one or two channels. Private to the sound
// sources (sound.cpp, mono_sound.cpp, stereo_sound.cpp, stereo_ops.cpp).
#pragma once

#include <cstdint>
#include <utility>

#include "core/platform.h"
#include "core/sample_value.h"
#include "core/sound.h"
#include "core/wave.h"

namespace orv::sound_detail {

inline constexpr const char* kUnit = "sound";

// Which of the receiver's channels an argument sound must feed.
enum class Side { Middle, Left, Right };

// A wave taken from an argument sound; deleted at the end of its life only when it was
// made for us.
class FetchedWave {
public:
    FetchedWave() = default;
    FetchedWave(Wave* wave, bool isNew) : wave_(wave), isNew_(isNew) {}
    FetchedWave(FetchedWave&& o) noexcept : wave_(o.wave_), isNew_(o.isNew_) {
        o.wave_ = nullptr;
        o.isNew_ = false;
    }
    FetchedWave(const FetchedWave&) = delete;
    FetchedWave& operator=(const FetchedWave&) = delete;
    FetchedWave& operator=(FetchedWave&&) = delete;
    ~FetchedWave() {
        if (isNew_) delete wave_;
    }
    Wave* get() const { return wave_; }
    bool isNew() const { return isNew_; }

private:
    Wave* wave_ = nullptr;
    bool isNew_ = false;
};

// An argument converted to the receiver's layout: Middle takes its mono wave, Left and
// Right its left and right waves. A null argument gives no wave.
FetchedWave argWave(const Sound* arg, CancelFlag* cancel, Side side);
// The same at the receiver's frequency.
FetchedWave argWaveAtFreq(const Sound* arg, CancelFlag* cancel, Side side, std::int32_t freq);

// The wave resampled by the factor to / from (the length scales by it): the whole-wave
// resampler, or the range-keeping one given the range 0 .. count. An empty wave gives a
// new empty wave. nullptr when cancelled.
Wave* resampleWhole(CancelFlag* cancel, const Wave* w, std::int32_t to, std::int32_t from);
Wave* resampleRange(CancelFlag* cancel, const Wave* w, std::int32_t to, std::int32_t from);

// The wave at (count - 1) x fraction, interpolated, kept in -32768 .. 32767; 0 when empty.
long double valueAt(const Wave& w, double fraction);

// Time to samples.
inline std::int32_t lengthOf(std::int32_t freq, double seconds) {
    return truncToInt(freq * seconds + 1.0);
}
inline double periodOf(std::int32_t freq, double seconds) { return freq * seconds; }
inline std::int32_t positionOf(std::int32_t freq, double seconds) {
    return truncToInt(freq * seconds);
}

// The receiver's channels in order.
struct Channels {
    Wave* wave[2] = {nullptr, nullptr};
    Side side[2] = {Side::Middle, Side::Middle};
    int count = 0;
};
Channels channelsOf(const Sound& s);

// The new sound around the result waves: nullptr when the flag is set, a wave is missing
// or the sound cannot be allocated (the waves are freed then).
SoundPtr wrapMono(CancelFlag* cancel, WavePtr wave, std::int32_t freq);
SoundPtr wrapStereo(CancelFlag* cancel, WavePtr left, WavePtr right, std::int32_t freq);

// The left channel's range must equal the right channel's.
inline void checkSameRange(std::int32_t begin, std::int32_t begin2, std::int32_t end,
                           std::int32_t end2) {
    ORV_ASSERT(begin == begin2, kUnit);
    ORV_ASSERT(end == end2, kUnit);
}

// Runs op(const Wave*, Side, begin&, end&) -> WavePtr on each channel with its own copy of
// the range; the left channel's range is handed back.
template <class Op>
SoundPtr runRanged(const Sound& s, CancelFlag* cancel, std::int32_t& begin, std::int32_t& end,
                   Op&& op) {
    const Channels ch = channelsOf(s);
    if (ch.count == 1) {
        WavePtr w = op(static_cast<const Wave*>(ch.wave[0]), ch.side[0], begin, end);
        return wrapMono(cancel, std::move(w), s.Freq);
    }
    std::int32_t begin1 = begin, end1 = end;
    std::int32_t begin2 = begin, end2 = end;
    WavePtr left = op(static_cast<const Wave*>(ch.wave[0]), ch.side[0], begin1, end1);
    WavePtr right = op(static_cast<const Wave*>(ch.wave[1]), ch.side[1], begin2, end2);
    if (!isCancelled(*cancel)) checkSameRange(begin1, begin2, end1, end2);
    begin = begin1;
    end = end1;
    return wrapStereo(cancel, std::move(left), std::move(right), s.Freq);
}

// Runs op(const Wave*, Side) -> WavePtr on each channel.
template <class Op>
SoundPtr runPlain(const Sound& s, CancelFlag* cancel, Op&& op) {
    const Channels ch = channelsOf(s);
    if (ch.count == 1)
        return wrapMono(cancel, op(static_cast<const Wave*>(ch.wave[0]), ch.side[0]), s.Freq);
    WavePtr left = op(static_cast<const Wave*>(ch.wave[0]), ch.side[0]);
    WavePtr right = op(static_cast<const Wave*>(ch.wave[1]), ch.side[1]);
    return wrapStereo(cancel, std::move(left), std::move(right), s.Freq);
}

// Runs op(Wave*, Side) on each channel, in place.
template <class Op>
void runInPlace(const Sound& s, Op&& op) {
    const Channels ch = channelsOf(s);
    for (int i = 0; i < ch.count; ++i) op(ch.wave[i], ch.side[i]);
}

}  // namespace orv::sound_detail
