// Internal checks of the units layer. The layer may not use the engine's platform services,
// so it has its own small report hook: by default the text goes to stderr; a front end that
// wants the assertion in its own place (a message box, a test recorder) installs a handler.
// The text has the same shape as everywhere else:
// "Assertion failed: <expr>, unit <unit>, line <line>".
#pragma once

#include <string_view>

namespace orv {

using UnitsAssertHandler = void (*)(std::string_view text);

// Installs `h` (nullptr restores the default) and returns the previous handler.
UnitsAssertHandler setUnitsAssertHandler(UnitsAssertHandler h);

// Reports the failed check through the handler, then aborts.
[[noreturn]] void unitsAssertFailed(const char* expr, const char* unit, int line);

}  // namespace orv

#define ORV_UNITS_ASSERT(expr, unit) \
    ((expr) ? static_cast<void>(0) : ::orv::unitsAssertFailed(#expr, unit, __LINE__))
