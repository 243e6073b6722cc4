#include "support/recording_platform.h"

namespace orv::test {

void RecordingPlatform::showMessage(std::string_view caption, std::string_view text,
                                    MessageIcon icon) {
    messages.push_back({std::string(caption), std::string(text), icon});
}

void RecordingPlatform::trace(std::string_view line) { traces.emplace_back(line); }

RecordingPlatformScope::RecordingPlatformScope() : previous_(setPlatform(&recorder)) {}
RecordingPlatformScope::~RecordingPlatformScope() { setPlatform(previous_); }

}  // namespace orv::test
