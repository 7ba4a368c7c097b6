#include "about.h"

#include "documents/pdfwrite.h"
#include "look/fwui.h"
#include "look/icons.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

AboutWindow::AboutWindow(QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(u"About Trestle"_s);
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    setStyleSheet(u"AboutWindow { background: "_s + t.base.name() + u"; } QLabel { color: "_s +
                  t.text.name() + u"; }"_s);

    auto *col = new QVBoxLayout(this);
    col->setContentsMargins(ui.px(24), ui.px(20), ui.px(24), ui.px(16));
    col->setSpacing(ui.px(8));
    auto *head = new QHBoxLayout;
    auto *mark = new QLabel(this);
    mark->setPixmap(Icons::pixmap(u"building.columns.fill"_s, t.accent, ui.px(40)));
    head->addWidget(mark);
    auto *name = new QLabel(u"Fenwright Trestle"_s, this);
    name->setObjectName(u"name"_s);
    name->setFont(ui.font(20, QFont::Bold));
    head->addWidget(name, 1);
    col->addLayout(head);

    auto addLine = [&](const QString &text, const QString &objectName, bool dim) {
        auto *l = new QLabel(this);
        l->setObjectName(objectName);
        l->setTextFormat(Qt::RichText);
        l->setText(text);
        l->setWordWrap(true);
        l->setOpenExternalLinks(true);
        l->setFont(ui.font(12.5));
        if (dim)
            l->setStyleSheet(u"color: "_s + t.dim.name() + u';');
        col->addWidget(l);
        return l;
    };
    addLine(versionLine().toHtmlEscaped(), u"version"_s, true);
    addLine(u"Runs a small construction company's back office on this computer, with no server and no "
            u"internet connection."_s,
            u"summary"_s, false);
    addLine(u"Free software under the GNU General Public License, version 3 or later (GPL-3.0-or-later). It "
            u"comes "
            u"with no warranty."_s,
            u"licence"_s, false);
    QString libs = u"<b>Built on</b><ul style=\"margin-left:12px\">"_s;
    for (const Library &lib : libraries())
        libs += u"<li><b>"_s + lib.name.toHtmlEscaped() + u"</b> — "_s + lib.use.toHtmlEscaped() + u" ("_s +
                lib.licence.toHtmlEscaped() + u")</li>"_s;
    libs += u"</ul>"_s;
    addLine(libs, u"libraries"_s, false);
    const QString site = PDFOut::kMakerAddress.toString();
    addLine(u"<a style=\"color:"_s + t.accent.name() + u"\" href=\""_s + site + u"\">"_s + site + u"</a>"_s,
            u"site"_s, false);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    col->addWidget(buttons);
    setMinimumWidth(ui.px(480));
}

QList<AboutWindow::Library> AboutWindow::libraries()
{
    return {
        {u"Qt "_s + QString::fromLatin1(qVersion()), u"windows, rich text, printing and PDF writing"_s,
         u"LGPL-3.0"_s},
        {u"SQLite"_s, u"the record store"_s, u"public domain"_s},
        {u"libzip"_s, u"backups and Word files"_s, u"BSD-3-Clause"_s},
        {u"Poppler (poppler-qt6)"_s, u"plan sheets and their markups"_s, u"GPL-2.0-or-later"_s},
        {u"Material Design Icons (@mdi/svg)"_s, u"the symbols"_s, u"Apache-2.0"_s},
    };
}

QString AboutWindow::versionLine()
{
    return u"Version "_s + QStringLiteral(TRESTLE_VERSION);
}

void AboutWindow::showOver(QWidget *parent)
{
    AboutWindow w(parent);
    w.exec();
}
