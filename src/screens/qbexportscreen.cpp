#include "qbexportscreen.h"

#include "hubparts.h"

#include "catalog/moduledef.h"
#include "interchange/qb.h"
#include "look/alert.h"
#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "shell/fileactions.h"
#include "shell/nav.h"
#include "shell/screentitle.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QScrollArea>

using namespace Qt::StringLiterals;

QBExportScreen::ChooseFolder &QBExportScreen::chooseFolderHook()
{
    static ChooseFolder hook;
    return hook;
}

std::function<void(const QString &)> &QBExportScreen::revealHook()
{
    static std::function<void(const QString &)> hook;
    return hook;
}

const QList<std::pair<QString, QString>> &QBExportScreen::files()
{
    static const QList<std::pair<QString, QString>> list = {
        {u"invoices-and-pay-apps.iif"_s,
         u"Sent / approved invoices and pay applications → Accounts Receivable, Construction Income, Sales "
         u"Tax "
         u"Payable, Retainage Receivable (QuickBooks Desktop: File > Utilities > Import > IIF Files)"_s},
        {u"bills.iif"_s, u"Costs & Bills → Accounts Payable and Job Expenses:<cost code>"_s},
        {u"customers.csv / vendors.csv"_s,
         u"Clients, subs and suppliers (QuickBooks Online: Settings > Import Data)"_s},
        {u"payments.csv"_s, u"Payments received and paid out"_s},
        {u"job-cost.csv"_s, u"Budget, committed and actual by cost code"_s},
    };
    return list;
}

QString QBExportScreen::scopeLine(const DB &db, const Nav &nav)
{
    const std::optional<Rec> project = nav.project(db);
    return u"Scope: "_s + (project ? project->f.value(u"name"_s) : u"all projects"_s) +
           u" — change it with the Project menu above"_s;
}

QBExportScreen::QBExportScreen(const ScreenContext &ctx, QWidget *parent)
    : ShellScreen(parent)
    , m_db(ctx.db)
    , m_nav(ctx.nav)
    , m_m(ctx.module)
    , m_box(new QVBoxLayout(this))
{
    m_box->addWidget(new ScreenTitle(m_m, m_m.blurb, nullptr, this));

    auto *content = new QWidget;
    auto *body = new QVBoxLayout(content);
    body->setContentsMargins(0, 0, 0, 0);
    auto *intro = new LookLabel(u"Writes IIF files for QuickBooks Desktop and CSV files for QuickBooks "
                                u"Online. Only Sent/Paid invoices and "
                                u"Submitted/Approved/Paid pay applications are exported. Each transaction "
                                u"balances: AR = income + tax − "
                                u"retainage."_s,
                                13, QFont::Normal, false, content);
    intro->setWordWrap(true);
    body->addWidget(intro);
    m_scope = new LookLabel({}, 12.5, QFont::DemiBold, true, content);
    m_scope->setWordWrap(true);
    body->addWidget(m_scope);

    auto *panel = new FWPanel(content);
    auto *panelBox = new QVBoxLayout(panel);
    panelBox->addWidget(
        HubParts::heading(u"tray.full.fill"_s, new LookLabel(u"Files written"_s, 14, QFont::Bold), panel));
    auto *grid = new QGridLayout;
    int row = 0;
    for (const auto &[name, description] : files()) {
        auto *icon = new QLabel(panel);
        icon->setObjectName(u"fileIcon"_s);
        grid->addWidget(icon, row, 0, Qt::AlignTop);
        auto *file = new LookLabel(name, 12.5, QFont::DemiBold, false, panel);
        file->setTextInteractionFlags(Qt::TextSelectableByMouse);
        grid->addWidget(file, row, 1, Qt::AlignTop);
        auto *text = new LookLabel(description, 12, QFont::Normal, true, panel);
        text->setWordWrap(true);
        grid->addWidget(text, row, 2, Qt::AlignTop);
        ++row;
    }
    grid->setColumnStretch(2, 1);
    panelBox->addLayout(grid);
    body->addWidget(panel);

    auto *note =
        new LookLabel(u"Create the accounts named above in QuickBooks first (or rename them after import). "
                      u"IIF import is for QuickBooks Desktop; QuickBooks Online imports the CSV files."_s,
                      12, QFont::Normal, true, content);
    note->setWordWrap(true);
    body->addWidget(note);

    m_export = new FWChromeButton(u"Export to Folder…"_s, u"arrow.up.doc.fill"_s, content);
    m_export->setProminent(true);
    connect(m_export, &QAbstractButton::clicked, this, &QBExportScreen::exportFiles);
    body->addWidget(m_export, 0, Qt::AlignLeft);
    m_statusLabel = new LookLabel({}, 12.5, QFont::Normal, false, content);
    m_statusLabel->setWordWrap(true);
    m_statusLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_statusLabel->hide();
    body->addWidget(m_statusLabel);
    body->addStretch(1);
    m_box->addWidget(HubParts::scroller(content, this), 1);

    auto look = [this, panel, panelBox, grid, body] {
        const FWUI &ui = FWUI::shared();
        m_box->setContentsMargins(ui.px(24), ui.px(18), ui.px(24), ui.px(6));
        m_box->setSpacing(ui.px(14));
        body->setSpacing(ui.px(12));
        panelBox->setContentsMargins(ui.px(14), ui.px(12), ui.px(14), ui.px(14));
        panelBox->setSpacing(ui.px(10));
        grid->setHorizontalSpacing(ui.px(12));
        grid->setVerticalSpacing(ui.px(10));
        for (QLabel *icon : panel->findChildren<QLabel *>(u"fileIcon"_s))
            icon->setPixmap(Icons::pixmap(u"doc.text.fill"_s, ui.theme().accent, ui.px(16)));
    };
    look();
    connect(&FWUI::shared(), &FWUI::changed, this, look);
    refresh();
}

QString QBExportScreen::scope() const
{
    return m_scope->text();
}

void QBExportScreen::refresh()
{
    m_scope->setText(scopeLine(m_db, m_nav));
}

void QBExportScreen::exportFiles()
{
    QString parent;
    if (chooseFolderHook()) {
        parent = chooseFolderHook()(this);
    } else {
        QFileDialog dialog(this, u"Export for QuickBooks"_s, QDir::homePath());
        dialog.setFileMode(QFileDialog::Directory);
        dialog.setOption(QFileDialog::ShowDirsOnly);
        dialog.setLabelText(QFileDialog::Accept, u"Export Here"_s);
        if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
            parent = dialog.selectedFiles().first();
    }
    if (parent.isEmpty())
        return;
    const std::optional<Rec> project = m_nav.project(m_db);
    const ExportResult result =
        QB::exportAll(m_db, parent, project ? std::optional<QString>(project->id) : std::nullopt);
    if (!result.ok) {
        FWAlert::show(this, u"Export failed"_s, result.error);
        return;
    }
    m_status = u"Exported to "_s + result.folder;
    m_statusLabel->setText(m_status);
    m_statusLabel->show();
    if (revealHook())
        revealHook()(result.folder);
    else
        FileActions::reveal(result.folder);
}
