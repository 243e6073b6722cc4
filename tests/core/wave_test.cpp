// Wave buffer: construction and ownership, memory failure, the chunked loop and its cancel,
// the structural primitives, the peak search, envelope sampling and the sine table.
#include "core/wave.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/core_test_helpers.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

using namespace test;

TEST(WaveConstruction, EmptySizedAdoptedAndCopied) {
    Wave empty;
    CancelFlag c{0};
    EXPECT_EQ(Wave(c, 0).data(), nullptr);
    WaveVal* block = allocateSamples(2);
    block[0] = 5;
    block[1] = -6;
    Wave adopted(block, 2);
    EXPECT_EQ(adopted.data(), block);
    EXPECT_EQ(samplesOf(adopted), (Samples{5, -6}));

    // A copy is deep and walks in chunks; a copy of nothing is an empty wave, flag clear.
    WavePtr src = steps(2500, 0, 1);
    ChunkHookScope hook;
    Wave copy(c, *src);
    EXPECT_EQ(hook.chunks, (Chunks{{0, 1000}, {1000, 2000}, {2000, 2500}}));
    EXPECT_NE(copy.data(), src->data());
    EXPECT_EQ(samplesOf(copy), samplesOf(*src));
    EXPECT_EQ(copyWave(c, &empty)->getValues(), 0);
    EXPECT_FALSE(isCancelled(c));
    EXPECT_EQ(copyWave(c, nullptr), nullptr);
}

TEST(WaveConstruction, ForbiddenCopyAndDumpSpeakWordForWord) {
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

    src->dump();
    const auto& t = rec.recorder.traces;
    ASSERT_EQ(t.size(), 3u);
    EXPECT_EQ(t[0].rfind("Wave.this = ", 0), 0u);
    EXPECT_EQ(t[1], "Wave.values = 3\n");
    EXPECT_EQ(t[2].rfind("Wave.wave = ", 0), 0u);
}

// ---- running out of memory ----

TEST(WaveMemory, FailedStorageShowsTheMessageSetsTheFlagAndMakesNoWave) {
    WavePtr src = makeWave({1, 2, 3, 4});
    test::RecordingPlatformScope rec;
    AllocatorScope fail(0);
    for (int op = 0; op < 4; ++op) {
        CancelFlag c{0};
        WavePtr w = op == 0   ? newWave(c, 10)
                    : op == 1 ? copyWave(c, src.get())
                    : op == 2 ? src->extract(c, 1, 3)
                              : src->makeLine(c, 1, 2, 5, 1, E{2});
        EXPECT_EQ(w, nullptr) << op;
        EXPECT_TRUE(isCancelled(c)) << op;
    }
    ASSERT_EQ(rec.recorder.messages.size(), 4u);
    for (const auto& m : rec.recorder.messages) {
        EXPECT_EQ(m.caption, "System Error");
        EXPECT_EQ(m.text, kNoMemory);
        EXPECT_EQ(m.icon, MessageIcon::Information);
    }
}

TEST(WaveMemory, FlagSetBeforehandMakesNothingAndTouchesNoStorage) {
    WavePtr src = makeWave({1, 2, 3, 4});
    AllocatorScope counting;
    CancelFlag c{1};
    EXPECT_EQ(newWave(c, 5), nullptr);
    EXPECT_EQ(copyWave(c, src.get()), nullptr);
    EXPECT_EQ(src->replace(c, src.get(), 0, 1), nullptr);
    EXPECT_EQ(src->makeNoise(c, 100, 3, 0, E{2}), nullptr);
    EXPECT_EQ(allocations, 0);
}

// ---- the chunked loop ----

