#pragma once
#include "look/chrome.h"
#include <QtCore/QList>

class QChart;
class QChartView;

// One group of the chart: a project's name and its three amounts in cents.
struct ChartGroup
{
    QString project;
    qint64 contract = 0;
    qint64 billed = 0;
    qint64 cost = 0;
    bool operator==(const ChartGroup &) const = default;
};

// A panel holding one chart in the finish's colours and the zoom's sizes; the
// chart is restyled and rebuilt whenever the look changes.
class ChartPanel : public FWPanel
{
    Q_OBJECT
public:
    QChart *chart() const { return m_chart; }

protected:
    ChartPanel(const QString &title, QWidget *parent);
    // Puts the series and axes back from what the panel shows.
    virtual void rebuild() = 0;
    // Takes every series and axis off the chart, for a rebuild.
    void clear();
    QChart *m_chart;

private:
    void restyle();
    QChartView *m_view;
};

// The grouped bar chart "Contract · billed · cost by project": per project
// three bars side by side, amounts in dollars, the amount axis labelled in
// the short money form.
class ProjectChart : public ChartPanel
{
    Q_OBJECT
public:
    explicit ProjectChart(QWidget *parent = nullptr);
    // Shows these groups; the chart is rebuilt only when they differ from the last.
    void setGroups(const QList<ChartGroup> &groups);
    const QList<ChartGroup> &groups() const { return m_groups; }
    // Every text the chart draws: title, series names and axis labels.
    QStringList texts() const;
    // The cost bars' colour: one that the contract bars (the finish's accent) never match.
    static QColor costColour(const QColor &accent);

    // The top of the amount axis and its step, in dollars: a round step of
    // 1, 2 or 5 times a power of ten, with at most `ticks` steps up to `max`.
    static std::pair<double, double> niceScale(double max, int ticks = 5);

private:
    void rebuild() override;
    QList<ChartGroup> m_groups;
    bool m_built = false;
};
