// Sample storage: one flat block of count x 2 bytes per wave, not cleared.
//
// Nearly every operation makes a new wave as large as its input, and writing a fresh block
// of tens of megabytes costs more in page faults (one per 4 KiB page) than the copying
// itself. Large blocks are therefore aligned to 2 MiB and marked for transparent huge
// pages, which cuts the faults 512-fold. They still come from malloc, so free() gives them
// back to the system like any other block (glibc maps and unmaps blocks this large).
#include <cstdlib>

#if defined(__linux__)
#include <sys/mman.h>
#endif

#include "core/wave.h"

namespace orv {

namespace {

#if defined(__linux__) && defined(MADV_HUGEPAGE)
constexpr std::size_t kHugePage = std::size_t(2) << 20;
// Below this a block is a few huge pages at most; rounding loss and compaction are not
// worth it there.
constexpr std::size_t kLargeBlock = std::size_t(4) << 20;

void* plainAllocate(std::size_t bytes) {
    if (bytes < kLargeBlock) return std::malloc(bytes);
    void* p = nullptr;
    if (posix_memalign(&p, kHugePage, bytes) != 0) return nullptr;
    // Only whole huge pages can be backed by one; the tail keeps ordinary pages. A refusal
    // (huge pages switched off) leaves an ordinary block, which is fine.
    madvise(p, bytes & ~(kHugePage - 1), MADV_HUGEPAGE);
    return p;
}
#else
void* plainAllocate(std::size_t bytes) { return std::malloc(bytes); }
#endif

SampleAllocator allocator = plainAllocate;

}  // namespace

WaveVal* allocateSamples(std::int32_t count) {
    if (count <= 0) return nullptr;
    return static_cast<WaveVal*>(allocator(std::size_t(count) * sizeof(WaveVal)));
}

// Blocks from a test allocator come from malloc too (tests wrap malloc), so one free fits all.
void freeSamples(WaveVal* samples) { std::free(samples); }

SampleAllocator setSampleAllocator(SampleAllocator a) {
    SampleAllocator old = allocator;
    allocator = a ? a : plainAllocate;
    return old;
}

}  // namespace orv
