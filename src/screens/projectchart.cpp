#include "projectchart.h"

#include "calc/fmt.h"
#include "look/fwui.h"

#include <QtCharts/QBarCategoryAxis>
#include <QtCharts/QBarSeries>
#include <QtCharts/QBarSet>
#include <QtCharts/QCategoryAxis>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QLegend>
#include <QtWidgets/QBoxLayout>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QString kTitle = u"Contract · billed · cost by project"_s;

double dollars(qint64 cents)
{
    return double(cents) / 100.0;
}

} // namespace

ChartPanel::ChartPanel(const QString &title, QWidget *parent)
    : FWPanel(parent)
    , m_chart(new QChart)
    , m_view(new QChartView(m_chart, this))
{
    m_chart->setTitle(title);
    m_chart->setAnimationOptions(QChart::NoAnimation);
    m_chart->legend()->setAlignment(Qt::AlignTop);
    m_chart->setBackgroundRoundness(0);
    m_view->setRenderHint(QPainter::Antialiasing);
    m_view->setFrameShape(QFrame::NoFrame);
    m_view->setStyleSheet(u"background: transparent"_s);
    m_view->setAccessibleName(title);
    auto *box = new QVBoxLayout(this);
    box->addWidget(m_view);
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        restyle();
        rebuild();
    });
}

void ChartPanel::restyle()
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    m_chart->setBackgroundBrush(Qt::NoBrush);
    m_chart->setBackgroundPen(Qt::NoPen);
    m_chart->setPlotAreaBackgroundVisible(false);
    m_chart->setTitleFont(ui.font(13, QFont::Bold));
    m_chart->setTitleBrush(t.text);
    m_chart->legend()->setFont(ui.font(11));
    m_chart->legend()->setLabelColor(t.text);
    m_chart->setMargins(QMargins(ui.px(4), ui.px(4), ui.px(4), ui.px(4)));
    layout()->setContentsMargins(ui.px(8), ui.px(8), ui.px(8), ui.px(8));
    setMinimumHeight(ui.px(300));
}

void ChartPanel::clear()
{
    m_chart->removeAllSeries();
    for (QAbstractAxis *axis : m_chart->axes()) {
        m_chart->removeAxis(axis);
        delete axis;
    }
}

ProjectChart::ProjectChart(QWidget *parent)
    : ChartPanel(kTitle, parent)
{}

std::pair<double, double> ProjectChart::niceScale(double max, int ticks)
{
    if (!(max > 0) || !std::isfinite(max))
        return {1000, 200};
    const double rough = max / std::max(1, ticks);
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    double step = power;
    for (double m : {1.0, 2.0, 5.0, 10.0}) {
        step = m * power;
        if (step >= rough)
            break;
    }
    // Below a dollar the short form cannot tell the labels apart.
    step = std::max(step, 1.0);
    return {std::ceil(max / step) * step, step};
}

QColor ProjectChart::costColour(const QColor &accent)
{
    // Orange, unless the finish's accent (the contract bars) is near it: then the
    // candidate whose hue stands farthest from the accent, so the bars never match.
    const std::array<QColor, 3> candidates = {QColor(0xF0, 0x9A, 0x3E), QColor(0xB0, 0x7C, 0xFF),
                                              QColor(0x4C, 0xBD, 0xFF)};
    const auto distance = [&](const QColor &c) {
        if (accent.hsvHue() < 0) // a grey accent has no hue to clash with
            return 180;
        const int d = std::abs(c.hsvHue() - accent.hsvHue()) % 360;
        return std::min(d, 360 - d);
    };
    if (distance(candidates[0]) >= 60)
        return candidates[0];
    return *std::max_element(candidates.cbegin(), candidates.cend(),
                             [&](const QColor &a, const QColor &b) { return distance(a) < distance(b); });
}

void ProjectChart::setGroups(const QList<ChartGroup> &groups)
{
    if (m_built && groups == m_groups)
        return;
    m_groups = groups;
    rebuild();
}

void ProjectChart::rebuild()
{
    m_built = true;
    clear();

    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    auto *series = new QBarSeries;
    const std::array<std::pair<QString, QColor>, 3> sets = {std::pair{u"Contract"_s, t.accent},
                                                            std::pair{u"Billed"_s, QColor(0x3F, 0xB3, 0x7F)},
                                                            std::pair{u"Cost"_s, costColour(t.accent)}};
    QStringList names;
    double top = 0;
    std::array<QBarSet *, 3> bars{};
    for (size_t i = 0; i < sets.size(); ++i) {
        bars[i] = new QBarSet(sets[i].first);
        bars[i]->setColor(sets[i].second);
        bars[i]->setBorderColor(sets[i].second.darker(130));
    }
    for (const ChartGroup &g : std::as_const(m_groups)) {
        // The category axis merges equal names, so a repeated name takes a mark.
        QString name = g.project.isEmpty() ? u"—"_s : g.project;
        while (names.contains(name))
            name += u'\u200B';
        names << name;
        const double values[3] = {dollars(g.contract), dollars(g.billed), dollars(g.cost)};
        for (size_t i = 0; i < 3; ++i) {
            bars[i]->append(values[i]);
            top = std::max(top, values[i]);
        }
    }
    for (QBarSet *set : bars)
        series->append(set);
    series->setBarWidth(0.8);
    m_chart->addSeries(series);

    auto *projects = new QBarCategoryAxis;
    projects->setTitleText(u"Project"_s);
    projects->setTitleVisible(false);
    projects->append(names);
    m_chart->addAxis(projects, Qt::AlignBottom);
    series->attachAxis(projects);

    // The value axis is a category axis so that its labels can be the short money form.
    const auto [max, step] = niceScale(top);
    auto *amounts = new QCategoryAxis;
    amounts->setRange(0, max);
    amounts->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
    amounts->setStartValue(0);
    amounts->append(Fmt::shortMoney(0), 0);
    for (int k = 1; k * step <= max + step / 2; ++k)
        amounts->append(Fmt::shortMoney(k * step), k * step);
    m_chart->addAxis(amounts, Qt::AlignLeft);
    series->attachAxis(amounts);

    for (QAbstractAxis *axis : m_chart->axes()) {
        axis->setLabelsFont(ui.font(10));
        axis->setLabelsColor(t.dim);
        QColor grid = t.dim;
        grid.setAlphaF(0.25);
        axis->setGridLineColor(grid);
        axis->setLinePenColor(grid);
    }
    projects->setGridLineVisible(false);
}

QStringList ProjectChart::texts() const
{
    QStringList out{m_chart->title()};
    for (QAbstractSeries *s : m_chart->series())
        if (auto *bars = qobject_cast<QBarSeries *>(s))
            for (QBarSet *set : bars->barSets())
                out << set->label();
    for (QAbstractAxis *axis : m_chart->axes()) {
        out << axis->titleText();
        if (auto *c = qobject_cast<QCategoryAxis *>(axis))
            out << c->categoriesLabels();
        else if (auto *b = qobject_cast<QBarCategoryAxis *>(axis))
            out << b->categories();
    }
    return out;
}
