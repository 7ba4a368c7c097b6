#include "importdialog.h"

#include "fileactions.h"

#include "interchange/csv.h"
#include "look/alert.h"
#include "look/buttons.h"
#include "look/fwui.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

QString stateText(Import::RowState s)
{
    switch (s) {
    case Import::RowState::New: return u"New"_s;
    case Import::RowState::Updated: return u"Updated"_s;
    case Import::RowState::Unchanged: return u"Unchanged"_s;
    case Import::RowState::Bad: return u"Bad"_s;
    }
    return QString();
}

QString kindLabel(const QString &kind)
{
    QString n = Import::noun(kind);
    n[0] = n.at(0).toUpper();
    return n;
}

} // namespace

ImportDialog::ImportDialog(DB &db, const QString &path, QWidget *parent)
    : QDialog(parent)
    , m_db(db)
    , m_path(path)
{
    const FWUI &ui = FWUI::shared();
    setWindowTitle(u"Import"_s);
    setWindowModality(Qt::WindowModal);
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(ui.px(22), ui.px(20), ui.px(22), ui.px(18));
    box->setSpacing(ui.px(10));
    auto *title = new QLabel(u"Import "_s + QFileInfo(path).fileName(), this);
    title->setFont(ui.font(18, QFont::Bold));
    box->addWidget(title);
    m_summary = new QLabel(this);
    m_summary->setObjectName(u"summary"_s);
    m_summary->setWordWrap(true);
    m_summary->setFont(ui.font(12.5));
    m_summary->setTextInteractionFlags(Qt::TextSelectableByMouse);
    box->addWidget(m_summary);
    m_tabs = new QTabWidget(this);
    box->addWidget(m_tabs, 1);
    m_skipBad = new QCheckBox(u"Import the good rows, and save the bad ones beside the file to fix"_s, this);
    m_skipBad->setObjectName(u"skipBad"_s);
    m_skipBad->setFont(ui.font(12.5));
    box->addWidget(m_skipBad);
    auto *buttons = new QHBoxLayout;
    auto *note = new QLabel(
        u"A snapshot is taken first; Edit \u25B8 Undo Import takes the whole import back."_s, this);
    note->setFont(ui.font(11.5));
    buttons->addWidget(note, 1);
    auto *cancel = new FWChromeButton(u"Cancel"_s, {}, this);
    m_import = new FWChromeButton(u"Import"_s, {}, this);
    m_import->setObjectName(u"confirm"_s);
    m_import->setProminent(true);
    buttons->addWidget(cancel);
    buttons->addWidget(m_import);
    box->addLayout(buttons);
    connect(cancel, &QAbstractButton::clicked, this, &QDialog::reject);
    connect(m_import, &QAbstractButton::clicked, this, [this] {
        if (importNow())
            accept();
    });
    connect(m_skipBad, &QCheckBox::toggled, this, [this] { replan(); });
    setMinimumSize(ui.px(860), ui.px(560));

    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const Import::Source source = Import::read(path);
    m_readError = source.error;
    m_sheets = Import::sheets(source.tables);
    QGuiApplication::restoreOverrideCursor();
    replan();
}

void ImportDialog::replan()
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    m_plan = Import::plan(m_db, m_sheets);
    m_sheets = m_plan.sheets; // the plan's order, which its rows refer to
    QGuiApplication::restoreOverrideCursor();
    QStringList lines = m_plan.summary();
    const bool bad = m_plan.anyBad();
    if (bad)
        lines.append(
            m_skipBad->isChecked()
                ? u"The bad rows are left out and saved to a file to fix."_s
                : u"Nothing is imported while a row is bad: fix the file, or import the good rows alone."_s);
    m_summary->setText(lines.join(u'\n'));
    const int current = m_tabs->currentIndex();
    while (m_tabs->count() > 0) {
        QWidget *page = m_tabs->widget(0);
        m_tabs->removeTab(0);
        page->deleteLater();
    }
    for (int k = 0; k < m_sheets.size(); ++k)
        fillSheet(k);
    if (current >= 0 && current < m_tabs->count())
        m_tabs->setCurrentIndex(current);
    bool anything = false;
    for (const Import::PlanRow &row : m_plan.rows)
        anything = anything || (row.state != Import::RowState::Bad && !row.saves.isEmpty());
    m_skipBad->setVisible(bad);
    const bool ready = anything && (!bad || m_skipBad->isChecked());
    m_import->setEnabled(ready);
    m_import->setProminent(ready); // a prominent button looks the same disabled
}

