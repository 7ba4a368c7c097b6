#include "helpview.h"

#include "fwui.h"
#include "icons.h"
#include "tones.h"

#include <QtCore/QPointer>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtGui/QShortcut>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QTextBrowser>

using namespace Qt::StringLiterals;

FWHelpView::FWHelpView(QList<HelpPage> pages, QWidget *parent)
    : QWidget(parent)
    , m_pages(std::move(pages))
    , m_search(new QLineEdit(this))
    , m_list(new QListWidget(this))
    , m_reader(new QTextBrowser(this))
{
    m_search->setPlaceholderText(u"Search the guide"_s);
    m_search->setClearButtonEnabled(true);
    m_search->setObjectName(u"search"_s);
    m_list->setObjectName(u"pages"_s);
    m_reader->setObjectName(u"reader"_s);
    m_reader->setOpenExternalLinks(true);

    auto *side = new QWidget(this);
    auto *sideCol = new QVBoxLayout(side);
    sideCol->setContentsMargins(8, 8, 0, 8);
    sideCol->setSpacing(8);
    sideCol->addWidget(m_search);
    sideCol->addWidget(m_list, 1);
    auto *split = new QSplitter(this);
    split->addWidget(side);
    split->addWidget(m_reader);
    split->setStretchFactor(1, 1);
    split->setChildrenCollapsible(false);
    auto *col = new QVBoxLayout(this);
    col->setContentsMargins(0, 0, 0, 0);
    col->addWidget(split);

    connect(m_search, &QLineEdit::textChanged, this, &FWHelpView::relist);
    connect(m_list, &QListWidget::currentRowChanged, this, &FWHelpView::showRow);
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        restyle();
        relist();
    });
    restyle();
    relist();
}

QList<HelpPage> FWHelpView::filtered(const QList<HelpPage> &pages, const QString &search)
{
    const QString needle = search.trimmed().toLower();
    if (needle.isEmpty())
        return pages;
    QList<HelpPage> out;
    for (const HelpPage &p : pages)
        if (p.title.toLower().contains(needle) || p.searchText().toLower().contains(needle))
            out.append(p);
    return out;
}

FWHelpView *FWHelpView::showWindow(QWidget *parent, const QString &pageId)
{
    static QPointer<FWHelpView> window;
    if (!window) {
        window = new FWHelpView(FWHelp::pages(), parent);
        window->setWindowFlag(Qt::Window);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->setWindowTitle(u"Fenwright Trestle Help"_s);
        for (const QKeySequence &keys : {QKeySequence(Qt::Key_Escape), QKeySequence(QKeySequence::Close)}) {
            auto *close = new QShortcut(keys, window);
            connect(close, &QShortcut::activated, window, &QWidget::close);
        }
        const FWUI &ui = FWUI::shared();
        QSize size(ui.px(900), ui.px(640));
        const QScreen *screen = parent ? parent->screen() : QGuiApplication::primaryScreen();
        const QRect area = screen ? screen->availableGeometry() : QRect(0, 0, size.width(), size.height());
        const QRect over = parent ? parent->window()->frameGeometry() : area;
        window->setGeometry(placement(over, size, area));
    }
    if (!pageId.isEmpty() && !window->openPage(pageId)) {
        // A search that hides the page gives way to the page asked for.
        window->setSearch({});
        window->openPage(pageId);
    }
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}

QRect FWHelpView::placement(const QRect &parent, const QSize &size, const QRect &screen)
{
    const QSize fits = size.boundedTo(screen.size());
    QRect r(QPoint(0, 0), fits);
    r.moveCenter(parent.center());
    r.moveLeft(std::clamp(r.left(), screen.left(), screen.right() + 1 - fits.width()));
    r.moveTop(std::clamp(r.top(), screen.top(), screen.bottom() + 1 - fits.height()));
    return r;
}

void FWHelpView::setSearch(const QString &text)
{
    m_search->setText(text);
}

