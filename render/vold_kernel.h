// The fast resonator loop of the Vold picture. It computes what the literal loop
// (vold_literal.h) computes, with the four steps of a sample folded into one 2 x 2 step
// (vold_bank.h), and:
// - runs several rows at once: single precision, 4, 8 or 16 rows per register (SSE2,
//   AVX2 + FMA, AVX-512), a few registers of rows at a time whose state stays in registers
//   while they walk the samples of a column;
// - takes the instruction set at run time, so the program runs on any x86-64;
// - splits the rows over threads (at most the number of cores), each with denormals flushed
//   to zero, so the decaying tail after a loud sound runs as fast as anything else;
// - tests the cancel flag before every column and every 4096 samples;
// - publishes how many columns are finished while it runs, so a window can show them.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "core/cancel.h"
#include "core/sample_value.h"
#include "render/vold_bank.h"

namespace orv {

enum class VoldIsa : std::uint8_t { Sse2 = 0, Avx2 = 1, Avx512 = 2 };

// Whether this processor (and its system) runs the instruction set; SSE2 always.
bool voldIsaSupported(VoldIsa isa);
// The widest supported one.
VoldIsa bestVoldIsa();
// "SSE2", "AVX2+FMA", "AVX-512".
std::string_view voldIsaName(VoldIsa isa);
// Rows per register: 4, 8, 16.
int voldLanes(VoldIsa isa);

// One channel of a picture: its bank, its samples and where its brightness goes
// (span.columns() * bank->rows values, column after column, row 0 first, as the literal
// loop writes them).
struct VoldChannelRun {
    const VoldBank* bank = nullptr;
    const WaveVal* samples = nullptr;
    float* out = nullptr;
};

struct VoldKernelOptions {
    VoldIsa isa = bestVoldIsa();  // must be supported
    int threads = 0;              // 0: one per core; never more than the cores
    // Called with the number of finished columns each time it grows, on a worker thread,
    // one call at a time and in increasing order. May raise the cancel flag.
    std::function<void(int columnsReady)> onColumns;
};

// Runs the channels over the span. Columns [0, columnsReady) of every channel are final
// (their writes are visible to a thread that reads columnsReady with acquire order).
// Returns false when the cancel flag stopped it; every thread then stops within the column
// (or the 4096 samples) it is in.
bool runVoldKernel(const std::vector<VoldChannelRun>& channels, const VoldSpan& span,
                   const CancelFlag& cancel, std::atomic<int>& columnsReady,
                   const VoldKernelOptions& options = {});

// Resonator steps (rows x samples x 4, the literal loop's count) that one run takes.
std::int64_t voldSteps(const std::vector<VoldChannelRun>& channels, const VoldSpan& span);

}  // namespace orv