TEST(WaveChunks, ChunksAreAThousandWithTheRestInTheLast) {
    const std::vector<std::pair<int, Chunks>> cases = {
        {1000, {{0, 1000}}},
        {1001, {{0, 1000}, {1000, 1001}}},
    };
    for (const auto& [n, expected] : cases) {
        WavePtr src = steps(n, 0, 1);
        CancelFlag c{0};
        ChunkHookScope hook;
        WavePtr w = src->extract(c, 0, n);
        EXPECT_EQ(hook.chunks, expected) << n;
        EXPECT_EQ(samplesOf(*w), samplesOf(*src)) << n;
    }
    // Each step of an operation has its own chunks: head copy, silence, tail copy.
    WavePtr src = steps(1200, 0, 1);
    CancelFlag c{0};
    std::int32_t end = 200;
    ChunkHookScope hook;
    WavePtr w = src->insertSilence(c, 1001, 200, end);
    EXPECT_EQ(hook.chunks, (Chunks{{0, 200}, {200, 1200}, {1200, 1201}, {200, 1200}}));
    EXPECT_EQ(end, 1201);
    EXPECT_EQ(w->getValues(), 2201);
}

TEST(WaveChunks, CancelHandsBackThePartialWaveAndStopsLaterSteps) {
    WavePtr src = steps(3000, 0, 1);
    AllocatorScope pattern;
    {
        CancelFlag c{0};
        ChunkHookScope hook(c, 1000);  // the chunk that starts here still runs
        WavePtr w = copyWave(c, src.get());
        ASSERT_NE(w, nullptr);
        EXPECT_TRUE(isCancelled(c));
        EXPECT_EQ(hook.chunks, (Chunks{{0, 1000}, {1000, 2000}}));
        EXPECT_EQ((*w)[1999], 1999);
        EXPECT_EQ((*w)[2000], kPattern);
        // in place work stops the same way; a cancelled search finds nothing
        c = 0;
        w->clear(c, 0, 3000);
        EXPECT_EQ((*w)[1999], 0);
        EXPECT_EQ((*w)[2000], kPattern);
        c = 0;
        hook.cancelAtPos = 0;
        EXPECT_EQ(src->maxAbs(c, 0, 3000), 0);
    }
    CancelFlag c{0};
    ChunkHookScope hook(c, 0);  // raised during the head copy: the tail is never copied
    WavePtr w = src->remove(c, 1000, 2000);
    ASSERT_NE(w, nullptr);
    EXPECT_EQ((*w)[999], 999);
    EXPECT_EQ((*w)[1000], kPattern);
}

TEST(WaveChunks, GeneratorsChunkFromBeginAndStopOnCancel) {
    Wave empty;
    CancelFlag c{0};
    {
        ChunkHookScope hook;
        WavePtr w = empty.makeLine(c, 0, 2499, 2500, 0, E{0});
        EXPECT_EQ(hook.chunks, (Chunks{{0, 1000}, {1000, 2000}, {2000, 2500}}));
        for (int i : {999, 1000, 2499}) EXPECT_EQ((*w)[i], i);
    }
    WavePtr base = makeWave({7, 8, 9, 10});
    AllocatorScope pattern;
    ChunkHookScope hook(c, 1001);  // head is [0, 1): the generated stretch starts at 1
    WavePtr w = base->makeLine(c, 0, 2999, 3000, 1, E{1});
    ASSERT_NE(w, nullptr);
    EXPECT_TRUE(isCancelled(c));
    ASSERT_EQ(w->getValues(), 3004);
    EXPECT_EQ((*w)[2000], 1999);
    EXPECT_EQ((*w)[2001], kPattern);
    EXPECT_EQ((*w)[3003], kPattern);  // tail not copied either
}

// ---- in-place primitives ----

TEST(WavePrimitives, CopyAddClearAndDrawInPlace) {
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
    w->clear(c, 2, 2);
    EXPECT_EQ(samplesOf(*w), (Samples{30001, 0, 0, 0, 8}));

    WavePtr d = makeWave({9, 9, 9, 9, 9, 9});
    d->drawLine(c, 1, 10, 5, 0);  // step -10/3: 10, 6.67, 3.33, ~0
    EXPECT_EQ(samplesOf(*d), (Samples{9, 10, 6, 3, 0, 9}));
    d->drawLine(c, 0, -3, 1, -4);  // one sample: the mean, toward zero
    EXPECT_EQ((*d)[0], -3);
}

