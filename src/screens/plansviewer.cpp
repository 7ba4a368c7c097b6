// The viewer side of the plan sheets screen: the chosen sheet with its tools,
// fields and commands above the markup view.
#include "plansscreen.h"

#include "markupview.h"

#include "catalog/moduledef.h"
#include "interchange/snapshots.h"
#include "look/buttons.h"
#include "look/fwui.h"
#include "look/segment.h"
#include "shell/emptystate.h"
#include "shell/fieldeditors.h"
#include "shell/nav.h"
#include "shell/notice.h"
#include "shell/printbutton.h"
#include "shell/printcenter.h"
#include "shell/recordeditor.h"
#include "store/db.h"
#include "workflows/binding.h"

#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtGui/QPainter>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>

using namespace Qt::StringLiterals;

namespace {

const QStringList kDisciplines{u"General"_s,    u"Civil"_s,      u"Architectural"_s, u"Structural"_s,
                               u"Mechanical"_s, u"Electrical"_s, u"Plumbing"_s,      u"Landscape"_s};
const QStringList kToolLabels{u"Pan"_s, u"Pen"_s, u"Box"_s, u"Highlight"_s, u"Note"_s};

QIcon swatch(const QColor &color)
{
    QPixmap pm(14, 14);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(0, 0, 0, 90), 1));
    p.setBrush(color);
    p.drawEllipse(QRectF(1, 1, 12, 12));
    return QIcon(pm);
}

} // namespace

void PlansScreen::showSheet(const std::optional<Rec> &sheet)
{
    const QString id = sheet ? sheet->id : QString();
    if (id == m_shownID && m_viewerBody) {
        // The same sheet: only what the store may have changed.
        if (m_title)
            m_title->refresh();
        if (m_discipline)
            m_discipline->refresh();
        return;
    }
    m_shownID = id;
    delete m_viewerBody;
    m_view = nullptr;
    m_notice = nullptr;
    m_title = nullptr;
    m_discipline = nullptr;
    m_printable = nullptr;
    if (!sheet) {
        m_viewerBody =
            new EmptyState(m_m.symbol, u"No sheet chosen"_s,
                           u"Choose a sheet on the left, or add sheets from PDF files."_s, m_viewerBox);
        m_viewerLayout->addWidget(m_viewerBody, 1);
        return;
    }
    const FWUI &ui = FWUI::shared();
    m_viewerBody = new QWidget(m_viewerBox);
    auto *col = new QVBoxLayout(m_viewerBody);
    col->setContentsMargins(0, 0, 0, 0);
    col->setSpacing(ui.px(8));
    if (sheet->f.value(u"status") == u"Superseded") {
        m_notice = new Notice(u"This is an old revision (Rev "_s + sheet->f.value(u"version") +
                                  u"). Markups here won't show on the current sheet."_s,
                              Notice::Tone::Warning, u"exclamationmark.triangle.fill"_s, m_viewerBody);
        col->addWidget(m_notice);
    }

    auto *tools = new QHBoxLayout;
    tools->setSpacing(ui.px(8));
    m_tools = new FWSegment(kToolLabels, m_viewerBody);
    m_tools->setCurrent(int(MarkupView::toolNames().indexOf(m_tool)));
    connect(m_tools, &FWSegment::currentChanged, this,
            [this](int i) { setTool(MarkupView::toolNames().value(i, u"pan"_s)); });
    tools->addWidget(m_tools);
    m_color = new FWChromeButton(m_colorName, u"paintpalette.fill"_s, m_viewerBody);
    m_color->setToolTip(u"Colour of new marks"_s);
    connect(m_color, &QAbstractButton::clicked, this, [this] {
        QMenu menu(this);
        for (const auto &[name, color] : colors()) {
            QAction *a = menu.addAction(swatch(color), name);
            a->setCheckable(true);
            a->setChecked(name == m_colorName);
            connect(a, &QAction::triggered, this, [this, name] { setColorName(name); });
        }
        menu.exec(m_color->mapToGlobal(QPoint(0, m_color->height())));
    });
    tools->addWidget(m_color);
    auto *undoButton = new FWChromeButton(u"Undo"_s, u"arrow.uturn.backward"_s, m_viewerBody);
    undoButton->setToolTip(u"Take away the last mark made since this sheet was opened"_s);
    connect(undoButton, &QAbstractButton::clicked, this, &PlansScreen::undo);
    tools->addWidget(undoButton);
    tools->addStretch(1);
    // The sheet's own zoom over its fitted width; Ctrl+wheel does the same.
    const std::tuple<QString, QString, double> zooms[] = {{u"minus.magnifyingglass"_s, u"Zoom out"_s, 0.8},
                                                          {u"magnifyingglass"_s, u"Fit the width"_s, 0},
                                                          {u"plus.magnifyingglass"_s, u"Zoom in"_s, 1.25}};
    for (const auto &[symbol, tip, factor] : zooms) {
        auto *b = new FWChromeButton(QString(), symbol, m_viewerBody);
        b->setCompact(true);
        b->setToolTip(tip);
        connect(b, &QAbstractButton::clicked, this, [this, factor] {
            if (m_view)
                m_view->setZoom(factor > 0 ? m_view->zoom() * factor : 1);
        });
        tools->addWidget(b);
    }
    col->addLayout(tools);

    auto *fields = new QHBoxLayout;
    fields->setSpacing(ui.px(8));
    m_title = new ThemedTextField(TextBinding::of(recBinding(m_db, id, u"title"_s)), u"Sheet title"_s, false,
                                  m_viewerBody);
    fields->addWidget(m_title, 1);
    ThemedChoice::Options options;
    for (const QString &d : kDisciplines)
        options.append({d, d});
    m_discipline =
        new ThemedChoice(TextBinding::of(recBinding(m_db, id, u"discipline"_s)), options, m_viewerBody);
    fields->addWidget(m_discipline);
    auto *open = new FWChromeButton(u"Open in Preview"_s, u"arrow.up.forward.app"_s, m_viewerBody);
    connect(open, &QAbstractButton::clicked, this, &PlansScreen::openInViewer);
    fields->addWidget(open);
    fields->addWidget(new PrintButton(sheetJob(m_db, id), false, false, m_viewerBody));
    auto *del = new FWChromeButton(u"Delete sheet"_s, u"trash"_s, m_viewerBody);
    connect(del, &QAbstractButton::clicked, this, &PlansScreen::deleteSheet);
    fields->addWidget(del);
    col->addLayout(fields);

    if (m_kept && m_keptID == id) {
        m_view = m_kept.release();
        m_view->setParent(m_viewerBody);
        FieldLook::thinScrollBar(m_view->verticalScrollBar());
    } else {
        m_view = new MarkupView(m_db.fileURL(sheet->f.value(u"file"), sheet->company), m_viewerBody);
    }
    m_view->setSheetName(sheet->f.value(u"number") + u' ' + sheet->f.value(u"title"));
    m_view->setTool(m_tool);
    for (const auto &[name, color] : colors())
        if (name == m_colorName)
            m_view->setMarkColor(color);
    if (m_view->isValid()) {
        col->addWidget(m_view, 1);
    } else {
        delete m_view;
        m_view = nullptr;
        col->addWidget(new EmptyState(u"exclamationmark.triangle.fill"_s,
                                      u"This sheet's file cannot be read"_s,
                                      u"It is missing or damaged. Add the drawing again as a new version."_s,
                                      m_viewerBody),
                       1);
    }
    m_printable = new Printable(m_viewerBody, 2, sheetJob(m_db, id));
    m_viewerLayout->addWidget(m_viewerBody, 1);
}

