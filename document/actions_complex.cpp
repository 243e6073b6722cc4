// The menu of complex effects: balance, mixing left and right, the echoes, tempo and pitch.
#include <array>
#include <cmath>

#include "core/platform.h"
#include "core/random_echo.h"
#include "document/action_rows.h"
#include "document/actions_support.h"

namespace orv {

namespace {

bool feedBalance(const BalanceRecord& p, PrepareContext& c, Plan& plan) {
    // The whole wave becomes a stereo sound.
    plan.begin = 0;
    plan.end = c.values();
    plan.work = workOf(c.values(), 2);
    const bool vol = p.volumeDifference == BalanceRecord::kVolume;
    const bool filter = p.volumeDifference == BalanceRecord::kFilter;
    SoundRef env = p.directionKind == kEnvelope ? c.pin(p.directionEnvelope) : nullptr;
    plan.compute = [env, direction = p.direction.value, time = p.timeDifference, vol, filter](
                       const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        SoundPtr made = env ? s.BalanceEnv(cancel, env.get(), time, vol, filter)
                            : s.Balance(cancel, direction, time, vol, filter);
        b = 0;
        e = made ? made->GetValues() : 0;
        return made;
    };
    return true;
}

bool feedMixLeftRight(const LeftRightRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    ORV_ASSERT_TEXT(c.channels() == 2, "MonoStereo == 2", "unitwave");
    plan.work = workOf(plan.end - plan.begin, 2);
    plan.compute = [ll = p.leftToLeft.value, lr = p.leftToRight.value, rl = p.rightToLeft.value,
                    rr = p.rightToRight.value](const Sound& s, CancelFlag* cancel,
                                               std::int32_t& b, std::int32_t& e) -> SoundPtr {
        const auto& stereo = static_cast<const StereoSound&>(s);
        return stereo.MixLeftRight(cancel, ll, lr, rl, rr, b, e);
    };
    return true;
}

bool feedPerEcho(const PerEchoRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    if (plan.end - plan.begin < 2) return false;  // an echo needs at least two samples to repeat
    plan.work = workOf(std::int64_t(plan.end - plan.begin) * (std::max(p.count, 0) + 1),
                       c.channels());
    const double seconds = p.time.value;
    const std::int32_t count = p.count;
    SoundRef volumeEnv = p.volumeKind == kEnvelope ? c.pin(p.volumeEnvelope) : nullptr;
    if (!p.timeHasEnvelope) {
        plan.compute = [seconds, count, volumeEnv, volume = p.volume.value](
                           const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
            return volumeEnv ? s.PerEchoEnv(cancel, seconds, volumeEnv.get(), count, b, e)
                             : s.PerEcho(cancel, seconds, volume, count, b, e);
        };
        return true;
    }
    // A time envelope stretches the echo distance; it runs forward only.
    plan.compute = [diff = std::fabs(seconds), count, volumeEnv, timeEnv = c.pin(p.timeEnvelope),
                    volume = p.volume.value](const Sound& s, CancelFlag* cancel,
                                             std::int32_t& b, std::int32_t& e) {
        return volumeEnv
                   ? s.PerEchoTimeEnv(cancel, diff, timeEnv.get(), volumeEnv.get(), count, b, e)
                   : s.PerEchoTime(cancel, diff, timeEnv.get(), volume, count, b, e);
    };
    return true;
}

bool feedRandomEcho(const RandomEchoRecord& p, PrepareContext& c, Plan& plan) {
    plan.begin = 0;
    plan.end = c.values();
    plan.work = workOf(std::int64_t(c.values()) * (std::max(p.count, 0) + 1), 2);
    // The envelopes the chosen options read, kept alive for the job.
    auto env = [&](std::uint8_t kind, std::uint8_t envelopeKind, const std::string& name) {
        return kind == envelopeKind ? c.pin(name) : nullptr;
    };
    struct Pinned {
        SoundRef time, volume, length, balance, pitch, tempo;
    };
    Pinned pinned{env(p.timeKind, 1, p.timeEnvelope),       env(p.volumeKind, 2, p.volumeEnvelope),
                  env(p.lengthKind, 1, p.lengthEnvelope),   env(p.balanceKind, 2, p.balanceEnvelope),
                  env(p.pitchKind, 1, p.pitchEnvelope),     env(p.tempoKind, 1, p.tempoEnvelope)};
    RandomEchoParams e;
    e.count = p.count;
    e.seed = p.seed;
    e.timeOption = EchoTimeOption(p.timeKind);
    e.timeDie = p.timeDie;
    e.timeEnvelope = pinned.time.get();
    e.timeDifference = p.timeDifference.value;
    e.volumeOption = EchoLinearOption(p.volumeKind);
    e.volumeDie = p.volumeDie;
    e.volumeEnvelope = pinned.volume.get();
    e.lengthOption = EchoEnvelopeOption(p.lengthKind);
    e.lengthDie = p.lengthDie;
    e.lengthEnvelope = pinned.length.get();
    e.balanceOption = EchoLinearOption(p.balanceKind);
    e.balanceDie = p.balanceDie;
    e.balanceEnvelope = pinned.balance.get();
    e.volumeDifference = EchoVolumeDifference(p.balanceVolumeDifference);
    e.balanceTimeDifference = p.balanceTimeDifference;
    e.pitchOption = EchoEnvelopeOption(p.pitchKind);
    e.pitchDie = p.pitchDie;
    e.pitchEnvelope = pinned.pitch.get();
    e.pitchFrequencyFactor = p.pitchFactor.value;
    e.tempoOption = EchoEnvelopeOption(p.tempoKind);
    e.tempoDie = p.tempoDie;
    e.tempoEnvelope = pinned.tempo.get();
    e.cyclable = p.cyclable;
    e.quality = EchoQuality(p.quality);
    e.blockSize = p.blockSize.value;
    plan.compute = [e, pinned](const Sound& s, CancelFlag* cancel, std::int32_t& b,
                               std::int32_t& end) {
        SoundPtr made = RandomEcho(cancel, s, e);
        b = 0;
        end = made ? made->GetValues() : 0;
        return made;
    };
    return true;
}

bool feedTempoPitch(const TempoPitchRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    const double speed = p.speedFactor.value;
    const double pitch = p.frequencyFactor.value;
    double factor;
    if (p.lengthKind == kLengthCount)
        factor = speed != 0.0 ? p.lengthCount / std::fabs(speed) : 0.0;  // whole passes
    else
        factor = lengthFactorOf(p, p.lengthKind == kLengthSameAs ? c.secondsOf(p.sameAs) : 0.0,
                                c.selectionSeconds());
    if (speed == 0.0 || factor <= 0.0) return false;
    plan.work = workOf(std::int64_t(double(plan.end - plan.begin) * factor), c.channels());
    const double start = fractionInRange(p.startPosition.value, c.freq(), plan.begin, plan.end);
    const double block = p.blockSize.value;
    SoundRef speedEnv = p.speedHasEnvelope ? c.pin(p.speedEnvelope) : nullptr;
    SoundRef pitchEnv = p.frequencyHasEnvelope ? c.pin(p.frequencyEnvelope) : nullptr;
    plan.compute = [=, high = p.quality == TempoPitchRecord::kHigh](
                       const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        if (speedEnv && pitchEnv)
            return s.TempoPitchEnv3(cancel, speed, speedEnv.get(), start, factor, pitch,
                                    pitchEnv.get(), block, b, e);
        if (speedEnv)
            return s.TempoPitchEnv1(cancel, speed, speedEnv.get(), start, factor, pitch, block,
                                    b, e);
        if (pitchEnv)
            return s.TempoPitchEnv2(cancel, speed, start, factor, pitch, pitchEnv.get(), block,
                                    b, e);
        return s.TempoPitch(cancel, speed, start, factor, pitch, block, high, b, e);
    };
    return true;
}

using F = ActionFlow;
using E = EnableRule;
using U = UnitRecords;

constexpr std::array kRows{
    actionRow("Balance", "ComplexWave", "Ba&lance...", "B", "Balance", "Change the mono sound into a stereo sound in a balance", F::Operation, E::MonoSamples, "Balance", recordOperation<BalanceRecord, &U::balance, feedBalance>()),
    actionRow("MixLeftRight", "ComplexWave", "Mi&x Left and Right...", "Shift+M", "Mix Left and Right", "Mix Left channel with right channel", F::Operation, E::StereoSamples, "Mix Left Right", recordOperation<LeftRightRecord, &U::leftRight, feedMixLeftRight>()),
    actionRow("PerEcho", "ComplexWave", "&Period...", "Ctrl+E", "Period echo", "make echoes with equal distances", F::Operation, E::Samples, "Period Echo", recordOperation<PerEchoRecord, &U::perEcho, feedPerEcho>()),
    actionRow("RndEcho", "ComplexWave", "&Random...", "Alt+E", "Random echo", "make echoes randomly made and placed", F::Operation, E::Samples, "Random Echo", recordOperation<RandomEchoRecord, &U::randomEcho, feedRandomEcho>()),
    actionRow("TempoPitch", "ComplexWave", "Tem&po and Pitch...", "T", "Tempo and Pitch", "Change tempo and/or pitch", F::Operation, E::Samples, "Pitch Tempo", recordOperation<TempoPitchRecord, &U::tempoPitch, feedTempoPitch>()),
};

}  // namespace

std::span<const ActionDef> complexActions() { return kRows; }

}  // namespace orv
