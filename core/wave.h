// Wave: one channel of signed 16-bit samples, and every operation on a range of it.
//
// Operations are functional: they leave `this` untouched and return a new wave (head
// copied, new middle, tail copied), or nullptr when there is no result. A few primitives
// write in place; their comments say so. Every loop runs in chunks of at most 1000 samples
// and stops between chunks when the cancel flag is set; a maker of a new wave then hands
// back what it has, and the caller must look at the flag and throw it away.
//
// Ranges are half-open [begin, end). Where `end` is taken by reference, -1 stands for the
// end of the wave and is replaced by `values` on entry; an operation that puts a stretch of
// a new length in place of the range writes begin + new length back into `end`. The echo
// forms write both `begin` and `end`.
//
// Where the methods live:
//   wave.cpp             construction, primitives, peak, envelope sampling, sine table
//   wave_generators.cpp  silence, lines, noise, block/triangle, sine, form, multi-frequency
//   wave_effects.cpp     volume, up, distort, reverse, mirror, rotate, block, mixes
//   wave_timescale.cpp   speed, stretch, length envelope, roll-in, tempo/pitch, echoes
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "core/cancel.h"
#include "core/sample_value.h"

namespace orv {

class Wave;
using WavePtr = std::unique_ptr<Wave>;

class Wave {
public:
    // 1. Empty wave.
    Wave() = default;
    // 2. Sized wave: storage for `count` samples, left unset. On allocation failure shows
    //    the memory message and sets the flag; `values` is `count` in any case (check the flag).
    Wave(CancelFlag& cancel, std::int32_t count);
    // 3. Adopts a block from allocateSamples() as its own storage; copies nothing.
    Wave(WaveVal* samples, std::int32_t count);
    // 4. Copy through the chunked loop: empty for an empty other; on allocation failure the
    //    flag is set and the result stays empty.
    Wave(CancelFlag& cancel, const Wave& other);
    // 5. Forbidden: every copy must go through (4), which can report failure. If it ever
    //    runs, it says so under "System Error" and leaves this wave empty.
    Wave(const Wave& other);
    Wave& operator=(const Wave&) = delete;
    ~Wave();

    std::int32_t getValues() const { return values; }
    WaveVal* data() { return wave; }
    const WaveVal* data() const { return wave; }
    WaveVal& operator[](std::int32_t i) { return wave[i]; }
    WaveVal operator[](std::int32_t i) const { return wave[i]; }

    // Writes the wave's address, count and storage address to the debug trace.
    void dump() const;

    // ---- primitives (wave.cpp) -------------------------------------------------------

    // In place: copies from[begin, end) to this wave at `to`.
    void copyFrom(CancelFlag& cancel, const Wave* from, std::int32_t begin, std::int32_t end,
                  std::int32_t to);
    // In place: adds from[begin, end) to this wave at `to`, wrapping at 16 bits.
    void addFrom(CancelFlag& cancel, const Wave* from, std::int32_t begin, std::int32_t end,
                 std::int32_t to);
    // In place: sets [begin, end) to 0.
    void clear(CancelFlag& cancel, std::int32_t begin, std::int32_t end);
    // In place: straight line over [begin, end) from `first` to `last`.
    void drawLine(CancelFlag& cancel, std::int32_t begin, WaveVal first, std::int32_t end,
                  WaveVal last);
    // Largest absolute value in [begin, end) (end -1: the whole wave), held as a 16-bit
    // value while searching: a lone -32768 reads back as -32768 and is then replaced.
    std::int32_t maxAbs(CancelFlag& cancel, std::int32_t begin, std::int32_t end) const;

    WavePtr extract(CancelFlag& cancel, std::int32_t begin, std::int32_t end) const;
    WavePtr remove(CancelFlag& cancel, std::int32_t begin, std::int32_t end) const;
    WavePtr replace(CancelFlag& cancel, const Wave* other, std::int32_t begin,
                    std::int32_t end) const;
    WavePtr append(CancelFlag& cancel, const Wave* other) const;
    WavePtr insertSilence(CancelFlag& cancel, std::int32_t length, std::int32_t begin,
                          std::int32_t& end) const;
    // Mixes other[first used .. used) in at `offset` (may be negative), growing the wave in
    // front or behind as needed. otherEnd -1: all of other.
    WavePtr mixAt(CancelFlag& cancel, const Wave* other, std::int32_t offset,
                  std::int32_t otherEnd, bool keepTail) const;
    // Entry form: places the used part of other so that it ends at `position`.
    WavePtr mixEndingAt(CancelFlag& cancel, const Wave* other, std::int32_t position,
                        std::int32_t otherEnd, bool keepTail) const;
    // In place: adds other from `after` on until either wave runs out.
    void mixAfter(CancelFlag& cancel, const Wave* other, std::int32_t after);
    // In place: adds other x factor (computed in floating point, truncated, wrapped).
    void mixAfter(CancelFlag& cancel, const Wave* other, std::int32_t after, double factor);
    // In place, cyclic: at the end of this wave the writing goes on at sample 0 until other
    // is used up.
    void mixAfterCyclic(CancelFlag& cancel, const Wave* other, std::int32_t after);

