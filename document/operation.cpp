#include "document/operation.h"

#include <algorithm>

#include "core/platform.h"
#include "document/unit_wave.h"

namespace orv {

PrepareContext::PrepareContext(const TUnitWave& unit, const UnitHost& host, SoundRef clipboard,
                               std::uint16_t clipBytesPSample)
    : unit_(unit),
      host_(host),
      sound_(unit.soundRef()),
      clipboard_(std::move(clipboard)),
      clipBytes_(clipBytesPSample) {}

std::int32_t PrepareContext::freq() const { return unit_.getFreq(); }
std::int32_t PrepareContext::values() const { return unit_.values(); }
std::int32_t PrepareContext::channels() const { return unit_.getMonoStereo(); }
std::uint16_t PrepareContext::bytesPSample() const { return unit_.getBytesPSample(); }
std::int32_t PrepareContext::cursor() const { return unit_.getCursor(); }
std::int32_t PrepareContext::selBegin() const { return unit_.selBegin(); }
std::int32_t PrepareContext::selEnd() const { return unit_.selEnd(); }
bool PrepareContext::hasSelection() const { return unit_.hasSelection(); }
double PrepareContext::lengthSeconds() const { return unit_.lengthSeconds(); }
double PrepareContext::selectionSeconds() const { return unit_.selectionSeconds(); }

void PrepareContext::effectRange(Plan& plan) const {
    plan.begin = selBegin();
    plan.end = selEnd();
}

void PrepareContext::makeRange(Plan& plan) const {
    if (hasSelection()) {
        plan.begin = selBegin();
        plan.end = selEnd();
    } else {
        plan.begin = plan.end = cursor();
    }
}

SoundRef PrepareContext::pin(const std::string& name) const {
    SoundRef found = host_.soundByName(name);
    ORV_ASSERT_TEXT(found != nullptr, "envelope != NULL", "unitwave");
    return found;
}

double PrepareContext::secondsOf(const std::string& name) const {
    return double(pin(name)->GetTime());
}

void PrepareContext::refuse(std::string_view caption, std::string_view text) {
    FormError e;
    e.caption = std::string(caption);
    e.message = std::string(text);
    refusal_ = std::move(e);
}

std::int64_t workOf(std::int64_t samples, std::int32_t channels) {
    return std::max<std::int64_t>(samples * std::max(channels, 1), 1);
}

}  // namespace orv
