// The cancel byte of a command and the chunked loop that every long operation runs.
//
// The byte is set by a user interface thread (or by an allocation failure) while an
// operation runs; it is read only between chunks of at most 1000 samples, so the test
// costs nothing per sample.
#pragma once

#include <atomic>
#include <cstdint>

namespace orv {

using CancelFlag = std::atomic<std::uint8_t>;

inline bool isCancelled(const CancelFlag& c) { return c.load(std::memory_order_relaxed) != 0; }
inline void setCancelled(CancelFlag& c) { c.store(1, std::memory_order_relaxed); }

inline constexpr std::int32_t kChunk = 1000;

// End of the chunk that starts at pos: pos + 1000, or end when fewer than 1000 remain.
inline std::int32_t chunkEnd(std::int32_t pos, std::int32_t end) {
    return end - pos < kChunk ? end : pos + kChunk;
}

// Test seam: when set, called at the top of every chunk with its bounds (after the flag
// test). Tests use it to see how a loop was cut and to raise the flag mid-operation.
using ChunkHook = void (*)(void* context, std::int32_t pos, std::int32_t chunkEnd);
void setChunkHook(ChunkHook hook, void* context);
void callChunkHook(std::int32_t pos, std::int32_t chunkEnd);
extern ChunkHook chunkHook;

// Samples walked by all chunked loops so far; a front end samples it from another thread to
// show that long work is moving. Only ever increased, once per chunk.
inline std::atomic<std::int64_t> samplesWalked{0};

// The work of one job, counted on the thread that computes it: a job installs its counter
// for the time it computes (ProgressScope), and every chunk walked on that thread adds to it.
class ProgressSink {
public:
    virtual ~ProgressSink() = default;
    virtual void walked(std::int64_t samples) = 0;
};
inline thread_local ProgressSink* progressSink = nullptr;

class ProgressScope {
public:
    explicit ProgressScope(ProgressSink* sink) : previous_(progressSink) { progressSink = sink; }
    ~ProgressScope() { progressSink = previous_; }
    ProgressScope(const ProgressScope&) = delete;
    ProgressScope& operator=(const ProgressScope&) = delete;

private:
    ProgressSink* previous_;
};

// Counts samples a loop has walked (once per chunk).
inline void countWalked(std::int64_t samples) {
    samplesWalked.fetch_add(samples, std::memory_order_relaxed);
    if (progressSink) progressSink->walked(samples);
}

// Runs body(pos, chunkEnd) over [pos, end) in chunks; returns false when the flag stopped it.
template <class Body>
bool forEachChunk(const CancelFlag& cancel, std::int32_t pos, std::int32_t end, Body&& body) {
    while (pos < end) {
        if (isCancelled(cancel)) return false;
        const std::int32_t stop = chunkEnd(pos, end);
        if (chunkHook) callChunkHook(pos, stop);
        body(pos, stop);
        countWalked(stop - pos);
        pos = stop;
    }
    return true;
}

}  // namespace orv