void ImportDialog::fillSheet(int index)
{
    const FWUI &ui = FWUI::shared();
    const Import::Sheet &sheet = m_sheets.at(index);
    auto *page = new QWidget;
    auto *box = new QVBoxLayout(page);
    box->setContentsMargins(ui.px(10), ui.px(10), ui.px(10), ui.px(10));
    auto *kindRow = new QHBoxLayout;
    kindRow->addWidget(new QLabel(u"Import as"_s, page));
    auto *kind = new QComboBox(page);
    kind->setObjectName(u"kind"_s);
    if (sheet.storedForm) {
        kind->addItem(kindLabel(sheet.kind) + u" (from the CSV export)"_s, sheet.kind);
        kind->setEnabled(false);
    } else {
        for (const QString &k : Import::listKinds())
            kind->addItem(kindLabel(k), k);
        kind->addItem(u"Not imported"_s, QString());
        kind->setCurrentIndex(kind->findData(sheet.kind));
        connect(kind, &QComboBox::activated, this, [this, index, kind] {
            const QString k = kind->currentData().toString();
            QTimer::singleShot(0, this, [this, index, k] { setKind(index, k); });
        });
    }
    kindRow->addWidget(kind);
    kindRow->addStretch(1);
    box->addLayout(kindRow);

    if (!sheet.storedForm && !sheet.kind.isEmpty()) {
        auto *columns = new QTreeWidget(page);
        columns->setObjectName(u"columns"_s);
        columns->setRootIsDecorated(false);
        columns->setHeaderLabels({u"Column in the file"_s, u"Fills"_s});
        columns->header()->setSectionResizeMode(0, QHeaderView::Stretch);
        columns->setMaximumHeight(ui.px(150));
        const QList<std::pair<QString, QString>> targets = Import::targets(sheet.kind);
        for (int c = 0; c < sheet.table.header.size(); ++c) {
            auto *item = new QTreeWidgetItem(columns, {sheet.table.header.at(c)});
            auto *pick = new QComboBox;
            pick->addItem(u"\u2014 not imported \u2014"_s, QString());
            for (const auto &[key, label] : targets)
                pick->addItem(label, key);
            pick->setCurrentIndex(std::max(0, pick->findData(sheet.columns.value(c))));
            connect(pick, &QComboBox::activated, this, [this, index, c, pick] {
                const QString key = pick->currentData().toString();
                QTimer::singleShot(0, this, [this, index, c, key] { setColumn(index, c, key); });
            });
            columns->setItemWidget(item, 1, pick);
        }
        box->addWidget(columns);
    }

    auto *rows = new QTreeWidget(page);
    rows->setObjectName(u"rows"_s);
    rows->setRootIsDecorated(false);
    rows->setUniformRowHeights(true);
    rows->setHeaderLabels({u"Line"_s, u"State"_s, u"What"_s, u"Problem"_s});
    rows->header()->setSectionResizeMode(3, QHeaderView::Stretch);
    const QColor badText(0xFF, 0x3B, 0x30); // the red of the status pills
    for (const Import::PlanRow &row : m_plan.rows) {
        if (row.sheet != index)
            continue;
        QString problem = row.error;
        if (!problem.isEmpty())
            problem = problem.section(u": "_s, 1); // the file and line are in the columns already
        auto *item =
            new QTreeWidgetItem(rows, {QString::number(row.line), stateText(row.state), row.title, problem});
        item->setTextAlignment(0, Qt::AlignRight | Qt::AlignVCenter);
        if (row.state == Import::RowState::Bad) {
            QFont f = item->font(1);
            f.setBold(true);
            item->setFont(1, f);
            item->setForeground(1, badText);
            item->setToolTip(3, row.error);
        }
    }
    rows->resizeColumnToContents(0);
    rows->resizeColumnToContents(1);
    rows->setColumnWidth(2, ui.px(240));
    box->addWidget(rows, 1);

    const QString name = sheet.table.section.isEmpty()
                             ? sheet.table.file
                             : sheet.table.file + u" \u25B8 "_s + sheet.table.section;
    int bad = 0;
    for (const Import::PlanRow &row : m_plan.rows)
        bad += row.sheet == index && row.state == Import::RowState::Bad;
    m_tabs->addTab(page, bad > 0 ? name + u" (" + QString::number(bad) + u" bad)" : name);
    if (!sheet.skipped.isEmpty())
        box->insertWidget(0, new QLabel(sheet.skipped, page));
}

