// Helpers shared by the engine tests: waves and sounds from literal samples, the chunk hook
// that records chunk bounds and can raise the cancel flag, and allocator stand-ins.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "core/sound.h"
#include "core/wave.h"

namespace orv::test {

using Samples = std::vector<int>;
using Chunks = std::vector<std::pair<int, int>>;

inline const char* const kNoMemory = "There is not enough memmory for this operation.";

inline WavePtr makeWave(const Samples& s) {
    if (s.empty()) return std::make_unique<Wave>();
    CancelFlag c{0};
    WavePtr w = newWave(c, std::int32_t(s.size()));
    for (std::size_t i = 0; i < s.size(); ++i) (*w)[std::int32_t(i)] = wrap16(s[i]);
    return w;
}

// n samples from `from` in steps of `by`: a ramp whose values name their positions.
inline WavePtr steps(int n, int from, int by) {
    Samples s(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) s[std::size_t(i)] = from + i * by;
    return makeWave(s);
}

inline Samples samplesOf(const Wave& w) {
    Samples s;
    for (std::int32_t i = 0; i < w.getValues(); ++i) s.push_back(w[i]);
    return s;
}
inline Samples samplesOf(const Wave* w) { return samplesOf(*w); }
inline Samples samplesOf(const WavePtr& w) { return samplesOf(*w); }

inline SoundPtr mono(const Samples& v, std::int32_t freq = 1000) {
    return std::make_unique<MonoSound>(makeWave(v), freq);
}
inline SoundPtr stereo(const Samples& l, const Samples& r, std::int32_t freq = 1000) {
    return std::make_unique<StereoSound>(makeWave(l), makeWave(r), freq);
}
inline Samples left(const SoundPtr& s) { return samplesOf(s->GetLeftWave()); }
inline Samples right(const SoundPtr& s) { return samplesOf(s->GetRightWave()); }

// A fixture for tests that pass one cancel flag around as a pointer.
struct CancelTest : ::testing::Test {
    CancelFlag cancel{0};
    CancelFlag* c = &cancel;
};

// A range end passed by value to an operation that writes it back: `E{3}` or `E{-1}`.
struct E {
    std::int32_t v;
    operator std::int32_t&() { return v; }
};

// Records the bounds of every chunk while alive; raises `cancel` at the top of the chunk that
// starts at `cancelAtPos`, or at the `cancelAtCall`-th chunk (1 = the first).
struct ChunkHookScope {
    Chunks chunks;
    CancelFlag* cancel = nullptr;
    int cancelAtPos = -1;
    int cancelAtCall = -1;
    ChunkHookScope() { setChunkHook(&hook, this); }
    ChunkHookScope(CancelFlag& c, int atPos, int atCall = -1)
        : cancel(&c), cancelAtPos(atPos), cancelAtCall(atCall) {
        setChunkHook(&hook, this);
    }
    ~ChunkHookScope() { setChunkHook(nullptr, nullptr); }
    ChunkHookScope(const ChunkHookScope&) = delete;
    ChunkHookScope& operator=(const ChunkHookScope&) = delete;
    static void hook(void* ctx, std::int32_t pos, std::int32_t stop) {
        auto* self = static_cast<ChunkHookScope*>(ctx);
        self->chunks.emplace_back(pos, stop);
        if (self->cancel && (pos == self->cancelAtPos ||
                             int(self->chunks.size()) == self->cancelAtCall))
            setCancelled(*self->cancel);
    }
};

// Allocator stand-ins: counts every request; fails after `allocationsLeft` successes (-1:
// never fails); a success is filled with 0x5555 so tests see what an operation left alone.
inline int allocations = 0;
inline int allocationsLeft = -1;
inline constexpr int kPattern = 0x5555;
inline void* patternAllocator(std::size_t bytes) {
    ++allocations;
    if (allocationsLeft == 0) return nullptr;
    if (allocationsLeft > 0) --allocationsLeft;
    void* p = std::malloc(bytes);
    std::memset(p, 0x55, bytes);
    return p;
}

// Installs patternAllocator while alive; `succeed` successes before every request fails.
struct AllocatorScope {
    explicit AllocatorScope(int succeed = -1) {
        allocations = 0;
        allocationsLeft = succeed;
        setSampleAllocator(&patternAllocator);
    }
    ~AllocatorScope() { setSampleAllocator(nullptr); }
};

}  // namespace orv::test
