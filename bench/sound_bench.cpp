// Stereo against mono: every editing operation of Sound timed on a MonoSound and on a
// StereoSound of the same length, and the ratio stereo / mono. A stereo operation is the
// mono work done on two channels, so the goal is a ratio of at most 2.
//
// Each operation runs in three forms:
//   <op>/mono      the mono sound of the operation's length
//   <op>/stereo    the stereo sound of the same length (two different channels)
//   <op>/scale     the mono sound at a tenth of that length: the time per sample there
//                  against the full length shows work that grows faster than the length
// Caches are flushed before every call (outside the timing). The length is ten minutes at 44.1 kHz (26.46 M samples a channel) unless the operation
// is slow; those run over one minute and are marked so in the summary.
//
// Each run repeats the call for at least 0.1 s of CPU time (a slow operation runs once);
// use --benchmark_repetitions=3 and the summary takes the lowest mean CPU time of the
// repetitions. Results made by an operation are freed
// inside the timing, as an editor would free them sooner or later.
//
//   sound_bench --benchmark_repetitions=3                   everything
//   sound_bench --benchmark_filter='Balance'                one group
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include "core/filter.h"
#include "core/sound.h"
#include "core/stereo_ops.h"
#include "core/wave.h"

namespace orv {
namespace {

constexpr std::int32_t kFreq = 44100;
constexpr std::int32_t kLong = 26'460'000;  // ten minutes
constexpr std::int32_t kShort = 2'646'000;  // one minute, for the slow operations

// ---- inputs ------------------------------------------------------------------------------

WavePtr signal(std::int32_t count, std::uint32_t seed) {
    CancelFlag c{0};
    WavePtr w = newWave(c, count);
    std::uint32_t r = seed;
    const double f1 = 0.0142 + seed * 0.0003, f2 = 0.173 - seed * 0.002;
    for (std::int32_t i = 0; i < count; ++i) {
        r = r * 1664525u + 1013904223u;
        const double noise = double(r >> 20) - 2048.0;
        (*w)[i] = toWaveVal(12000 * std::sin(i * f1) + 6000 * std::sin(i * f2) + noise);
    }
    return w;
}

WavePtr ramp(std::int32_t count, int first, int last) {
    CancelFlag c{0};
    WavePtr w = newWave(c, count);
    for (std::int32_t i = 0; i < count; ++i)
        (*w)[i] = toWaveVal(first + double(last - first) * i / (count - 1));
    return w;
}

SoundPtr mono(WavePtr w) { return std::make_unique<MonoSound>(std::move(w), kFreq); }
SoundPtr stereo(WavePtr l, WavePtr r) {
    return std::make_unique<StereoSound>(std::move(l), std::move(r), kFreq);
}

// The sounds of one layout at one length.
struct Layout {
    SoundPtr sound;    // what every operation reads
    SoundPtr scratch;  // changed by the in-place operations
    SoundPtr half;     // half the length, to mix in
    SoundPtr tenth;    // a tenth, to insert
    SoundPtr empty;    // generators make their stretch in here
};

Layout makeLayout(std::int32_t n, bool isStereo) {
    Layout l;
    if (isStereo) {
        l.sound = stereo(signal(n, 1), signal(n, 2));
        l.scratch = stereo(signal(n, 1), signal(n, 2));
        l.half = stereo(signal(n / 2, 3), signal(n / 2, 4));
        l.tenth = stereo(signal(n / 10, 5), signal(n / 10, 6));
        l.empty = std::make_unique<StereoSound>(kFreq);
    } else {
        l.sound = mono(signal(n, 1));
        l.scratch = mono(signal(n, 1));
        l.half = mono(signal(n / 2, 3));
        l.tenth = mono(signal(n / 10, 5));
        l.empty = std::make_unique<MonoSound>(kFreq);
    }
    return l;
}

// Built on first use and kept: a layout per (length, stereo).
Layout& layout(std::int32_t n, bool isStereo) {
    static std::map<std::pair<std::int32_t, bool>, Layout> cache;
    auto it = cache.find({n, isStereo});
    if (it == cache.end()) it = cache.emplace(std::make_pair(n, isStereo), makeLayout(n, isStereo)).first;
    return it->second;
}

// Envelopes and curves: short mono sounds (a mono argument feeds both channels).
struct Shapes {
    SoundPtr rise = mono(ramp(1000, -32768, 32767));  // rising envelope
    SoundPtr flat = mono(ramp(1000, 16384, 16384));   // half-scale envelope
    SoundPtr curve = mono(ramp(1000, -30000, 30000)); // distortion curve
};
Shapes& shapes() {
    static Shapes s;
    return s;
}

// ---- the operations ------------------------------------------------------------------------

// What an operation gets: the layout and the length it runs over.
struct Ctx {
    Layout& l;
    std::int32_t n;
    CancelFlag& c;
    double seconds() const { return double(n) / kFreq; }
};

using Op = std::function<void(Ctx&)>;

struct OpInfo {
    std::string name;
    std::int32_t length;
};
std::vector<OpInfo>& ops() {
    static std::vector<OpInfo> v;
    return v;
}

// Writes a buffer larger than the last-level cache, so that every call starts with its
// input in memory, as after a user's click: otherwise the second call of a mono operation
// finds part of its 53 MB still cached, which a stereo one (106 MB) never does.
void evictCaches() {
    static std::vector<std::uint64_t> junk(std::size_t(64) << 20 >> 3);
    static std::uint64_t round = 0;
    ++round;
    for (std::size_t i = 0; i < junk.size(); i += 8) junk[i] += round;
    benchmark::DoNotOptimize(junk.data());
    benchmark::ClobberMemory();
}

void runOp(benchmark::State& st, const Op& op, std::int32_t n, bool isStereo) {
    Layout& l = layout(n, isStereo);
    shapes();
    CancelFlag c{0};
    Ctx ctx{l, n, c};
    for (auto _ : st) {
        st.PauseTiming();
        evictCaches();
        st.ResumeTiming();
        op(ctx);
        if (isCancelled(c)) {
            st.SkipWithError("cancelled (out of memory?)");
            break;
        }
    }
    st.SetItemsProcessed(st.iterations() * std::int64_t(n));
}

void add(const std::string& name, std::int32_t n, Op op) {
    ops().push_back({name, n});
    auto reg = [&](const std::string& suffix, std::int32_t len, bool isStereo) {
        benchmark::RegisterBenchmark((name + "/" + suffix).c_str(),
                                     [op, len, isStereo](benchmark::State& st) {
                                         runOp(st, op, len, isStereo);
                                     })
            ->MinTime(0.1)
            ->Unit(benchmark::kMillisecond);
    };
    reg("mono", n, false);
    reg("stereo", n, true);
    reg("scale", n / 10, false);
}

// A functional operation: the result is made and freed.
template <class F>
Op made(F f) {
    return [f](Ctx& x) {
        SoundPtr r = f(x);
        benchmark::DoNotOptimize(r.get());
    };
}

void registerAll() {
    const Sound* rise = shapes().rise.get();
    const Sound* flat = shapes().flat.get();
    const Sound* curve = shapes().curve.get();

    // ---- generators: a stretch of the whole length into an empty sound ----
    add("MakeSilence", kLong, made([](Ctx& x) {
            std::int32_t b = 0, e = 0;
            return x.l.empty->MakeSilence(&x.c, x.seconds(), b, e);
        }));
    add("MakeLine", kLong, made([](Ctx& x) {
            std::int32_t e = 0;
            return x.l.empty->MakeLine(&x.c, -30000, 30000, x.seconds(), false, 0, e);
        }));
    add("MakeLine exponential", kLong, made([](Ctx& x) {
            std::int32_t e = 0;
            return x.l.empty->MakeLine(&x.c, 100, 30000, x.seconds(), true, 0, e);
        }));
    add("MakeBlockTriangle block", kLong, made([](Ctx& x) {
            std::int32_t e = 0;
            return x.l.empty->MakeBlockTriangle(&x.c, -20000, 20000, 100.3 / kFreq, 0.4,
                                                x.seconds(), 0.1, false, 0, e);
        }));
    add("MakeBlockTriangle triangle", kLong, made([](Ctx& x) {
            std::int32_t e = 0;
            return x.l.empty->MakeBlockTriangle(&x.c, -20000, 20000, 100.3 / kFreq, 0.4,
                                                x.seconds(), 0.1, true, 0, e);
        }));
    add("MakeBlockTriangleEnv", kLong, made([rise](Ctx& x) {
            std::int32_t e = 0;
            return x.l.empty->MakeBlockTriangleEnv(&x.c, -20000, 20000, 100.3 / kFreq, rise,
                                                   x.seconds(), 0.1, true, 0, e);
        }));
    add("MakeSinus", kLong, made([](Ctx& x) {
            std::int32_t e = 0;
            const double period = 100.3 / kFreq;
            return x.l.empty->MakeSinus(&x.c, 20000, -20000, period, x.n / 100.3, 0.25, 0, e);
        }));
    add("MakeNoise", kLong, made([](Ctx& x) {
            std::int32_t e = 0;
            return x.l.empty->MakeNoise(&x.c, 20000, x.seconds(), 0, e);
        }));
    add("MakeMFreqCount 4 partials", kShort, made([](Ctx& x) {
            static const MFreqPartial partials[4] = {{0.4, 1.0 / 220, 0.0, 0.1, 1.0},
                                                     {0.3, 1.0 / 330, 0.25, 0.2, 1.0},
                                                     {0.2, 1.0 / 440, 0.5, 0.5, 2.0},
                                                     {0.1, 1.0 / 550, 0.75, 0.9, 0.5}};
            std::int32_t e = 0;
            return x.l.empty->MakeMFreqCount(&x.c, x.seconds(), nullptr, 4, partials, 0, e);
        }));
    add("DrawLine (in place)", kLong, [](Ctx& x) {
        x.l.scratch->DrawLine(&x.c, 0, -30000, x.n, 30000);
    });

    // ---- level ----
    add("Volume", kLong, made([](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->Volume(&x.c, 0.8, 0, e);
        }));
    add("VolumeInPlace", kLong, [](Ctx& x) {
        std::int32_t e = -1;
        x.l.scratch->VolumeInPlace(&x.c, 0.999, 0, e);
    });
    add("VolumeEnv", kLong, made([rise](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->VolumeEnv(&x.c, rise, 0, e);
        }));
    add("MaxVolume", kLong, made([](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->MaxVolume(&x.c, 0, e);
        }));
    add("MaxVolumeSoft", kLong, made([](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->MaxVolumeSoft(&x.c, 0, e);
        }));
    add("MaxVolumeSoftInPlace", kLong, [](Ctx& x) {
        std::int32_t e = -1;
        x.l.scratch->MaxVolumeSoftInPlace(&x.c, 0, e);
    });
    add("Up", kLong, made([](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->Up(&x.c, 1000, 0, e);
        }));
    add("Block", kLong, made([](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->Block(&x.c, 100.5 / kFreq, 64, 0, e);
        }));
    add("Reverse", kLong, made([](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->Reverse(&x.c, 0, e);
        }));
    add("Distort", kLong, made([curve](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->Distort(&x.c, curve, 0, e);
        }));

    // ---- time ----
    add("Rotate", kLong, made([](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->Rotate(&x.c, x.seconds() / 3, 0, e);
        }));
    add("RollIn", kLong, made([](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->RollIn(&x.c, x.seconds() / 2, x.seconds() / 10, 0, e);
        }));
    add("RollOut", kLong, made([](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->RollOut(&x.c, 1.0, 1.0, 0.0, 0, e);
        }));
    add("RollOutEnv", kLong, made([flat](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->RollOutEnv(&x.c, flat, 2.0, 1.0, 0.0, 0, e);
        }));
    add("Length x1.25", kLong, made([](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->Length(&x.c, 1.25, 0, e);
        }));
    add("Resample x1.25", kLong, made([](Ctx& x) { return x.l.sound->Resample(&x.c, 1.25); }));
    add("ChangeFreq 44100->48000", kLong,
        made([](Ctx& x) { return x.l.sound->ChangeFreq(&x.c, 48000); }));
    constexpr double kBlock = 2000.0 / kFreq;
    add("TempoPitch", kLong, made([](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->TempoPitch(&x.c, 1.0, 0, 1.0, 1.2, kBlock, false, 0, e);
        }));
    add("TempoPitch high quality", kLong, made([](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->TempoPitch(&x.c, 1.0, 0, 1.0, 1.2, kBlock, true, 0, e);
        }));
    add("TempoPitchEnv1 (speed env)", kLong, made([flat](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->TempoPitchEnv1(&x.c, 2.0, flat, 0, 1.0, 1.2, kBlock, 0, e);
        }));
    add("TempoPitchEnv2 (pitch env)", kLong, made([flat](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->TempoPitchEnv2(&x.c, 1.0, 0, 1.0, 2.0, flat, kBlock, 0, e);
        }));
    add("TempoPitchEnv3 (both env)", kLong, made([flat](Ctx& x) {
            std::int32_t e = -1;
            return x.l.sound->TempoPitchEnv3(&x.c, 2.0, flat, 0, 1.0, 2.0, flat, kBlock, 0, e);
        }));
    add("TempoPitchEcho", kLong, made([](Ctx& x) {
            return x.l.sound->TempoPitchEcho(&x.c, 1.0, 1.0, 1.2, kBlock, false);
        }));
    add("TempoPitchEcho high quality", kLong, made([](Ctx& x) {
            return x.l.sound->TempoPitchEcho(&x.c, 1.0, 1.0, 1.2, kBlock, true);
        }));
    add("PerEcho 4", kLong, made([](Ctx& x) {
            std::int32_t b = 0, e = -1;
            return x.l.sound->PerEcho(&x.c, 0.1, 0.5, 4, b, e);
        }));
    add("PerEchoEnv 4", kShort, made([flat](Ctx& x) {
            std::int32_t b = 0, e = -1;
            return x.l.sound->PerEchoEnv(&x.c, 0.1, flat, 4, b, e);
        }));
    add("PerEchoTime 4", kShort, made([flat](Ctx& x) {
            std::int32_t b = 0, e = -1;
            return x.l.sound->PerEchoTime(&x.c, 0.1, flat, 0.5, 4, b, e);
        }));
    add("PerEchoTimeEnv 4", kShort, made([flat](Ctx& x) {
            std::int32_t b = 0, e = -1;
            return x.l.sound->PerEchoTimeEnv(&x.c, 0.1, flat, flat, 4, b, e);
        }));

    // ---- filters ----
    add("ApplyFilter low", kLong, made([](Ctx& x) {
            return x.l.sound->ApplyFilter(&x.c, LowPass, 0.001, 0.5, 1, 1, 0, -1);
        }));
    add("ApplyFilter high", kLong, made([](Ctx& x) {
            return x.l.sound->ApplyFilter(&x.c, HighPass, 0.001, 0.5, 1, 1, 0, -1);
        }));
    add("ApplyFilterEnv low", kLong, made([rise](Ctx& x) {
            return x.l.sound->ApplyFilterEnv(&x.c, LowPassEnv, rise, 0.5, 1, 1, 0, -1);
        }));
    add("ApplyResonantFilter resonant", kLong, made([](Ctx& x) {
            return x.l.sound->ApplyResonantFilter(&x.c, kResonantFamily, 0.001, 0.1, nullptr,
                                                  nullptr, 0, -1);
        }));
    add("ApplyResonantFilter notch", kLong, made([](Ctx& x) {
            return x.l.sound->ApplyResonantFilter(&x.c, kNotchFamily, 0.001, 0.1, nullptr,
                                                  nullptr, 0, -1);
        }));
    add("ApplyResonantFilter freq env", kShort, made([rise](Ctx& x) {
            return x.l.sound->ApplyResonantFilter(&x.c, kResonantFamily, 0.001, 0.1, rise,
                                                  nullptr, 0, -1);
        }));
    add("ApplyResonantFilter width env", kLong, made([rise](Ctx& x) {
            return x.l.sound->ApplyResonantFilter(&x.c, kResonantFamily, 0.001, 0.1, nullptr,
                                                  rise, 0, -1);
        }));
    add("ApplyResonantFilter both env", kShort, made([rise](Ctx& x) {
            return x.l.sound->ApplyResonantFilter(&x.c, kResonantFamily, 0.001, 0.1, rise,
                                                  rise, 0, -1);
        }));
    add("FilterBlock", kLong, made([](Ctx& x) {
            std::int32_t b = 0, e = -1;
            return x.l.sound->FilterBlock(&x.c, 0.0025, b, e);
        }));
    add("FilterBlockEnv", kLong, made([rise](Ctx& x) {
            std::int32_t b = 0, e = -1;
            return x.l.sound->FilterBlockEnv(&x.c, 0.01, rise, b, e);
        }));

    // ---- mixes, cuts and pastes (the other sound has the receiver's layout) ----
    add("MixAlignBegin", kLong, made([](Ctx& x) {
            std::int32_t b = x.n / 4, e = x.n / 4;
            return x.l.sound->MixAlignBegin(&x.c, x.l.half.get(), b, e);
        }));
    add("MixAlignEnd", kLong, made([](Ctx& x) {
            std::int32_t b = x.n * 3 / 4, e = x.n * 3 / 4;
            return x.l.sound->MixAlignEnd(&x.c, x.l.half.get(), b, e);
        }));
    add("MixStretch", kLong, made([](Ctx& x) {
            std::int32_t b = 0, e = x.n;
            return x.l.sound->MixStretch(&x.c, x.l.half.get(), b, e);
        }));
    add("MixCycleAt (in place)", kLong, [](Ctx& x) {
        x.l.scratch->MixCycleAt(&x.c, x.l.half.get(), x.seconds() / 4, 0.5);
    });
    add("MixCycle (in place)", kLong, [](Ctx& x) {
        x.l.scratch->MixCycle(&x.c, x.l.half.get(), x.n / 4, 0.5);
    });
    add("MixCycleSimple (in place)", kLong, [](Ctx& x) {
        x.l.scratch->MixCycleSimple(&x.c, x.l.half.get(), x.n / 4);
    });
    add("MixCycleAfterThis (in place)", kLong, [](Ctx& x) {
        x.l.scratch->MixCycleAfterThis(&x.c, x.l.half.get(), x.n * 3 / 4);
    });
    add("Insert", kLong, made([](Ctx& x) {
            std::int32_t e = x.n / 2;
            return x.l.sound->Insert(&x.c, x.l.tenth.get(), x.n / 2, e);
        }));
    add("Insert replacing", kLong, made([](Ctx& x) {
            std::int32_t e = x.n / 2;
            return x.l.sound->Insert(&x.c, x.l.tenth.get(), x.n / 4, e);
        }));
    add("Remove", kLong,
        made([](Ctx& x) { return x.l.sound->Remove(&x.c, x.n / 4, x.n / 2); }));
    add("CopyRange", kLong,
        made([](Ctx& x) { return x.l.sound->CopyRange(&x.c, x.n / 4, x.n * 3 / 4); }));

    // ---- balance: a stereo sound from the first channel, every option ----
    for (int opt = 0; opt < 8; ++opt) {
        const bool time = opt & 4, volume = opt & 2, filter = opt & 1;
        std::string name = "Balance";
        name += time ? " time" : "";
        name += volume ? " volume" : "";
        name += filter ? " filter" : "";
        if (opt == 0) name += " (plain)";
        add(name, kLong, made([time, volume, filter](Ctx& x) {
                return x.l.sound->Balance(&x.c, 0.5, time, volume, filter);
            }));
    }
    for (int opt = 1; opt < 8; ++opt) {
        const bool time = opt & 4, volume = opt & 2, filter = opt & 1;
        std::string name = "BalanceEnv";
        name += time ? " time" : "";
        name += volume ? " volume" : "";
        name += filter ? " filter" : "";
        add(name, time ? kShort : kLong, made([rise, time, volume, filter](Ctx& x) {
                return x.l.sound->BalanceEnv(&x.c, rise, time, volume, filter);
            }));
    }

    // ---- the left/right matrix: stereo only. Its mono reference is one channel's share,
    // the same weighted two-wave mix on one wave. ----
    add("MixLeftRight (mono: one weighted mix)", kLong, made([](Ctx& x) -> SoundPtr {
            const auto& ex = kMixLeftRightExamples[2];  // Extra Stereo
            std::int32_t e = -1;
            if (x.l.sound->MoSt == 2)
                return static_cast<const StereoSound&>(*x.l.sound)
                    .MixLeftRight(&x.c, ex.LL, ex.LR, ex.RL, ex.RR, 0, e);
            const Wave* w = static_cast<const MonoSound&>(*x.l.sound).WaveMiddle;
            WavePtr r = w->mix(x.c, w, ex.LL, ex.RL, 0, e);
            return r ? mono(std::move(r)) : nullptr;
        }));
}

// ---- the summary ----------------------------------------------------------------------------

// Keeps the lowest CPU time of each run name while the console reporter prints as usual.
class MinReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> minMs;
    std::map<std::string, std::string> errors;