QStringList FWHelpView::listedIds() const
{
    QStringList ids;
    for (const HelpPage &p : m_listed)
        ids << p.id;
    return ids;
}

bool FWHelpView::openPage(const QString &id)
{
    for (int i = 0; i < m_listed.size(); ++i)
        if (m_listed.at(i).id == id) {
            m_list->setCurrentRow(i);
            return true;
        }
    return false;
}

QString FWHelpView::shownText() const
{
    return m_reader->toPlainText();
}

void FWHelpView::relist()
{
    const QString keep = m_shown;
    m_listed = filtered(m_pages, m_search->text());
    const FWUI &ui = FWUI::shared();
    const QSignalBlocker block(m_list);
    m_list->clear();
    int current = m_listed.isEmpty() ? -1 : 0;
    for (int i = 0; i < m_listed.size(); ++i) {
        const HelpPage &p = m_listed.at(i);
        m_list->addItem(new QListWidgetItem(Icons::icon(p.symbol, ui.theme().accent, ui.px(16)), p.title));
        if (p.id == keep)
            current = i;
    }
    m_list->setCurrentRow(current);
    showRow(current);
}

void FWHelpView::showRow(int row)
{
    if (row < 0 || row >= m_listed.size()) {
        m_shown.clear();
        m_reader->setHtml(u"<p>No page matches this search.</p>"_s);
        return;
    }
    const HelpPage &page = m_listed.at(row);
    m_shown = page.id;
    m_reader->setHtml(FWHelp::html(page));
}

void FWHelpView::restyle()
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    const QString pad = QString::number(ui.px(6));
    setStyleSheet(u"FWHelpView { background: "_s + t.base.name() + u"; }"_s);
    m_search->setFont(ui.font(13));
    m_search->setStyleSheet(u"QLineEdit { background: "_s + t.well.name() + u"; color: "_s + t.text.name() +
                            u"; border: 1px solid "_s + t.deep.name() + u"; border-radius: "_s +
                            QString::number(ui.px(8)) + u"px; padding: "_s + pad + u"px; }"_s);
    m_list->setFont(ui.font(13));
    m_list->setIconSize(QSize(ui.px(16), ui.px(16)));
    m_list->setStyleSheet(u"QListWidget { background: "_s + t.panel.name() + u"; color: "_s + t.text.name() +
                          u"; border: none; } QListWidget::item { padding: "_s + pad +
                          u"px; } QListWidget::item:selected { background: "_s +
                          FWTones::current().selection.name() + u"; color: "_s +
                          FWTones::current().onAccent.name() + u"; }"_s);
    // Thin scroll bars of the finish instead of the platform's grey ones.
    QColor handle = t.metalMid;
    handle.setAlphaF(0.5);
    const QString bars =
        QString(u" QScrollBar:vertical { width: %1px; background: transparent; margin: 0; }"
                u" QScrollBar::handle:vertical { background: %2; border-radius: %3px; min-height: 24px; }"
                u" QScrollBar::add-line, QScrollBar::sub-line { height: 0; }"
                u" QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }"_s)
            .arg(ui.px(6))
            .arg(handle.name(QColor::HexArgb))
            .arg(ui.px(3));
    m_list->verticalScrollBar()->setStyleSheet(bars);
    m_reader->verticalScrollBar()->setStyleSheet(bars);
    m_reader->setFont(ui.font(13.5));
    m_reader->setStyleSheet(u"QTextBrowser { background: "_s + t.base.name() + u"; color: "_s +
                            t.text.name() + u"; border: none; padding: "_s + QString::number(ui.px(14)) +
                            u"px; }"_s);
    m_reader->document()->setDefaultStyleSheet(u"h1 { color: "_s + FWTones::current().focus.name() +
                                               u"; } h2 { color: "_s + t.text.name() + u"; } a { color: "_s +
                                               FWTones::current().focus.name() + u"; }"_s);
}