void ImportDialog::setColumn(int sheet, int column, const QString &key)
{
    if (sheet < 0 || sheet >= m_sheets.size() || column < 0 || column >= m_sheets[sheet].columns.size())
        return;
    m_sheets[sheet].columns[column] = key;
    replan();
}

void ImportDialog::setKind(int sheet, const QString &kind)
{
    if (sheet < 0 || sheet >= m_sheets.size())
        return;
    Import::Sheet &s = m_sheets[sheet];
    s.kind = kind;
    s.skipped = kind.isEmpty() ? s.table.file + u": not imported"_s : QString();
    if (kind == Import::ListKind::contact && s.contactType.isEmpty())
        s.contactType = u"Other"_s;
    Import::matchColumns(s);
    replan();
}

bool ImportDialog::importNow()
{
    const bool skip = m_skipBad->isChecked();
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const Import::Outcome outcome = Import::write(m_db, m_plan, skip);
    QGuiApplication::restoreOverrideCursor();
    if (!outcome.ok) {
        FWAlert::show(this, u"Nothing Was Imported"_s, outcome.error);
        return false;
    }
    if (!outcome.undo.isEmpty())
        lastImport() = outcome.undo;
    if (skip && m_plan.anyBad()) {
        const QFileInfo info(m_path);
        const QDir dir(info.isDir() ? info.absoluteFilePath() : info.absolutePath());
        QStringList saved;
        for (const auto &[name, text] : m_plan.badRowFiles()) {
            const QString error = ExportFile::write(dir.filePath(name), text);
            saved.append(error.isEmpty() ? QDir::toNativeSeparators(dir.filePath(name)) : error);
        }
        FWAlert::show(this, u"Bad Rows Saved"_s,
                      u"The good rows are imported. The bad ones are in:\n"_s + saved.join(u'\n'));
    }
    return true;
}

Import::Undo &ImportDialog::lastImport()
{
    static Import::Undo undo;
    return undo;
}

void ImportDialog::run(QWidget *parent, DB &db, const QString &path)
{
    ImportDialog dialog(db, path, parent);
    if (!dialog.readError().isEmpty()) {
        FWAlert::show(parent, u"Cannot Import"_s, dialog.readError());
        return;
    }
    dialog.exec();
}

void ImportDialog::chooseAndRun(QWidget *parent, DB &db, bool folder)
{
    QString path;
    if (folder)
        path = QFileDialog::getExistingDirectory(parent, u"Import a CSV Export Folder"_s, QDir::homePath());
    else {
        const QString title = u"Import"_s;
        const QString filter = u"Lists (*.csv *.txt *.iif *.xlsx)"_s;
        path = FileActions::openFileHook()
                   ? FileActions::openFileHook()(parent, title, filter)
                   : QFileDialog::getOpenFileName(parent, title, QDir::homePath(), filter);
    }
    if (!path.isEmpty())
        run(parent, db, path);
}

void ImportDialog::saveTemplate(QWidget *parent)
{
    const QString title = u"Save Open-Jobs Template"_s;
    const QString filter = u"CSV (*.csv)"_s;
    const QString suggested = QDir(QDir::homePath()).filePath(u"open jobs.csv"_s);
    const QString path = FileActions::saveFileHook()
                             ? FileActions::saveFileHook()(parent, title, suggested)
                             : QFileDialog::getSaveFileName(parent, title, suggested, filter);
    if (path.isEmpty())
        return;
    const QString error = ExportFile::write(path, Import::openJobsTemplate());
    if (!error.isEmpty())
        FWAlert::show(parent, u"Template Not Saved"_s, error);
}

QString ImportDialog::droppedPath(const QMimeData *mime)
{
    if (!mime || mime->urls().size() != 1 || !mime->urls().first().isLocalFile())
        return QString();
    const QFileInfo info(mime->urls().first().toLocalFile());
    static const QStringList suffixes{u"csv"_s, u"txt"_s, u"iif"_s, u"xlsx"_s};
    if (info.isDir() || (info.isFile() && suffixes.contains(info.suffix().toLower())))
        return info.absoluteFilePath();
    return QString();
}

void ImportDialog::undoLast(QWidget *parent, DB &db)
{
    QString why;
    if (Import::undo(db, lastImport(), &why))
        lastImport() = Import::Undo();
    else
        FWAlert::show(parent, u"Cannot Undo Import"_s, why);
}
