// One prepared command, ready to compute: the plan of an operation together with the sounds
// it pinned and the state of the document it started from. Made by Workspace::prepareAction
// on the user-interface thread, computed on any thread (compute), then handed back to
// Workspace::commit on the user-interface thread. While it computes it reads nothing but
// what it holds, so the documents may change or close meanwhile.
//
// Progress: the job counts the samples its chunked loops walk against the work the plan
// expects. A listener (called on the computing thread) hears the count rise, never beyond
// expected - 1 while the work goes on, and then expected exactly once when the computation
// ends without being cancelled. done() may be read from any thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "core/cancel.h"
#include "core/sound.h"
#include "document/operation.h"

namespace orv {

class TUnitWave;
class Workspace;

class OperationJob final : private ProgressSink {
public:
    using Listener = std::function<void(std::int64_t done, std::int64_t expected)>;

    OperationJob(const OperationJob&) = delete;
    OperationJob& operator=(const OperationJob&) = delete;
    ~OperationJob() override;

    std::string_view action() const { return action_; }
    // The document the job works on; read it on the user-interface thread only.
    TUnitWave* unit() const { return unit_; }

    // Runs the computation on the calling thread; once.
    void compute();
    // Raises the cancel byte (any thread): the computation stops at its next chunk and the
    // commit then changes nothing.
    void cancel();
    bool cancelled() const;
    bool computed() const { return computed_.load(); }

    std::int64_t expected() const { return expected_; }
    std::int64_t done() const { return done_.load(std::memory_order_relaxed); }
    // Set before compute().
    void setListener(Listener listener) { listener_ = std::move(listener); }

private:
    friend class Workspace;
    OperationJob(std::string_view action, TUnitWave& unit, SoundRef source, Plan plan);
    void walked(std::int64_t samples) override;
    void report(std::int64_t value);

    std::string action_;
    Workspace* owner_ = nullptr;  // told when the job goes, so it is no longer "running"
    TUnitWave* unit_;
    std::shared_ptr<CancelFlag> cancel_;
    SoundRef source_;
    Plan plan_;
    // The state the document had when the job was prepared, for the undo record.
    std::uint16_t bytesBefore_;
    std::int32_t cursorBefore_;
    std::int32_t selEndBefore_;
    // The results.
    SoundPtr made_;
    SoundPtr taken_;
    std::int32_t madeBegin_ = 0;
    std::int32_t madeEnd_ = 0;

    std::int64_t expected_;
    std::int64_t walked_ = 0;
    std::int64_t nextReport_ = 0;
    std::atomic<std::int64_t> done_{0};
    std::atomic<bool> computed_{false};
    Listener listener_;
};

}  // namespace orv
