// Wave buffer: construction and ownership, memory failure, the chunked loop and its cancel,
// the structural primitives, the peak search, envelope sampling and the sine table.
#include "core/wave.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "support/recording_platform.h"

namespace orv {
namespace {

using Samples = std::vector<int>;
using Chunks = std::vector<std::pair<int, int>>;

const char* const kNoMemory = "There is not enough memmory for this operation.";

WavePtr makeWave(const Samples& s) {
    CancelFlag c{0};
    WavePtr w = newWave(c, std::int32_t(s.size()));
    for (std::size_t i = 0; i < s.size(); ++i) (*w)[std::int32_t(i)] = WaveVal(s[i]);
    return w;
}

WavePtr ramp(int n) {
    Samples s(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) s[std::size_t(i)] = i % 30000;
    return makeWave(s);
}

Samples samplesOf(const Wave& w) {
    Samples s;
    for (std::int32_t i = 0; i < w.getValues(); ++i) s.push_back(w[i]);
    return s;
}

// ---- seams: chunk hook and allocators ----

struct ChunkLog {
    Chunks chunks;
    CancelFlag* cancel = nullptr;
    int cancelAtPos = -1;  // raise the flag in the hook of the chunk starting here
};

void logChunk(void* ctx, std::int32_t pos, std::int32_t stop) {
    auto* log = static_cast<ChunkLog*>(ctx);
    log->chunks.emplace_back(pos, stop);
    if (log->cancel && pos == log->cancelAtPos) setCancelled(*log->cancel);
}

struct ChunkHookScope {
    ChunkLog log;
    ChunkHookScope() { setChunkHook(logChunk, &log); }
    ~ChunkHookScope() { setChunkHook(nullptr, nullptr); }
};

int allocations = 0;
void* failingAllocator(std::size_t) {
    ++allocations;
    return nullptr;
}
// Storage is not cleared, so tests fill it with 0x5555 to see what an operation left alone.
void* patternAllocator(std::size_t bytes) {
    ++allocations;
    void* p = std::malloc(bytes);
    std::memset(p, 0x55, bytes);
    return p;
}
constexpr int kPattern = 0x5555;

struct AllocatorScope {
    explicit AllocatorScope(SampleAllocator a) {
        allocations = 0;
        setSampleAllocator(a);
    }
    ~AllocatorScope() { setSampleAllocator(nullptr); }
};

// ---- construction ----

TEST(WaveConstruction, EmptySizedAndAdopted) {
    Wave empty;
    EXPECT_EQ(empty.getValues(), 0);
    EXPECT_EQ(empty.data(), nullptr);

    CancelFlag c{0};
    Wave sized(c, 7);
    EXPECT_EQ(sized.getValues(), 7);
    EXPECT_NE(sized.data(), nullptr);
    EXPECT_FALSE(isCancelled(c));

    Wave none(c, 0);
    EXPECT_EQ(none.data(), nullptr);

    WaveVal* block = allocateSamples(2);
    block[0] = 5;
    block[1] = -6;
    Wave adopted(block, 2);
    EXPECT_EQ(adopted.data(), block);
    EXPECT_EQ(samplesOf(adopted), (Samples{5, -6}));
}

TEST(WaveConstruction, CopyIsDeepAndChunked) {
    WavePtr src = ramp(2500);
    CancelFlag c{0};
    ChunkHookScope hook;
    Wave copy(c, *src);
    EXPECT_EQ(hook.log.chunks, (Chunks{{0, 1000}, {1000, 2000}, {2000, 2500}}));
    ASSERT_EQ(copy.getValues(), 2500);
    EXPECT_NE(copy.data(), src->data());
    EXPECT_EQ(samplesOf(copy), samplesOf(*src));
}

TEST(WaveConstruction, CopyOfEmptyWaveIsEmptyAndLeavesFlagClear) {
    Wave empty;
    CancelFlag c{0};
    WavePtr w = copyWave(c, &empty);
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(w->getValues(), 0);
    EXPECT_EQ(w->data(), nullptr);
    EXPECT_FALSE(isCancelled(c));
    EXPECT_EQ(copyWave(c, nullptr), nullptr);
}

TEST(WaveConstruction, ForbiddenCopySaysSoAndStaysEmpty) {
    test::RecordingPlatformScope rec;
    WavePtr src = makeWave({1, 2, 3});
    const Wave& ref = *src;
    Wave copy(ref);
    ASSERT_EQ(rec.recorder.messages.size(), 1u);
    EXPECT_EQ(rec.recorder.messages[0].caption, "System Error");
    EXPECT_EQ(rec.recorder.messages[0].text,
              "call to forbidden Wave(const Wave &other)! It is recommed to save your work in "
              "NEW file(s)!");
    EXPECT_EQ(copy.getValues(), 0);
    EXPECT_EQ(copy.data(), nullptr);
    EXPECT_EQ(samplesOf(*src), (Samples{1, 2, 3}));
}

TEST(WaveConstruction, DumpTracesAddressCountAndStorage) {
    test::RecordingPlatformScope rec;
    WavePtr w = makeWave({1, 2, 3});
    w->dump();
    const auto& t = rec.recorder.traces;
    ASSERT_EQ(t.size(), 3u);
    EXPECT_EQ(t[0].rfind("Wave.this = ", 0), 0u);
    EXPECT_EQ(t[1], "Wave.values = 3\n");
    EXPECT_EQ(t[2].rfind("Wave.wave = ", 0), 0u);
    EXPECT_EQ(t[0].back(), '\n');
    EXPECT_EQ(t[2].back(), '\n');
}

// ---- running out of memory ----

TEST(WaveMemory, FailedStorageShowsMessageSetsFlagAndMakesNoWave) {
    test::RecordingPlatformScope rec;
    AllocatorScope fail(failingAllocator);
    CancelFlag c{0};
    EXPECT_EQ(newWave(c, 10), nullptr);
    EXPECT_TRUE(isCancelled(c));
    ASSERT_EQ(rec.recorder.messages.size(), 1u);
    EXPECT_EQ(rec.recorder.messages[0].caption, "System Error");
    EXPECT_EQ(rec.recorder.messages[0].text, kNoMemory);
    EXPECT_EQ(rec.recorder.messages[0].icon, MessageIcon::Information);
}

TEST(WaveMemory, OperationsGiveNoWaveWhenStorageFails) {
    WavePtr src = makeWave({1, 2, 3, 4});
    test::RecordingPlatformScope rec;
    AllocatorScope fail(failingAllocator);
    {
        // A failed copy says so too, and sets the flag.
        CancelFlag c{0};
        EXPECT_EQ(copyWave(c, src.get()), nullptr);
        EXPECT_TRUE(isCancelled(c));
        EXPECT_EQ(rec.recorder.messages.size(), 1u);
    }
    {
        CancelFlag c{0};
        EXPECT_EQ(src->extract(c, 1, 3), nullptr);
        EXPECT_TRUE(isCancelled(c));
    }
    {
        CancelFlag c{0};
        std::int32_t end = 2;
        EXPECT_EQ(src->makeLine(c, 1, 2, 5, 1, end), nullptr);
        EXPECT_TRUE(isCancelled(c));
    }
    ASSERT_EQ(rec.recorder.messages.size(), 3u);
    for (const auto& m : rec.recorder.messages) {
        EXPECT_EQ(m.caption, "System Error");
        EXPECT_EQ(m.text, kNoMemory);
    }
}

TEST(WaveMemory, FlagSetBeforehandMakesNothingAndTouchesNoStorage) {
    WavePtr src = makeWave({1, 2, 3, 4});
    AllocatorScope counting(patternAllocator);
    CancelFlag c{1};
    std::int32_t end = 2;
    EXPECT_EQ(newWave(c, 5), nullptr);
    EXPECT_EQ(copyWave(c, src.get()), nullptr);
    EXPECT_EQ(src->remove(c, 0, 1), nullptr);
    EXPECT_EQ(src->replace(c, src.get(), 0, 1), nullptr);
    EXPECT_EQ(src->append(c, src.get()), nullptr);
    EXPECT_EQ(src->insertSilence(c, 3, 0, end), nullptr);
    EXPECT_EQ(src->makeNoise(c, 100, 3, 0, end), nullptr);
    EXPECT_EQ(allocations, 0);
}

// ---- the chunked loop ----

TEST(WaveChunks, ChunksAreAThousandWithTheRestInTheLast) {
    const std::vector<std::pair<int, Chunks>> cases = {
        {999, {{0, 999}}},
        {1000, {{0, 1000}}},
        {1001, {{0, 1000}, {1000, 1001}}},
        {1999, {{0, 1000}, {1000, 1999}}},
        {2500, {{0, 1000}, {1000, 2000}, {2000, 2500}}},
    };
    for (const auto& [n, expected] : cases) {
        WavePtr src = ramp(n);
        CancelFlag c{0};
        ChunkHookScope hook;
        WavePtr w = src->extract(c, 0, n);
        EXPECT_EQ(hook.log.chunks, expected) << n;
        EXPECT_EQ(samplesOf(*w), samplesOf(*src)) << n;
    }
}

TEST(WaveChunks, EachStepOfAnOperationHasItsOwnChunks) {
    WavePtr src = ramp(1200);
    CancelFlag c{0};
    std::int32_t end = 200;
    ChunkHookScope hook;
    WavePtr w = src->insertSilence(c, 1001, 200, end);
    // head copy, silence, tail copy (source positions)
    EXPECT_EQ(hook.log.chunks, (Chunks{{0, 200}, {200, 1200}, {1200, 1201}, {200, 1200}}));
    EXPECT_EQ(end, 1201);
    EXPECT_EQ(w->getValues(), 2201);
}

TEST(WaveChunks, CancelMidCopyHandsBackThePartialWave) {
    WavePtr src = ramp(2500);
    AllocatorScope pattern(patternAllocator);
    CancelFlag c{0};
    ChunkHookScope hook;
    hook.log.cancel = &c;
    hook.log.cancelAtPos = 1000;  // the chunk that starts here still runs
    WavePtr w = copyWave(c, src.get());
    ASSERT_NE(w, nullptr);
    EXPECT_TRUE(isCancelled(c));
    EXPECT_EQ(hook.log.chunks, (Chunks{{0, 1000}, {1000, 2000}}));
    ASSERT_EQ(w->getValues(), 2500);
    EXPECT_EQ((*w)[1999], 1999);
    EXPECT_EQ((*w)[2000], kPattern);
    EXPECT_EQ((*w)[2499], kPattern);
}

TEST(WaveChunks, CancelStopsLaterStepsAndInPlaceWork) {
    WavePtr src = ramp(3000);
    AllocatorScope pattern(patternAllocator);
    {
        CancelFlag c{0};
        ChunkHookScope hook;
        hook.log.cancel = &c;
        hook.log.cancelAtPos = 0;  // raised during the head copy
        WavePtr w = src->remove(c, 1000, 2000);
        ASSERT_NE(w, nullptr);
        EXPECT_EQ((*w)[999], 999);
        EXPECT_EQ((*w)[1000], kPattern);  // tail never copied
    }
    {
        CancelFlag c{0};
        ChunkHookScope hook;
        hook.log.cancel = &c;
        hook.log.cancelAtPos = 1000;
        WavePtr w = copyWave(c, src.get());
        c = 0;
        hook.log.cancelAtPos = 1000;
        w->clear(c, 0, 3000);
        EXPECT_EQ((*w)[1999], 0);
        EXPECT_EQ((*w)[2000], kPattern);
        c = 0;
        hook.log.cancelAtPos = 0;
        EXPECT_EQ(src->maxAbs(c, 0, 3000), 0);  // a cancelled search finds nothing
    }
}

TEST(WaveChunks, GeneratorsChunkFromBeginAndStopOnCancel) {
    Wave empty;
    CancelFlag c{0};
    std::int32_t end = 0;
    {
        ChunkHookScope hook;
        WavePtr w = empty.makeLine(c, 0, 2499, 2500, 0, end);
        EXPECT_EQ(hook.log.chunks, (Chunks{{0, 1000}, {1000, 2000}, {2000, 2500}}));
        for (int i : {0, 999, 1000, 1001, 1999, 2000, 2499}) EXPECT_EQ((*w)[i], i);
    }
    WavePtr base = makeWave({7, 8, 9, 10});
    AllocatorScope pattern(patternAllocator);
    ChunkHookScope hook;
    hook.log.cancel = &c;
    hook.log.cancelAtPos = 1001;  // head is [0, 1): the generated stretch starts at 1
    end = 1;
    WavePtr w = base->makeLine(c, 0, 2999, 3000, 1, end);
    ASSERT_NE(w, nullptr);
    EXPECT_TRUE(isCancelled(c));
    ASSERT_EQ(w->getValues(), 3004);
    EXPECT_EQ((*w)[0], 7);
    EXPECT_EQ((*w)[2000], 1999);
    EXPECT_EQ((*w)[2001], kPattern);
    EXPECT_EQ((*w)[3003], kPattern);  // tail not copied either
}

// ---- in-place primitives ----

TEST(WavePrimitives, CopyAddAndClearInPlace) {
    CancelFlag c{0};
    WavePtr w = makeWave({1, 2, 3, 4, 5});
    WavePtr from = makeWave({30000, -30000, 7, 8});
    w->copyFrom(c, from.get(), 2, 4, 3);
    EXPECT_EQ(samplesOf(*w), (Samples{1, 2, 3, 7, 8}));
    w->addFrom(c, from.get(), 0, 2, 0);
    EXPECT_EQ(samplesOf(*w), (Samples{30001, -29998, 3, 7, 8}));
    // 30000 + 30000 wraps to -5536; -30000 - 30000 to 5536: nothing saturates.
    WavePtr v = makeWave({30000, -30000});
    v->addFrom(c, from.get(), 0, 2, 0);
    EXPECT_EQ(samplesOf(*v), (Samples{-5536, 5536}));
    w->clear(c, 1, 4);
    EXPECT_EQ(samplesOf(*w), (Samples{30001, 0, 0, 0, 8}));
    w->clear(c, 2, 2);
    EXPECT_EQ(samplesOf(*w), (Samples{30001, 0, 0, 0, 8}));
}

TEST(WavePrimitives, DrawLineAccumulatesAndTruncates) {
    CancelFlag c{0};
    WavePtr w = makeWave({9, 9, 9, 9, 9, 9});
    w->drawLine(c, 1, 10, 5, 0);  // step -10/3: 10, 6.67, 3.33, ~0
    EXPECT_EQ(samplesOf(*w), (Samples{9, 10, 6, 3, 0, 9}));
    w->drawLine(c, 0, -3, 1, -4);  // one sample: the mean, toward zero
    EXPECT_EQ((*w)[0], -3);
    w->drawLine(c, 5, 3, 6, 4);
    EXPECT_EQ((*w)[5], 3);
}

TEST(WavePrimitives, MaxAbsKeepsItsSixteenBitQuirk) {
    CancelFlag c{0};
    EXPECT_EQ(makeWave({-32768, 5})->maxAbs(c, 0, 2), 5);
    EXPECT_EQ(makeWave({5, -32768})->maxAbs(c, 0, 2), 32768);
    WavePtr w = makeWave({3, -7, 2, 100});
    EXPECT_EQ(w->maxAbs(c, 0, 3), 7);
    EXPECT_EQ(w->maxAbs(c, 0, -1), 100);
    EXPECT_EQ(w->maxAbs(c, 2, 2), 0);
}

TEST(WavePrimitives, MixAfterForms) {
    CancelFlag c{0};
    WavePtr w = makeWave({1, 1, 1, 1});
    w->mixAfter(c, makeWave({1, 2, 3, 4, 5, 6}).get(), 2);  // stops at this wave's end
    EXPECT_EQ(samplesOf(*w), (Samples{1, 1, 2, 3}));
    w->mixAfter(c, makeWave({30000}).get(), 0);
    EXPECT_EQ(samplesOf(*w), (Samples{30001, 1, 2, 3}));  // stops at the other's end

    WavePtr s = makeWave({10, -10, 30000, 7});
    s->mixAfter(c, makeWave({3, 3, 30000}).get(), 0, 0.5);
    EXPECT_EQ(samplesOf(*s), (Samples{11, -8, -20536, 7}));  // 11.5, -8.5, 45000 wrapped

    // Long enough for the grouped loop: the same rule on every sample, and a factor too big
    // for 32-bit sums still wraps exactly.
    Samples base(40), add(40), want(40);
    for (int i = 0; i < 40; ++i) {
        base[i] = WaveVal(i * 1000 - 20000);
        add[i] = WaveVal(i % 2 ? -3 : 30000);
        want[i] = toWaveVal(double(base[i]) + add[i] * -0.5);
    }
    WavePtr g = makeWave(base);
    g->mixAfter(c, makeWave(add).get(), 0, -0.5);
    EXPECT_EQ(samplesOf(*g), want);
    EXPECT_EQ(want[1], -18998);  // -19000 + 1.5 truncated toward zero
    WavePtr h = makeWave(Samples(20, 1));
    h->mixAfter(c, makeWave(Samples(20, 3)).get(), 0, 100000.0);
    EXPECT_EQ(samplesOf(*h), Samples(20, wrap16(300001)));

    WavePtr r = makeWave({0, 0, 0, 0});
    r->mixAfterCyclic(c, makeWave({1, 2, 3, 4, 5, 6}).get(), 2);
    EXPECT_EQ(samplesOf(*r), (Samples{3, 4, 6, 8}));
}

// ---- primitives that make a new wave ----

TEST(WaveEdits, ExtractRemoveAppend) {
    CancelFlag c{0};
    WavePtr w = makeWave({1, 2, 3, 4, 5});
    EXPECT_EQ(samplesOf(*w->extract(c, 1, 4)), (Samples{2, 3, 4}));
    EXPECT_EQ(samplesOf(*w->remove(c, 1, 4)), (Samples{1, 5}));
    EXPECT_EQ(samplesOf(*w->remove(c, 0, 5)), Samples{});
    EXPECT_EQ(samplesOf(*w->append(c, makeWave({8, 9}).get())), (Samples{1, 2, 3, 4, 5, 8, 9}));
    Wave empty;
    EXPECT_EQ(samplesOf(*w->append(c, &empty)), samplesOf(*w));
    EXPECT_EQ(samplesOf(*w), (Samples{1, 2, 3, 4, 5}));  // the original is untouched
    EXPECT_FALSE(isCancelled(c));
}

TEST(WaveEdits, ReplaceAndItsCheckpoints) {
    CancelFlag c{0};
    WavePtr w = makeWave({1, 2, 3, 4, 5});
    WavePtr other = makeWave({7, 8, 9});
    test::RecordingPlatformScope rec;
    EXPECT_EQ(samplesOf(*w->replace(c, other.get(), 1, 3)), (Samples{1, 7, 8, 9, 4, 5}));
    EXPECT_EQ(rec.recorder.traces,
              (std::vector<std::string>{"Wave::replace A", "Wave::replace B", "Wave::replace C",
                                        "Wave::replace D", "Wave::replace E", "Wave::replace F",
                                        "Wave::replace G"}));
    EXPECT_EQ(samplesOf(*w->replace(c, other.get(), 2, 2)), (Samples{1, 2, 7, 8, 9, 3, 4, 5}));
    EXPECT_EQ(samplesOf(*w->replace(c, other.get(), 3, -1)), (Samples{1, 2, 3, 7, 8, 9}));
    Wave empty;
    EXPECT_EQ(samplesOf(*w->replace(c, &empty, 1, 3)), samplesOf(*w->remove(c, 1, 3)));
}

TEST(WaveEdits, InsertSilence) {
    CancelFlag c{0};
    WavePtr w = makeWave({1, 2, 3, 4});
    std::int32_t end = 3;
    EXPECT_EQ(samplesOf(*w->insertSilence(c, 2, 1, end)), (Samples{1, 0, 0, 4}));
    EXPECT_EQ(end, 3);
    end = 2;
    EXPECT_EQ(samplesOf(*w->insertSilence(c, 0, 2, end)), (Samples{1, 2, 3, 4}));  // a copy
    EXPECT_EQ(end, 2);
    end = -1;
    EXPECT_EQ(samplesOf(*w->insertSilence(c, 1, 2, end)), (Samples{1, 2, 0}));
    EXPECT_EQ(end, 3);
}

TEST(WaveEdits, MixAtGrowsInFrontAndBehind) {
    CancelFlag c{0};
    WavePtr w = makeWave({1, 2, 3});
    WavePtr two = makeWave({10, 20});
    EXPECT_EQ(samplesOf(*w->mixAt(c, two.get(), 1, -1, false)), (Samples{1, 12, 23}));
    EXPECT_EQ(samplesOf(*w->mixAt(c, two.get(), 2, -1, false)), (Samples{1, 2, 13, 20}));
    EXPECT_EQ(samplesOf(*w->mixAt(c, two.get(), 5, -1, false)), (Samples{1, 2, 3, 0, 0, 10, 20}));
    EXPECT_EQ(samplesOf(*w->mixAt(c, two.get(), -1, -1, false)), (Samples{10, 21, 2, 3}));
    EXPECT_EQ(samplesOf(*w->mixAt(c, two.get(), -4, -1, false)),
              (Samples{10, 20, 0, 0, 1, 2, 3}));

    WavePtr three = makeWave({10, 20, 30});
    EXPECT_EQ(samplesOf(*w->mixAt(c, three.get(), 0, 2, false)), (Samples{11, 22, 3}));
    EXPECT_EQ(samplesOf(*w->mixAt(c, three.get(), 0, 2, true)), (Samples{21, 32, 3}));
    EXPECT_EQ(samplesOf(*w->mixAt(c, three.get(), 0, 9, true)), (Samples{11, 22, 33}));

    WavePtr loud = makeWave({30000});
    EXPECT_EQ(samplesOf(*loud->mixAt(c, loud.get(), 0, -1, false)), (Samples{-5536}));
}

TEST(WaveEdits, MixEndingAtPlacesTheUsedPartBeforeThePosition) {
    CancelFlag c{0};
    WavePtr w = makeWave({1, 2, 3});
    WavePtr three = makeWave({10, 20, 30});
    EXPECT_EQ(samplesOf(*w->mixEndingAt(c, three.get(), 3, -1, false)), (Samples{11, 22, 33}));
    EXPECT_EQ(samplesOf(*w->mixEndingAt(c, three.get(), 1, 1, true)), (Samples{31, 2, 3}));
    EXPECT_EQ(samplesOf(*w->mixEndingAt(c, three.get(), 1, -1, false)),
              (Samples{10, 20, 31, 2, 3}));
}

// ---- envelope reading, cycle and the sine table ----

TEST(WaveSampling, LinearInterpolationAndCycle) {
    WavePtr env = makeWave({0, 0, 100, 200});
    EXPECT_DOUBLE_EQ(sample(*env, 2.25), 125.0);
    EXPECT_DOUBLE_EQ(sample(*env, 2.0), 100.0);
    EXPECT_DOUBLE_EQ(sample(*env, 3.0), 200.0);
    EXPECT_DOUBLE_EQ(sample(*makeWave({-100, 100}), 0.5), 0.0);

    EXPECT_DOUBLE_EQ(cycle(1.25, 0, 1), 0.25);
    EXPECT_DOUBLE_EQ(cycle(-0.25, 0, 1), 0.75);
    EXPECT_DOUBLE_EQ(cycle(1.0, 0, 1), 0.0);
    EXPECT_DOUBLE_EQ(cycle(7, 2, 5), 4.0);
    EXPECT_DOUBLE_EQ(cycle(-4, 2, 5), 2.0);
    EXPECT_DOUBLE_EQ(cycle(2, 2, 5), 2.0);
}

TEST(WaveSinus, TableUsesItsOwnPi) {
    ASSERT_TRUE(createSinus());
    ASSERT_NE(sinus, nullptr);
    EXPECT_EQ(sinus->getValues(), 9000);
    EXPECT_EQ((*sinus)[0], 0);
    // With 3.1415293 the quarter falls just short of the top and the half just past zero.
    EXPECT_EQ((*sinus)[2250], 32766);
    EXPECT_EQ((*sinus)[4500], 2);
    EXPECT_EQ((*sinus)[6750], -32766);
    EXPECT_EQ((*sinus)[1], 22);
}

TEST(WaveSinus, FailureIsReportedWithTheStopIcon) {
    deleteSinus();
    test::RecordingPlatformScope rec;
    {
        AllocatorScope fail(failingAllocator);
        EXPECT_FALSE(createSinus());
    }
    EXPECT_EQ(sinus, nullptr);
    ASSERT_EQ(rec.recorder.messages.size(), 1u);
    EXPECT_EQ(rec.recorder.messages[0].caption, "System Error");
    EXPECT_EQ(rec.recorder.messages[0].text, "Could not create sinus.");
    EXPECT_EQ(rec.recorder.messages[0].icon, MessageIcon::Stop);
    EXPECT_TRUE(createSinus());
}

// ---- argument checks ----

TEST(WaveChecksDeathTest, RangeFamiliesNameTheFailedExpression) {
    WavePtr w = makeWave({1, 2, 3});
    CancelFlag c{0};
    std::int32_t end = 5;
    EXPECT_DEATH(w->extract(c, 2, 2), "Assertion failed: begin < end, unit wave, line ");
    EXPECT_DEATH(w->extract(c, 0, -1), "Assertion failed: end >= 0, unit wave");
    EXPECT_DEATH(w->remove(c, -1, 2), "Assertion failed: begin >= 0, unit wave");
    EXPECT_DEATH(w->replace(c, w.get(), 0, 4), "Assertion failed: end <= values, unit wave");
    EXPECT_DEATH(w->replace(c, w.get(), 2, 1), "Assertion failed: begin <= end, unit wave");
    EXPECT_DEATH(w->insertSilence(c, 1, 0, end), "Assertion failed: end <= values, unit wave");
    end = 1;
    EXPECT_DEATH(w->insertSilence(c, -1, 0, end), "Assertion failed: length >= 0, unit wave");
}

TEST(WaveChecksDeathTest, PrimitiveChecks) {
    WavePtr w = makeWave({1, 2, 3});
    CancelFlag c{0};
    EXPECT_DEATH(w->copyFrom(c, w.get(), 0, 2, 2),
                 "Assertion failed: to \\+ end - begin <= values, unit wave");
    EXPECT_DEATH(w->addFrom(c, w.get(), 0, 4, 0),
                 "Assertion failed: end <= from->values, unit wave");
    EXPECT_DEATH(w->clear(c, 2, 1), "Assertion failed: end >= begin, unit wave");
    EXPECT_DEATH(w->drawLine(c, 1, 0, 1, 0), "Assertion failed: end > begin, unit wave");
    EXPECT_DEATH(w->mixAfter(c, w.get(), 3), "Assertion failed: after < values, unit wave");
    Wave empty;
    EXPECT_DEATH(empty.mixAfterCyclic(c, w.get(), 0),
                 "Assertion failed: values != 0, unit wave");
    EXPECT_DEATH(cycle(0.5, 1, 1), "Assertion failed: max > min, unit wave");
}

}  // namespace
}  // namespace orv
