// Commands as jobs: prepared on one thread, computed on another, committed on the first;
// what a running job may and may not share with the documents; progress; the action table
// as the one list of operations.
#include "document/job.h"

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <set>
#include <thread>

#include "document/file_props_record.h"
#include "support/document_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;
using Kind = ActionResult::Kind;

// Holds a chunk loop at its second chunk until the test lets it go, so that the test can do
// things on "the user-interface thread" while the worker is in the middle of a job.
struct Gate {
    std::atomic<int> stage{0};  // 1: the worker waits inside the job; 2: go on
    static void hook(void* context, std::int32_t pos, std::int32_t) {
        auto* g = static_cast<Gate*>(context);
        if (pos < 1000 || g->stage != 0) return;
        g->stage = 1;
        while (g->stage != 2) std::this_thread::yield();
    }
    void waitUntilInside() const {
        while (stage != 1) std::this_thread::yield();
    }
};

class JobsTest : public WorkspaceFixture {
protected:
    ~JobsTest() override { setChunkHook(nullptr, nullptr); }
    // Prepares `action`, starts its computation on a worker held at its second chunk.
    std::unique_ptr<OperationJob> startHeld(std::string_view action, const TypedFields& fields,
                                            std::thread& worker) {
        PreparedAction p = ws.prepareAction(action, fields);
        EXPECT_NE(p.job, nullptr) << p.result.text;
        if (!p.job) return nullptr;
        setChunkHook(&Gate::hook, &gate);
        worker = std::thread([job = p.job.get()] { job->compute(); });
        gate.waitUntilInside();
        return std::move(p.job);
    }
    Gate gate;
};

// The envelope's document is edited and then closed while the job reads the envelope: the
// job goes on with the envelope as it was when the command started.
TEST_F(JobsTest, EnvelopeEditedAndClosedWhileTheJobRuns) {
    TUnitWave& env = load(Samples(10, 16384), 2, "env.wav");
    ASSERT_TRUE(ws.registerName(env, "half"));
    std::weak_ptr<const Sound> pinned = ws.soundByName("half");
    TUnitWave& u = load(Samples(5000, 1000));
    std::thread worker;
    auto job = startHeld("Volume", {{"Envelope", "half"}}, worker);
    ASSERT_TRUE(job);
    // The commands wait for the job; an edit of the document itself gives it a new sound
    // (as freehand drawing or a future command would) and drops the old one.
    env.swapSound(mono(Samples(10, 26384)));
    EXPECT_FALSE(pinned.expired());  // nothing but the job holds the old one now
    ws.close(env);
    gate.stage = 2;
    worker.join();
    EXPECT_EQ(ws.commit(std::move(job)).kind, Kind::Done);
    // 16384 / 32767 of 1000, not the raised envelope's 26384 / 32767.
    EXPECT_EQ(samplesOf(u), Samples(5000, 500));
    EXPECT_TRUE(pinned.expired());  // the last holder let go
    EXPECT_EQ(ws.runningJob(), nullptr);
}

// Cancel from another thread: sound, cursor, selection, change state and undo slot stay.
TEST_F(JobsTest, CancelledJobChangesNothing) {
    TUnitWave& u = load(rampOf(5000));
    ASSERT_TRUE(run("Reverse"));
    const TUndoUnit* undoBefore = ws.undoRecord();
    const Sound* soundBefore = u.getSound();
    select(u, 4000, 10);
    RecordingView view;
    view.attach(u);
    std::thread worker;
    auto job = startHeld("Volume", {{"Constant", "2"}}, worker);
    ASSERT_TRUE(job);
    std::thread canceller([&] { ws.requestCancel(); });
    canceller.join();
    gate.stage = 2;
    worker.join();
    EXPECT_TRUE(job->cancelled());
    EXPECT_LT(job->done(), job->expected());
    view.calls.clear();
    EXPECT_EQ(ws.commit(std::move(job)).kind, Kind::Cancelled);
    EXPECT_EQ(u.getSound(), soundBefore);
    EXPECT_EQ(marks(u), Ends(4000, 10));
    EXPECT_EQ(u.getState(), kStateChanged);
    EXPECT_EQ(ws.undoRecord(), undoBefore);
    EXPECT_EQ(view.calls, (Lines{"repaintAll"}));
}

