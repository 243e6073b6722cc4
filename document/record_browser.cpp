#include "document/record_browser.h"

namespace orv {

BrowserUpdate browserUpdate(int count, int cursor, bool bufferFull) {
    BrowserUpdate u;
    u.count = count;
    u.cursor = cursor + 1;
    u.canGoBack = cursor > 0;
    u.canGoForward = cursor < count - 1;
    u.canDelete = count >= 2;
    u.canPaste = bufferFull;
    return u;
}

}  // namespace orv
