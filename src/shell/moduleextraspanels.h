#pragma once
// The panels that the record editor shows above and below a record's lines,
// one per module that needs more than its fields. Each re-reads the store on
// refresh() and hides itself when its record is gone.
#include "refreshable.h"
#include "store/rec.h"
#include "workflows/breakdown.h"

#include <QtWidgets/QWidget>

#include <functional>

class DB;
class FWChromeButton;
class Nav;
class Notice;
class QComboBox;
class QLabel;
class QLineEdit;
class QVBoxLayout;
class TotalsBox;

// The common frame: a column bound to one record of the store.
class RecordPanel : public QWidget, public Refreshable
{
    Q_OBJECT
public:
    RecordPanel(DB &db, const QString &recordId, QWidget *parent);
    // Hides the panel when the record is gone, else shows it as stored now.
    void refresh() final;

protected:
    // Shows `rec`, the record as stored now.
    virtual void present(const Rec &rec) = 0;
    QVBoxLayout *column() const { return m_column; }
    // Sets a label's face at `points` before zoom, in the text or the dim colour.
    static void styleLabel(QLabel *label, qreal points, bool dim = false);

    DB &m_db;
    QString m_id;

private:
    QVBoxLayout *m_column;
};

// A project's contract with its change orders, and the way to its hub.
class ProjectSummary : public RecordPanel
{
    Q_OBJECT
public:
    ProjectSummary(DB &db, Nav &nav, const QString &projectId, QWidget *parent = nullptr);

protected:
    void present(const Rec &project) override;

private:
    TotalsBox *m_totals;
    QLabel *m_days;
};

// The expiry warning of an insurance certificate or licence.
class ComplianceNotice : public RecordPanel
{
    Q_OBJECT
public:
    ComplianceNotice(DB &db, const QString &recordId, QWidget *parent = nullptr);
    // The warning shown, empty when the document is current or has no date.
    QString text() const;

protected:
    void present(const Rec &rec) override;

private:
    Notice *m_notice;
};

// A timecard's hours and their cost.
class TimecardHours : public RecordPanel
{
    Q_OBJECT
public:
    TimecardHours(DB &db, const QString &recordId, QWidget *parent = nullptr);
    TotalsBox *totals() const { return m_totals; }

protected:
    void present(const Rec &timecard) override;

private:
    TotalsBox *m_totals;
};

// A unit-price item's bid amount, what is earned to date, and any overrun.
class UnitItemEarned : public RecordPanel
{
    Q_OBJECT
public:
    UnitItemEarned(DB &db, const QString &recordId, QWidget *parent = nullptr);
    TotalsBox *totals() const { return m_totals; }
    // The overrun warning, empty when the installed quantity is within the bid.
    QString overrun() const;

protected:
    void present(const Rec &item) override;

private:
    TotalsBox *m_totals;
    Notice *m_overrun;
};

// "Add assembly": expands a stored cost recipe into estimate lines at a quantity.
class AssemblyAdder : public RecordPanel
{
    Q_OBJECT
public:
    AssemblyAdder(DB &db, const QString &estimateId, QWidget *parent = nullptr);
    // Adds the chosen assembly at the typed quantity; nothing with no assembly chosen.
    void addChosen();

protected:
    void present(const Rec &estimate) override;

private:
    QComboBox *m_assembly;
    QLineEdit *m_qty;
    QList<std::pair<QString, QString>> m_options;
};

// An estimate's totals, its proposal PDF and its use as the project budget.
class EstimateTotalsPanel : public RecordPanel
{
    Q_OBJECT
public:
    EstimateTotalsPanel(DB &db, Nav &nav, const QString &estimateId, QWidget *parent = nullptr);
    TotalsBox *totals() const { return m_totals; }
    // The file name the proposal is offered under, without folder.
    static QString proposalFileName(const Rec &estimate);

protected:
    void present(const Rec &estimate) override;

private:
    void saveProposal();
    TotalsBox *m_totals;
    QLabel *m_note; // how the totals are worked out
};

// A change order's totals, its four status buttons and what approving does.
class ChangeOrderPanel : public RecordPanel
{
    Q_OBJECT
public:
    ChangeOrderPanel(DB &db, const QString &coId, QWidget *parent = nullptr);
    TotalsBox *totals() const { return m_totals; }
    // The button of a status word ("approved", "pending", "rejected", "void").
    FWChromeButton *statusButton(const QString &word) const;

protected:
    void present(const Rec &co) override;

private:
    TotalsBox *m_totals;
    QList<std::pair<QString, FWChromeButton *>> m_buttons;
    QLabel *m_note;
};

// One box of totals read from a record: invoices, purchase orders, assemblies.
class TotalsPanel : public RecordPanel
{
    Q_OBJECT
public:
    using Reader = std::function<QList<std::pair<QString, qint64>>(const DB &, const Rec &)>;
    // `figures` names the figure each row opens into (none for an empty name).
    TotalsPanel(DB &db, const QString &recordId, Reader rows, QWidget *parent = nullptr,
                QStringList figures = {});
    TotalsBox *totals() const { return m_totals; }
    // The figures `names` of the record `recordId`, a row each.
    static QList<FigureRef> figuresOf(const QString &recordId, const QStringList &names);

protected:
    void present(const Rec &rec) override;

private:
    Reader m_rows;
    QStringList m_figureNames;
    TotalsBox *m_totals;
};
