#include "cli/console.h"

namespace orv::cli {

void Console::wipeLocked() {
    if (!progressShown_) return;
    std::fputs("\r\033[K", err_);
    progressShown_ = false;
}

void Console::showMessage(std::string_view caption, std::string_view text, MessageIcon) {
    std::lock_guard lock(mutex_);
    wipeLocked();
    if (caption.empty())  // a line of detail under the message before it
        std::fprintf(err_, "%.*s\n", int(text.size()), text.data());
    else
        std::fprintf(err_, "%.*s: %.*s\n", int(caption.size()), caption.data(),
                     int(text.size()), text.data());
    std::fflush(err_);
}

void Console::showProgress(std::string_view line) {
    std::lock_guard lock(mutex_);
    std::fprintf(err_, "\r\033[K%.*s", int(line.size()), line.data());
    std::fflush(err_);
    progressShown_ = true;
}

void Console::clearProgress() {
    std::lock_guard lock(mutex_);
    wipeLocked();
    std::fflush(err_);
}

}  // namespace orv::cli
