#include "accessiblecontrols.h"

#include "look/segment.h"

#include <QtCore/QPointer>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

namespace {

// A segmented control is a list of tabs, one chosen; a reader can choose another.
class SegmentTabAccess : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    SegmentTabAccess(FWSegment *segment, int index)
        : m_segment(segment)
        , m_index(index)
    {}
    bool isValid() const override { return m_segment && m_index < m_segment->labels().size(); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return parent() ? parent()->window() : nullptr; }
    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(m_segment); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QString text(QAccessible::Text t) const override
    {
        return t == QAccessible::Name && m_segment ? m_segment->labels().value(m_index) : QString();
    }
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override
    {
        if (!m_segment)
            return {};
        const QRect area = m_segment->segmentArea(m_index);
        return {m_segment->mapToGlobal(area.topLeft()), area.size()};
    }
    QAccessible::Role role() const override { return QAccessible::PageTab; }
    QAccessible::State state() const override
    {
        QAccessible::State s;
        s.selectable = true;
        s.focusable = false;
        if (!m_segment)
            return s;
        s.selected = s.checked = m_segment->current() == m_index;
        s.invisible = !m_segment->isVisible();
        s.disabled = !m_segment->isEnabled();
        return s;
    }
    void *interface_cast(QAccessible::InterfaceType t) override
    {
        return t == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString &name) override
    {
        if (name == pressAction() && m_segment && m_segment->isEnabled())
            m_segment->choose(m_index);
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    QPointer<FWSegment> m_segment;
    int m_index;
};

class SegmentAccess : public QAccessibleWidget
{
public:
    explicit SegmentAccess(FWSegment *segment)
        : QAccessibleWidget(segment, QAccessible::PageTabList)
    {}
    ~SegmentAccess() override
    {
        for (const QAccessible::Id id : std::as_const(m_tabs))
            QAccessible::deleteAccessibleInterface(id);
    }
    QString text(QAccessible::Text t) const override
    {
        if (t == QAccessible::Name && isValid() && widget()->accessibleName().isEmpty())
            return segment()->labels().join(u" or "_s);
        return QAccessibleWidget::text(t);
    }
    int childCount() const override { return isValid() ? int(segment()->labels().size()) : 0; }
    QAccessibleInterface *child(int index) const override
    {
        if (index < 0 || index >= childCount())
            return nullptr;
        while (m_tabs.size() <= index)
            m_tabs.append(QAccessible::registerAccessibleInterface(
                new SegmentTabAccess(segment(), int(m_tabs.size()))));
        return QAccessible::accessibleInterface(m_tabs.at(index));
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        for (int i = 0; i < m_tabs.size(); ++i)
            if (QAccessible::accessibleInterface(m_tabs.at(i)) == child)
                return i;
        return -1;
    }
    QAccessibleInterface *childAt(int x, int y) const override
    {
        for (int i = 0; i < childCount(); ++i)
            if (child(i)->rect().contains(x, y))
                return child(i);
        return nullptr;
    }

private:
    FWSegment *segment() const { return static_cast<FWSegment *>(widget()); }
    mutable QList<QAccessible::Id> m_tabs;
};

// A symbol beside words that say the same (a title's, a notice's, a heading's)
// is decoration: a reader passes over it, as over an image marked so on a page.
// Judged when the label is first asked about, which the screens do after
// giving it its symbol.
class DecorationAccess : public QAccessibleWidget
{
public:
    explicit DecorationAccess(QLabel *label)
        : QAccessibleWidget(label, QAccessible::Graphic)
    {}
    QAccessible::State state() const override
    {
        QAccessible::State s = QAccessibleWidget::state();
        s.invisible = true;
        return s;
    }
};

bool decorative(const QLabel *label)
{
    return label->text().isEmpty() && !label->pixmap().isNull() && label->accessibleName().isEmpty() &&
           label->toolTip().isEmpty();
}

// A pick list is called by its label and says its choice as its value. (The
// toolkit's own names a closed list by its choice alone, leaving the label to
// a relation many forms here have no label widget for.)
class ChoiceAccess : public QAccessibleWidget
{
public:
    explicit ChoiceAccess(QComboBox *box)
        : QAccessibleWidget(box, QAccessible::ComboBox)
    {}
    QString text(QAccessible::Text t) const override
    {
        if (!isValid())
            return {};
        const QString shown = box()->currentIndex() < 0 ? box()->placeholderText() : box()->currentText();
        if (t == QAccessible::Value)
            return shown;
        if (t == QAccessible::Name)
            return box()->accessibleName().isEmpty() ? shown : box()->accessibleName();
        return QAccessibleWidget::text(t);
    }
    int childCount() const override { return isValid() && box()->view() ? 1 : 0; }
    QAccessibleInterface *child(int index) const override
    {
        return index == 0 && childCount() ? QAccessible::queryAccessibleInterface(box()->view()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return childCount() && child && child->object() == box()->view() ? 0 : -1;
    }
    QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }
    void doAction(const QString &name) override
    {
        if (isValid() && (name == showMenuAction() || name == pressAction()))
            box()->showPopup();
    }

private:
    QComboBox *box() const { return static_cast<QComboBox *>(widget()); }
};

} // namespace

namespace ControlAccess {

QAccessibleInterface *segment(FWSegment *segment)
{
    return new SegmentAccess(segment);
}

QAccessibleInterface *choice(QComboBox *box)
{
    return box->isEditable() ? nullptr : new ChoiceAccess(box);
}

QAccessibleInterface *decoration(QLabel *label)
{
    return decorative(label) ? new DecorationAccess(label) : nullptr;
}

} // namespace ControlAccess
