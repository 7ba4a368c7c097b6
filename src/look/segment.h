#pragma once
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QWidget>

// A segmented control: a row of labels of which exactly one is chosen.
class FWSegment : public QWidget
{
    Q_OBJECT
public:
    explicit FWSegment(const QStringList &labels, QWidget *parent = nullptr);
    int current() const { return m_current; }
    // Chooses segment `index` (ignored when out of range) without a signal.
    void setCurrent(int index);
    // Chooses segment `index` as a click on it does, with the signal when it changes.
    void choose(int index);
    const QStringList &labels() const { return m_labels; }
    // Where segment `index` is drawn, in the widget's pixels.
    QRect segmentArea(int index) const { return segmentRect(index).toAlignedRect(); }
    QSize sizeHint() const override;

Q_SIGNALS:
    // The user chose another segment.
    void currentChanged(int index);

protected:
    void paintEvent(QPaintEvent *) override;
    void mousePressEvent(QMouseEvent *e) override;

private:
    QRectF segmentRect(int i) const;
    QStringList m_labels;
    int m_current = 0;
};

// An on/off switch with the accent on its track when on.
class FWSwitch : public QAbstractButton
{
    Q_OBJECT
public:
    explicit FWSwitch(QWidget *parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *) override;
};
