// Sample storage: one flat block of count x 2 bytes per wave, not cleared.
#include <cstdlib>

#include "core/wave.h"

namespace orv {

namespace {
void* plainAllocate(std::size_t bytes) { return std::malloc(bytes); }
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
