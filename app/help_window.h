// The built-in help: one page per help context of the dialogs, a contents page, pages on
// the keys, on typing values and on names and envelopes, and help on help. Pages are HTML
// shipped as Qt resources; a dialog's page gets the table of its fields (caption, what to
// type, default) made from the record's field table, so it always lists the fields the
// dialog really has.
#pragma once

#include <vector>

#include <QString>
#include <QStringList>
#include <QWidget>

class QLineEdit;
class QListWidget;
class QTextBrowser;

namespace orv {

struct HelpPage {
    QString id;     // "context-9", "contents", "helponhelp" ...
    QString title;
    QString html;
    QString plain;  // for searching
};

// Every page, contents first.
const std::vector<HelpPage>& helpPages();
// The page of a help context number ("context-<n>"), or nullptr.
const HelpPage* helpPageForContext(int context);
// The ids of the pages whose text holds every word of `words` (any case).
QStringList searchHelp(const QString& words);

class HelpWindow final : public QWidget {
    Q_OBJECT
public:
    explicit HelpWindow(QWidget* parent = nullptr);

    void showContext(int context);
    void showContents();
    void showSearch();
    void showHelpOnHelp();
    void showPage(const QString& id);

    QString currentPage() const { return current_; }
    QTextBrowser* browser() const { return browser_; }
    QLineEdit* searchField() const { return search_; }
    QListWidget* list() const { return list_; }

private:
    void listPages(const QStringList& ids);
    void searchChanged(const QString& text);

    QTextBrowser* browser_;
    QLineEdit* search_;
    QListWidget* list_;
    QString current_;
};

}  // namespace orv
