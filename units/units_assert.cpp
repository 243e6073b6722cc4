#include "units/units_assert.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace orv {

namespace {
void toStderr(std::string_view text) {
    std::fprintf(stderr, "%.*s\n", int(text.size()), text.data());
}
UnitsAssertHandler handler = &toStderr;
}  // namespace

UnitsAssertHandler setUnitsAssertHandler(UnitsAssertHandler h) {
    UnitsAssertHandler old = handler;
    handler = h ? h : &toStderr;
    return old;
}

void unitsAssertFailed(const char* expr, const char* unit, int line) {
    std::string text = "Assertion failed: ";
    text += expr;
    text += ", unit ";
    text += unit;
    text += ", line ";
    text += std::to_string(line);
    handler(text);
    std::fflush(stderr);
    std::abort();
}

}  // namespace orv
