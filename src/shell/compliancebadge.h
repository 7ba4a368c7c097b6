#pragma once
#include "calc/rules.h"
#include "store/rec.h"

#include <QtWidgets/QWidget>

// Where a compliance record stands today: its `expires` date against 30 warning days.
Calc::Compliance complianceOf(const Rec &rec);

// A capsule with a certificate's standing: "Expired", "12d left", "No date" or "OK".
class ComplianceBadge : public QWidget
{
    Q_OBJECT
public:
    explicit ComplianceBadge(const Rec &rec, QWidget *parent = nullptr);
    // Re-reads the standing of `rec`.
    void setRecord(const Rec &rec);
    QString text() const { return m_text; }
    QColor color() const { return m_color; }
    QSize sizeHint() const override;

    // The capsule's text for a standing.
    static QString textOf(const Calc::Compliance &c);
    // The capsule's colour for a standing.
    static QColor colorOf(const Calc::Compliance &c);

protected:
    void paintEvent(QPaintEvent *) override;

private:
    QString m_text;
    QColor m_color;
};
