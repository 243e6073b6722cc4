// The operations between the two channels: balance (by level, by filtering, by a time
// difference), the left/right mixing matrix with its examples, and the conversions that
// splitting and merging windows use. Sound::Balance, Sound::BalanceEnv and
// StereoSound::MixLeftRight (declared in sound.h) are built on the pieces below.
#pragma once

#include <array>
#include <cstdint>
#include <utility>

#include "core/cancel.h"
#include "core/sound.h"
#include "core/wave.h"

namespace orv {

// ---- balance of one channel -------------------------------------------------------------
// bSide is b for the left channel and -b for the right one (-1 near, 1 far).

// Greatest delay between the channels in samples: Freq x 1/3400 s x 2.
double balanceMaxDelay(std::int32_t freq);

// The delay of one channel in samples: sin(bSide x 3.1415293 x 0.5) x the greatest delay.
// Negative: this channel leads.
double balanceDelay(std::int32_t freq, double bSide);

// The 150-point curve of filter codes, from 20000 Hz at index 0 to 350 Hz at index 149,
// each point made from the whole-sample period freq / f.
WavePtr balanceFilterCurve(CancelFlag& cancel, std::int32_t freq);

// The low-pass period (samples) that the curve gives for bSide.
double balanceFilterPeriod(const Wave& curve, std::int32_t freq, double bSide);

// One channel of a balance: a new wave, or nullptr when cancelled.
WavePtr balanceChannel(CancelFlag& cancel, const Wave& wave, std::int32_t freq, double bSide,
                       bool timeDifference, bool volume, bool filter);

// The same with b read per sample from `envelope` (b = value / 32767); right = false for
// the left channel (whose bSide is b), true for the right one (bSide = -b).
WavePtr balanceChannelEnv(CancelFlag& cancel, const Wave& wave, std::int32_t freq,
                          const Wave& envelope, bool right, bool timeDifference, bool volume,
                          bool filter);

// ---- the left/right matrix examples -----------------------------------------------------

struct MixLeftRightExample {
    const char* name;
    double LL, LR, RL, RR;
};

inline constexpr std::array<MixLeftRightExample, 8> kMixLeftRightExamples{{
    {"Normal", 1, 0, 0, 1},
    {"Swapped", 0, 1, 1, 0},
    {"Extra Stereo", 0.75, -0.25, -0.25, 0.75},
    {"Super Stereo", 0.5, -0.25, -0.25, 0.5},
    {"Surround", 0.5, -0.5, -0.5, 0.5},
    {"Mono", 0.5, 0.5, 0.5, 0.5},
    {"Mono at Left, Surround at Right", 0.4, -0.8, 0.4, 0.8},
    {"Mono at Right, Surround at Left", 0.8, 0.4, -0.8, 0.4},
}};

// ---- conversions for splitting and merging ----------------------------------------------

// A stereo sound of left's frequency with left's mono wave as its left channel and
// right's as its right one; asserts "waveLeft->getValues() == waveRight->getValues()".
// nullptr when cancelled.
SoundPtr MergeToStereo(CancelFlag* cancel, const Sound& left, const Sound& right);

// Two mono sounds made of the stereo sound's left and right channels (of a mono sound: two
// copies of it). Both null when cancelled.
std::pair<SoundPtr, SoundPtr> SplitToMono(CancelFlag* cancel, const Sound& sound);

}  // namespace orv
