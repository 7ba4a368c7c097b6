#include "figurelink.h"

#include "breakdownview.h"
#include "shell/totalsbox.h"

#include "shell/nav.h"
#include "store/db.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QWidget>

using namespace Qt::StringLiterals;

namespace {

// Watches one figure widget; a child of it, so it goes with it.
class Opener : public QObject
{
public:
    Opener(QWidget *figure, DB &db, Nav &nav, FigureLink::RefFn ref)
        : QObject(figure)
        , m_figure(figure)
        , m_db(db)
        , m_nav(nav)
        , m_ref(std::move(ref))
    {
        setObjectName(u"figureLink"_s);
    }
    std::optional<FigureRef> ref() const { return m_ref(); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched != m_figure)
            return false;
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            // The press is the figure's: what it sits on (a card that chooses its project) never sees it.
            return static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton;
        case QEvent::MouseButtonRelease:
            if (static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton &&
                m_figure->rect().contains(static_cast<QMouseEvent *>(event)->position().toPoint()))
                return open();
            break;
        case QEvent::KeyPress: {
            const int key = static_cast<QKeyEvent *>(event)->key();
            if (key == Qt::Key_Return || key == Qt::Key_Enter)
                return open();
            break;
        }
        default: break;
        }
        return false;
    }

private:
    bool open()
    {
        const std::optional<FigureRef> ref = m_ref();
        if (!ref)
            return false;
        BreakdownView::show(m_figure, m_db, m_nav, *ref);
        return true;
    }
    QWidget *m_figure;
    DB &m_db;
    Nav &m_nav;
    FigureLink::RefFn m_ref;
};

} // namespace

namespace FigureLink {

void attach(QWidget *figure, DB &db, Nav &nav, RefFn ref)
{
    auto *opener = new Opener(figure, db, nav, std::move(ref));
    figure->installEventFilter(opener);
    figure->setCursor(Qt::PointingHandCursor);
    figure->setFocusPolicy(Qt::StrongFocus);
    if (figure->toolTip().isEmpty())
        figure->setToolTip(u"Click, or press Enter, to see the records this figure is made of"_s);
}

RefFn ofProject(const DB &db, const Nav &nav, const QString &name, const QString &subject)
{
    return [&db, &nav, name, subject]() -> std::optional<FigureRef> {
        const std::optional<Rec> project = nav.project(db);
        if (!project)
            return std::nullopt;
        return FigureRef{name, project->id, subject};
    };
}

QString codeSubject(const QString &key)
{
    return key.isEmpty() ? Explain::kUncoded : key;
}

void installForTotals()
{
    TotalsBox::figureHook() = [](QWidget *amount, DB &db, RefFn ref) {
        attach(amount, db, Nav::shared(), std::move(ref));
    };
}

std::optional<FigureRef> refOf(const QWidget *figure)
{
    for (QObject *child : figure->children())
        if (child->objectName() == u"figureLink")
            return static_cast<Opener *>(child)->ref();
    return std::nullopt;
}

} // namespace FigureLink
