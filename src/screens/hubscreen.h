#pragma once
#include "shell/modulearea.h"

#include "look/chrome.h"
#include "store/rec.h"
#include "workflows/alerts.h"
#include "workflows/figures.h"

#include <QtCore/QDateTime>

class DB;
class Nav;
class FieldPulse;
class KPITile;
class LookLabel;
class Printable;
class ProjectChart;
class ReflowGrid;
class ScreenTitle;
class StatusPill;
class QVBoxLayout;

// A ring filled clockwise from the top by a fraction, the percentage in its
// middle and a small label under it. Fractions below 0 draw an empty ring;
// above 1 the ring is full and turns the warning colour.
class RingGauge : public QWidget
{
    Q_OBJECT
public:
    explicit RingGauge(qreal size = 64, QWidget *parent = nullptr);
    void set(double fraction, const QString &label);
    double fraction() const { return m_fraction; }
    QString label() const { return m_label; }
    // The percentage as shown: whole percent, never below 0.
    static QString percentText(double fraction);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *) override;

private:
    double m_fraction = 0;
    QString m_label;
    qreal m_size;
};

// One project on the hub: gauge, name, type and address, number and status,
// and with `money` its contract, billed and margin. A click chooses it.
class ProjectCard : public FWPanel
{
    Q_OBJECT
public:
    ProjectCard(const Rec &project, const ProjectFigures &figures, bool money, QWidget *parent = nullptr);
    // Shows the project's current fields and figures in place.
    void present(const Rec &project, const ProjectFigures &figures, bool money);
    QString projectId() const { return m_id; }
    RingGauge *gauge() const { return m_gauge; }
    // The contract, billed and margin figures, in that order.
    QList<QWidget *> figures() const;
    // The part of the time from `start` to `end` that has passed at `now`; 0
    // unless both dates read and the end is after the start.
    static double scheduleFraction(const Rec &project, const QDateTime &now);

Q_SIGNALS:
    void chosen(const QString &projectId);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QString m_id;
    RingGauge *m_gauge;
    LookLabel *m_name;
    LookLabel *m_kind;
    LookLabel *m_number;
    StatusPill *m_status;
    QWidget *m_money;
    LookLabel *m_contract;
    LookLabel *m_billed;
    LookLabel *m_margin;
};

// The hub's list of alerts: "All clear", or the count and one clickable row per alert.
class AlertsPanel : public FWPanel
{
    Q_OBJECT
public:
    AlertsPanel(Nav &nav, QWidget *parent = nullptr);
    void setAlerts(const QList<HubAlert> &alerts);
    QString headingText() const;
    // The colour an alert is drawn in.
    static QColor color(AlertColor c);

private:
    Nav &m_nav;
    LookLabel *m_heading;
    QWidget *m_headingRow;
    QVBoxLayout *m_rows;
    QList<QStringList> m_keys;
    bool m_shown = false;
};

// The Command Hub: every active project, or the chosen one, at a glance.
class HubScreen : public ShellScreen
{
    Q_OBJECT
public:
    explicit HubScreen(const ScreenContext &ctx, QWidget *parent = nullptr);
    void refresh() override;

    // The projects the hub lists: the chosen one whatever its status, or every
    // project that is not "Complete".
    static QList<Rec> listed(const DB &db, const Nav &nav);

    ScreenTitle *title() const { return m_title; }
    const QList<KPITile *> &tiles() const { return m_tiles; }
    QList<ProjectCard *> cards() const;
    ProjectChart *chart() const { return m_chart; }
    AlertsPanel *alerts() const { return m_alerts; }
    FieldPulse *pulse() const { return m_pulse; }

private:
    DB &m_db;
    Nav &m_nav;
    const ModuleDef &m_m;
    QVBoxLayout *m_box;
    ScreenTitle *m_title;
    ReflowGrid *m_tileRow;
    QList<KPITile *> m_tiles;
    ReflowGrid *m_cards;
    LookLabel *m_noProjects;
    ProjectChart *m_chart;
    AlertsPanel *m_alerts;
    FieldPulse *m_pulse;
    Printable *m_printable;
    QStringList m_cardKey;
    FiguresCache m_figures;
};
