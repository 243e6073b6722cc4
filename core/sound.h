// Sound: what a wave document holds and what every editing command works on. A MonoSound
// holds one channel (WaveMiddle), a StereoSound two of equal length (WaveLeft, WaveRight),
// plus the sample frequency. Callers never ask which kind they hold: every operation is a
// virtual of Sound and each subclass runs the Wave operation (or filter) on its one or two
// channels.
//
// Operations are functional unless marked "in place": the receiver is left untouched and a
// newly allocated sound of the receiver's class and Freq is returned; the caller owns it.
// A null result means there is no result: the cancel flag was set (by the user or by an
// allocation failure) or memory ran out. Callers test the flag after every operation.
//
// Conventions shared by all operations:
// - The first argument is the command's cancel flag; it is handed on to every Wave operation.
// - Positions and counts are sample indices (half-open ranges as in Wave; end -1 means the
//   end of the sound where Wave says so). Where the Wave operation reports the range it made
//   through `end` (or `begin` and `end`), the sound passes the left channel's range back.
// - Times are seconds. A duration that becomes the length of a new stretch is
//   trunc(Freq x seconds + 1.0); a time handed on as a rate or period is the double
//   Freq x seconds; a time that becomes a position is trunc(Freq x seconds).
// - A Sound argument (envelope, sound to mix in or insert) is converted to the receiver's
//   layout: mono takes its mono wave, stereo its left and right waves (a mono argument feeds
//   both channels). Where sample frequencies must match (insert, mix), the argument is
//   first resampled to the receiver's Freq.
//
// Wave access (GetMonoWave and the ...AtFreq forms) reports through `isNew` whether the
// returned wave was made for the caller; the caller deletes it then, and never otherwise.
#pragma once

#include <cstdint>
#include <memory>

#include "core/cancel.h"
#include "core/filter.h"
#include "core/sample_value.h"
#include "core/wave.h"

namespace orv {

class Sound;
using SoundPtr = std::unique_ptr<Sound>;

// The format of a file or of a new document.
struct WaveFileProps {
    std::int32_t Freq = 22050;        // samples per second
    std::uint16_t MonoStereo = 1;     // 1 mono, 2 stereo
    std::uint16_t BytesPSample = 2;   // 1 or 2
};

// One partial of the multi-frequency generator, as the document's frequency records hold it.
struct MFreqPartial {
    double volume = 0.5;            // start volume (factor on the source's values)
    double period = 0.001;          // seconds
    double startAngle = 0.0;        // phase 0 .. 1
    double volumeFactor = 0.1;      // the volume is multiplied by this ...
    double volumeFactorTime = 1.0;  // ... over this many seconds
};

// The four forms of one resonator family (resonant or notch). ApplyResonantFilter picks the
// form from which envelopes are given.
using ResonatorFreqEnvFilter = WavePtr (*)(const Wave* wave, CancelFlag& cancel,
                                           const Wave* freqEnvelope, double factor, double freq,
                                           std::int32_t begin, std::int32_t end);
using ResonatorWidthEnvFilter = WavePtr (*)(const Wave* wave, CancelFlag& cancel, double per,
                                            const Wave* widthEnvelope, std::int32_t begin,
                                            std::int32_t end);
struct ResonatorFamily {
    ResonatorFilter constant;
    ResonatorFreqEnvFilter freqEnv;
    ResonatorWidthEnvFilter widthEnv;
    ResonatorFilterEnv bothEnv;
};
extern const ResonatorFamily kResonantFamily;  // Resonant, ResonantFreqEnv, ...
extern const ResonatorFamily kNotchFamily;     // Notch, NotchFreqEnv, ...

class Sound {
public:
    std::uint16_t MoSt;     // 1 mono, 2 stereo; fixed by the subclass
    std::int32_t Freq;      // samples per second
    bool ProtectWave;       // true: the waves belong to somebody else and are not deleted

    Sound& operator=(const Sound&) = delete;

    // ---- 0..16: lifecycle, queries, wave access ------------------------------------

    virtual ~Sound() = 0;
    virtual void Dump() const;
    virtual std::int32_t GetValues() const = 0;
    virtual long double GetTime() const = 0;
    virtual void SetProtectWave();

