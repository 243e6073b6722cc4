// The progress dialog of long work (a job, an import): not modal, so the other windows stay
// there to be looked at, with Cancel; shown at once when made, closed with closeProgress.
#pragma once

#include <QProgressDialog>

namespace orv {

// `maximum` 0 shows a bar that only says that work goes on.
QProgressDialog* openProgress(const QString& caption, int maximum, QWidget* window,
                              const char* objectName);
// Hides and deletes `dialog` (if any) and sets it to null.
void closeProgress(QProgressDialog*& dialog);

}  // namespace orv