    // Colours only on a terminal, so that a saved run reads cleanly.
    MinReporter() : ConsoleReporter(isatty(STDOUT_FILENO) ? OO_Defaults : OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& r : runs) {
            if (r.run_type != Run::RT_Iteration) continue;
            const std::string name = r.run_name.function_name;
            if (r.error_occurred) {
                errors[name] = r.error_message;
                continue;
            }
            const double ms = r.GetAdjustedCPUTime();  // in the run's unit: ms
            auto it = minMs.find(name);
            if (it == minMs.end() || ms < it->second) minMs[name] = ms;
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

void printSummary(const MinReporter& rep) {
    std::printf("\nStereo against mono (lowest CPU time of the repetitions; goal: stereo <= 2 x mono)\n");
    std::printf("%-40s %10s %9s %9s %7s %5s %7s\n", "operation", "samples", "mono ms", "stereo ms",
                "ratio", "goal", "scale");
    constexpr double kEdge = 2.1;
    int misses = 0, edges = 0, measured = 0;
    std::vector<std::string> nonlinear;
    for (const OpInfo& op : ops()) {
        auto get = [&](const char* suffix) {
            auto it = rep.minMs.find(op.name + "/" + suffix);
            return it == rep.minMs.end() ? -1.0 : it->second;
        };
        const double m = get("mono"), s = get("stereo"), sc = get("scale");
        if (m < 0 && s < 0) continue;  // filtered out
        char samples[16];
        std::snprintf(samples, sizeof samples, "%s", op.length == kLong ? "26.46 M" : "2.646 M");
        if (m <= 0 || s < 0) {
            std::printf("%-40s %10s %9s %9s %7s %5s\n", op.name.c_str(), samples,
                        m < 0 ? "-" : "?", s < 0 ? "-" : "?", "-", "-");
            continue;
        }
        const double ratio = s / m;
        // Twice the mono work is the design of every operation here, so most ratios sit at
        // 2.0 and scatter a few per cent either way with the machine's load: up to 2.1 is
        // "twice" within that scatter (EDGE), above it a real miss.
        const char* verdict = ratio <= 2.0 ? "OK" : ratio <= kEdge ? "EDGE" : "MISS";
        ++measured;
        if (ratio > kEdge) ++misses;
        else if (ratio > 2.0) ++edges;
        // Time per sample at the full length against a tenth of it: 1 is linear.
        char scale[16] = "-";
        if (sc > 0) {
            const double growth = m / (sc * 10.0);
            std::snprintf(scale, sizeof scale, "%.2f", growth);
            // Fast operations are bound by memory, and a tenth of the length fits in the
            // cache: only work of at least 1 ns a sample can show growth here.
            const double nsPerSample = m * 1e6 / op.length;
            if (growth > 1.5 && nsPerSample >= 1.0) nonlinear.push_back(op.name);
        }
        std::printf("%-40s %10s %9.1f %9.1f %7.2f %5s %7s\n", op.name.c_str(), samples, m, s,
                    ratio, verdict, scale);
    }
    for (const auto& [name, msg] : rep.errors)
        std::printf("error: %s: %s\n", name.c_str(), msg.c_str());
    std::printf("\n%d operations: %d within 2 x, %d at 2 x within the scatter (up to %.1f x), "
                "%d missed.\n",
                measured, measured - misses - edges, edges, kEdge, misses);
    std::printf("scale: mono time per sample at the full length / at a tenth of it "
                "(1 = linear; listed when above 1.5 for work of 1 ns a sample or more):");
    if (nonlinear.empty()) std::printf(" none");
    for (const auto& n : nonlinear) std::printf("\n  %s", n.c_str());
    std::printf("\n");
}

}  // namespace
}  // namespace orv

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    if (!orv::createSinus()) return 1;  // the sine generator reads the shared table
    orv::registerAll();
    orv::MinReporter rep;
    benchmark::RunSpecifiedBenchmarks(&rep);
    orv::printSummary(rep);
    benchmark::Shutdown();
    return 0;
}
