// The recently opened and saved files, newest first: the only setting kept between runs.
#pragma once

#include <QStringList>

namespace orv {

class RecentFiles {
public:
    static constexpr int kMax = 8;
    QStringList files() const;
    // Puts `file` (an absolute path) first, dropping an older entry of it and the oldest
    // beyond kMax.
    void add(const QString& file);
    void remove(const QString& file);
};

}  // namespace orv
