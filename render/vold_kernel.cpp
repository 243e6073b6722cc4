#include "render/vold_kernel.h"

#include <xmmintrin.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <thread>

#include "core/platform.h"

namespace orv {

namespace {

// ---- the inner loop, written once for every register width --------------------------
//
// A group is K registers of W rows. Its coefficients lie as K blocks of the six rows of W
// values d11, d12, d21, d22, b1, b2; its state as K blocks of y1, y2 and the column's
// greatest squared magnitude. The loop is generic vector code: it takes the instruction
// set of the function it is inlined into, so each of the three entry points below gets its
// own.

constexpr int kCoefs = 6;
constexpr int kStates = 3;

template <int W>
struct Lanes {
    typedef float V __attribute__((vector_size(4 * W)));
};

template <int W, int K>
[[gnu::always_inline]] inline void walkGroup(float* state, const float* coef, const float* xs,
                                             int n) {
    using V = typename Lanes<W>::V;
    V y1[K], y2[K], mx[K], d11[K], d12[K], d21[K], d22[K], b1[K], b2[K];
    for (int k = 0; k < K; ++k) {
        const float* c = coef + k * kCoefs * W;
        std::memcpy(&d11[k], c + 0 * W, sizeof(V));
        std::memcpy(&d12[k], c + 1 * W, sizeof(V));
        std::memcpy(&d21[k], c + 2 * W, sizeof(V));
        std::memcpy(&d22[k], c + 3 * W, sizeof(V));
        std::memcpy(&b1[k], c + 4 * W, sizeof(V));
        std::memcpy(&b2[k], c + 5 * W, sizeof(V));
        const float* s = state + k * kStates * W;
        std::memcpy(&y1[k], s + 0 * W, sizeof(V));
        std::memcpy(&y2[k], s + 1 * W, sizeof(V));
        std::memcpy(&mx[k], s + 2 * W, sizeof(V));
    }
    for (int i = 0; i < n; ++i) {
        const V x = xs[i] - V{};  // every lane x (x - 0 is x, even for -0)
        for (int k = 0; k < K; ++k) {
            // y += D y + b x, written so that each new value waits on the old state for two
            // multiply-adds only.
            const V p1 = b1[k] * x + y1[k];
            const V p2 = b2[k] * x + y2[k];
            const V n1 = d12[k] * y2[k] + (d11[k] * y1[k] + p1);
            const V n2 = d21[k] * y1[k] + (d22[k] * y2[k] + p2);
            y1[k] = n1;
            y2[k] = n2;
            const V e = n1 * n1 + n2 * n2;
            mx[k] = mx[k] > e ? mx[k] : e;
        }
    }
    for (int k = 0; k < K; ++k) {
        float* s = state + k * kStates * W;
        std::memcpy(s + 0 * W, &y1[k], sizeof(V));
        std::memcpy(s + 1 * W, &y2[k], sizeof(V));
        std::memcpy(s + 2 * W, &mx[k], sizeof(V));
    }
}

using WalkFn = void (*)(float* state, const float* coef, int k, const float* xs, int n);

// Registers of rows walked together: enough to hide the latency of the multiply-adds and
// keep both arithmetic ports busy; more gains nothing measurable.
constexpr int kGroupSse2 = 4;
constexpr int kGroupAvx2 = 4;
constexpr int kGroupAvx512 = 4;

// Runs a group of k registers (1 <= k <= K).
template <int W, int K>
[[gnu::always_inline]] inline void walkAny(float* state, const float* coef, int k,
                                           const float* xs, int n) {
    if constexpr (K > 1) {
        if (k < K) return walkAny<W, K - 1>(state, coef, k, xs, n);
    }
    walkGroup<W, K>(state, coef, xs, n);
}

void walkSse2(float* state, const float* coef, int k, const float* xs, int n) {
    walkAny<4, kGroupSse2>(state, coef, k, xs, n);
}

[[gnu::target("avx2,fma")]] void walkAvx2(float* state, const float* coef, int k,
                                          const float* xs, int n) {
    walkAny<8, kGroupAvx2>(state, coef, k, xs, n);
}

[[gnu::target("avx512f")]] void walkAvx512(float* state, const float* coef, int k,
                                           const float* xs, int n) {
    walkAny<16, kGroupAvx512>(state, coef, k, xs, n);
}

struct IsaInfo {
    WalkFn walk;
    int lanes;
    int group;
};

IsaInfo isaInfo(VoldIsa isa) {
    switch (isa) {
        case VoldIsa::Avx512: return {walkAvx512, 16, kGroupAvx512};
        case VoldIsa::Avx2: return {walkAvx2, 8, kGroupAvx2};
        default: return {walkSse2, 4, kGroupSse2};
    }
}

// ---- the work of one thread --------------------------------------------------------------

constexpr int kWalk = 4096;  // samples between two tests of the cancel flag

struct Group {
    int channel;
    int firstRow;  // of the channel
    int k;         // registers
    std::size_t coef;   // offset into the thread's coefficients
    std::size_t state;  // offset into the thread's state
};

struct Worker {
    std::vector<Group> groups;
    std::vector<int> channels;  // the channels its groups belong to, each once
    std::vector<float> coef, state;
    std::atomic<int> done{0};
};

// Fills the coefficients of the rows [firstRow, firstRow + k * lanes) (zero past the
// bank's rows: such a row stays silent and is never written out).
void loadCoefs(const VoldBank& bank, int firstRow, int k, int lanes, float* out) {
    const std::vector<float>* src[kCoefs] = {&bank.d11, &bank.d12, &bank.d21,
                                             &bank.d22, &bank.b1,  &bank.b2};
    for (int g = 0; g < k; ++g)
        for (int j = 0; j < kCoefs; ++j)
            for (int l = 0; l < lanes; ++l) {
                const int row = firstRow + g * lanes + l;
                out[(g * kCoefs + j) * lanes + l] =
                    row < bank.rows ? (*src[j])[std::size_t(row)] : 0.0f;
            }
}

class Run {
public:
    Run(const std::vector<VoldChannelRun>& channels, const VoldSpan& span,
        const CancelFlag& cancel, std::atomic<int>& ready, const VoldKernelOptions& options)
        : channels_(channels), span_(span), cancel_(cancel), ready_(ready), options_(options),
          isa_(isaInfo(options.isa)) {}

