// Throughput of every Wave operation and every filter over one channel of ten minutes at
// 44.1 kHz (26.46 M samples), in samples per second (items_per_second: samples of the
// result made, or of the range worked on in place).
//
// Two limits are measured in the same run, on the same bytes: memcpy into a newly
// allocated buffer (page faults and the unmap included) and memcpy into a buffer that is
// reused. After the usual table a goal check prints each goal with the measured figure.
//
//   core_bench                                   everything (a few minutes)
//   core_bench --benchmark_filter='filter/'      one group
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <unistd.h>

#include "core/filter.h"
#include "core/wave.h"

namespace orv {
namespace {

constexpr std::int32_t kSamples = 26'460'000;  // ten minutes at 44.1 kHz
constexpr std::int32_t kHalf = kSamples / 2;
constexpr std::int32_t kTenth = kSamples / 10;

struct Inputs {
    WavePtr wave;      // the channel every operation reads
    WavePtr other;     // a second channel of the same length, for the mixes
    WavePtr half;      // half a channel, for append and the offset mixes
    WavePtr tenth;     // a tenth, for replace
    WavePtr scratch;   // written by the in-place operations
    WavePtr envelope;  // 1000 samples rising from -32768 to 32767
    WavePtr flatEnv;   // 1000 samples of 16384
    WavePtr curve;     // a distortion curve
    Wave empty;        // generators make their stretch in here
};

WavePtr signal(std::int32_t count, std::uint32_t seed) {
    CancelFlag c{0};
    WavePtr w = newWave(c, count);
    std::uint32_t r = seed;
    for (std::int32_t i = 0; i < count; ++i) {
        r = r * 1664525u + 1013904223u;
        const double noise = double(r >> 20) - 2048.0;
        (*w)[i] = toWaveVal(12000 * std::sin(i * 0.0142) + 6000 * std::sin(i * 0.173) + noise);
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

Inputs& in() {
    static Inputs inputs = [] {
        Inputs s;
        s.wave = signal(kSamples, 1);
        s.other = signal(kSamples, 2);
        s.half = signal(kHalf, 3);
        s.tenth = signal(kTenth, 4);
        CancelFlag c{0};
        s.scratch = copyWave(c, s.wave.get());
        s.envelope = ramp(1000, -32768, 32767);
        s.flatEnv = ramp(1000, 16384, 16384);
        s.curve = ramp(1000, -30000, 30000);
        return s;
    }();
    return inputs;
}

// ---- how an operation is timed ---------------------------------------------------------

// An operation that makes a new wave; its making, and its freeing, are timed.
void makes(benchmark::State& state, const std::function<WavePtr(CancelFlag&)>& make) {
    std::int64_t items = 0;
    for (auto _ : state) {
        CancelFlag c{0};
        WavePtr w = make(c);
        if (!w || isCancelled(c)) {
            state.SkipWithError("no result");
            return;
        }
        items += w->getValues();
        benchmark::DoNotOptimize(w->data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(items);
}

// An operation that works on `count` samples of in().scratch in place.
void inPlace(benchmark::State& state, std::int64_t count,
             const std::function<void(CancelFlag&, Wave&)>& work) {
    Wave& w = *in().scratch;
    for (auto _ : state) {
        CancelFlag c{0};
        work(c, w);
        benchmark::DoNotOptimize(w.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * count);
}

void add(const std::string& name, std::function<void(benchmark::State&)> fn) {
    benchmark::RegisterBenchmark(name.c_str(), [fn](benchmark::State& s) { fn(s); })
        ->Unit(benchmark::kMillisecond);
}

void addMaker(const std::string& name, std::function<WavePtr(CancelFlag&)> make) {
    add(name, [make](benchmark::State& s) { makes(s, make); });
}

void addInPlace(const std::string& name, std::int64_t count,
                std::function<void(CancelFlag&, Wave&)> work) {
    add(name, [count, work](benchmark::State& s) { inPlace(s, count, work); });
}

// ---- the limits --------------------------------------------------------------------------

void limits() {
    add("limit/memcpy_fresh", [](benchmark::State& s) {
        const std::size_t bytes = std::size_t(kSamples) * sizeof(WaveVal);
        const void* src = in().wave->data();
        for (auto _ : s) {
            void* dst = std::malloc(bytes);
            std::memcpy(dst, src, bytes);
            benchmark::DoNotOptimize(dst);
            benchmark::ClobberMemory();
            std::free(dst);
        }
        s.SetItemsProcessed(s.iterations() * kSamples);
    });
    add("limit/memcpy_reused", [](benchmark::State& s) {
        const std::size_t bytes = std::size_t(kSamples) * sizeof(WaveVal);
        const void* src = in().wave->data();
        void* dst = std::malloc(bytes);
        std::memset(dst, 0, bytes);
        for (auto _ : s) {
            std::memcpy(dst, src, bytes);
            benchmark::DoNotOptimize(dst);
            benchmark::ClobberMemory();
        }
        std::free(dst);
        s.SetItemsProcessed(s.iterations() * kSamples);
    });
    // Not a limit but the reason the others are beaten: the same copy into sample storage.
    add("limit/memcpy_sample_storage", [](benchmark::State& s) {
        const std::size_t bytes = std::size_t(kSamples) * sizeof(WaveVal);
        const void* src = in().wave->data();
        for (auto _ : s) {
            WaveVal* dst = allocateSamples(kSamples);
            std::memcpy(dst, src, bytes);
            benchmark::DoNotOptimize(dst);
            benchmark::ClobberMemory();
            freeSamples(dst);
        }
        s.SetItemsProcessed(s.iterations() * kSamples);
    });
}

// ---- Wave operations ---------------------------------------------------------------------

void primitives() {
    const std::int32_t mid = kHalf - kTenth / 2;
    addMaker("wave/copy", [](CancelFlag& c) { return copyWave(c, in().wave.get()); });
    addMaker("wave/extract",
             [](CancelFlag& c) { return in().wave->extract(c, 0, kSamples); });
    addMaker("wave/remove",
             [mid](CancelFlag& c) { return in().wave->remove(c, mid, mid + kTenth); });
    addMaker("wave/replace", [mid](CancelFlag& c) {
        return in().wave->replace(c, in().tenth.get(), mid, mid + kTenth);
    });
    addMaker("wave/append", [](CancelFlag& c) { return in().half->append(c, in().half.get()); });
    addMaker("wave/insertSilence", [](CancelFlag& c) {
        std::int32_t end = kHalf;
        return in().wave->insertSilence(c, kTenth, kHalf, end);
    });
    addMaker("wave/mixAt", [](CancelFlag& c) {
        return in().wave->mixAt(c, in().half.get(), kSamples / 4, -1, false);
    });
    addMaker("wave/mixEndingAt", [](CancelFlag& c) {
        return in().wave->mixEndingAt(c, in().half.get(), kSamples / 4 * 3, -1, false);
    });
    addInPlace("wave/mixAfter", kHalf,
               [](CancelFlag& c, Wave& w) { w.mixAfter(c, in().half.get(), kSamples / 4); });
    addInPlace("wave/mixAfterScaled", kHalf, [](CancelFlag& c, Wave& w) {
        w.mixAfter(c, in().half.get(), kSamples / 4, 0.5);
    });
    addInPlace("wave/mixAfterCyclic", kHalf, [](CancelFlag& c, Wave& w) {
        w.mixAfterCyclic(c, in().half.get(), kSamples / 4 * 3);
    });
    addInPlace("wave/copyFrom", kSamples,
               [](CancelFlag& c, Wave& w) { w.copyFrom(c, in().wave.get(), 0, kSamples, 0); });
    addInPlace("wave/addFrom", kSamples,
               [](CancelFlag& c, Wave& w) { w.addFrom(c, in().wave.get(), 0, kSamples, 0); });
    addInPlace("wave/clear", kSamples, [](CancelFlag& c, Wave& w) { w.clear(c, 0, kSamples); });
    addInPlace("wave/drawLine", kSamples,
               [](CancelFlag& c, Wave& w) { w.drawLine(c, 0, -30000, kSamples, 30000); });
    add("wave/maxAbs", [](benchmark::State& s) {
        for (auto _ : s) {
            CancelFlag c{0};
            benchmark::DoNotOptimize(in().wave->maxAbs(c, 0, kSamples));
        }
        s.SetItemsProcessed(s.iterations() * kSamples);
    });
}

void generators() {
    // Each makes a whole channel in an empty wave.
    auto gen = [](const std::string& name,
                  std::function<WavePtr(CancelFlag&, const Wave&, std::int32_t&)> make) {
        addMaker(name, [make](CancelFlag& c) {
            std::int32_t end = 0;
            return make(c, in().empty, end);
        });
    };
    gen("gen/silence", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.makeSilence(c, kSamples, 0, e);
    });
    gen("gen/line", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.makeLine(c, -30000, 30000, kSamples, 0, e);
    });
    gen("gen/expLine", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.makeExpLine(c, 100, 30000, kSamples, 0, e);
    });
    gen("gen/noise", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.makeNoise(c, 20000, kSamples, 0, e);
    });
    gen("gen/block", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.makeBlockTriangle(c, -20000, 20000, 100.3, 0.4, kSamples, 0.1, false, 0, e);
    });
    gen("gen/triangle", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.makeBlockTriangle(c, -20000, 20000, 100.3, 0.4, kSamples, 0.1, true, 0, e);
    });
    gen("gen/blockEnv", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.makeBlockTriangleEnv(c, -20000, 20000, 100.3, in().envelope.get(), kSamples,
                                      0.1, false, 0, e);
    });
    gen("gen/triangleEnv", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.makeBlockTriangleEnv(c, -20000, 20000, 100.3, in().envelope.get(), kSamples,
                                      0.1, true, 0, e);
    });
    gen("gen/sinus", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.makeSinus(c, 20000, -20000, 100.3, kSamples / 100.3, 0.25, 0, e);
    });
    gen("gen/mfreq4", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        static const double volume[] = {0.4, 0.3, 0.2, 0.1};
        static const double period[] = {100.3, 50.1, 33.4, 25.05};
        static const double angle[] = {0, 0.25, 0.5, 0.75};
        static const double factor[] = {1, 1, 1, 1};
        return w.makeMFreq(c, kSamples, nullptr, 4, volume, period, angle, factor, 0, e);
    });
    // The form generator replaces a non-empty range: the whole channel, by its own first
    // 1000 samples played as one period.
    addMaker("gen/form", [](CancelFlag& c) {
        std::int32_t end = kSamples;
        return in().wave->makeForm(c, in().wave.get(), 0, 1000, 100.3, kSamples / 100.3, 0, 0,
                                   end);
    });
}