TEST(WavePrimitives, MaxAbsKeepsItsSixteenBitQuirk) {
    CancelFlag c{0};
    EXPECT_EQ(makeWave({-32768, 5})->maxAbs(c, 0, 2), 5);
    EXPECT_EQ(makeWave({5, -32768})->maxAbs(c, 0, 2), 32768);
    WavePtr w = makeWave({3, -7, 2, 100});
    EXPECT_EQ(w->maxAbs(c, 0, 3), 7);
    EXPECT_EQ(w->maxAbs(c, 0, -1), 100);
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

    // Long enough for the grouped loop: -19000 + 1.5 truncates to -18998; a factor too
    // big for 32-bit sums still wraps exactly.
    WavePtr g = makeWave(Samples(40, -19000));
    Samples add(40);
    for (int i = 0; i < 40; ++i) add[std::size_t(i)] = i % 2 ? -3 : 30000;
    g->mixAfter(c, makeWave(add).get(), 0, -0.5);
    for (int i = 0; i < 40; ++i) ASSERT_EQ((*g)[i], i % 2 ? -18998 : 31536) << i;  // -34000 wraps
    WavePtr h = makeWave(Samples(20, 1));
    h->mixAfter(c, makeWave(Samples(20, 3)).get(), 0, 100000.0);
    EXPECT_EQ(samplesOf(*h), Samples(20, -27679));  // 300001 = 4 x 65536 + 37857

    WavePtr r = makeWave({0, 0, 0, 0});
    r->mixAfterCyclic(c, makeWave({1, 2, 3, 4, 5, 6}).get(), 2);
    EXPECT_EQ(samplesOf(*r), (Samples{3, 4, 6, 8}));
}

// ---- primitives that make a new wave ----

TEST(WaveEdits, ExtractRemoveAppendReplaceAndInsertSilence) {
    CancelFlag c{0};
    WavePtr w = makeWave({1, 2, 3, 4, 5});
    Wave empty;
    EXPECT_EQ(samplesOf(*w->extract(c, 1, 4)), (Samples{2, 3, 4}));
    EXPECT_EQ(samplesOf(*w->remove(c, 1, 4)), (Samples{1, 5}));
    EXPECT_EQ(samplesOf(*w->append(c, makeWave({8, 9}).get())), (Samples{1, 2, 3, 4, 5, 8, 9}));
    EXPECT_EQ(samplesOf(*w->append(c, &empty)), samplesOf(*w));

    WavePtr other = makeWave({7, 8, 9});
    test::RecordingPlatformScope rec;
    EXPECT_EQ(samplesOf(*w->replace(c, other.get(), 1, 3)), (Samples{1, 7, 8, 9, 4, 5}));
    EXPECT_EQ(rec.recorder.traces,
              (std::vector<std::string>{"Wave::replace A", "Wave::replace B", "Wave::replace C",
                                        "Wave::replace D", "Wave::replace E", "Wave::replace F",
                                        "Wave::replace G"}));
    EXPECT_EQ(samplesOf(*w->replace(c, other.get(), 3, -1)), (Samples{1, 2, 3, 7, 8, 9}));
    EXPECT_EQ(samplesOf(*w->replace(c, &empty, 1, 3)), (Samples{1, 4, 5}));
    EXPECT_EQ(samplesOf(*w), (Samples{1, 2, 3, 4, 5}));  // the original is untouched

    // Silence in place of the range; the end written back.
    EXPECT_EQ(samplesOf(*w->insertSilence(c, 2, 1, E{4})), (Samples{1, 0, 0, 5}));
    std::int32_t end = -1;
    EXPECT_EQ(samplesOf(*w->insertSilence(c, 1, 2, end)), (Samples{1, 2, 0}));
    EXPECT_EQ(end, 3);
}

