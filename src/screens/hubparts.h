#pragma once
// Small pieces the dashboard screens are made of: labels that follow the
// look, a grid that reflows with the width, and a clickable row.
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QLabel>

class QGridLayout;
class QScrollArea;

// A label set in the interface font at a size and weight before zoom, in the
// text or the dim colour of the finish; it re-styles itself when the look changes.
class LookLabel : public QLabel
{
    Q_OBJECT
public:
    LookLabel(const QString &text, qreal points, QFont::Weight weight = QFont::Normal, bool dim = false,
              QWidget *parent = nullptr);
    void setDim(bool dim);

private:
    void restyle();
    qreal m_points;
    QFont::Weight m_weight;
    bool m_dim;
};

// Lays its widgets out in as many equal columns as the width allows, each
// at least `minWidth` points wide, with rows as evenly filled as that count
// allows; the columns are counted again on resize.
class ReflowGrid : public QWidget
{
    Q_OBJECT
public:
    explicit ReflowGrid(qreal minWidth, QWidget *parent = nullptr);
    // Replaces the widgets; the grid takes them over and deletes the old ones.
    void setWidgets(const QList<QWidget *> &widgets);
    const QList<QWidget *> &widgets() const { return m_widgets; }
    int columns() const { return m_columns; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    int columnsFor(int width) const;
    void relayout(int columns);
    qreal m_minWidth;
    QGridLayout *m_grid;
    QList<QWidget *> m_widgets;
    int m_columns = 0;
};

// A flat row that holds other widgets and acts as one button: it lights on
// hover and emits clicked() on a click anywhere inside it.
class ClickRow : public QAbstractButton
{
    Q_OBJECT
public:
    explicit ClickRow(QWidget *parent = nullptr);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *) override;
    void enterEvent(QEnterEvent *) override;
    void leaveEvent(QEvent *) override;

private:
    bool m_hover = false;
};

namespace HubParts {
// A vertical scroll area over `content` with a see-through background.
QScrollArea *scroller(QWidget *content, QWidget *parent);
// A panel's heading row: a symbol in the accent colour and a bold title.
QWidget *heading(const QString &symbol, LookLabel *title, QWidget *parent);
} // namespace HubParts
