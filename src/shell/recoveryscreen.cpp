#include "recoveryscreen.h"

#include "fieldeditors.h"
#include "fileactions.h"
#include "snapshotdialog.h"

#include "look/alert.h"
#include "look/buttons.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtWidgets/QApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollArea>

using namespace Qt::StringLiterals;

RecoveryScreen::RecoveryScreen(DB &db, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_icon(new QLabel(this))
    , m_title(new QLabel(title(db), this))
    , m_text(new QLabel(explanation(db), this))
    , m_ways(new QLabel(u"WAYS BACK"_s, this))
    , m_choices(new QVBoxLayout)
{
    setObjectName(u"recovery"_s);
    m_title->setObjectName(u"recoveryTitle"_s);
    m_text->setObjectName(u"recoveryText"_s);
    m_title->setWordWrap(true);
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // At a large zoom, or with many snapshots, the page scrolls rather than push the window wider.
    auto *scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->viewport()->setAutoFillBackground(false);
    auto *page = new QWidget(scroll);
    scroll->setWidget(page);
    page->setAutoFillBackground(false); // setWidget turns it on; the backdrop shows through

    FieldLook::thinScrollBars(scroll);
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(scroll);
    m_page = new QHBoxLayout(page);
    auto *column = new QVBoxLayout;
    m_column = column;
    m_page->addStretch(1);
    m_page->addLayout(column, 8);
    m_page->addStretch(1);
    column->addStretch(1);
    column->addWidget(m_icon);
    column->addWidget(m_title);
    column->addWidget(m_text);
    column->addWidget(m_ways);
    column->addLayout(m_choices);
    column->addStretch(2);

    const QString folder = QFileInfo(db.path()).absolutePath();
    // The newest good snapshot first: the quickest way back to yesterday's books.
    m_snapshots = Snapshots::list(folder);
    const QDateTime now = QDateTime::currentDateTime();
    for (qsizetype k = 0; k < m_snapshots.size(); ++k) {
        const Snapshots::Info info = m_snapshots.at(k);
        addChoice(
            k == 0 ? u"Restore Newest Snapshot"_s : u"Restore This Snapshot"_s,
            k == 0 ? u"clock.arrow.circlepath"_s : QString(), describe(info, now),
            [this, info, folder] { SnapshotActions::askAndRestore(window(), info, folder); }, k == 0);
    }
    if (m_snapshots.isEmpty())
        m_none = new QLabel(
            u"There is no snapshot beside the data folder yet, so the way back is a backup."_s, this);
    if (m_none) {
        m_none->setWordWrap(true);
        m_choices->addWidget(m_none);
    }
    addChoice(
        u"Restore From Backup…"_s, u"externaldrive.fill"_s,
        u"Choose a backup .zip. The data now in the folder is kept aside as \u201c"_s +
            QFileInfo(folder).fileName() + u" (before restore \u2026)\u201d, as every restore does."_s,
        [this] { FileActions::restore(window(), m_db); }, m_snapshots.isEmpty());
    addChoice(u"Open Data Folder"_s, u"folder.fill"_s,
              QDir::toNativeSeparators(folder) + u": look at the file or copy it somewhere safe."_s,
              [file = db.path()] { FileActions::reveal(file); });
    addChoice(u"Quit"_s, u"xmark.circle.fill"_s, u"Close Trestle and leave everything as it is."_s,
              [] { QApplication::closeAllWindows(); });
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &RecoveryScreen::restyle);
}

QString RecoveryScreen::describe(const Snapshots::Info &info, const QDateTime &now)
{
    const QString records =
        info.records == 1 ? u"1 record"_s : QLocale(QLocale::English).toString(info.records) + u" records"_s;
    return QLocale(QLocale::English).toString(info.taken, u"dddd d MMMM yyyy, HH:mm"_s) + u" \u00B7 "_s +
           SnapshotDialog::age(info.taken, now) + u" \u00B7 "_s + records;
}

QString RecoveryScreen::title(const DB &db)
{
    return db.openState() == DB::OpenState::Damaged ? u"Your data file is damaged"_s
                                                    : u"Trestle can't open your data"_s;
}

QString RecoveryScreen::explanation(const DB &db)
{
    const QString after =
        db.openState() == DB::OpenState::Damaged
            ? u" Trestle has not written to it, moved it or deleted it, and will not "
              u"start a new company in it."_s
            : u" Nothing has been changed. Once the cause is fixed (free some disk space, "
              u"or give your account access to the folder), quit and start Trestle again."_s;
    return db.openProblem() + after;
}

void RecoveryScreen::addChoice(const QString &button, const QString &symbol, const QString &detail,
                               const std::function<void()> &action, bool prominent)
{
    auto *row = new QHBoxLayout;
    auto *b = new FWChromeButton(button, symbol, this);
    b->setProminent(prominent);
    connect(b, &QAbstractButton::clicked, this, [action] { action(); });
    auto *text = new QLabel(detail, this);
    text->setWordWrap(true);
    row->addWidget(b, 0, Qt::AlignTop);
    row->addWidget(text, 1);
    m_choices->addLayout(row);
    m_details.append(text);
}

void RecoveryScreen::restyle()
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    m_icon->setPixmap(Icons::pixmap(u"exclamationmark.triangle.fill"_s, QColor(0xf0, 0x8c, 0x2e), ui.px(44)));
    m_title->setFont(ui.font(22, QFont::Bold));
    m_text->setFont(ui.font(14));
    m_ways->setFont(ui.font(11, QFont::Bold));
    QPalette p = palette();
    p.setColor(QPalette::WindowText, t.text);
    m_title->setPalette(p);
    m_text->setPalette(p);
    p.setColor(QPalette::WindowText, t.dim);
    m_ways->setPalette(p);
    if (m_none) {
        m_none->setFont(ui.font(12));
        m_none->setPalette(p);
    }
    for (QLabel *l : std::as_const(m_details)) {
        l->setFont(ui.font(12));
        l->setPalette(p);
    }
    m_page->setContentsMargins(ui.px(24), ui.px(24), ui.px(24), ui.px(24));
    m_choices->setSpacing(ui.px(10));
    m_column->setSpacing(ui.px(12));
}