TEST(WaveEdits, MixAtAndMixEndingAtGrowInFrontAndBehind) {
    CancelFlag c{0};
    WavePtr w = makeWave({1, 2, 3});
    WavePtr two = makeWave({10, 20});
    WavePtr three = makeWave({10, 20, 30});
    struct Row {
        bool ending;
        const Wave* other;
        int pos, len;
        bool cyclic;
        Samples want;
    };
    const Row rows[] = {
        {false, two.get(), 1, -1, false, {1, 12, 23}},
        {false, two.get(), 5, -1, false, {1, 2, 3, 0, 0, 10, 20}},
        {false, two.get(), -1, -1, false, {10, 21, 2, 3}},
        {false, three.get(), 0, 2, true, {21, 32, 3}},
        {false, three.get(), 0, 9, true, {11, 22, 33}},
        {true, three.get(), 3, -1, false, {11, 22, 33}},
        {true, three.get(), 1, 1, true, {31, 2, 3}},
        {true, three.get(), 1, -1, false, {10, 20, 31, 2, 3}},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(testing::Message() << r.ending << " at " << r.pos << " len " << r.len);
        WavePtr got = r.ending ? w->mixEndingAt(c, r.other, r.pos, r.len, r.cyclic)
                               : w->mixAt(c, r.other, r.pos, r.len, r.cyclic);
        EXPECT_EQ(samplesOf(*got), r.want);
    }
    WavePtr loud = makeWave({30000});
    EXPECT_EQ(samplesOf(*loud->mixAt(c, loud.get(), 0, -1, false)), (Samples{-5536}));
}

// ---- envelope reading, cycle and the sine table ----

TEST(WaveSampling, LinearInterpolationAndCycle) {
    WavePtr env = makeWave({0, 0, 100, 200});
    EXPECT_DOUBLE_EQ(sample(*env, 2.25), 125.0);
    EXPECT_DOUBLE_EQ(sample(*env, 3.0), 200.0);
    EXPECT_DOUBLE_EQ(cycle(-0.25, 0, 1), 0.75);
    EXPECT_DOUBLE_EQ(cycle(1.0, 0, 1), 0.0);
    EXPECT_DOUBLE_EQ(cycle(7, 2, 5), 4.0);
    EXPECT_DOUBLE_EQ(cycle(-4, 2, 5), 2.0);
}

TEST(WaveSinus, TableUsesItsOwnPiAndFailureShowsTheStopIcon) {
    ASSERT_TRUE(createSinus());
    EXPECT_EQ(sinus->getValues(), 9000);
    // With 3.1415293 the quarter falls just short of the top and the half just past zero.
    EXPECT_EQ((*sinus)[1], 22);
    EXPECT_EQ((*sinus)[2250], 32766);
    EXPECT_EQ((*sinus)[4500], 2);
    EXPECT_EQ((*sinus)[6750], -32766);

    deleteSinus();
    test::RecordingPlatformScope rec;
    {
        AllocatorScope fail(0);
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

TEST(WaveChecksDeathTest, ChecksNameTheFailedExpression) {
    WavePtr w = makeWave({1, 2, 3});
    CancelFlag c{0};
    EXPECT_DEATH(w->extract(c, 2, 2), "Assertion failed: begin < end, unit wave, line ");
    EXPECT_DEATH(w->replace(c, w.get(), 0, 4), "Assertion failed: end <= values, unit wave");
    EXPECT_DEATH(w->copyFrom(c, w.get(), 0, 2, 2),
                 "Assertion failed: to \\+ end - begin <= values, unit wave");
    EXPECT_DEATH(cycle(0.5, 1, 1), "Assertion failed: max > min, unit wave");
}

}  // namespace
}  // namespace orv
