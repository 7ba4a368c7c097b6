#pragma once
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtWidgets/QFrame>

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

    // The monospaced face at `points` before zoom, for figures.
    static QFont monoFont(qreal points, QFont::Weight weight = QFont::Normal);

protected:
    void paintEvent(QPaintEvent *) override;
    void resizeEvent(QResizeEvent *) override;

private:
    void restyle();
    void placeOverlay();

    QList<Row> m_rows;
    QGridLayout *m_grid;
    QList<QLabel *> m_labels;
    QList<QLabel *> m_amounts;
    QLabel *m_overlay;
};
