#include "app/name_edit_filter.h"

#include <QKeyEvent>

namespace orv {

bool NameEditFilter::passes(int key) {
    switch (key) {
        case Qt::Key_End:
        case Qt::Key_Home:
        case Qt::Key_Left:
        case Qt::Key_Up:
        case Qt::Key_Right:
        case Qt::Key_Down:
        case Qt::Key_Insert:
        case Qt::Key_Delete: return true;
        default: return false;
    }
}

bool NameEditFilter::eventFilter(QObject* watched, QEvent* event) {
    // A shortcut fires only when the focused widget does not claim the key first: claiming
    // it here sends the key to the widget as typing instead.
    if (editing_ && event->type() == QEvent::ShortcutOverride &&
        !passes(static_cast<QKeyEvent*>(event)->key())) {
        event->accept();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace orv
