#include "totalsbox.h"

#include "calc/money.h"
#include "look/fwui.h"

#include <QtGui/QFontDatabase>
#include <QtGui/QPainter>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

TotalsBox::TotalsBox(QWidget *parent)
    : QFrame(parent)
    , m_grid(new QGridLayout(this))
    , m_overlay(new QLabel(this))
{
    m_grid->setColumnStretch(0, 1);
    m_overlay->setObjectName(u"overlay"_s);
    m_overlay->hide();
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &TotalsBox::restyle);
}

QFont TotalsBox::monoFont(qreal points, QFont::Weight weight)
{
    QFont f = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    f.setPixelSize(FWUI::shared().px(points));
    f.setWeight(weight);
    return f;
}

void TotalsBox::setRows(const QList<Row> &rows)
{
    if (rows == m_rows && !m_labels.isEmpty())
        return;
    m_rows = rows;
    while (m_labels.size() > rows.size()) {
        delete m_labels.takeLast();
        delete m_amounts.takeLast();
    }
    while (m_labels.size() < rows.size()) {
        const int row = int(m_labels.size());
        auto *label = new QLabel(this);
        auto *amount = new QLabel(this);
        amount->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        amount->setTextInteractionFlags(Qt::TextSelectableByMouse);
        m_grid->addWidget(label, row, 0);
        m_grid->addWidget(amount, row, 1);
        m_labels.append(label);
        m_amounts.append(amount);
    }
    for (qsizetype i = 0; i < rows.size(); ++i) {
        m_labels[i]->setText(rows[i].first);
        m_amounts[i]->setText(Money::fmt(rows[i].second));
    }
    linkFigures();
    restyle();
}

QWidget *TotalsBox::amountAt(int row) const
{
    return row >= 0 && row < m_amounts.size() ? m_amounts.at(row) : nullptr;
}

TotalsBox::FigureHook &TotalsBox::figureHook()
{
    static FigureHook hook;
    return hook;
}

void TotalsBox::setFigures(DB &db, const QList<FigureRef> &figures)
{
    m_db = &db;
    m_figures = figures;
    linkFigures();
}

void TotalsBox::linkFigures()
{
    if (!m_db || !figureHook())
        return;
    // The reference is read when the figure is opened, so a label made once
    // follows the rows and the record the box shows then.
    for (qsizetype i = 0; i < m_amounts.size(); ++i) {
        QLabel *amount = m_amounts.at(i);
        // A label is linked once; it carries the mark, so a label deleted with the box takes it along.
        if (i >= m_figures.size() || m_figures.at(i).name.isEmpty() ||
            amount->property("figureLinked").toBool())
            continue;
        amount->setProperty("figureLinked", true);
        figureHook()(amount, *m_db, [this, i]() -> std::optional<FigureRef> {
            if (i >= m_figures.size() || m_figures.at(i).name.isEmpty())
                return std::nullopt;
            return m_figures.at(i);
        });
    }
}

void TotalsBox::setOverlay(const QString &text)
{
    m_overlay->setText(text);
    m_overlay->setVisible(!text.isEmpty());
    restyle();
}

QString TotalsBox::overlay() const
{
    return m_overlay->text();
}

void TotalsBox::restyle()
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    // The overlay has a line of its own above the rows, so it never covers an amount.
    const int top = m_overlay->text().isEmpty() ? ui.px(10) : ui.px(24);
    m_grid->setContentsMargins(ui.px(14), top, ui.px(14), ui.px(10));
    m_grid->setHorizontalSpacing(ui.px(16));
    m_grid->setVerticalSpacing(ui.px(5));
    const qsizetype last = m_labels.size() - 1;
    for (qsizetype i = 0; i <= last; ++i) {
        const bool total = i == last;
        QPalette p = m_labels[i]->palette();
        p.setColor(QPalette::WindowText, total ? t.accent : t.text);
        m_labels[i]->setPalette(p);
        m_amounts[i]->setPalette(p);
        m_labels[i]->setFont(ui.font(total ? 13.5 : 12.5, total ? QFont::Bold : QFont::Normal));
        m_amounts[i]->setFont(monoFont(total ? 13.5 : 12.5, total ? QFont::Bold : QFont::Normal));
        // Room above the total for its rule.
        m_labels[i]->setContentsMargins(0, total && i > 0 ? ui.px(6) : 0, 0, 0);
        m_amounts[i]->setContentsMargins(0, total && i > 0 ? ui.px(6) : 0, 0, 0);
    }
    QPalette p = m_overlay->palette();
    p.setColor(QPalette::WindowText, t.dim);
    m_overlay->setPalette(p);
    m_overlay->setFont(monoFont(11, QFont::DemiBold));
    placeOverlay();
    update();
}

void TotalsBox::placeOverlay()
{
    const FWUI &ui = FWUI::shared();
    m_overlay->adjustSize();
    m_overlay->move(width() - m_overlay->width() - ui.px(14), ui.px(7));
    m_overlay->raise();
}

void TotalsBox::resizeEvent(QResizeEvent *)
{
    placeOverlay();
}

void TotalsBox::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    p.setBrush(t.well);
    p.setPen(QPen(t.deep, 1));
    p.drawRoundedRect(r, ui.s(9), ui.s(9));
    if (m_labels.size() < 2)
        return;
    const QLabel *total = m_labels.last();
    QColor rule = t.dim;
    rule.setAlphaF(0.5);
    p.setPen(QPen(rule, 1));
    const qreal y = total->geometry().top() + 0.5;
    p.drawLine(QPointF(ui.s(14), y), QPointF(width() - ui.s(14), y));
}
