// A Platform for tests: remembers every message and trace line so tests can compare the
// texts word for word. Install with a RecordingPlatformScope.
#pragma once

#include <string>
#include <vector>

#include "core/platform.h"

namespace orv::test {

struct ShownMessage {
    std::string caption;
    std::string text;
    MessageIcon icon;
};

class RecordingPlatform : public Platform {
public:
    void showMessage(std::string_view caption, std::string_view text, MessageIcon icon) override;
    void trace(std::string_view line) override;
    std::vector<ShownMessage> messages;
    std::vector<std::string> traces;
};

// Installs a RecordingPlatform for the lifetime of the scope.
class RecordingPlatformScope {
public:
    RecordingPlatformScope();
    ~RecordingPlatformScope();
    RecordingPlatformScope(const RecordingPlatformScope&) = delete;
    RecordingPlatformScope& operator=(const RecordingPlatformScope&) = delete;
    RecordingPlatform recorder;

private:
    Platform* previous_;
};

}  // namespace orv::test
