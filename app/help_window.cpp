#include "app/help_window.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QRegularExpression>
#include <QSplitter>
#include <QTextBrowser>
#include <QTextDocument>
#include <QVBoxLayout>

#include "document/file_props_record.h"
#include "document/record_form.h"
#include "document/records.h"
#include "document/register_check.h"
#include "document/workspace.h"

namespace orv {

namespace {


// What to type into a field of a kind, with an example.
QString kindHelp(const FieldDef& d) {
    switch (d.kind) {
        case FieldKind::Factor: return "a number, or a percentage: <i>0.5</i> or <i>50 %</i>";
        case FieldKind::VolumeFactor:
            return "a factor, a percentage or decibels: <i>0.5</i>, <i>50 %</i> or <i>-6 dB</i>";
        case FieldKind::Phase:
            return "a part of one period, as a fraction, a percentage or in degrees: "
                   "<i>0.25</i>, <i>25 %</i> or <i>90'</i>";
        case FieldKind::Balance:
            return "from -1 (left) to 1 (right), or an angle from -90' to 90': <i>-0.5</i> or "
                   "<i>-45'</i>";
        case FieldKind::Count: return "a whole number: <i>20</i>";
        case FieldKind::Integer: return "a whole number, also negative: <i>1234</i>";
        case FieldKind::Time:
            return "a time in seconds or milliseconds, or a frequency in hertz, kilohertz or as "
                   "a note (its period): <i>0.5 s</i>, <i>10 ms</i>, <i>440 Hz</i>, "
                   "<i>1 kHz</i>, <i>A4</i>";
        case FieldKind::WaveValue:
            return "a sample value: from -1 to 1, a percentage, or a raw value after $: "
                   "<i>0.5</i>, <i>50 %</i>, <i>16383 $</i>";
        case FieldKind::Position:
            return "a time from the start of the wave, before its end: <i>1.5 s</i>, "
                   "<i>200 ms</i>";
        case FieldKind::WaveName: return "a registered wave, chosen in the list";
        case FieldKind::Option:
        case FieldKind::Choice: {
            QStringList c;
            for (std::string_view s : d.choices) c << QString::fromStdString(plainCaption(s));
            return "one of: " + c.join(", ");
        }
        case FieldKind::Preset: return "an example that fills in the fields above";
        case FieldKind::Flag: return "on or off";
        case FieldKind::Text: return "any text";
        case FieldKind::Colour: return "a colour as #RRGGBB: <i>#008080</i> is teal";
    }
    return {};
}

QString defaultText(const FieldDef& d) {
    if (isReadKind(d.kind))
        return QString::fromStdString(
            writeValueText(d.kind, ValueRecord{d.defUnit, d.signCheck, d.defValue}));
    if ((d.kind == FieldKind::Option || d.kind == FieldKind::Choice) && !d.choices.empty()) {
        std::size_t index = std::size_t(d.defValue);
        if (d.kind == FieldKind::Choice)
            for (std::size_t c = 0; c < d.choiceValues.size(); ++c)
                if (d.choiceValues[c] == std::int32_t(d.defValue)) index = c;
        if (index < d.choices.size()) return QString::fromStdString(plainCaption(d.choices[index]));
    }
    if (d.kind == FieldKind::Flag) return d.defValue != 0 ? "on" : "off";
    return {};
}

QString fieldTable(const FormSpec& spec) {
    QString html = "<table border=\"1\" cellspacing=\"0\" cellpadding=\"4\">"
                   "<tr><th>Field</th><th>What to give</th><th>Starts at</th></tr>";
    for (const FieldDef& d : spec.fields) {
        html += "<tr><td>" + QString::fromStdString(plainCaption(d.caption)).toHtmlEscaped() +
                "</td><td>" + kindHelp(d) + "</td><td>" + defaultText(d).toHtmlEscaped() +
                "</td></tr>";
    }
    return html + "</table>";
}

// The forms whose fields a page lists, by help context.
std::vector<const FormSpec*> formsOfContext(int context) {
    // The operations' forms as the actions show them, over a wave made for the purpose.
    std::vector<const FormSpec*> all;
    {
        Workspace workspace;
        workspace.newWave(WaveFileProps{44100, 1, 2});
        for (const ActionDef& def : actionTable())
            if (std::unique_ptr<FormView> form = workspace.actionForm(def.name))
                all.push_back(&form->spec());
    }
    all.push_back(&FrequencyRecord::table());
    all.push_back(&WaveFilePropsRecord::table());
    all.push_back(&RegisterRecord::table());
    std::vector<const FormSpec*> out;
    for (const FormSpec* spec : all)
        if (spec->helpContext == context &&
            std::find(out.begin(), out.end(), spec) == out.end())
            out.push_back(spec);
    return out;
}

std::vector<HelpPage> loadPages() {
    std::vector<HelpPage> pages;
    QDirIterator it(":/help", {"*.html"});
    QStringList files;
    while (it.hasNext()) files << it.next();
    files.sort();
    static const QRegularExpression titleRe("<title>(.*)</title>");
    static const QRegularExpression contextRe("context-(\\d+)");
    for (const QString& file : files) {
        QFile f(file);
        if (!f.open(QIODevice::ReadOnly)) continue;
        HelpPage page;
        page.id = QFileInfo(file).completeBaseName();
        page.html = QString::fromUtf8(f.readAll());
        const auto m = titleRe.match(page.html);
        page.title = m.hasMatch() ? m.captured(1) : page.id;
        const auto c = contextRe.match(page.id);
        if (c.hasMatch() && page.html.contains("<!-- fields -->")) {
            QString tables;
            for (const FormSpec* spec : formsOfContext(c.captured(1).toInt())) {
                if (spec->caption == "Frequency") tables += "<h3>Each frequency</h3>";
                tables += fieldTable(*spec);
            }
            page.html.replace("<!-- fields -->", tables);
        }
        QTextDocument doc;
        doc.setHtml(page.html);
        page.plain = doc.toPlainText();
        pages.push_back(std::move(page));
    }
    // Contents first, the rest by title.
    std::stable_sort(pages.begin(), pages.end(), [](const HelpPage& a, const HelpPage& b) {
        if ((a.id == "contents") != (b.id == "contents")) return a.id == "contents";
        return a.title.localeAwareCompare(b.title) < 0;
    });
    return pages;
}

}  // namespace

const std::vector<HelpPage>& helpPages() {
    static const std::vector<HelpPage> pages = loadPages();
    return pages;
}

const HelpPage* helpPageForContext(int context) {
    const QString id = QString("context-%1").arg(context);
    for (const HelpPage& p : helpPages())
        if (p.id == id) return &p;
    return nullptr;
}

QStringList searchHelp(const QString& words) {
    const QStringList wanted = words.split(' ', Qt::SkipEmptyParts);
    QStringList ids;
    if (wanted.isEmpty()) return ids;
    for (const HelpPage& p : helpPages()) {
        const bool all = std::all_of(wanted.begin(), wanted.end(), [&](const QString& w) {
            return p.plain.contains(w, Qt::CaseInsensitive);
        });
        if (all) ids << p.id;
    }
    return ids;
}

HelpWindow::HelpWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
    setObjectName("HelpWindow");
    setWindowTitle("Orvasto Help");
    setAttribute(Qt::WA_DeleteOnClose);
    auto* split = new QSplitter(this);
    auto* side = new QWidget(split);
    auto* sideLayout = new QVBoxLayout(side);
    sideLayout->setContentsMargins(0, 0, 0, 0);
    search_ = new QLineEdit(side);
    search_->setObjectName("editSearch");
    search_->setPlaceholderText("Search the help");
    search_->setClearButtonEnabled(true);
    list_ = new QListWidget(side);
    list_->setObjectName("lstPages");
    sideLayout->addWidget(search_);
    sideLayout->addWidget(list_);
    browser_ = new QTextBrowser(split);
    browser_->setObjectName("Browser");
    browser_->setOpenLinks(false);
    split->addWidget(side);
    split->addWidget(browser_);
    split->setStretchFactor(1, 1);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(split);
    resize(860, 600);