void effects() {
    // Each works on the whole channel.
    auto eff = [](const std::string& name,
                  std::function<WavePtr(CancelFlag&, const Wave&, std::int32_t&)> make) {
        addMaker(name, [make](CancelFlag& c) {
            std::int32_t end = kSamples;
            return make(c, *in().wave, end);
        });
    };
    eff("wave/volume", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.volume(c, 0.8, 0, e);
    });
    eff("wave/volumeEnv", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.volumeEnv(c, in().envelope.get(), 0, e);
    });
    eff("wave/up", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.up(c, 100, 0, e);
    });
    eff("wave/distort", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.distort(c, in().curve.get(), 0, e);
    });
    eff("wave/reverse", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.reverse(c, 0, e);
    });
    eff("wave/rotate", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.rotate(c, 12345, 0, e);
    });
    eff("wave/block", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.block(c, 100.5, 64, 0, e);
    });
    eff("wave/mix", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.mix(c, in().other.get(), 0.5, 0.5, 0, e);
    });
    addMaker("wave/average",
             [](CancelFlag& c) { return in().wave->average(c, in().other.get()); });
    addInPlace("wave/volumeInPlace", kSamples, [](CancelFlag& c, Wave& w) {
        std::int32_t end = kSamples;
        w.volumeInPlace(c, 0.999, 0, end);
    });
    addInPlace("wave/mirror", kSamples, [](CancelFlag& c, Wave& w) {
        std::int32_t end = kSamples;
        w.mirror(c, 0, end);
    });
}

