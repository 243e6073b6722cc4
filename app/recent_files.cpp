#include "app/recent_files.h"

#include <QFileInfo>
#include <QSettings>

namespace orv {

namespace {
constexpr char kKey[] = "recentFiles";
}

QStringList RecentFiles::files() const { return QSettings().value(kKey).toStringList(); }

void RecentFiles::add(const QString& file) {
    const QString path = QFileInfo(file).absoluteFilePath();
    QStringList list = files();
    list.removeAll(path);
    list.prepend(path);
    while (list.size() > kMax) list.removeLast();
    QSettings().setValue(kKey, list);
}

void RecentFiles::remove(const QString& file) {
    QStringList list = files();
    list.removeAll(file);
    QSettings().setValue(kKey, list);
}

}  // namespace orv