    // A stereo sound's mono wave is a copy of its LEFT channel (the two-wave mix over an
    // empty range); it is always new.
    virtual Wave* GetMonoWave(CancelFlag* cancel, bool& isNew) const = 0;
    virtual Wave* GetLeftWave() const = 0;
    virtual Wave* GetRightWave() const = 0;
    virtual Wave* GetMonoWaveAtFreq(CancelFlag* cancel, std::int32_t freq,
                                    bool& isNew) const = 0;
    virtual Wave* GetLeftWaveAtFreq(CancelFlag* cancel, std::int32_t freq,
                                    bool& isNew) const = 0;
    virtual Wave* GetRightWaveAtFreq(CancelFlag* cancel, std::int32_t freq,
                                     bool& isNew) const = 0;
    virtual Wave* GetMiddleWaveAtFreq(CancelFlag* cancel, std::int32_t freq,
                                      bool& isNew) const = 0;

    // Always a wave the caller owns (copied when the access gave a borrowed one).
    // freq 0: at the sound's own frequency. nullptr when cancelled or out of memory.
    virtual WavePtr DupMonoWave(CancelFlag* cancel, std::int32_t freq) const;
    virtual WavePtr DupLeftWave(CancelFlag* cancel, std::int32_t freq) const;
    virtual WavePtr DupRightWave(CancelFlag* cancel, std::int32_t freq) const;

    // The mono wave at (GetValues() - 1) x fraction, interpolated, kept in -32768..32767.
    virtual long double GetValueAt(CancelFlag* cancel, double fraction) const = 0;
    // Resampled to newFreq; the result's Freq is newFreq truncated.
    virtual SoundPtr ChangeFreq(CancelFlag* cancel, double newFreq) const = 0;

    // ---- 17..67: editing operations ------------------------------------------------
    // Each is written once (sound.cpp) and runs the same body over the sound's one or two
    // channels, so stereo costs exactly twice mono; a subclass overrides one only where its
    // channels need something of their own (a stereo filter runs both channels in one loop).