// While a job is out only viewing, the player and help are offered; play only in another
// window. When the job is gone, everything is back.
TEST_F(JobsTest, EnablingWhileAJobRuns) {
    TUnitWave& other = load(rampOf(100), 2, "b.wav");
    TUnitWave& u = load(rampOf(5000));
    ws.setClipboard(mono({1, 2}), 2);
    std::thread worker;
    auto job = startHeld("Reverse", {}, worker);
    ASSERT_TRUE(job);
    const Lines off = {"Volume", "Undo", "DeleteUndo", "EditCopy", "EditPaste", "Duplicate",
                       "Register", "FileSaveAs", "FileProperties", "MakeSinus",
                       "FilePlay", "MergeH"};
    const Lines on = {"ViewWave", "ViewVold", "FileNewWave", "FileOpenWave", "FileExit",
                      "HelpAbout", "SelectWave"};
    for (const std::string& a : off) {
        const ActionStatus s = ws.status(a);
        EXPECT_FALSE(s.enabled) << a;
        EXPECT_EQ(s.reason, "an operation is running") << a;
    }
    for (const std::string& a : on) EXPECT_TRUE(ws.status(a).enabled) << a;
    const ActionResult refused = ws.runAction("Undo");
    EXPECT_EQ(refused.kind, Kind::Disabled);
    EXPECT_EQ(refused.text, "Undo is not available now: an operation is running.");
    ws.setActive(&other);
    EXPECT_TRUE(ws.status("FilePlay").enabled);  // the other window plays
    EXPECT_FALSE(ws.status("Volume").enabled);
    gate.stage = 2;
    worker.join();
    EXPECT_EQ(ws.commit(std::move(job)).kind, Kind::Done);
    ws.setActive(&u);
    for (const char* a : {"Volume", "Undo", "EditPaste", "Duplicate", "FilePlay"})
        EXPECT_TRUE(ws.status(a).enabled) << a;
}

// A job whose window closes finds no document to hand its result to.
TEST_F(JobsTest, ClosingTheJobsWindowCancelsIt) {
    TUnitWave& u = load(rampOf(5000));
    std::thread worker;
    auto job = startHeld("Reverse", {}, worker);
    ASSERT_TRUE(job);
    ws.close(u);
    gate.stage = 2;
    worker.join();
    EXPECT_TRUE(job->cancelled());
    EXPECT_EQ(ws.commit(std::move(job)).kind, Kind::Cancelled);
    EXPECT_EQ(ws.undoRecord(), nullptr);
    EXPECT_TRUE(ws.status("FileNewWave").enabled);
}

// A sound goes when the last of the document and the undo record lets go of it (a job that
// holds it: above).
TEST_F(JobsTest, ASoundGoesOnlyWhenNothingHoldsIt) {
    TUnitWave& w = load(rampOf(3000), 2, "w.wav");
    std::weak_ptr<Sound> before = w.soundRef();
    ASSERT_TRUE(run("Reverse"));  // the undo record keeps the sound from before
    EXPECT_FALSE(before.expired());
    ASSERT_TRUE(run("DeleteUndo"));
    EXPECT_TRUE(before.expired());
}

// A dialog hands over its accepted state: what the user typed is read once, exactly. The
// field that failed is named by its index, so the dialog can focus it.
TEST_F(JobsTest, AcceptedDialogStateReachesTheOperationUnrounded) {
    TUnitWave& u = load({30000, -30000, 29999, 3});
    auto form = ws.actionForm("Volume");
    ASSERT_TRUE(form);
    FormState state = form->show(this->ws.formContext().waves);
    const int constant = form->spec().find("Constant");
    typeInto(form->spec(), state, constant, "1/3");
    EXPECT_FALSE(ws.checkForm("Volume", state));
    PreparedAction p = ws.prepareAction("Volume", state);
    ASSERT_TRUE(p.job);
    p.job->compute();
    ASSERT_EQ(ws.commit(std::move(p.job)).kind, Kind::Done);
    // 29999 / 3 = 9999.67 truncates to 9999; 0.33333333 would give 9999.6666 as well, but
    // 30000 x 0.33333333 = 9999.9999 truncates to 9999 where 1/3 gives 10000.
    EXPECT_EQ(samplesOf(u), (Samples{10000, -10000, 9999, 1}));
    EXPECT_EQ(u.records().volume.factor.value, 1.0 / 3.0);

    typeInto(form->spec(), state, constant, "three");
    const auto error = ws.checkForm("Volume", state);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->fieldIndex, constant);
    EXPECT_EQ(u.records().volume.factor.value, 1.0 / 3.0);  // checking changes nothing
    const PreparedAction refused = ws.prepareAction("Volume", state);
    EXPECT_EQ(refused.job, nullptr);
    EXPECT_EQ(refused.result.kind, Kind::InputError);
    EXPECT_EQ(refused.result.text, error->text());
    ASSERT_EQ(shown().size(), 1u);  // the refusal is shown once, by the prepare
}

