#include "app/progress_dialog.h"

namespace orv {

QProgressDialog* openProgress(const QString& caption, int maximum, QWidget* window,
                              const char* objectName) {
    auto* dialog = new QProgressDialog(caption, QProgressDialog::tr("Cancel"), 0, maximum, window);
    dialog->setObjectName(objectName);
    dialog->setWindowTitle("Orvasto");
    dialog->setWindowModality(Qt::NonModal);
    dialog->setMinimumDuration(0);
    dialog->setAutoClose(false);
    dialog->setAutoReset(false);
    dialog->show();
    return dialog;
}

void closeProgress(QProgressDialog*& dialog) {
    if (!dialog) return;
    dialog->hide();
    dialog->deleteLater();
    dialog = nullptr;
}

}  // namespace orv