    virtual SoundPtr Up(CancelFlag* cancel, WaveVal value, std::int32_t begin,
                        std::int32_t& end) const;
    // Block length in seconds (a period), vertical count as Wave::block.
    virtual SoundPtr Block(CancelFlag* cancel, double blockTime, std::int32_t verticalCount,
                           std::int32_t begin, std::int32_t& end) const;
    // Silence of trunc(Freq x seconds + 1.0) samples in place of [begin, end); begin = end
    // = GetValues() appends. `end` becomes the end of the silence.
    virtual SoundPtr MakeSilence(CancelFlag* cancel, double seconds, std::int32_t& begin,
                                 std::int32_t& end) const;
    // The same with the length in samples (truncated).
    virtual SoundPtr MakeSilenceValues(CancelFlag* cancel, double count, std::int32_t& begin,
                                       std::int32_t& end) const;
    // exponential false: straight line, true: exponential line.
    virtual SoundPtr MakeLine(CancelFlag* cancel, WaveVal first, WaveVal last, double seconds,
                              bool exponential, std::int32_t begin,
                              std::int32_t& end) const;
    // triangle false: block wave, true: triangle wave. period and length in seconds.
    virtual SoundPtr MakeBlockTriangle(CancelFlag* cancel, WaveVal first, WaveVal second,
                                       double period, double middle, double seconds,
                                       double startPhase, bool triangle, std::int32_t begin,
                                       std::int32_t& end) const;
    virtual SoundPtr MakeBlockTriangleEnv(CancelFlag* cancel, WaveVal first, WaveVal second,
                                          double period, const Sound* middleEnvelope,
                                          double seconds, double startPhase, bool triangle,
                                          std::int32_t begin, std::int32_t& end) const;
    // period in seconds; the length is trunc(count x Freq x period) as Wave::makeSinus.
    virtual SoundPtr MakeSinus(CancelFlag* cancel, WaveVal high, WaveVal low, double period,
                               double count, double startAngle, std::int32_t begin,
                               std::int32_t& end) const;
    virtual SoundPtr MakeNoise(CancelFlag* cancel, WaveVal volume, double seconds,
                               std::int32_t begin, std::int32_t& end) const;
    // Per-partial arrays of freqCount entries: periods in seconds, factors per sample.
    // form: the wave form to read (its mono/left/right waves), nullptr for the sine table.
    virtual SoundPtr MakeMFreq(CancelFlag* cancel, double seconds, const Sound* form,
                               std::int32_t freqCount, const double* volume,
                               const double* period, const double* startAngle,
                               const double* factor, std::int32_t begin,
                               std::int32_t& end) const;
    // From the document's records; asserts "count > 0". The per-sample factor is
    // volumeFactor ^ (1 / (Freq x volumeFactorTime)).
    virtual SoundPtr MakeMFreqCount(CancelFlag* cancel, double seconds, const Sound* form,
                                    std::int32_t count, const MFreqPartial* partials,
                                    std::int32_t begin, std::int32_t& end) const;
    // In place, both channels.
    virtual void DrawLine(CancelFlag* cancel, std::int32_t begin, WaveVal beginValue,
                          std::int32_t end, WaveVal endValue);
    // Change of length by a factor (the range is played slower or faster).
    virtual SoundPtr Length(CancelFlag* cancel, double factor, std::int32_t begin,
                            std::int32_t& end) const;
    // The whole sound resampled by a factor (2 doubles the length).
    virtual SoundPtr Resample(CancelFlag* cancel, double factor) const;
    // Roll out: the range read as a loop at a speed that follows the envelope
    // (value / 32767 x speed) into trunc(range x lengthFactor) samples.
    virtual SoundPtr RollOutEnv(CancelFlag* cancel, const Sound* speedEnvelope, double speed,
                                double lengthFactor, double startPos, std::int32_t begin,
                                std::int32_t& end) const;
    virtual SoundPtr RollOut(CancelFlag* cancel, double speed, double lengthFactor,
                             double startPos, std::int32_t begin,
                             std::int32_t& end) const;
    // The range wound into a loop of trunc(Freq x seconds + 1.0) samples starting at the
    // position trunc(Freq x targetSeconds) inside it.
    virtual SoundPtr RollIn(CancelFlag* cancel, double seconds, double targetSeconds,
                            std::int32_t begin, std::int32_t& end) const;
    // Rotated left by trunc(Freq x seconds) samples.
    virtual SoundPtr Rotate(CancelFlag* cancel, double seconds, std::int32_t begin,
                            std::int32_t& end) const;
    virtual SoundPtr Volume(CancelFlag* cancel, double factor, std::int32_t begin,
                            std::int32_t& end) const;
    // In place, both channels.
    virtual void VolumeInPlace(CancelFlag* cancel, double factor, std::int32_t begin,
                               std::int32_t& end);
    virtual SoundPtr VolumeEnv(CancelFlag* cancel, const Sound* envelope, std::int32_t begin,
                               std::int32_t& end) const;
    // Peak to 32767 (stereo: the larger peak of the two channels; peak 0 gives factor 0).
    virtual SoundPtr MaxVolume(CancelFlag* cancel, std::int32_t begin,
                               std::int32_t& end) const;
    // Peak to 22936.9 (0.7 x 32767): the soft form used after filtering.
    virtual SoundPtr MaxVolumeSoft(CancelFlag* cancel, std::int32_t begin,
                                   std::int32_t& end) const;
    virtual void MaxVolumeSoftInPlace(CancelFlag* cancel, std::int32_t begin,
                                      std::int32_t& end);
    // Mixes of another sound (resampled to Freq) into [begin, end): with begin < end only
    // the first (AlignBegin) or last (AlignEnd) end - begin samples of the other are used;
    // an empty range uses all of it. `begin`/`end` become the mixed stretch.
    virtual SoundPtr MixAlignBegin(CancelFlag* cancel, const Sound* other, std::int32_t& begin,
                                   std::int32_t& end) const;
    virtual SoundPtr MixAlignEnd(CancelFlag* cancel, const Sound* other, std::int32_t& begin,
                                 std::int32_t& end) const;
    // The other sound stretched over [begin, end) (an empty range: as MixAlignBegin).
    virtual SoundPtr MixStretch(CancelFlag* cancel, const Sound* other, std::int32_t& begin,
                                std::int32_t& end) const;
    // In place: other x factor added from trunc(Freq x seconds) on.
    virtual void MixCycleAt(CancelFlag* cancel, const Sound* other, double seconds,
                            double factor);
    // In place: other x factor added from `after` on, until either sound runs out.
    virtual void MixCycle(CancelFlag* cancel, const Sound* other, std::int32_t after,
                          double factor);
    // In place: other added from `after` on, until either sound runs out.
    virtual void MixCycleSimple(CancelFlag* cancel, const Sound* other, std::int32_t after);
    // In place: other added from `after` on, going on at 0 when the end is reached.
    virtual void MixCycleAfterThis(CancelFlag* cancel, const Sound* other,
                                   std::int32_t after) = 0;
    virtual SoundPtr Remove(CancelFlag* cancel, std::int32_t begin, std::int32_t end) const;
    virtual SoundPtr NewEmpty(CancelFlag* cancel) const;
    virtual SoundPtr CopyRange(CancelFlag* cancel, std::int32_t begin,
                               std::int32_t end) const;
    // [begin, end) replaced by the other sound (resampled to Freq); begin = end inserts.
    // `end` becomes begin + the inserted length.
    virtual SoundPtr Insert(CancelFlag* cancel, const Sound* other, std::int32_t begin,
                            std::int32_t& end) const;
    virtual SoundPtr Reverse(CancelFlag* cancel, std::int32_t begin,
                             std::int32_t& end) const;
    virtual SoundPtr Distort(CancelFlag* cancel, const Sound* curve, std::int32_t begin,
                             std::int32_t& end) const;
    // LowPass or HighPass with the period Freq x seconds.
    virtual SoundPtr ApplyFilter(CancelFlag* cancel, PassFilter filter, double seconds,
                                 double factor, int countBer, int countCmd, std::int32_t begin,
                                 std::int32_t end) const;
    // LowPassEnv or HighPassEnv with the envelope's wave per channel and Freq.
    virtual SoundPtr ApplyFilterEnv(CancelFlag* cancel, PassFilterEnv filter,
                                    const Sound* envelope, double factor, int countBer,
                                    int countCmd, std::int32_t begin,
                                    std::int32_t end) const;
    // Periodic echoes, echo time in seconds. Both begin and end become the grown stretch.
    virtual SoundPtr PerEcho(CancelFlag* cancel, double seconds, double volumeFactor,
                             std::int32_t count, std::int32_t& begin,
                             std::int32_t& end) const;
    // Constant echo time, volume from an envelope.
    virtual SoundPtr PerEchoEnv(CancelFlag* cancel, double seconds, const Sound* volumeEnvelope,
                                std::int32_t count, std::int32_t& begin,
                                std::int32_t& end) const;
    // Echo time from an envelope (asserts "diffTime >= 0"), constant volume.
    virtual SoundPtr PerEchoTime(CancelFlag* cancel, double seconds, const Sound* timeEnvelope,
                                 double volumeFactor, std::int32_t count, std::int32_t& begin,
                                 std::int32_t& end) const;
    // Both from envelopes.
    virtual SoundPtr PerEchoTimeEnv(CancelFlag* cancel, double seconds,
                                    const Sound* timeEnvelope, const Sound* volumeEnvelope,
                                    std::int32_t count, std::int32_t& begin,
                                    std::int32_t& end) const;
    // Block filter, block time in seconds; the range grows (begin, end updated).
    virtual SoundPtr FilterBlock(CancelFlag* cancel, double seconds, std::int32_t& begin,
                                 std::int32_t& end) const;
    virtual SoundPtr FilterBlockEnv(CancelFlag* cancel, double maxSeconds,
                                    const Sound* envelope, std::int32_t& begin,
                                    std::int32_t& end) const;
    // Tempo/pitch over the whole sound (start position 0), as the random echo uses it.
    // highQuality: the crossfaded form.
    virtual SoundPtr TempoPitchEcho(CancelFlag* cancel, double speed, double lengthFactor,
                                    double pitchStep, double blockSeconds,
                                    bool highQuality) const;
    virtual SoundPtr TempoPitch(CancelFlag* cancel, double speed, double startPos,
                                double lengthFactor, double pitchStep, double blockSeconds,
                                bool highQuality, std::int32_t begin,
                                std::int32_t& end) const;
    // Speed from an envelope (value / 32767 x speed); always the crossfaded form.
    virtual SoundPtr TempoPitchEnv1(CancelFlag* cancel, double speed,
                                    const Sound* speedEnvelope, double startPos,
                                    double lengthFactor, double pitchStep, double blockSeconds,
                                    std::int32_t begin, std::int32_t& end) const;
    // Pitch from an envelope (value / 32767 x pitchStep); always the crossfaded form.
    virtual SoundPtr TempoPitchEnv2(CancelFlag* cancel, double speed, double startPos,
                                    double lengthFactor, double pitchStep,
                                    const Sound* pitchEnvelope, double blockSeconds,
                                    std::int32_t begin, std::int32_t& end) const;
    // Both from envelopes.
    virtual SoundPtr TempoPitchEnv3(CancelFlag* cancel, double speed,
                                    const Sound* speedEnvelope, double startPos,
                                    double lengthFactor, double pitchStep,
                                    const Sound* pitchEnvelope, double blockSeconds,
                                    std::int32_t begin, std::int32_t& end) const;
    // Resonant or notch filter: period in seconds and width constant, or either taken from
    // an envelope (non-null freqEnvelope / widthEnvelope select the envelope forms).
    virtual SoundPtr ApplyResonantFilter(CancelFlag* cancel, const ResonatorFamily& family,
                                         double period, double width,
                                         const Sound* freqEnvelope, const Sound* widthEnvelope,
                                         std::int32_t begin, std::int32_t end) const;

