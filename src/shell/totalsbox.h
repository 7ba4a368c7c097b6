#pragma once
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtWidgets/QFrame>

#include "workflows/breakdown.h"

#include <functional>
#include <optional>

class DB;

class QGridLayout;
class QLabel;

// A column of labelled amounts in cents. The last row is the total: it stands
// under a thin rule, bold, in the finish's accent.
class TotalsBox : public QFrame
{
    Q_OBJECT
public:
    using Row = std::pair<QString, qint64>;

    explicit TotalsBox(QWidget *parent = nullptr);
    // Shows `rows`, reusing the labels already there.
    void setRows(const QList<Row> &rows);
    QList<Row> rows() const { return m_rows; }
    // A short text drawn at the top right over the box (empty hides it).
    void setOverlay(const QString &text);
    QString overlay() const;

    // Makes each row's amount open into the records it is made of: `figures`
    // holds each row's figure, or an empty name for a row that opens nothing.
    void setFigures(DB &db, const QList<FigureRef> &figures);
    QWidget *amountAt(int row) const;
    // Set by the screens, which own the breakdown window: makes `amount` open
    // the figure `ref` names when it is clicked or Enter is pressed on it.
    using FigureHook =
        std::function<void(QWidget *amount, DB &db, std::function<std::optional<FigureRef>()> ref)>;
    static FigureHook &figureHook();

    // The monospaced face at `points` before zoom, for figures.
    static QFont monoFont(qreal points, QFont::Weight weight = QFont::Normal);

protected:
    void paintEvent(QPaintEvent *) override;
    void resizeEvent(QResizeEvent *) override;

private:
    void restyle();
    void placeOverlay();
    void linkFigures();

    QList<Row> m_rows;
    QGridLayout *m_grid;
    QList<QLabel *> m_labels;
    QList<QLabel *> m_amounts;
    QLabel *m_overlay;
    DB *m_db = nullptr;
    QList<FigureRef> m_figures;
};