    bool run() {
        plan();
        if (workers_.empty()) {
            publish(span_.columns());
            return !isCancelled(cancel_);
        }
        std::vector<std::thread> threads;
        threads.reserve(workers_.size());
        for (auto& w : workers_) threads.emplace_back([this, &w] { work(*w); });
        for (auto& t : threads) t.join();
        return !stopped_.load();
    }

private:
    // Splits every channel's registers of rows evenly over the threads, in groups.
    void plan() {
        const int lanes = isa_.lanes;
        std::vector<std::pair<int, int>> regs;  // (channel, first row)
        for (std::size_t c = 0; c < channels_.size(); ++c)
            for (int r = 0; r < channels_[c].bank->rows; r += lanes) regs.emplace_back(int(c), r);
        if (regs.empty()) return;
        const int cores = int(std::max(1u, std::thread::hardware_concurrency()));
        int threads = options_.threads > 0 ? std::min(options_.threads, cores) : cores;
        threads = std::min<int>(threads, int(regs.size()));
        for (int t = 0; t < threads; ++t) {
            auto w = std::make_unique<Worker>();
            const std::size_t from = regs.size() * std::size_t(t) / std::size_t(threads);
            const std::size_t to = regs.size() * std::size_t(t + 1) / std::size_t(threads);
            // The thread's registers of one channel in as few groups as the group size
            // allows, of nearly equal size: a lone register would walk at the latency of
            // its multiply-adds instead of their throughput.
            for (std::size_t i = from; i < to;) {
                const int channel = regs[i].first;
                std::size_t end = i;
                while (end < to && regs[end].first == channel) ++end;
                const int count = int(end - i);
                const int groups = (count + isa_.group - 1) / isa_.group;
                for (int g = 0; g < groups; ++g) {
                    const int k = count * (g + 1) / groups - count * g / groups;
                    addGroup(*w, channel, regs[i].second, k);
                    i += std::size_t(k);
                }
            }
            workers_.push_back(std::move(w));
        }
    }

    void addGroup(Worker& w, int channel, int firstRow, int k) {
        const int lanes = isa_.lanes;
        Group g{channel, firstRow, k, w.coef.size(), w.state.size()};
        w.coef.resize(w.coef.size() + std::size_t(k * kCoefs * lanes));
        w.state.resize(w.state.size() + std::size_t(k * kStates * lanes), 0.0f);
        loadCoefs(*channels_[std::size_t(channel)].bank, firstRow, k, lanes, w.coef.data() + g.coef);
        w.groups.push_back(g);
        if (std::find(w.channels.begin(), w.channels.end(), channel) == w.channels.end())
            w.channels.push_back(channel);
    }

    // Walks the samples [from, to) through every group of the worker; false when cancelled.
    bool walk(Worker& w, std::vector<std::vector<float>>& xs, std::int32_t from,
              std::int32_t to) {
        for (std::int32_t pos = from; pos < to;) {
            if (isCancelled(cancel_)) return false;
            const int n = int(std::min<std::int64_t>(kWalk, std::int64_t(to) - pos));
            for (int c : w.channels) {
                const WaveVal* s = channels_[std::size_t(c)].samples + pos;
                float* x = xs[std::size_t(c)].data();
                for (int i = 0; i < n; ++i) x[i] = s[i];
            }
            for (const Group& g : w.groups)
                isa_.walk(w.state.data() + g.state, w.coef.data() + g.coef, g.k,
                          xs[std::size_t(g.channel)].data(), n);
            pos += n;
        }
        return true;
    }

