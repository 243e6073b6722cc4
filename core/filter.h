// Filters over one wave: low-pass, high-pass, resonant, notch and block (running average),
// each with a constant form and forms steered by envelope waves.
//
// Each takes the input wave (never changed) and returns a new filtered wave: [0, begin) and
// [end, count) copied, [begin, end) filtered (end -1: the whole wave). nullptr for a null
// input, a failed allocation or a flag set before the work starts; a flag set during the
// work returns the partly filtered result. The block filters make a longer result and move
// `end` on by the extra length.
//
// `time`/`per` is a period in samples (sample frequency / filter frequency). Envelope forms
// read the envelope stretched over the range and map it to a frequency of 20 Hz .. 20 kHz
// (or to a width 0..1), which needs the sample frequency `freq`.
#pragma once

#include <cstdint>

#include "core/wave.h"

namespace orv {

// The signature shared by LowPass and HighPass, so that Sound can be handed either.
using PassFilter = WavePtr (*)(const Wave* wave, CancelFlag& cancel, double time, double factor,
                               int countBer, int countCmd, std::int32_t begin,
                               std::int32_t end);
using PassFilterEnv = WavePtr (*)(const Wave* wave, CancelFlag& cancel, const Wave* envelope,
                                  double factor, int countBer, int countCmd, double freq,
                                  std::int32_t begin, std::int32_t end);

WavePtr LowPass(const Wave* wave, CancelFlag& cancel, double time, double factor, int countBer,
                int countCmd, std::int32_t begin, std::int32_t end);
WavePtr LowPassEnv(const Wave* wave, CancelFlag& cancel, const Wave* envelope, double factor,
                   int countBer, int countCmd, double freq, std::int32_t begin,
                   std::int32_t end);
WavePtr HighPass(const Wave* wave, CancelFlag& cancel, double time, double factor,
                 int countBer, int countCmd, std::int32_t begin, std::int32_t end);
WavePtr HighPassEnv(const Wave* wave, CancelFlag& cancel, const Wave* envelope, double factor,
                    int countBer, int countCmd, double freq, std::int32_t begin,
                    std::int32_t end);

// Resonator family: the constant form and the form with both envelopes have these
// signatures; the forms with one envelope take the other parameter as a constant.
using ResonatorFilter = WavePtr (*)(const Wave* wave, CancelFlag& cancel, double per,
                                    double factor, std::int32_t begin, std::int32_t end);
using ResonatorFilterEnv = WavePtr (*)(const Wave* wave, CancelFlag& cancel,
                                       const Wave* freqEnvelope, const Wave* widthEnvelope,
                                       double freq, std::int32_t begin, std::int32_t end);

WavePtr Resonant(const Wave* wave, CancelFlag& cancel, double per, double factor,
                 std::int32_t begin, std::int32_t end);
WavePtr ResonantFreqEnv(const Wave* wave, CancelFlag& cancel, const Wave* freqEnvelope,
                        double factor, double freq, std::int32_t begin, std::int32_t end);
WavePtr ResonantWidthEnv(const Wave* wave, CancelFlag& cancel, double per,
                         const Wave* widthEnvelope, std::int32_t begin, std::int32_t end);
WavePtr ResonantEnv(const Wave* wave, CancelFlag& cancel, const Wave* freqEnvelope,
                    const Wave* widthEnvelope, double freq, std::int32_t begin,
                    std::int32_t end);
WavePtr Notch(const Wave* wave, CancelFlag& cancel, double per, double factor,
              std::int32_t begin, std::int32_t end);
WavePtr NotchFreqEnv(const Wave* wave, CancelFlag& cancel, const Wave* freqEnvelope,
                     double factor, double freq, std::int32_t begin, std::int32_t end);
WavePtr NotchWidthEnv(const Wave* wave, CancelFlag& cancel, double per,
                      const Wave* widthEnvelope, std::int32_t begin, std::int32_t end);
WavePtr NotchEnv(const Wave* wave, CancelFlag& cancel, const Wave* freqEnvelope,
                 const Wave* widthEnvelope, double freq, std::int32_t begin, std::int32_t end);

// Running average over `time` samples; the result is trunc(|time|) + 1 samples longer.
WavePtr BlockFilter(const Wave* wave, CancelFlag& cancel, double time, std::int32_t& begin,
                    std::int32_t& end);
// Block time from an envelope up to maxTime; the result is 2 x (trunc(maxTime) + 1) longer.
WavePtr BlockFilterEnv(const Wave* wave, CancelFlag& cancel, double maxTime,
                       const Wave* envelope, std::int32_t& begin, std::int32_t& end);

}  // namespace orv
