// The engine's services in the desktop program: messages in message boxes (information or
// critical icon, the caption and sentence exactly as the engine gives them), the debug trace
// on stderr when ORVASTO_TRACE is set, and a failed internal check shown in a critical box
// before the program stops.
#pragma once

#include "core/platform.h"

namespace orv {

class QtPlatform final : public Platform {
public:
    void showMessage(std::string_view caption, std::string_view text, MessageIcon icon) override;
    void trace(std::string_view line) override;
    void assertionFailed(std::string_view text) override;
};

// Installs a platform for the lifetime of the scope and puts the previous one back.
class PlatformScope {
public:
    explicit PlatformScope(Platform& platform) : previous_(setPlatform(&platform)) {}
    ~PlatformScope() { setPlatform(previous_); }
    PlatformScope(const PlatformScope&) = delete;
    PlatformScope& operator=(const PlatformScope&) = delete;

private:
    Platform* previous_;
};

}  // namespace orv