    // ---- stereo operations (stereo_ops.cpp) ----------------------------------------

    // A stereo sound from the receiver's first wave (mono: WaveMiddle; stereo: WaveLeft),
    // placed at b (-1 left .. 1 right). volume: level difference; filter: the far channel
    // low-passed; timeDifference: the far channel delayed. nullptr when cancelled.
    SoundPtr Balance(CancelFlag* cancel, double b, bool timeDifference, bool volume,
                     bool filter) const;
    // The same with b read per sample from the envelope's mono wave (-32768 .. 32767).
    SoundPtr BalanceEnv(CancelFlag* cancel, const Sound* envelope, bool timeDifference,
                        bool volume, bool filter) const;

protected:
    explicit Sound(std::int32_t freq);
};

class MonoSound final : public Sound {
public:
    Wave* WaveMiddle;

    explicit MonoSound(std::int32_t freq);
    // Adopts `wave`.
    MonoSound(Wave* wave, std::int32_t freq);
    MonoSound(WavePtr wave, std::int32_t freq);
    // Converting copy of any sound: a stereo other gives its left channel.
    MonoSound(const Sound& other, CancelFlag* cancel);
    // Must never run: says so on the debug trace and leaves an empty sound.
    MonoSound(const MonoSound& other);
    MonoSound& operator=(const MonoSound&) = delete;
    ~MonoSound() override;