    connect(search_, &QLineEdit::textChanged, this, &HelpWindow::searchChanged);
    connect(list_, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { showPage(item->data(Qt::UserRole).toString()); });
    connect(list_, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { showPage(item->data(Qt::UserRole).toString()); });
    connect(browser_, &QTextBrowser::anchorClicked, this, [this](const QUrl& url) {
        QString id = url.path();
        if (id.endsWith(".html")) id.chop(5);
        showPage(id);
    });
    QStringList all;
    for (const HelpPage& p : helpPages()) all << p.id;
    listPages(all);
}

void HelpWindow::listPages(const QStringList& ids) {
    list_->clear();
    for (const HelpPage& p : helpPages()) {
        if (!ids.contains(p.id)) continue;
        auto* item = new QListWidgetItem(p.title, list_);
        item->setData(Qt::UserRole, p.id);
    }
}

void HelpWindow::searchChanged(const QString& text) {
    if (text.trimmed().isEmpty()) {
        QStringList all;
        for (const HelpPage& p : helpPages()) all << p.id;
        listPages(all);
        return;
    }
    listPages(searchHelp(text));
}

void HelpWindow::showPage(const QString& id) {
    for (const HelpPage& p : helpPages()) {
        if (p.id != id) continue;
        browser_->setHtml(p.html);
        current_ = id;
        setWindowTitle("Orvasto Help - " + p.title);
        show();
        raise();
        activateWindow();
        return;
    }
}

void HelpWindow::showContext(int context) {
    if (helpPageForContext(context))
        showPage(QString("context-%1").arg(context));
    else
        showContents();
}

void HelpWindow::showContents() { showPage("contents"); }

void HelpWindow::showSearch() {
    showContents();
    search_->setFocus();
    search_->selectAll();
}

void HelpWindow::showHelpOnHelp() { showPage("helponhelp"); }

}  // namespace orv