    // ---- generators (wave_generators.cpp) --------------------------------------------
    // Each replaces [begin, end) by `length` generated samples and sets end = begin + length.

    WavePtr makeSilence(CancelFlag& cancel, std::int32_t length, std::int32_t begin,
                        std::int32_t& end) const;
    // A length of 1 is raised to 2.
    WavePtr makeLine(CancelFlag& cancel, WaveVal first, WaveVal last, std::int32_t length,
                     std::int32_t begin, std::int32_t& end) const;
    // ratio = (last/first)^(1/length): the last sample written is one step short of `last`.
    WavePtr makeExpLine(CancelFlag& cancel, WaveVal first, WaveVal last, std::int32_t length,
                        std::int32_t begin, std::int32_t& end) const;
    // Continues the shared rand15() sequence.
    WavePtr makeNoise(CancelFlag& cancel, WaveVal volume, std::int32_t length,
                      std::int32_t begin, std::int32_t& end) const;
    WavePtr makeBlockTriangle(CancelFlag& cancel, WaveVal first, WaveVal second, double period,
                              double middle, std::int32_t length, double startPhase,
                              bool triangle, std::int32_t begin, std::int32_t& end) const;
    WavePtr makeBlockTriangleEnv(CancelFlag& cancel, WaveVal first, WaveVal second,
                                 double period, const Wave* middleEnvelope, std::int32_t length,
                                 double startPhase, bool triangle, std::int32_t begin,
                                 std::int32_t& end) const;
    // length = trunc(count x per), at least 1.
    WavePtr makeSinus(CancelFlag& cancel, WaveVal high, WaveVal low, double per, double count,
                      double startAngle, std::int32_t begin, std::int32_t& end) const;
    // form[beginf, endf) as one period; a negative period plays it backwards.
    WavePtr makeForm(CancelFlag& cancel, const Wave* form, std::int32_t beginf,
                     std::int32_t endf, double per, double count, double startAngle,
                     std::int32_t begin, std::int32_t& end) const;
    // Sum of freqCount partials read from `source` (nullptr: the sine table). The arrays
    // are read, never changed.
    WavePtr makeMFreq(CancelFlag& cancel, std::int32_t length, const Wave* source,
                      std::int32_t freqCount, const double* volume, const double* period,
                      const double* startAngle, const double* factor, std::int32_t begin,
                      std::int32_t& end) const;

    // ---- amplitude and shape effects (wave_effects.cpp) ------------------------------

    WavePtr volume(CancelFlag& cancel, double factor, std::int32_t begin,
                   std::int32_t& end) const;
    void volumeInPlace(CancelFlag& cancel, double factor, std::int32_t begin, std::int32_t& end);
    WavePtr volumeEnv(CancelFlag& cancel, const Wave* envelope, std::int32_t begin,
                      std::int32_t& end) const;
    WavePtr up(CancelFlag& cancel, WaveVal value, std::int32_t begin, std::int32_t& end) const;
    WavePtr distort(CancelFlag& cancel, const Wave* curve, std::int32_t begin,
                    std::int32_t& end) const;
    WavePtr reverse(CancelFlag& cancel, std::int32_t begin, std::int32_t& end) const;
    // In place: the first half of the range becomes the reverse of its second half.
    void mirror(CancelFlag& cancel, std::int32_t begin, std::int32_t& end);
    WavePtr rotate(CancelFlag& cancel, std::int32_t leftShift, std::int32_t begin,
                   std::int32_t& end) const;
    WavePtr block(CancelFlag& cancel, double blockLength, std::int32_t verticalCount,
                  std::int32_t begin, std::int32_t& end) const;
    // trunc(s x a + other[i] x b) over the range; the rest is copied from this wave.
    WavePtr mix(CancelFlag& cancel, const Wave* other, double a, double b, std::int32_t begin,
                std::int32_t& end) const;
    // The weighted mix over the empty range 0..0: an exact copy of this wave. Every
    // stereo-to-mono conversion relies on this giving the left channel; keep it a copy.
    WavePtr average(CancelFlag& cancel, const Wave* other) const;

