#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

#include "core/wave.h"

namespace orv {
namespace {

int counted = 0;
void* countingAllocator(std::size_t bytes) {
    ++counted;
    return std::malloc(bytes);
}

TEST(SampleStorage, SmallAndLargeBlocksAreWholeAndFreed) {
    // 10 samples, and 3 M samples (6 MB, past the size where huge pages are asked for);
    // every sample is writable and the block goes back with freeSamples (the sanitizer
    // build reports a mismatched or leaked block).
    for (std::int32_t count : {1, 10, 3'000'000}) {
        WaveVal* s = allocateSamples(count);
        ASSERT_NE(s, nullptr) << count;
        for (std::int32_t i = 0; i < count; ++i) s[i] = WaveVal(i);
        EXPECT_EQ(s[count - 1], WaveVal(count - 1));
#if defined(__linux__)
        if (count > 1'000'000) {  // a large block starts on a huge page boundary
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(s) % (std::uintptr_t(2) << 20), 0u);
        }
#endif
        freeSamples(s);
    }
    EXPECT_EQ(allocateSamples(0), nullptr);
    EXPECT_EQ(allocateSamples(-5), nullptr);
}

TEST(SampleStorage, AllocatorSeamSwapsAndRestores) {
    counted = 0;
    SampleAllocator previous = setSampleAllocator(countingAllocator);
    WaveVal* big = allocateSamples(3'000'000);
    WaveVal* small = allocateSamples(4);
    EXPECT_EQ(counted, 2);  // large blocks go through the seam as well
    freeSamples(big);
    freeSamples(small);
    // nullptr puts the ordinary allocator back and hands out the one it replaced
    EXPECT_EQ(setSampleAllocator(nullptr), countingAllocator);
    WaveVal* again = allocateSamples(4);
    EXPECT_EQ(counted, 2);
    freeSamples(again);
    setSampleAllocator(previous);
}

}  // namespace
}  // namespace orv
