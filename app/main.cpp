// orvasto: the desktop program. `orvasto FILE...` opens the given WAV files.
#include <QApplication>
#include <QMdiArea>
#include <QStringList>

#include "app/main_form.h"
#include "app/qt_platform.h"
#include "app/tool_icons.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName("orvasto");
    QApplication::setOrganizationName("Orvasto");
    QApplication::setApplicationDisplayName("Orvasto");
    QApplication::setWindowIcon(orv::programIcon());
    orv::QtPlatform platform;
    orv::PlatformScope scope(platform);

    orv::TMainForm frame;
    frame.show();
    const QStringList files = app.arguments().mid(1);
    if (!files.isEmpty()) frame.openFiles(files);
    // Several waves at start: side by side rather than piled up.
    if (files.size() > 1) frame.mdiArea()->tileSubWindows();
    return app.exec();
}
