#include "fieldpulse.h"

#include "hubparts.h"

#include "calc/datefmt.h"
#include "look/fwui.h"
#include "store/db.h"

#include <QtGui/QPainter>
#include <QtWidgets/QBoxLayout>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

Counter::Counter(const QString &label, QWidget *parent)
    : QWidget(parent)
    , m_label(label)
{
    setAccessibleName(label);
    setAccessibleDescription(u"0"_s);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    Chrome::followLook(this);
}

void Counter::setCount(qsizetype n)
{
    if (n == m_n)
        return;
    m_n = n;
    setAccessibleDescription(QString::number(n));
    update();
}

QSize Counter::sizeHint() const
{
    const FWUI &ui = FWUI::shared();
    return {ui.px(90), ui.px(62)};
}

QSize Counter::minimumSizeHint() const
{
    const FWUI &ui = FWUI::shared();
    return {ui.px(64), ui.px(62)};
}

void Counter::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    p.setPen(QPen(t.deep, 1));
    p.setBrush(t.well);
    p.drawRoundedRect(box, ui.s(8), ui.s(8));
    p.setPen(m_n > 0 ? t.text : t.dim);
    p.setFont(ui.font(22, QFont::Bold));
    p.drawText(QRectF(0, ui.s(4), width(), ui.s(34)), Qt::AlignCenter, QString::number(m_n));
    p.setPen(t.dim);
    p.setFont(ui.font(10.5));
    const QRectF labelBox(ui.s(4), ui.s(38), width() - ui.s(8), ui.s(18));
    p.drawText(labelBox, Qt::AlignCenter,
               p.fontMetrics().elidedText(m_label, Qt::ElideRight, int(labelBox.width())));
}

FieldPulse::FieldPulse(const DB &db, bool counters, QWidget *parent)
    : FWPanel(parent)
    , m_db(db)
    , m_logs(new QVBoxLayout)
    , m_none(new LookLabel(u"No daily logs yet."_s, 12.5, QFont::Normal, true))
{
    auto *box = new QVBoxLayout(this);
    box->addWidget(
        HubParts::heading(u"sun.max.fill"_s, new LookLabel(u"Field pulse"_s, 14, QFont::Bold), this));
    box->addLayout(m_logs);
    m_none->setParent(this);
    box->addWidget(m_none);
    if (counters) {
        auto *row = new QHBoxLayout;
        for (const QString &label : {u"Open punch"_s, u"Open RFIs"_s, u"Incidents"_s}) {
            auto *c = new Counter(label, this);
            m_counters << c;
            row->addWidget(c);
        }
        box->addLayout(row);
    }
    box->addStretch(1);
    auto margins = [this, box] {
        const FWUI &ui = FWUI::shared();
        box->setContentsMargins(ui.px(14), ui.px(12), ui.px(14), ui.px(14));
        box->setSpacing(ui.px(8));
        m_logs->setSpacing(ui.px(8));
    };
    margins();
    connect(&FWUI::shared(), &FWUI::changed, this, margins);
}

void FieldPulse::refresh(const std::optional<QSet<QString>> &projects)
{
    // Each project's records through the store's index when the projects are given;
    // no order is needed for counting, and the logs are ordered here.
    auto each = [this, &projects](const QString &kind, const std::function<void(const Rec &)> &fn) {
        const auto visit = [&fn](const Rec &r, const DB::ListKey &) { fn(r); };
        if (!projects) {
            m_db.visitUnordered(kind, {}, visit);
            return;
        }
        for (const QString &id : *projects)
            m_db.visitUnordered(kind, {.project = id}, visit);
    };

    // Newest first by the stored date; among one day the later-made log first.
    struct Entry
    {
        QString date;
        double created = 0;
        const Rec *rec;
    };
    std::vector<Entry> logs;
    each(u"daily_log"_s, [&logs](const Rec &r) { logs.push_back({r.f.value(u"date"_s), r.created, &r}); });
    const auto newer = [](const Entry &a, const Entry &b) {
        return a.date != b.date ? a.date > b.date : a.created > b.created;
    };
    const size_t n = std::min<size_t>(logs.size(), kLogs);
    std::partial_sort(logs.begin(), logs.begin() + std::ptrdiff_t(n), logs.end(), newer);
    QList<QStringList> lines;
    for (size_t i = 0; i < n; ++i) {
        const Rec &r = *logs[i].rec;
        const QString crew = r.f.value(u"crew"_s).trimmed();
        lines.append({DateFmt::show(r.f.value(u"date"_s)), r.f.value(u"weather"_s),
                      crew.isEmpty() ? QString() : QString(crew + u" crew"_s),
                      r.f.value(u"work"_s).simplified()});
    }

    if (!m_counters.isEmpty()) {
        qsizetype punch = 0, rfis = 0, incidents = 0;
        each(u"punch"_s, [&punch](const Rec &r) { punch += r.f.value(u"status"_s) != u"Closed"; });
        each(u"rfi"_s, [&rfis](const Rec &r) { rfis += r.f.value(u"status"_s) == u"Open"; });
        each(u"safety"_s, [&incidents](const Rec &r) { incidents += r.f.value(u"type"_s) == u"Incident"; });
        m_counters[0]->setCount(punch);
        m_counters[1]->setCount(rfis);
        m_counters[2]->setCount(incidents);
    }

    if (m_shown && lines == m_lines)
        return;
    m_shown = true;
    m_lines = lines;
    while (QLayoutItem *item = m_logs->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    m_none->setVisible(lines.isEmpty());
    for (const QStringList &l : std::as_const(lines)) {
        auto *row = new QWidget(this);
        auto *grid = new QVBoxLayout(row);
        grid->setContentsMargins(0, 0, 0, 0);
        grid->setSpacing(0);
        auto *top = new QHBoxLayout;
        top->addWidget(new LookLabel(l.at(0), 12, QFont::DemiBold, false, row));
        top->addStretch(1);
        QStringList parts;
        for (const QString &part : {l.at(1), l.at(2)})
            if (!part.isEmpty())
                parts << part;
        const QString meta = parts.join(u" · "_s);
        top->addWidget(new LookLabel(meta, 11, QFont::Normal, true, row));
        grid->addLayout(top);
        auto *work = new LookLabel(l.at(3), 11.5, QFont::Normal, false, row);
        work->setWordWrap(true);
        work->setVisible(!l.at(3).isEmpty());
        grid->addWidget(work);
        m_logs->addWidget(row);
    }
}