    void work(Worker& w) {
        // Flush denormals to zero (and read them as zero): a ringing row that dies away
        // would otherwise crawl through the slow denormal path for the whole tail.
        _mm_setcsr(_mm_getcsr() | 0x8040);
        const int lanes = isa_.lanes;
        std::vector<std::vector<float>> xs(channels_.size());
        for (int c : w.channels) xs[std::size_t(c)].resize(kWalk);
        auto forEachRow = [&](auto&& body) {
            for (const Group& g : w.groups) {
                const VoldBank& bank = *channels_[std::size_t(g.channel)].bank;
                for (int j = 0; j < g.k * lanes; ++j) {
                    const int row = g.firstRow + j;
                    if (row >= bank.rows) break;
                    float* s = w.state.data() + g.state + std::size_t((j / lanes) * kStates * lanes + j % lanes);
                    body(g.channel, bank, row, s[0], s[lanes], s[2 * lanes]);
                }
            }
        };

        const int columns = span_.columns();
        if (columns > 0) {
            if (!walk(w, xs, span_.ringFrom, span_.bounds[0])) return stop();
            forEachRow([](int, const VoldBank&, int, float&, float&, float& mx) { mx = 0.0f; });
        }
        for (int col = 0; col < columns; ++col) {
            if (isCancelled(cancel_)) return stop();
            const std::int32_t from = span_.bounds[std::size_t(col)];
            const std::int32_t to = span_.bounds[std::size_t(col) + 1];
            if (!walk(w, xs, from, to)) return stop();
            const bool empty = from == to;
            forEachRow([&](int channel, const VoldBank& bank, int row, float& y1, float& y2,
                           float& mx) {
                const float m2 = empty ? y1 * y1 + y2 * y2 : mx;
                channels_[std::size_t(channel)].out[std::size_t(col) * std::size_t(bank.rows) + std::size_t(row)] =
                    voldBrightness(bank, row, m2);
                mx = 0.0f;
            });
            w.done.store(col + 1, std::memory_order_release);
            advance();
        }
    }

    void stop() { stopped_.store(true); }

    // Publishes the columns that every worker has finished.
    void advance() {
        std::lock_guard<std::mutex> lock(publishing_);
        int least = span_.columns();
        for (auto& w : workers_) least = std::min(least, w->done.load(std::memory_order_acquire));
        if (least > published_) publish(least);
    }

    void publish(int columns) {
        published_ = columns;
        ready_.store(columns, std::memory_order_release);
        if (options_.onColumns) options_.onColumns(columns);
    }

    const std::vector<VoldChannelRun>& channels_;
    const VoldSpan& span_;
    const CancelFlag& cancel_;
    std::atomic<int>& ready_;
    const VoldKernelOptions& options_;
    const IsaInfo isa_;
    std::vector<std::unique_ptr<Worker>> workers_;
    std::mutex publishing_;
    int published_ = 0;
    std::atomic<bool> stopped_{false};
};

}  // namespace

bool voldIsaSupported(VoldIsa isa) {
    switch (isa) {
        case VoldIsa::Avx512: return __builtin_cpu_supports("avx512f");
        case VoldIsa::Avx2: return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
        default: return true;
    }
}

VoldIsa bestVoldIsa() {
    static const VoldIsa best = voldIsaSupported(VoldIsa::Avx512) ? VoldIsa::Avx512
                                : voldIsaSupported(VoldIsa::Avx2)  ? VoldIsa::Avx2
                                                                   : VoldIsa::Sse2;
    return best;
}

std::string_view voldIsaName(VoldIsa isa) {
    switch (isa) {
        case VoldIsa::Avx512: return "AVX-512";
        case VoldIsa::Avx2: return "AVX2+FMA";
        default: return "SSE2";
    }
}

int voldLanes(VoldIsa isa) { return isaInfo(isa).lanes; }

bool runVoldKernel(const std::vector<VoldChannelRun>& channels, const VoldSpan& span,
                   const CancelFlag& cancel, std::atomic<int>& columnsReady,
                   const VoldKernelOptions& options) {
    ORV_ASSERT(voldIsaSupported(options.isa), "vold");
    for (const VoldChannelRun& c : channels)
        ORV_ASSERT(c.bank && (c.bank->rows == 0 || (c.samples && c.out)), "vold");
    columnsReady.store(0, std::memory_order_release);
    Run run(channels, span, cancel, columnsReady, options);
    return run.run();
}

std::int64_t voldSteps(const std::vector<VoldChannelRun>& channels, const VoldSpan& span) {
    if (span.columns() == 0) return 0;
    std::int64_t rows = 0;
    for (const VoldChannelRun& c : channels) rows += c.bank->rows;
    return rows * (std::int64_t(span.bounds.back()) - span.ringFrom) * 4;
}

}  // namespace orv
