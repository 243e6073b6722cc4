// The few services the engine needs from whatever front end runs it: showing a message,
// the debug trace, and what happens when an internal check fails. The desktop program,
// orvasto-cli and the tests each install their own Platform; the default one writes
// messages to stderr and discards the trace.
#pragma once

#include <string_view>

namespace orv {

enum class MessageIcon { Information, Stop };

class Platform {
public:
    virtual ~Platform() = default;
    // A user-visible message box: caption, one sentence of text, an icon.
    virtual void showMessage(std::string_view caption, std::string_view text, MessageIcon icon);
    // Debug trace lines ("in ...", "uit ...", dumps). Discarded unless a front end cares.
    virtual void trace(std::string_view line);
    // Called with the complete assertion text just before the program stops.
    virtual void assertionFailed(std::string_view text);
};

// Installs `p` (not owned) as the process-wide platform; nullptr restores the default.
// Returns the previous one.
Platform* setPlatform(Platform* p);
Platform& platform();

inline void showMessage(std::string_view caption, std::string_view text,
                        MessageIcon icon = MessageIcon::Information) {
    platform().showMessage(caption, text, icon);
}
inline void debugTrace(std::string_view line) { platform().trace(line); }

// Reports "Assertion failed: <expr>, unit <unit>, line <line>" and aborts.
[[noreturn]] void assertFailed(const char* expr, const char* unit, int line);

}  // namespace orv

// An internal check: names the expression, the unit and the line, then stops the program.
// It guards programming errors only; user errors are refused earlier with a message.
#define ORV_ASSERT(expr, unit) \
    ((expr) ? static_cast<void>(0) : ::orv::assertFailed(#expr, unit, __LINE__))
// The same with the expression text given explicitly, where the check is written in other
// words than the text users and tests know it by.
#define ORV_ASSERT_TEXT(cond, text, unit) \
    ((cond) ? static_cast<void>(0) : ::orv::assertFailed(text, unit, __LINE__))
