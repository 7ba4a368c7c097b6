#include "focuscycle.h"

#include "headerbar.h"
#include "modulearea.h"
#include "modulerail.h"
#include "tlmain.h"

#include <QtCore/QTimer>
#include <QtGui/QShortcut>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>

using namespace Qt::StringLiterals;

namespace FocusCycle {

QWidget *firstIn(QWidget *region)
{
    for (QWidget *w = region->nextInFocusChain(); w && w != region; w = w->nextInFocusChain()) {
        if (!region->isAncestorOf(w))
            continue;
        if ((w->focusPolicy() & Qt::TabFocus) && w->isVisible() && w->isEnabled())
            return w;
    }
    return nullptr;
}

QWidget *firstField(QWidget *region)
{
    // A typing box first: a record's name or title is what one fills in first; then a choice.
    for (const char *kinds : {"QLineEdit", "QComboBox"}) {
        for (QWidget *w = region->nextInFocusChain(); w && w != region; w = w->nextInFocusChain()) {
            if (!region->isAncestorOf(w) || !(w->focusPolicy() & Qt::TabFocus) || !w->isVisible() ||
                !w->isEnabled() || !w->inherits(kinds))
                continue;
            if (auto *line = qobject_cast<QLineEdit *>(w); line && line->isReadOnly())
                continue;
            return w;
        }
    }
    return firstIn(region);
}

void step(TLMain *main, bool back)
{
    QWidget *regions[] = {main->rail(), main->header(), main->area()};
    QWidget *focus = QApplication::focusWidget();
    int at = -1;
    for (int i = 0; i < 3; ++i)
        if (focus && regions[i]->isAncestorOf(focus))
            at = i;
    // From nowhere, forward starts at the rail and back at the content.
    for (int tries = 1; tries <= 3; ++tries) {
        const int to = at < 0 ? (back ? 3 - tries : tries - 1) : (at + (back ? 3 - tries : tries)) % 3;
        if (!regions[to]->isVisible())
            continue;
        if (to == 0) {
            main->rail()->focusRail();
            return;
        }
        if (QWidget *w = firstIn(regions[to])) {
            w->setFocus(Qt::ShortcutFocusReason);
            return;
        }
    }
}

void install(QWidget *window, TLMain *main)
{
    // A focused widget that goes away (a rebuilt rail, a closed sheet, a deleted record's
    // editor) would leave the window with no keyboard at all: the content takes it instead.
    QObject::connect(qApp, &QApplication::focusChanged, main, [main](QWidget *, QWidget *now) {
        if (now)
            return;
        QTimer::singleShot(0, main, [main] {
            // Only the window's own keyboard place is filled; a dialog in front keeps its focus.
            if (main->window()->focusWidget() || !main->isVisible())
                return;
            if (QWidget *w = firstIn(main->area()))
                w->setFocus(Qt::OtherFocusReason);
            else if (main->rail()->isVisible())
                main->rail()->focusRail();
        });
    });
    auto *forward = new QShortcut(QKeySequence(Qt::Key_F6), window);
    QObject::connect(forward, &QShortcut::activated, main, [main] { step(main, false); });
    auto *backward = new QShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F6), window);
    QObject::connect(backward, &QShortcut::activated, main, [main] { step(main, true); });
}

} // namespace FocusCycle