void timescale() {
    auto eff = [](const std::string& name,
                  std::function<WavePtr(CancelFlag&, const Wave&, std::int32_t&)> make) {
        addMaker(name, [make](CancelFlag& c) {
            std::int32_t end = kSamples;
            return make(c, *in().wave, end);
        });
    };
    eff("time/speed", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.speed(c, 1.5, 0, e);
    });
    addMaker("time/speedWhole", [](CancelFlag& c) { return in().wave->speedWhole(c, 0.75); });
    eff("time/stretch", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.stretch(c, kSamples + kTenth, false, 0, e);
    });
    addMaker("time/stretchWhole", [](CancelFlag& c) {
        return in().wave->stretchWhole(c, kSamples - kTenth, true);
    });
    eff("time/lengthSpeedEnv", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.lengthSpeedEnv(c, in().flatEnv.get(), 1.0, 1.0, 0, 0, e);
    });
    eff("time/rollIn", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.rollIn(c, kHalf, kTenth, 0, e);
    });
    eff("time/tempoPitch", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.tempoPitch(c, 1.0, 0, 1.0, 1.2, 2000, 0, e);
    });
    eff("time/tempoPitchCross", [](CancelFlag& c, const Wave& w, std::int32_t& e) {
        return w.tempoPitchCross(c, 1.0, nullptr, 0, 1.0, 1.2, nullptr, 2000, 0, e);
    });
    auto echo = [](const std::string& name,
                   std::function<WavePtr(CancelFlag&, const Wave&, std::int32_t&,
                                         std::int32_t&)> make) {
        addMaker(name, [make](CancelFlag& c) {
            std::int32_t begin = 0, end = kSamples;
            return make(c, *in().wave, begin, end);
        });
    };
    echo("time/perEcho4", [](CancelFlag& c, const Wave& w, std::int32_t& b, std::int32_t& e) {
        return w.perEcho(c, 4410, 0.5, 4, b, e);
    });
    echo("time/perEchoVolumeEnv4",
         [](CancelFlag& c, const Wave& w, std::int32_t& b, std::int32_t& e) {
             return w.perEchoVolumeEnv(c, 4410, in().flatEnv.get(), 4, b, e);
         });
    echo("time/perEchoTimeEnv4",
         [](CancelFlag& c, const Wave& w, std::int32_t& b, std::int32_t& e) {
             return w.perEchoTimeEnv(c, 4410, in().flatEnv.get(), 0.5, 4, b, e);
         });
    echo("time/perEchoEnv4", [](CancelFlag& c, const Wave& w, std::int32_t& b, std::int32_t& e) {
        return w.perEchoEnv(c, 4410, in().flatEnv.get(), in().flatEnv.get(), 4, b, e);
    });
}

