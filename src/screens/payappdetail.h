#pragma once
#include "figurelink.h"
#include "shell/refreshable.h"

#include "calc/payapp.h"

#include <QtWidgets/QWidget>

class DB;
class FieldEditor;
class FWChromeButton;
class MoneyCell;
class MoneyGrid;
class Nav;
class Notice;
class NumberField;
class QGridLayout;
class QLabel;
struct TextBinding;

// One pay application: its header fields, the continuation sheet with the
// amounts typed for this period and stored, the G702 summary and its actions.
// Every figure is worked out afresh from the lines at each refresh. An approved
// or paid application is locked: its amounts can't be typed until it is set back.
class PayAppDetail : public QWidget, public Refreshable
{
    Q_OBJECT
public:
    PayAppDetail(DB &db, Nav &nav, const QString &payAppId, QWidget *parent = nullptr);
    void refresh() override;

    // The binding of a money box of the sheet: the stored text of the line's
    // `key` ("thisPeriod" or "stored"); an edit writes that field alone.
    static TextBinding lineBinding(DB &db, const QString &payAppId, const QString &sovId, const QString &key);
    // The labels of the summary lines, in order.
    static const QStringList &g702Labels();
    // The figures of the summary lines, in the order of the labels.
    static QList<qint64> g702Values(const Calc::G702 &g);

    // "Fill This Period to 100%": each line's balance billed this period.
    void fillThisPeriod();
    // Makes a lien waiver of the current payment due and goes to it.
    void waiver(bool final);
    // "Unconditional (after paid)": final only once the whole contract is billed.
    void unconditionalWaiver();

    QString payAppId() const { return m_id; }
    // Parts, for tests.
    Notice *lockNotice() const { return m_notice; }
    FieldEditor *statusEditor() const { return m_status; }
    QList<FieldEditor *> lockedFields() const { return {m_periodTo, m_retWork, m_retMat}; }
    MoneyGrid *sheet() const { return m_sheet; }
    NumberField *box(const QString &sovId, const QString &key) const;
    FWChromeButton *fillButton() const { return m_fill; }
    QList<FWChromeButton *> documentButtons() const { return {m_pdf, m_conditional, m_unconditional}; }
    // The figure shown on summary line `i` (0 is line 1, 9 is line 8).
    qint64 summaryValue(int i) const;

    // The key of the total row of the sheet.
    static QString totalKey();

private:
    // A figure of the application shown, whichever it is when the figure is opened.
    FigureLink::RefFn appFigure(const QString &name) const;
    void savePDF();
    void restyle();
    DB &m_db;
    Nav &m_nav;
    QString m_id;
    Notice *m_notice;
    QLabel *m_number;
    FieldEditor *m_status;
    FieldEditor *m_periodTo;
    FieldEditor *m_retWork;
    FieldEditor *m_retMat;
    MoneyGrid *m_sheet;
    QLabel *m_note;
    QLabel *m_summaryTitle;
    QList<QLabel *> m_summaryLabels;
    QList<MoneyCell *> m_summaryValues;
    FWChromeButton *m_pdf;
    FWChromeButton *m_fill;
    FWChromeButton *m_conditional;
    FWChromeButton *m_unconditional;
    QList<QLabel *> m_captions;
};
