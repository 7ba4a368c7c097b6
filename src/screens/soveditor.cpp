#include "soveditor.h"

#include "moneygrid.h"

#include "calc/money.h"
#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "shell/fieldeditors.h"
#include "shell/numberfield.h"
#include "store/db.h"
#include "workflows/binding.h"
#include "workflows/payappflow.h"

#include <QtWidgets/QBoxLayout>

using namespace Qt::StringLiterals;

namespace {

enum Col { ItemCol, DescriptionCol, ScheduledCol, ActionCol };

const GridHead &head()
{
    static const GridHead h{
        {u"Item"_s, 70, false}, {u"Description"_s, 0, false}, {u"Scheduled"_s, 140}, {QString(), 28, false}};
    return h;
}

} // namespace

SOVEditor::SOVEditor(DB &db, const QString &projectId, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_project(projectId)
    , m_caption(new QLabel(this))
    , m_grid(new MoneyGrid(head(), this))
    , m_add(new FWChromeButton(u"Add Line"_s, u"plus"_s, this))
{
    m_grid->setAccessibleName(u"Schedule of values"_s);
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    auto *panel = new FWPanel(this);
    outer->addWidget(panel);
    auto *col = new QVBoxLayout(panel);
    m_caption->setTextFormat(Qt::PlainText);
    col->addWidget(m_caption);
    col->addWidget(m_grid);
    auto *buttons = new QHBoxLayout;
    m_add->setObjectName(u"add"_s);
    connect(m_add, &QAbstractButton::clicked, this, [this] {
        const Rec line = addSOVLine(m_db, m_project);
        // The new line is typed into next: show it now and put the focus in its first cell.
        refresh();
        const MoneyGrid::Cells cells = m_grid->cells(rowKey(line.id, false));
        if (!cells.isEmpty()) {
            cells.first()->setFocus(Qt::OtherFocusReason);
            if (auto *box = qobject_cast<QLineEdit *>(cells.first()))
                box->selectAll();
        }
    });
    buttons->addWidget(m_add);
    buttons->addStretch(1);
    col->addLayout(buttons);
    auto restyle = [this, col] {
        const FWUI &ui = FWUI::shared();
        col->setContentsMargins(ui.px(14), ui.px(12), ui.px(14), ui.px(12));
        col->setSpacing(ui.px(10));
        m_caption->setFont(ui.font(13, QFont::DemiBold));
    };
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, restyle);
    refresh();
}

void SOVEditor::setProject(const QString &projectId)
{
    if (projectId == m_project)
        return;
    m_project = projectId;
    refresh();
}

QString SOVEditor::rowKey(const QString &lineId, bool fromCO)
{
    return fromCO ? lineId + u"\x1f"
                             u"co"_s
                  : lineId;
}

QString SOVEditor::caption() const
{
    return m_caption->text();
}

void SOVEditor::refresh()
{
    const QList<Rec> lines = m_db.list(u"sov_line"_s, {.project = m_project});
    qint64 total = 0;
    QStringList keys;
    for (const Rec &line : lines) {
        total = Money::add(total, line.i(u"scheduled"));
        keys.append(rowKey(line.id, !line.f.value(u"co").isEmpty()));
    }
    m_caption->setText(QString::fromUtf16(PayAppText::kSOVCaption) + Money::fmt(total));
    m_grid->sync(keys, [this](const QString &key, QWidget *row) {
        const QString id = key.section(u'\x1f', 0, 0);
        const bool fromCO = key.contains(u'\x1f');
        auto *item =
            new ThemedTextField(TextBinding::of(recBinding(m_db, id, u"item"_s)), u"Item"_s, false, row);
        auto *description = new ThemedTextField(TextBinding::of(recBinding(m_db, id, u"description"_s)),
                                                u"Description"_s, false, row);
        auto *scheduled =
            new NumberField(TextBinding::of(recBinding(m_db, id, u"scheduled"_s)), true, u"0.00"_s, row);
        scheduled->box()->setAlignment(Qt::AlignRight);
        item->setObjectName(u"item"_s);
        description->setObjectName(u"description"_s);
        scheduled->setObjectName(u"scheduled"_s);
        QWidget *action;
        if (fromCO) {
            // Such lines follow their change order's status; only it makes and removes them.
            item->setEnabled(false);
            description->setEnabled(false);
            scheduled->setEnabled(false);
            auto *link = new QLabel(row);
            link->setObjectName(u"link"_s);
            link->setToolTip(QString::fromUtf16(PayAppText::kCOLineHelp));
            link->setAlignment(Qt::AlignCenter);
            auto paint = [link] {
                const FWUI &ui = FWUI::shared();
                link->setPixmap(Icons::pixmap(u"link"_s, ui.theme().dim, ui.px(15)));
            };
            paint();
            connect(&FWUI::shared(), &FWUI::changed, link, paint);
            action = link;
        } else {
            auto *remove = new FWChromeButton(QString(), u"trash"_s, row);
            remove->setCompact(true);
            remove->setObjectName(u"remove"_s);
            remove->setToolTip(u"Delete"_s);
            // Its pay lines stay in the store and simply stop counting.
            connect(remove, &QAbstractButton::clicked, this, [this, id] { m_db.remove(id); });
            action = remove;
        }
        return MoneyGrid::Cells{item, description, scheduled, action};
    });
    for (const QString &key : keys)
        for (QWidget *cell : m_grid->cells(key))
            if (auto *r = dynamic_cast<Refreshable *>(cell))
                r->refresh();
}
