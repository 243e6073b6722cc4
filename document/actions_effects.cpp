// The effects menu: the rows and how each record feeds its sound operation. Each works on
// the selection, or on the whole wave when nothing is selected.
#include <array>
#include <cmath>

#include "core/sample_value.h"
#include "document/action_rows.h"
#include "document/actions_support.h"

namespace orv {

namespace {

bool feedMaxVolume(PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    plan.work = 2 * workOf(plan.end - plan.begin, c.channels());  // find the peak, then scale
    plan.compute = [](const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        return s.MaxVolume(cancel, b, e);
    };
    return true;
}

bool feedReverse(PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    plan.work = workOf(plan.end - plan.begin, c.channels());
    plan.compute = [](const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        return s.Reverse(cancel, b, e);
    };
    return true;
}

bool feedVolume(const VolumeRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    plan.work = workOf(plan.end - plan.begin, c.channels());
    if (p.kind == kEnvelope) {
        plan.compute = [env = c.pin(p.envelope)](const Sound& s, CancelFlag* cancel,
                                                  std::int32_t& b, std::int32_t& e) {
            return s.VolumeEnv(cancel, env.get(), b, e);
        };
    } else {
        plan.compute = [f = p.factor.value](const Sound& s, CancelFlag* cancel, std::int32_t& b,
                                            std::int32_t& e) { return s.Volume(cancel, f, b, e); };
    }
    return true;
}

bool feedUp(const UpRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    plan.work = workOf(plan.end - plan.begin, c.channels());
    plan.compute = [v = toWaveVal(p.addValue.value)](const Sound& s, CancelFlag* cancel,
                                                      std::int32_t& b, std::int32_t& e) {
        return s.Up(cancel, v, b, e);
    };
    return true;
}

bool feedBlock(const BlockRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    plan.work = workOf(plan.end - plan.begin, c.channels());
    // Horizontal: a count of blocks over the range, a block time, or blocks of one sample
    // (no change). Vertical: a count of levels, the height of one level, or 0 (no change).
    double blockTime = 1.0 / c.freq();
    if (p.horizontal == BlockRecord::kCount && p.horizontalCount > 0)
        blockTime = double(plan.end - plan.begin) / p.horizontalCount / c.freq();
    else if (p.horizontal == BlockRecord::kTimeOrHeight)
        blockTime = p.time.value;
    std::int32_t levels = 0;
    if (p.vertical == BlockRecord::kCount)
        levels = p.verticalCount;
    else if (p.vertical == BlockRecord::kTimeOrHeight && std::fabs(p.height.value) >= 1.0)
        levels = truncToInt(65535.0 / std::fabs(p.height.value)) + 1;
    plan.compute = [blockTime, levels](const Sound& s, CancelFlag* cancel, std::int32_t& b,
                                       std::int32_t& e) {
        return s.Block(cancel, blockTime, levels, b, e);
    };
    return true;
}

bool feedRollOut(const RollOutRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    const double speed = p.speedFactor.value;
    double factor;
    if (p.lengthKind == kLengthCount)
        factor = speed != 0.0 ? p.lengthCount / std::fabs(speed) : 0.0;  // whole passes
    else
        factor = lengthFactorOf(p, p.lengthKind == kLengthSameAs ? c.secondsOf(p.sameAs) : 0.0,
                                c.selectionSeconds());
    const std::int32_t n = plan.end - plan.begin;
    if (factor <= 0.0 || truncToInt(double(n) * factor) < 1) return false;
    plan.work = workOf(std::int64_t(double(n) * factor), c.channels());
    const double start = fractionInRange(p.startPosition.value, c.freq(), plan.begin, plan.end);
    if (p.speedHasEnvelope) {
        plan.compute = [env = c.pin(p.speedEnvelope), speed, factor, start](
                           const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
            return s.RollOutEnv(cancel, env.get(), speed, factor, start, b, e);
        };
    } else {
        plan.compute = [speed, factor, start](const Sound& s, CancelFlag* cancel, std::int32_t& b,
                                              std::int32_t& e) {
            return s.RollOut(cancel, speed, factor, start, b, e);
        };
    }
    return true;
}

bool feedRollIn(const RollInRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    // The loop is trunc(Freq x length + 1) samples long; the range starts at "Start at"
    // inside it, or is placed so that it ends at "End at", taken round the loop.
    const std::int64_t n = std::int64_t(double(c.freq()) * p.length.value + 1.0);
    if (n < 1) return false;
    std::int64_t target;
    if (p.placement == RollInRecord::kEndAt)
        target = std::int64_t(double(c.freq()) * p.endAt.value) - (plan.end - plan.begin);
    else
        target = std::int64_t(double(c.freq()) * p.startAt.value);
    target = ((target % n) + n) % n;
    plan.work = workOf(std::max<std::int64_t>(plan.end - plan.begin, n), c.channels());
    plan.compute = [seconds = p.length.value,
                    targetSeconds = secondsForSamples(std::int32_t(target), c.freq())](
                       const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        return s.RollIn(cancel, seconds, targetSeconds, b, e);
    };
    return true;
}

bool feedRotate(const RotateRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    const std::int32_t n = plan.end - plan.begin;
    if (n < 1) return false;
    // By a part of the range or by a time, either way kept within the range; a shift to the
    // right is the complementary shift to the left.
    std::int64_t shift = p.kind == RotateRecord::kByTime
                             ? std::int64_t(double(c.freq()) * p.time.value)
                             : std::int64_t(std::floor(p.factor.value * n));
    shift = ((shift % n) + n) % n;
    if (p.shiftTo == RotateRecord::kRight && shift != 0) shift = n - shift;
    plan.work = workOf(n, c.channels());
    plan.compute = [seconds = secondsForSamples(std::int32_t(shift), c.freq())](
                       const Sound& s, CancelFlag* cancel, std::int32_t& b, std::int32_t& e) {
        return s.Rotate(cancel, seconds, b, e);
    };
    return true;
}

bool feedLength(const LengthRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    const double factor =
        lengthFactorOf(p, p.lengthKind == kLengthSameAs ? c.secondsOf(p.sameAs) : 0.0,
                       c.selectionSeconds());
    plan.work = workOf(std::int64_t(double(plan.end - plan.begin) * std::fabs(factor)),
                       c.channels());
    plan.compute = [factor](const Sound& s, CancelFlag* cancel, std::int32_t& b,
                            std::int32_t& e) { return s.Length(cancel, factor, b, e); };
    return true;
}

bool feedDistort(const DistortRecord& p, PrepareContext& c, Plan& plan) {
    c.effectRange(plan);
    plan.work = workOf(plan.end - plan.begin, c.channels());
    plan.compute = [curve = c.pin(p.envelope)](const Sound& s, CancelFlag* cancel,
                                                std::int32_t& b, std::int32_t& e) {
        return s.Distort(cancel, curve.get(), b, e);
    };
    return true;
}

using F = ActionFlow;
using E = EnableRule;
using U = UnitRecords;

constexpr std::array kRows{
    actionRow("MaxVolume", "SimpleWave", "M&aximal Volume", "Shift+V", "Maximize Volume", "Maximize volume", F::Edit, E::Samples, {}, editOperation<feedMaxVolume>()),
    actionRow("Volume", "SimpleWave", "&Volume...", "V", "Volume", "Change the volume", F::Operation, E::Samples, "Change Volume", recordOperation<VolumeRecord, &U::volume, feedVolume>()),
    actionRow("Reverse", "SimpleWave", "&Reverse", "R", "Reverse", "Reverse the wave", F::Edit, E::Samples, {}, editOperation<feedReverse>()),
    actionRow("Up", "SimpleWave", "&Up...", "U", "Up", "Move the wave up or down", F::Operation, E::Samples, "Up / Down", recordOperation<UpRecord, &U::up, feedUp>()),
    actionRow("Block", "SimpleWave", "&Block...", "Shift+B", "Block", "Block wave horizontally and/or vertically", F::Operation, E::Samples, "Block", recordOperation<BlockRecord, &U::block, feedBlock>()),
    actionRow("RollOut", "SimpleWave", "Roll ou&t...", "O", "Roll out", "Roll the wave out", F::Operation, E::Samples, "Roll out", recordOperation<RollOutRecord, &U::rollOut, feedRollOut>()),
    actionRow("Rotate", "SimpleWave", "R&otate...", "Ctrl+R", "", "", F::Operation, E::Samples, "Rotate", recordOperation<RotateRecord, &U::rotate, feedRotate>()),
    actionRow("RollIn", "SimpleWave", "Roll &in...", "I", "Roll In", "Roll the wave into a shorter wave", F::Operation, E::Samples, "Roll in", recordOperation<RollInRecord, &U::rollIn, feedRollIn>()),
    actionRow("Length", "SimpleWave", "&Length...", "L", "Length", "Change the length of the wave", F::Operation, E::Samples, "Change Length", recordOperation<LengthRecord, &U::length, feedLength>()),
    actionRow("Distort", "SimpleWave", "&Distort...", "Shift+D", "Distort", "Distort using a envelope as a function", F::Operation, E::Samples, "Distort", recordOperation<DistortRecord, &U::distort, feedDistort>()),
};

}  // namespace

std::span<const ActionDef> effectActions() { return kRows; }

}  // namespace orv
