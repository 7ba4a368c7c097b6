#pragma once
#include "look/chrome.h"

#include <QtCore/QSet>

#include <optional>

class DB;
class LookLabel;
class QVBoxLayout;

// A count with its label under it, drawn large.
class Counter : public QWidget
{
    Q_OBJECT
public:
    explicit Counter(const QString &label, QWidget *parent = nullptr);
    void setCount(qsizetype n);
    qsizetype count() const { return m_n; }
    QString label() const { return m_label; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *) override;

private:
    qsizetype m_n = 0;
    QString m_label;
};

// The panel "Field pulse": the latest daily logs of a set of projects and,
// when asked for, the counts of open punch items, open RFIs and incidents.
class FieldPulse : public FWPanel
{
    Q_OBJECT
public:
    // How many daily logs the panel lists at most.
    static constexpr int kLogs = 6;

    FieldPulse(const DB &db, bool counters, QWidget *parent = nullptr);
    // Reads the store again for these projects, or every project of the company when absent.
    void refresh(const std::optional<QSet<QString>> &projects);
    // The lines of the listed logs as shown, newest first.
    const QList<QStringList> &lines() const { return m_lines; }
    // The counters in order: open punch, open RFIs, incidents; empty without counters.
    const QList<Counter *> &counters() const { return m_counters; }

private:
    const DB &m_db;
    QVBoxLayout *m_logs;
    LookLabel *m_none;
    QList<Counter *> m_counters;
    QList<QStringList> m_lines;
    bool m_shown = false;
};