// ---- filters -----------------------------------------------------------------------------

void filters() {
    constexpr double kFreq = 44100;
    constexpr double kPeriod = kFreq / 1000;  // 1 kHz
    addMaker("filter/lowPass", [](CancelFlag& c) {
        return LowPass(in().wave.get(), c, kPeriod, 0.5, 1, 1, 0, -1);
    });
    addMaker("filter/highPass", [](CancelFlag& c) {
        return HighPass(in().wave.get(), c, kPeriod, 0.5, 1, 1, 0, -1);
    });
    addMaker("filter/lowPassEnv", [](CancelFlag& c) {
        return LowPassEnv(in().wave.get(), c, in().envelope.get(), 0.5, 1, 1, kFreq, 0, -1);
    });
    addMaker("filter/highPassEnv", [](CancelFlag& c) {
        return HighPassEnv(in().wave.get(), c, in().envelope.get(), 0.5, 1, 1, kFreq, 0, -1);
    });
    addMaker("filter/resonant", [](CancelFlag& c) {
        return Resonant(in().wave.get(), c, kPeriod, 0.1, 0, -1);
    });
    addMaker("filter/notch",
             [](CancelFlag& c) { return Notch(in().wave.get(), c, kPeriod, 0.1, 0, -1); });
    addMaker("filter/resonantFreqEnv", [](CancelFlag& c) {
        return ResonantFreqEnv(in().wave.get(), c, in().envelope.get(), 0.1, kFreq, 0, -1);
    });
    addMaker("filter/notchFreqEnv", [](CancelFlag& c) {
        return NotchFreqEnv(in().wave.get(), c, in().envelope.get(), 0.1, kFreq, 0, -1);
    });
    addMaker("filter/resonantWidthEnv", [](CancelFlag& c) {
        return ResonantWidthEnv(in().wave.get(), c, kPeriod, in().envelope.get(), 0, -1);
    });
    addMaker("filter/notchWidthEnv", [](CancelFlag& c) {
        return NotchWidthEnv(in().wave.get(), c, kPeriod, in().envelope.get(), 0, -1);
    });
    addMaker("filter/resonantEnv", [](CancelFlag& c) {
        return ResonantEnv(in().wave.get(), c, in().envelope.get(), in().envelope.get(), kFreq,
                           0, -1);
    });
    addMaker("filter/notchEnv", [](CancelFlag& c) {
        return NotchEnv(in().wave.get(), c, in().envelope.get(), in().envelope.get(), kFreq, 0,
                        -1);
    });
    addMaker("filter/block", [](CancelFlag& c) {
        std::int32_t begin = 0, end = -1;
        return BlockFilter(in().wave.get(), c, 44.1 * 2.5, begin, end);  // 2.5 ms
    });
    addMaker("filter/blockEnv", [](CancelFlag& c) {
        std::int32_t begin = 0, end = -1;
        return BlockFilterEnv(in().wave.get(), c, 441, in().envelope.get(), begin, end);
    });
}

