#include "core/platform.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace orv {

void Platform::showMessage(std::string_view caption, std::string_view text, MessageIcon) {
    std::fprintf(stderr, "%.*s: %.*s\n", int(caption.size()), caption.data(), int(text.size()),
                 text.data());
}

void Platform::trace(std::string_view) {}

void Platform::assertionFailed(std::string_view text) {
    std::fprintf(stderr, "%.*s\n", int(text.size()), text.data());
}

namespace {
Platform defaultPlatform;
Platform* current = &defaultPlatform;
}  // namespace

Platform* setPlatform(Platform* p) {
    Platform* old = current;
    current = p ? p : &defaultPlatform;
    return old;
}

Platform& platform() { return *current; }

void assertFailed(const char* expr, const char* unit, int line) {
    std::string text = "Assertion failed: ";
    text += expr;
    text += ", unit ";
    text += unit;
    text += ", line ";
    text += std::to_string(line);
    platform().assertionFailed(text);
    std::fflush(stderr);
    std::abort();
}

}  // namespace orv