// The extra checks of a record name their field too.
TEST(FormErrors, ACheckNamesItsFieldByIndex) {
    FormContext ctx;
    ctx.soundSeconds = 1.0;
    RotateRecord r;
    const auto e = applyTypedFields(r, {{"Time", "3 s"}}, ctx);
    ASSERT_TRUE(e);
    EXPECT_EQ(e->fieldIndex, RotateRecord::table().find("Time"));
    LineRecord line;
    const auto bad = applyTypedFields(line, {{"Length", "5"}}, ctx);
    ASSERT_TRUE(bad);
    EXPECT_EQ(bad->fieldIndex, LineRecord::table().find("Length"));
}

// Both channels of a document, one after the other.
Samples channels(const TUnitWave& u) {
    Samples s = samplesOf(u);
    if (u.getMonoStereo() == 2) {
        const Samples r = samplesOf(u.getSound()->GetRightWave());
        s.insert(s.end(), r.begin(), r.end());
    }
    return s;
}

// The fields each operation runs with besides its dialog's defaults: an envelope to name
// where it reads one, a change where the defaults change nothing.
const std::map<std::string_view, std::vector<TypedFields>> kRuns = {
    {"Distort", {{{"Distort Envelope", "env"}}}},
    {"FileProperties", {{{"Sample Frequency", "11 kHz"}}}},
    {"MixLeftRight", {{{"Example", "Swapped"}}}},
    {"MakeBlock", {{}, {{"Middle Envelope", "env"}}}},
    {"MakeMFreq", {{}, {{"Wave Form", "env"}}}},
    {"Volume", {{}, {{"Envelope", "env"}}}},
    {"RollOut", {{}, {{"Speed Envelope Wave", "env"}}}},
    {"Balance", {{}, {{"Direction Envelope", "env"}}}},
    {"PerEcho", {{}, {{"Echo Volume Envelope", "env"}}}},
    {"TempoPitch", {{}, {{"Speed Envelope Wave", "env"}, {"Frequency Envelope Wave", "env"}}}},
    {"FilterLow", {{}, {{"Envelope", "env"}, {"Maximize Volume", "on"}}}},
    {"FilterNotch", {{}, {{"Frequency Width Envelope", "env"}}}},
};

// Every operation of the table, computed as a job: its progress rises, stays below what the
// plan expected while the work goes on, and reaches it exactly once, at the end. The plan's
// estimate is near the work really done (a bar that jumps or stalls tells the user nothing).
// An operation with a dialog changes the wave and is undone and redone exactly.
TEST_F(JobsTest, EveryOperationReachesItsExpectedProgressOnceAndIsUndoneExactly) {
    Samples v(6000);
    for (int i = 0; i < 6000; ++i) v[i] = (i * 37) % 2000 - 1000;
    TUnitWave& env = load({-20000, 0, 30000}, 2, "e.wav", 8000);
    ASSERT_TRUE(ws.registerName(env, "env"));
    int ran = 0;
    for (const ActionDef& a : actionTable()) {
        if (!a.operation || !a.operation->prepare) continue;
        const auto runs = kRuns.find(a.name);
        for (const TypedFields& fields : runs == kRuns.end() ? std::vector<TypedFields>{{}} : runs->second) {
            SCOPED_TRACE(std::string(a.name) + (fields.empty() ? "" : " " + fields[0].first));
            const bool stereoOnly = a.rule == EnableRule::StereoSamples;
            TUnitWave& u = ws.add(std::make_unique<TUnitWave>(
                stereoOnly ? stereo(v, Samples(v.rbegin(), v.rend()), 8000) : mono(v, 8000), 2, "a.wav"));
            select(u, 1000, 5000);
            ws.setClipboard(mono(Samples(2000, 7), 8000), 2);
            const Samples before = channels(u);
            PreparedAction p = ws.prepareAction(a.name, fields);
            ASSERT_TRUE(p.job) << p.result.text;
            std::vector<std::int64_t> heard;
            p.job->setListener([&](std::int64_t done, std::int64_t expected) {
                EXPECT_EQ(expected, p.job->expected());
                heard.push_back(done);
            });
            const std::int64_t walkedBefore = samplesWalked.load();
            p.job->compute();
            const std::int64_t walked = samplesWalked.load() - walkedBefore;
            const std::int64_t expected = p.job->expected();
            ASSERT_FALSE(heard.empty());
            EXPECT_EQ(heard.back(), expected);
            EXPECT_EQ(std::count(heard.begin(), heard.end(), expected), 1);
            EXPECT_TRUE(std::is_sorted(heard.begin(), heard.end()));
            EXPECT_EQ(p.job->done(), expected);
            EXPECT_GE(walked * 4, expected) << walked << " walked, " << expected << " expected";
            EXPECT_LE(walked, expected * 4) << walked << " walked, " << expected << " expected";
            EXPECT_EQ(ws.commit(std::move(p.job)).kind, Kind::Done);
            if (a.flow == ActionFlow::Operation) {
                const Samples after = channels(u);
                EXPECT_NE(after, before);
                EXPECT_EQ(u.getState(), kStateChanged);
                ASSERT_TRUE(ws.undo());
                EXPECT_EQ(channels(u), before);
                ASSERT_TRUE(ws.undo());
                EXPECT_EQ(channels(u), after);
            }
            ws.close(u);
            ++ran;
        }
    }
    // 26 with a record, 8 edits, copy, the file properties; 9 with envelopes as well.
    EXPECT_EQ(ran, 45);
    EXPECT_TRUE(shown().empty());
}

