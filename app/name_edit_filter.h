// While a name is typed into the tool bar's name field, single keys must not fire the
// one-key shortcuts (P plays, V opens Volume ...): this application-wide filter claims every
// key for the focused widget, except the navigation and editing keys End, Home, the arrows,
// Insert and Delete, which pass on normally.
#pragma once

#include <QObject>

namespace orv {

class NameEditFilter final : public QObject {
    Q_OBJECT
public:
    // `editing` is the frame's name-edit flag; it must outlive the filter.
    explicit NameEditFilter(const bool& editing, QObject* parent = nullptr)
        : QObject(parent), editing_(editing) {}

    // Whether the key passes on normally while a name is typed.
    static bool passes(int key);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const bool& editing_;
};

}  // namespace orv
