#pragma once
#include <QtCore/QList>
#include <QtWidgets/QLayout>

// Lays its items out left to right and wraps to a new row when the width runs
// out, so a row of buttons never makes its column wider.
class FlowLayout : public QLayout
{
public:
    explicit FlowLayout(QWidget *parent);
    ~FlowLayout() override;
    void addItem(QLayoutItem *item) override;
    int count() const override;
    QLayoutItem *itemAt(int i) const override;
    QLayoutItem *takeAt(int i) override;
    Qt::Orientations expandingDirections() const override;
    bool hasHeightForWidth() const override;
    int heightForWidth(int width) const override;
    void setGeometry(const QRect &rect) override;
    QSize sizeHint() const override;
    QSize minimumSize() const override;

private:
    // Places the items in `rect` (or only measures); the height used.
    int place(const QRect &rect, bool apply) const;

    QList<QLayoutItem *> m_items;
};