    void Dump() const override;
    std::int32_t GetValues() const override;
    long double GetTime() const override;
    Wave* GetMonoWave(CancelFlag* cancel, bool& isNew) const override;
    Wave* GetLeftWave() const override;
    Wave* GetRightWave() const override;
    Wave* GetMonoWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const override;
    Wave* GetLeftWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const override;
    Wave* GetRightWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const override;
    Wave* GetMiddleWaveAtFreq(CancelFlag* cancel, std::int32_t freq,
                              bool& isNew) const override;
    long double GetValueAt(CancelFlag* cancel, double fraction) const override;
    SoundPtr ChangeFreq(CancelFlag* cancel, double newFreq) const override;

    void MixCycleAfterThis(CancelFlag* cancel, const Sound* other, std::int32_t after) override;
};

class StereoSound final : public Sound {
public:
    Wave* WaveLeft;
    Wave* WaveRight;

    explicit StereoSound(std::int32_t freq);
    // Adopts both; asserts "waveLeft->getValues() == waveRight->getValues()".
    StereoSound(Wave* waveLeft, Wave* waveRight, std::int32_t freq);
    StereoSound(WavePtr waveLeft, WavePtr waveRight, std::int32_t freq);
    // Converting copy of any sound: a mono other becomes two identical, independent channels.
    StereoSound(const Sound& other, CancelFlag* cancel);
    // Must never run: says so on the debug trace and leaves an empty sound.
    StereoSound(const StereoSound& other);
    StereoSound& operator=(const StereoSound&) = delete;
    ~StereoSound() override;

    void Dump() const override;
    std::int32_t GetValues() const override;
    long double GetTime() const override;
    Wave* GetMonoWave(CancelFlag* cancel, bool& isNew) const override;
    Wave* GetLeftWave() const override;
    Wave* GetRightWave() const override;
    Wave* GetMonoWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const override;
    Wave* GetLeftWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const override;
    Wave* GetRightWaveAtFreq(CancelFlag* cancel, std::int32_t freq, bool& isNew) const override;
    Wave* GetMiddleWaveAtFreq(CancelFlag* cancel, std::int32_t freq,
                              bool& isNew) const override;
    long double GetValueAt(CancelFlag* cancel, double fraction) const override;
    SoundPtr ChangeFreq(CancelFlag* cancel, double newFreq) const override;

    void MixCycleAfterThis(CancelFlag* cancel, const Sound* other, std::int32_t after) override;
    SoundPtr ApplyFilter(CancelFlag* cancel, PassFilter filter, double seconds, double factor,
                         int countBer, int countCmd, std::int32_t begin,
                         std::int32_t end) const override;

    // ---- stereo operations (stereo_ops.cpp) ----------------------------------------

    // new left = LL x left + RL x right, new right = RR x right + LR x left over
    // [begin, end); asserts "GetValues() != 0".
    SoundPtr MixLeftRight(CancelFlag* cancel, double LL, double LR, double RL, double RR,
                          std::int32_t begin, std::int32_t& end) const;
};

}  // namespace orv
