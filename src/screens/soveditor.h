#pragma once
#include "shell/refreshable.h"

#include <QtWidgets/QWidget>

class DB;
class FWChromeButton;
class MoneyGrid;
class QLabel;

// The project's schedule of values, shared by all its pay applications:
// item, description and scheduled value of each line, edited in place. Lines
// made by an approved owner change order are shown but not editable.
class SOVEditor : public QWidget, public Refreshable
{
    Q_OBJECT
public:
    SOVEditor(DB &db, const QString &projectId, QWidget *parent = nullptr);
    // Shows the lines of another project.
    void setProject(const QString &projectId);
    void refresh() override;

    // The caption: "Schedule of values — total " and the sum of the scheduled values.
    QString caption() const;
    // The row key of a line: its id, marked when a change order made it.
    static QString rowKey(const QString &lineId, bool fromCO);
    // Parts, for tests.
    MoneyGrid *grid() const { return m_grid; }
    FWChromeButton *addButton() const { return m_add; }

private:
    DB &m_db;
    QString m_project;
    QLabel *m_caption;
    MoneyGrid *m_grid;
    FWChromeButton *m_add;
};