    // ---- time-scale effects (wave_timescale.cpp) -------------------------------------

    // New length trunc((end - begin) x |factor|); a negative factor reverses. Length 0
    // gives an empty wave (no head, no tail).
    WavePtr speed(CancelFlag& cancel, double factor, std::int32_t begin,
                  std::int32_t& end) const;
    WavePtr speedWhole(CancelFlag& cancel, double factor) const;
    WavePtr stretch(CancelFlag& cancel, std::int32_t length, bool reverse, std::int32_t begin,
                    std::int32_t& end) const;
    WavePtr stretchWhole(CancelFlag& cancel, std::int32_t length, bool reverse) const;
    // Reads the range as a loop at a speed that follows the envelope (value/32767 x scale).
    WavePtr lengthSpeedEnv(CancelFlag& cancel, const Wave* speedEnvelope, double lengthFactor,
                           double speedScale, double startPos, std::int32_t begin,
                           std::int32_t& end) const;
    // Winds the range into a loop of `length` samples starting at `target` inside it.
    WavePtr rollIn(CancelFlag& cancel, std::int32_t length, std::int32_t target,
                   std::int32_t begin, std::int32_t& end) const;
    // Tempo and pitch by blocks, blocks butted together.
    WavePtr tempoPitch(CancelFlag& cancel, double speed, double startPos, double lengthFactor,
                       double pitchStep, double blockTime, std::int32_t begin,
                       std::int32_t& end) const;
    // Crossfaded form with two read heads. speedEnvelope (read at each head restart, scaled
    // by speed/32767) and pitchEnvelope (read per sample, scaled by pitchStep/32767) are
    // optional; nullptr means the constant.
    WavePtr tempoPitchCross(CancelFlag& cancel, double speed, const Wave* speedEnvelope,
                            double startPos, double lengthFactor, double pitchStep,
                            const Wave* pitchEnvelope, double blockTime, std::int32_t begin,
                            std::int32_t& end) const;
    // Periodic echoes: the stretch grows by the echoes' reach; begin and end are set to it.
    WavePtr perEchoEnv(CancelFlag& cancel, double diffTime, const Wave* timeEnvelope,
                       const Wave* volumeEnvelope, std::int32_t count, std::int32_t& begin,
                       std::int32_t& end) const;
    WavePtr perEcho(CancelFlag& cancel, double diffTime, double volumeFactor, std::int32_t count,
                    std::int32_t& begin, std::int32_t& end) const;
    WavePtr perEchoVolumeEnv(CancelFlag& cancel, double diffTime, const Wave* volumeEnvelope,
                             std::int32_t count, std::int32_t& begin, std::int32_t& end) const;
    WavePtr perEchoTimeEnv(CancelFlag& cancel, double diffTime, const Wave* timeEnvelope,
                           double volumeFactor, std::int32_t count, std::int32_t& begin,
                           std::int32_t& end) const;

private:
    WaveVal* wave = nullptr;   // owned; null when empty
    std::int32_t values = 0;  // number of samples
};

// ---- storage (wave.cpp) ------------------------------------------------------------------

// Sample storage: `count` samples, uninitialised; nullptr on failure. Goes through the
// installed allocator so tests can make it fail.
WaveVal* allocateSamples(std::int32_t count);
void freeSamples(WaveVal* samples);
using SampleAllocator = void* (*)(std::size_t bytes);
// nullptr restores the ordinary allocator. Returns the previous one.
SampleAllocator setSampleAllocator(SampleAllocator allocator);

// A wave of `count` samples, not cleared; nullptr with the memory message and the flag set
// when there is no memory for it (or the count is no wave's length).
WavePtr newWave(CancelFlag& cancel, std::int64_t count);
// A copy (constructor 4), or nullptr when the flag is set, other is null, or it failed.
WavePtr copyWave(CancelFlag& cancel, const Wave* other);

// ---- envelope reading and the sine table (wave.cpp) -------------------------------------

// The wave read at fractional index x >= 0 by linear interpolation.
double sample(const Wave& w, double x);
// x reduced into [min, max) by whole multiples of max - min.
double cycle(double x, double min, double max);

// One period of sine in 9000 samples, made once by createSinus(); null until then or when
// it could not be made.
inline constexpr std::int32_t kSinusLength = 9000;
extern Wave* sinus;
bool createSinus();
void deleteSinus();

}  // namespace orv
