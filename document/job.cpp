#include "document/job.h"

#include <algorithm>

#include "core/platform.h"
#include "document/unit_wave.h"
#include "document/workspace.h"

namespace orv {

OperationJob::OperationJob(std::string_view action, TUnitWave& unit, SoundRef source, Plan plan)
    : action_(action),
      unit_(&unit),
      cancel_(unit.sharedCancelFlag()),
      source_(std::move(source)),
      plan_(std::move(plan)),
      bytesBefore_(unit.getBytesPSample()),
      cursorBefore_(unit.getCursor()),
      selEndBefore_(unit.getSelEndPos()),
      expected_(std::max<std::int64_t>(plan_.work, 1)) {}

OperationJob::~OperationJob() {
    if (owner_) owner_->jobGone(this);
}

void OperationJob::cancel() { setCancelled(*cancel_); }

bool OperationJob::cancelled() const { return isCancelled(*cancel_); }

void OperationJob::walked(std::int64_t samples) {
    walked_ += samples;
    if (walked_ < nextReport_) return;
    // About 256 reports over the expected work, none of them the last one.
    nextReport_ = walked_ + std::max<std::int64_t>(expected_ / 256, 1);
    report(std::min(walked_, expected_ - 1));
}

void OperationJob::report(std::int64_t value) {
    if (value <= done_.load(std::memory_order_relaxed) && value != expected_) return;
    done_.store(value, std::memory_order_relaxed);
    if (listener_) listener_(value, expected_);
}

void OperationJob::compute() {
    ORV_ASSERT_TEXT(!computed_.load(), "job computed once", "unitwave");
    ProgressScope counting(this);
    CancelFlag* cancel = cancel_.get();
    std::int32_t begin = plan_.begin, end = plan_.end;
    bool ok = true;
    if (plan_.takePart || plan_.toClipboard) {
        taken_ = source_->CopyRange(cancel, begin, end);
        ok = taken_ && !isCancelled(*cancel);
    }
    if (ok && !plan_.toClipboard) {
        made_ = plan_.compute(*source_, cancel, begin, end);
        // A conversion that changes only the sample width keeps the sound it has.
        ok = (made_ || plan_.bytesPSample != 0) && !isCancelled(*cancel);
    }
    madeBegin_ = begin;
    madeEnd_ = end;
    if (!ok) {
        made_.reset();
        taken_.reset();
    }
    computed_.store(true);
    if (ok) report(expected_);
}

}  // namespace orv