void PlansScreen::setTool(const QString &tool)
{
    m_tool = MarkupView::toolNames().contains(tool) ? tool : u"pan"_s;
    if (m_view)
        m_view->setTool(m_tool);
    if (m_tools)
        m_tools->setCurrent(int(MarkupView::toolNames().indexOf(m_tool)));
}

void PlansScreen::setColorName(const QString &name)
{
    for (const auto &[n, color] : colors()) {
        if (n != name)
            continue;
        m_colorName = n;
        if (m_view)
            m_view->setMarkColor(color);
        if (m_color)
            m_color->setText(n);
    }
}

void PlansScreen::undo()
{
    if (m_view)
        m_view->undoLast();
}

void PlansScreen::deleteSheet()
{
    if (m_shownID.isEmpty())
        return;
    bool yes = false;
    if (const Confirm &hook = confirmDeleteHook()) {
        yes = hook(this);
    } else {
        QMessageBox box(QMessageBox::Warning, RecordEditor::deleteTitle(m_m), RecordEditor::deleteTitle(m_m),
                        QMessageBox::NoButton, this);
        box.setInformativeText(RecordEditor::deleteMessage(m_m));
        QPushButton *del = box.addButton(u"Delete"_s, QMessageBox::DestructiveRole);
        box.addButton(u"Cancel"_s, QMessageBox::RejectRole);
        box.exec();
        yes = box.clickedButton() == del;
    }
    if (!yes)
        return;
    const QString id = m_shownID;
    m_nav.setSelected(m_m.id, QString());
    m_db.remove(id);
    refresh();
}

void PlansScreen::openInViewer()
{
    if (const std::optional<Rec> sheet = m_db.get(m_shownID)) {
        const QString path = m_db.fileURL(sheet->f.value(u"file"), sheet->company);
        // Another program may save over the file in place; the snapshots keep their own.
        Snapshots::unshare(path);
        QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    }
}