// The action table is the one list of operations: every row that computes has an operation
// and every row a rule that fits its flow; the forms a listing shows are the rows' forms.
TEST(ActionRegistry, EveryRowHasItsPartsAndOneRule) {
    std::set<std::string_view> names;
    for (const ActionDef& a : actionTable()) {
        SCOPED_TRACE(std::string(a.name));
        EXPECT_TRUE(names.insert(a.name).second);
        const bool computes = a.flow == ActionFlow::Operation || a.flow == ActionFlow::Edit;
        if (computes) {
            EXPECT_NE(a.operation, nullptr);
        }
        EXPECT_EQ(a.flow == ActionFlow::Inert, a.rule == EnableRule::Never);
        if (a.flow == ActionFlow::Operation) {
            ASSERT_NE(a.operation->form, nullptr);
            ASSERT_NE(a.operation->spec, nullptr);
            EXPECT_FALSE(a.form.empty());
            EXPECT_NE(a.operation->check, nullptr);
        }
        if (a.flow == ActionFlow::Edit) {
            EXPECT_EQ(a.operation->form, nullptr);
        }
        // A row with a form that does not compute (the splits and merges) runs in the
        // workspace; every other one prepares a job.
        if (a.operation && a.flow != ActionFlow::Document) {
            EXPECT_NE(a.operation->prepare, nullptr);
        }
        if (!a.form.empty() && a.flow != ActionFlow::File && a.name != "Register") {
            EXPECT_NE(a.operation, nullptr);
        }
        // Nothing that changes a document may run beside a job.
        if (a.operation) {
            EXPECT_EQ(a.duringJob, DuringJob::Blocked);
        }
    }
    EXPECT_EQ(actionTable().size(), 67u);
}

// A wave that is neither of the enabling table's cases still gets a reason for every
// disabled action.
TEST(ActionRegistry, EveryDisabledActionSaysWhy) {
    TUnitWave empty("NONAME", WaveFileProps{1000, 2, 2});
    ActionContext none, emptyStereo;
    emptyStereo.active.unit = &empty;
    emptyStereo.windowCount = 1;
    for (const ActionContext* c : {&none, &emptyStereo})
        for (const ActionDef& a : actionTable()) {
            const ActionStatus s = actionStatus(a, *c);
            if (!s.enabled) {
                EXPECT_FALSE(s.reason.empty()) << a.name;
            }
        }
    EXPECT_EQ(actionStatus("EditTrim", emptyStereo).reason, "the wave has no samples");
    EXPECT_EQ(actionStatus("DrawWaveLin", emptyStereo).reason,
              "drawing needs an empty mono wave shown as a wave");
    EXPECT_EQ(actionStatus("Balance", none).reason, "no wave window is open");
}

}  // namespace
}  // namespace orv