// ---- goal check --------------------------------------------------------------------------

enum class Goal { None, MemcpyTimes1_5, Rate150M, Rate40M };

Goal goalOf(const std::string& name) {
    static const std::map<std::string, Goal> goals = {
        {"wave/copy", Goal::MemcpyTimes1_5},       {"wave/extract", Goal::MemcpyTimes1_5},
        {"wave/remove", Goal::MemcpyTimes1_5},     {"wave/replace", Goal::MemcpyTimes1_5},
        {"wave/append", Goal::MemcpyTimes1_5},     {"wave/reverse", Goal::MemcpyTimes1_5},
        {"wave/volume", Goal::MemcpyTimes1_5},     {"wave/up", Goal::MemcpyTimes1_5},
        {"wave/mix", Goal::MemcpyTimes1_5},        {"wave/mixAt", Goal::MemcpyTimes1_5},
        {"wave/mixEndingAt", Goal::MemcpyTimes1_5}, {"wave/mixAfter", Goal::MemcpyTimes1_5},
        {"wave/mixAfterScaled", Goal::MemcpyTimes1_5},
        {"wave/mixAfterCyclic", Goal::MemcpyTimes1_5},
        {"wave/average", Goal::MemcpyTimes1_5},    {"filter/lowPass", Goal::Rate150M},
        {"filter/highPass", Goal::Rate150M},       {"filter/block", Goal::Rate150M},
        {"filter/resonant", Goal::Rate40M},        {"filter/notch", Goal::Rate40M},
        {"gen/sinus", Goal::Rate150M},             {"gen/block", Goal::Rate150M},
        {"gen/triangle", Goal::Rate150M},
    };
    auto it = goals.find(name);
    return it == goals.end() ? Goal::None : it->second;
}

class GoalReporter : public benchmark::ConsoleReporter {
public:
    // Colours only on a terminal, so that figures piped into a file stay plain text.
    GoalReporter() : ConsoleReporter(isatty(STDOUT_FILENO) ? OO_ColorTabular : OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& r : runs) {
            if (r.error_occurred || r.run_type != Run::RT_Iteration) continue;
            auto it = r.counters.find("items_per_second");
            if (it != r.counters.end()) rates_[r.run_name.function_name] = it->second.value;
        }
    }

    void Finalize() override {
        ConsoleReporter::Finalize();
        const double fresh = rate("limit/memcpy_fresh");
        std::printf("\nGoal check (M samples/s; memcpy into a fresh buffer: %.1f, reused: %.1f)\n",
                    fresh / 1e6, rate("limit/memcpy_reused") / 1e6);
        int missed = 0;
        for (const auto& [name, value] : rates_) {
            const Goal g = goalOf(name);
            if (g == Goal::None) continue;
            double need = 0;
            const char* what = "";
            switch (g) {
                case Goal::MemcpyTimes1_5: need = fresh / 1.5; what = "fresh memcpy / 1.5"; break;
                case Goal::Rate150M: need = 150e6; what = "150 M/s"; break;
                case Goal::Rate40M: need = 40e6; what = "40 M/s"; break;
                case Goal::None: break;
            }
            const bool ok = need > 0 && value >= need;
            if (!ok) ++missed;
            std::printf("  %-24s %9.1f  %-20s %7.1f  %s", name.c_str(), value / 1e6, what,
                        need / 1e6, ok ? "ok" : "MISSED");
            if (g == Goal::MemcpyTimes1_5 && value > 0)
                std::printf("   (%.2fx the fresh memcpy time)", fresh / value);
            std::printf("\n");
        }
        std::printf("%d goal(s) missed\n", missed);
    }

private:
    double rate(const std::string& name) const {
        auto it = rates_.find(name);
        return it == rates_.end() ? 0 : it->second;
    }
    std::map<std::string, double> rates_;
};

}  // namespace
}  // namespace orv

int main(int argc, char** argv) {
    orv::createSinus();
    orv::in();  // the input channels are made before anything is timed
    orv::limits();
    orv::primitives();
    orv::generators();
    orv::effects();
    orv::timescale();
    orv::filters();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    orv::GoalReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    orv::deleteSinus();
    return 0;
}
