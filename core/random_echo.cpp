#include "core/random_echo.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <new>

#include "core/dicer.h"
#include "core/platform.h"
#include "core/sample_value.h"

namespace orv {

namespace {

constexpr const char* kUnit = "dicer";
constexpr const char* kNoMemory = "There is not enough memmory for this operation.";

// The envelope read at the die's relative position; an empty envelope reads as 0.
long double envelopeAt(CancelFlag* cancel, const Sound* envelope, double die) {
    ORV_ASSERT(envelope != nullptr, kUnit);
    if (envelope->GetValues() == 0) return 0.0L;
    return envelope->GetValueAt(cancel, std::clamp(die, 0.0, 1.0));
}

// One echo under construction: starts as the (borrowed) source and takes over each new
// stage, so the intermediate sounds go as soon as the next one exists.
class EchoStages {
public:
    explicit EchoStages(const Sound& source) : current_(&source) {}

    const Sound& current() const { return *current_; }
    bool empty() const { return current_->GetValues() == 0; }

    // Takes the next stage; false when there is none (cancelled or out of memory).
    bool take(CancelFlag* cancel, SoundPtr next) {
        if (!next || isCancelled(*cancel)) return false;
        owned_ = std::move(next);
        current_ = owned_.get();
        return true;
    }

private:
    const Sound* current_;
    SoundPtr owned_;
};

SoundPtr emptySound(bool stereo, std::int32_t freq) {
    Sound* s = stereo ? static_cast<Sound*>(new (std::nothrow) StereoSound(freq))
                      : static_cast<Sound*>(new (std::nothrow) MonoSound(freq));
    return SoundPtr(s);
}

}  // namespace

double echoEnvelopePower(double base, long double value) {
    return std::pow(base, static_cast<double>(value / 32767.0L));
}

SoundPtr RandomEcho(CancelFlag* cancel, const Sound& source, const RandomEchoParams& p) {
    ORV_ASSERT_TEXT(p.count >= 0, "count >= 0", kUnit);
    ORV_ASSERT_TEXT(p.timeDifference >= 0, "timeDifference >= 0", kUnit);
    if (isCancelled(*cancel)) return nullptr;

    const std::int32_t freq = source.Freq;
    const bool panned = p.balanceOption != EchoLinearOption::NoChange;
    const bool pitched = p.pitchOption == EchoEnvelopeOption::RandomEnvelope;
    const bool tempoed = p.tempoOption == EchoEnvelopeOption::RandomEnvelope;
    const bool volumeDiff = p.volumeDifference == EchoVolumeDifference::Volume;
    const bool filterDiff = p.volumeDifference == EchoVolumeDifference::Filter;
    // Below one sample a block would never end.
    const double blockSeconds = std::max(p.blockSize, 1.0 / freq);
    const double pitchBase = p.pitchFrequencyFactor > 0 ? p.pitchFrequencyFactor : 1.0;

    Dicer dicer;
    dicer.SeedDice(static_cast<unsigned>(p.seed));

    SoundPtr result = emptySound(panned || source.MoSt == 2, freq);
    if (!result) {
        setCancelled(*cancel);
        return nullptr;
    }
    {
        std::int32_t begin = 0, end = 0;
        result = result->MakeSilence(cancel, p.timeDifference, begin, end);
        if (!result || isCancelled(*cancel)) return nullptr;
    }

    for (std::int32_t i = 0; i < p.count; ++i) {
        if (isCancelled(*cancel)) return nullptr;
        dicer.ThrowDice();

        double start = 0.0;
        const double timeDie = dicer.GetDie(p.timeDie, 1.0, 0.0);
        if (p.timeOption == EchoTimeOption::Linear) {
            start = timeDie * p.timeDifference;
        } else {
            const long double v = envelopeAt(cancel, p.timeEnvelope, timeDie);
            start = std::max(0.0, static_cast<double>(v / 32767.0L)) * p.timeDifference;
        }
        std::int32_t position = truncToInt(freq * start);

        EchoStages echo(source);
        bool ok = true;

        if (p.volumeOption != EchoLinearOption::NoChange) {
            const double die = dicer.GetDie(p.volumeDie, 1.0, 0.0);
            const double factor =
                p.volumeOption == EchoLinearOption::Linear
                    ? die
                    : static_cast<double>(envelopeAt(cancel, p.volumeEnvelope, die) / 32767.0L);
            std::int32_t end = -1;
            ok = echo.empty() || echo.take(cancel, echo.current().Volume(cancel, factor, 0, end));
        }
        if (ok && p.lengthOption == EchoEnvelopeOption::RandomEnvelope) {
            const double die = dicer.GetDie(p.lengthDie, 1.0, 0.0);
            const double factor = echoEnvelopePower(2.0, envelopeAt(cancel, p.lengthEnvelope, die));
            ok = echo.empty() || echo.take(cancel, echo.current().Resample(cancel, factor));
        }
        if (ok && (pitched || tempoed)) {
            double pitchStep = 1.0, speed = 1.0;
            if (pitched) {
                const double die = dicer.GetDie(p.pitchDie, 1.0, 0.0);
                pitchStep = echoEnvelopePower(pitchBase, envelopeAt(cancel, p.pitchEnvelope, die));
            }
            if (tempoed) {
                const double die = dicer.GetDie(p.tempoDie, 1.0, 0.0);
                speed = echoEnvelopePower(2.0, envelopeAt(cancel, p.tempoEnvelope, die));
            }
            ok = echo.empty() ||
                 echo.take(cancel, echo.current().TempoPitchEcho(
                                       cancel, speed, 1.0 / speed, pitchStep, blockSeconds,
                                       p.quality == EchoQuality::High));
        }
        if (ok && panned) {
            double b = 0.0;
            if (p.balanceOption == EchoLinearOption::Linear) {
                b = dicer.GetDie(p.balanceDie, 1.0, -1.0);
            } else {
                const double die = dicer.GetDie(p.balanceDie, 1.0, 0.0);
                b = static_cast<double>(envelopeAt(cancel, p.balanceEnvelope, die) / 32767.0L);
            }
            b = std::clamp(b, -1.0, 1.0);
            ok = echo.empty() ||
                 echo.take(cancel, echo.current().Balance(cancel, b, p.balanceTimeDifference,
                                                          volumeDiff, filterDiff));
        }
        if (!ok || isCancelled(*cancel)) return nullptr;
        if (echo.empty()) continue;

        const std::int32_t echoLength = echo.current().GetValues();
        if (p.cyclable) {
            position %= result->GetValues();
            result->MixCycleAfterThis(cancel, &echo.current(), position);
        } else {
            const std::int64_t need = std::int64_t{position} + echoLength;
            if (need > INT32_MAX) {
                // No sound can hold it; the same answer as a failed allocation.
                showMessage("System Error", kNoMemory);
                setCancelled(*cancel);
                return nullptr;
            }
            if (need > result->GetValues()) {
                std::int32_t begin = result->GetValues(), end = begin;
                result = result->MakeSilenceValues(
                    cancel, static_cast<double>(need - result->GetValues()), begin, end);
                if (!result || isCancelled(*cancel)) return nullptr;
            }
            result->MixCycleSimple(cancel, &echo.current(), position);
        }
    }
    if (isCancelled(*cancel)) return nullptr;
    return result;
}

}  // namespace orv
