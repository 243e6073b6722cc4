// The random echo: a new sound made of many transformed copies ("echoes") of the edited
// sound, each one placed, scaled, stretched, pitched and panned by the dice (core/dicer.h).
//
// How one run goes:
//  1. The dice are seeded with `seed` (this restarts the shared 15-bit sequence, so noise
//     made afterwards depends on it too).
//  2. The result starts as trunc(Freq x timeDifference + 1) samples of silence: the span in
//     which the echoes start.
//  3. Per echo the six dice are thrown once; then, in this order:
//       time    start = die x timeDifference (Linear), or the time envelope read at the die,
//               as value / 32767 x timeDifference (Random Envelope); a negative envelope
//               value counts as 0, an echo never starts before the result. The position is
//               trunc(Freq x start).
//       volume  the echo x die (Linear) or x value / 32767 (Random Envelope), whole echo.
//       length  resampled by 2 ^ (value / 32767): an envelope value of 32767 doubles the
//               echo's length (an octave lower), -32767 halves it, 0 leaves it.
//       pitch   frequency x F ^ (value / 32767), F = pitchFrequencyFactor: the factor is the
//               largest change either way (2: up to an octave up or down). An F that is not
//               above 0 leaves the pitch alone.
//       tempo   tempo x 2 ^ (value / 32767): from half to double speed; the echo is played
//               through once, so its length becomes length / tempo.
//               Pitch and tempo together are one tempo/pitch pass, with blocks of blockSize
//               seconds (at least one sample), crossfaded when quality is High.
//       balance b = die x 2 - 1 (Linear) or value / 32767 (Random Envelope), held to -1 .. 1
//               (a die can pass its maximum a little and the filter curve has no point
//               beyond 1), then the echo is placed with the balance's volume difference and
//               time difference; a stereo echo is placed from its left channel, as the
//               balance command does.
//     Length comes before pitch and tempo: the resampling then sets the echo's raw length
//     and the tempo/pitch pass works on what it made. An echo that has no samples left (a
//     resampling to nothing) is skipped.
//  4. The echo is added at its position with 16-bit wrap-around, no clipping:
//       cyclable      the result keeps its length, a loop of the time difference; a start
//                     at or past its end is taken round the loop, and whatever runs past
//                     the end goes on at sample 0, as often as needed.
//       not cyclable  the result is first lengthened with silence so that the whole echo
//                     fits, so the result is as long as the latest echo's end (and at least
//                     the start span of step 2).
//
// Choices made here where the dialog gives no number:
//  - Random envelopes are read with Sound::GetValueAt at the die (kept within 0 .. 1), so
//    the envelope is the shape of the distribution: an envelope rising straight from -32767
//    to 32767 spreads the values evenly, a flat stretch makes many echoes alike. Value / 32767
//    is the factor wherever a factor is read; length and tempo use 2 ^ (value / 32767) and
//    pitch F ^ (value / 32767) so that envelope 0 means "unchanged" and both directions are
//    reachable. An envelope without samples reads as 0.
//  - The result is stereo when the echoes are panned or the edited sound is stereo, mono
//    otherwise. Every working sound keeps the edited sound's frequency: block size and the
//    balance's delay are converted with it, so no working sound at a fixed rate is made.
//  - Only the "Cyclable" choice decides between the wrapping and the plain mix.
//  - Each property reads its own die by default (time 0, volume 1, length 2, balance 3,
//    pitch 4, tempo 5); two properties given the same die move together in every echo.
//  - The edited sound is read only, never changed, and an echo that needs no change is
//    mixed straight from it without a copy.
#pragma once

#include <cstdint>

#include "core/cancel.h"
#include "core/sound.h"

namespace orv {

// The option values are those of the dialog's radio groups, in their order.
enum class EchoTimeOption : std::uint8_t { Linear = 0, RandomEnvelope = 1 };
// Volume and balance: "No Change" / "Linear" / "Random Envelope".
enum class EchoLinearOption : std::uint8_t { NoChange = 0, Linear = 1, RandomEnvelope = 2 };
// Length, pitch and tempo: "No Change" / "Random Envelope".
enum class EchoEnvelopeOption : std::uint8_t { NoChange = 0, RandomEnvelope = 1 };
// The balance's "Volume Difference".
enum class EchoVolumeDifference : std::uint8_t { None = 0, Volume = 1, Filter = 2 };
enum class EchoQuality : std::uint8_t { Low = 0, High = 1 };

struct RandomEchoParams {
    std::int32_t count = 20;  // number of echoes; 0 gives the silent start span
    std::int32_t seed = 0;    // taken as unsigned, as a C seed would be

    EchoTimeOption timeOption = EchoTimeOption::Linear;
    int timeDie = 0;
    const Sound* timeEnvelope = nullptr;  // required with RandomEnvelope (not owned)
    double timeDifference = 1.0;          // seconds, >= 0

    EchoLinearOption volumeOption = EchoLinearOption::NoChange;
    int volumeDie = 1;
    const Sound* volumeEnvelope = nullptr;

    EchoEnvelopeOption lengthOption = EchoEnvelopeOption::NoChange;
    int lengthDie = 2;
    const Sound* lengthEnvelope = nullptr;

    EchoLinearOption balanceOption = EchoLinearOption::NoChange;
    int balanceDie = 3;
    const Sound* balanceEnvelope = nullptr;
    EchoVolumeDifference volumeDifference = EchoVolumeDifference::Volume;
    bool balanceTimeDifference = false;

    EchoEnvelopeOption pitchOption = EchoEnvelopeOption::NoChange;
    int pitchDie = 4;
    const Sound* pitchEnvelope = nullptr;
    double pitchFrequencyFactor = 2.0;

    EchoEnvelopeOption tempoOption = EchoEnvelopeOption::NoChange;
    int tempoDie = 5;
    const Sound* tempoEnvelope = nullptr;

    bool cyclable = false;

    EchoQuality quality = EchoQuality::Low;
    double blockSize = 0.04;  // seconds
};

// Builds the random echo of `source` (any length, mono or stereo; it is not changed).
// Returns the new sound at source's frequency, or nullptr when the cancel flag was set
// before or during the run (what was made so far is thrown away here; the caller keeps
// its sound). Asserts "count >= 0", "timeDifference >= 0", the die numbers of the
// properties in use ("dice >= 0", "dice < DICES") and "envelope != nullptr" for every
// property set to Random Envelope.
SoundPtr RandomEcho(CancelFlag* cancel, const Sound& source, const RandomEchoParams& params);

// The factor base ^ (value / 32767) that length, pitch and tempo read from an envelope.
double echoEnvelopePower(double base, long double value);

}  // namespace orv
