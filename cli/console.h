// Where orvasto-cli writes to the user: messages as "<caption>: <text>" lines on stderr, and
// on a terminal one progress line that a message first wipes away. Both may come from
// different threads (the worker shows messages, the main thread the progress).
#pragma once

#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>

#include "core/platform.h"

namespace orv::cli {

class Console final : public Platform {
public:
    explicit Console(std::FILE* err = stderr) : err_(err) {}
    void showMessage(std::string_view caption, std::string_view text, MessageIcon icon) override;
    // Replaces the progress line (a terminal only: the caller decides).
    void showProgress(std::string_view line);
    void clearProgress();

private:
    void wipeLocked();
    std::FILE* err_;
    std::mutex mutex_;
    bool progressShown_ = false;
};

// Installs a platform for the lifetime of the scope.
class PlatformScope {
public:
    explicit PlatformScope(Platform& p) : previous_(setPlatform(&p)) {}
    ~PlatformScope() { setPlatform(previous_); }
    PlatformScope(const PlatformScope&) = delete;
    PlatformScope& operator=(const PlatformScope&) = delete;

private:
    Platform* previous_;
};

}  // namespace orv::cli
