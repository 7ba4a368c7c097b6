#include "snapshotdialog.h"

#include "calc/datefmt.h"
#include "calc/fmt.h"
#include "look/alert.h"
#include "look/buttons.h"
#include "look/fwui.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

QString takenText(const QDateTime &taken)
{
    return DateFmt::nice(taken.date()) + u", "_s + taken.toString(u"h:mm AP"_s);
}

QString plural(qint64 n, const QString &one)
{
    return QString::number(n) + u' ' + one + (n == 1 ? QString() : u"s"_s);
}

} // namespace

SnapshotDialog::SnapshotDialog(const QString &dataFolder, QWidget *parent)
    : QDialog(parent)
    , m_dataFolder(dataFolder)
{
    const FWUI &ui = FWUI::shared();
    setWindowTitle(u"Restore From Snapshot"_s);
    setWindowModality(Qt::WindowModal);
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(ui.px(22), ui.px(20), ui.px(22), ui.px(18));
    box->setSpacing(ui.px(12));
    auto *title = new QLabel(u"Restore From Snapshot"_s, this);
    title->setFont(ui.font(18, QFont::Bold));
    box->addWidget(title);

    {
        // Reading each snapshot's database takes a moment on years of data.
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        m_snapshots = Snapshots::list(dataFolder);
        QGuiApplication::restoreOverrideCursor();
    }
    auto *text = new QLabel(this);
    text->setWordWrap(true);
    text->setFont(ui.font(12.5));
    text->setText(
        m_snapshots.isEmpty()
            ? u"There are no snapshots yet. Trestle takes one each day it starts, in "_s +
                  QDir::toNativeSeparators(Snapshots::folder(dataFolder)) + u'.'
            : u"Trestle takes a snapshot of all data each day it starts. Choose the one to go back to; "
              u"the data you have now is kept beside it."_s);
    box->addWidget(text);

    m_list = new QTreeWidget(this);
    m_list->setObjectName(u"snapshots"_s);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setFont(ui.font(12.5));
    m_list->setHeaderLabels({u"Taken"_s, u"Age"_s, u"Records"_s});
    m_list->headerItem()->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
    m_list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    m_list->header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    const QDateTime now = QDateTime::currentDateTime();
    for (const Snapshots::Info &s : std::as_const(m_snapshots)) {
        auto *item =
            new QTreeWidgetItem(m_list, {takenText(s.taken), age(s.taken, now), Fmt::qty(double(s.records))});
        item->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
        item->setToolTip(0, QDir::toNativeSeparators(s.path));
    }
    m_list->setVisible(!m_snapshots.isEmpty());
    box->addWidget(m_list, 1);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    auto *cancel = new FWChromeButton(u"Cancel"_s, {}, this);
    m_restore = new FWChromeButton(u"Restore…"_s, {}, this);
    m_restore->setObjectName(u"confirm"_s);
    m_restore->setProminent(true);
    m_restore->setEnabled(false);
    buttons->addWidget(cancel);
    buttons->addWidget(m_restore);
    box->addLayout(buttons);
    connect(cancel, &QAbstractButton::clicked, this, &QDialog::reject);
    connect(m_restore, &QAbstractButton::clicked, this, &SnapshotDialog::confirm);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this,
            [this] { m_restore->setEnabled(!m_list->selectedItems().isEmpty()); });
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, &SnapshotDialog::confirm);
    setMinimumSize(ui.px(520), ui.px(m_snapshots.isEmpty() ? 200 : 380));
}

QString SnapshotDialog::chosen() const
{
    const QList<QTreeWidgetItem *> picked = m_list->selectedItems();
    if (picked.isEmpty())
        return {};
    const int row = m_list->indexOfTopLevelItem(picked.first());
    return row >= 0 && row < m_snapshots.size() ? m_snapshots.at(row).path : QString();
}

int SnapshotDialog::count() const
{
    return int(m_snapshots.size());
}

QString SnapshotDialog::age(const QDateTime &taken, const QDateTime &now)
{
    const qint64 days = taken.date().daysTo(now.date());
    if (days <= 0)
        return u"today"_s;
    if (days == 1)
        return u"yesterday"_s;
    if (days < 14)
        return plural(days, u"day"_s) + u" ago"_s;
    if (days < 60)
        return plural(days / 7, u"week"_s) + u" ago"_s;
    int months = (now.date().year() - taken.date().year()) * 12 + now.date().month() - taken.date().month();
    if (now.date().day() < taken.date().day())
        --months;
    if (months < 24)
        return plural(months, u"month"_s) + u" ago"_s;
    return plural(months / 12, u"year"_s) + u" ago"_s;
}

void SnapshotDialog::confirm()
{
    const QList<QTreeWidgetItem *> picked = m_list->selectedItems();
    if (picked.isEmpty())
        return;
    if (SnapshotActions::askAndRestore(this, m_snapshots.at(m_list->indexOfTopLevelItem(picked.first())),
                                       m_dataFolder))
        accept();
}

namespace SnapshotActions {

bool askAndRestore(QWidget *parent, const Snapshots::Info &snapshot, const QString &dataFolder)
{
    QMessageBox ask(QMessageBox::Warning, u"Restore from a snapshot?"_s, u"Restore from a snapshot?"_s,
                    QMessageBox::NoButton, parent);
    ask.setInformativeText(
        u"This replaces ALL companies and data on this computer with the snapshot of "_s +
        takenText(snapshot.taken) +
        u". The data there now is kept aside. The app quits when it's done; open it again."_s);
    QPushButton *go = ask.addButton(u"Restore"_s, QMessageBox::AcceptRole);
    ask.addButton(u"Cancel"_s, QMessageBox::RejectRole);
    ask.exec();
    if (ask.clickedButton() != go)
        return false;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const Backup::Result result = Snapshots::restore(snapshot.path, dataFolder);
    QGuiApplication::restoreOverrideCursor();
    if (!result.ok) {
        FWAlert::show(parent, result.title.isEmpty() ? u"Restore failed"_s : result.title, result.message);
        return false;
    }
    // The store still points at the folder that was moved aside: nothing may be written now.
    QApplication::exit(0);
    return true;
}

void restore(QWidget *parent, DB &db)
{
    if (db.inMemory())
        return;
    SnapshotDialog dialog(QFileInfo(db.filesRoot()).absolutePath(), parent);
    dialog.exec();
}

void startOfDay(DB &db, const std::function<void(const Backup::Result &, const QString &)> &done)
{
    // A damaged or unopened store is the recovery screen's business; copying it helps nobody.
    if (db.inMemory() || !db.isOpen())
        return;
    const QString folder = QFileInfo(db.filesRoot()).absolutePath();
    if (!Snapshots::due(folder, db.size(), QDateTime::currentDateTime()))
        return;
    Snapshots::makeInBackground(db, [done](const Backup::Result &r, const QString &path) {
        if (done) {
            done(r, path);
            return;
        }
        if (r.ok)
            return;
        // Not modal: the user is at work by now, and the data itself is fine.
        auto *box = new QMessageBox(QMessageBox::Warning, r.title, r.title, QMessageBox::Ok,
                                    QApplication::activeWindow());
        box->setInformativeText(r.message);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
    });
}

} // namespace SnapshotActions
