#pragma once
#include "refreshable.h"

#include "catalog/moduledef.h"
#include "store/rec.h"

#include <QtCore/QDate>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QWidget>

#include <functional>

class DB;
class RecBinding;
class QDateEdit;
class QStackedLayout;
class FWChromeButton;
class FWSwitch;

// A two-way view of one text: what an editor shows and where its edits go.
struct TextBinding
{
    std::function<QString()> get;
    std::function<void(const QString &)> set;

    // The binding of a stored field: every edit goes through the record binding.
    static TextBinding of(const RecBinding &binding);
    // A binding over a text the caller owns.
    static TextBinding local(QString *text);
};

// The look shared by the themed inputs: a rounded well of the finish, red-edged on an error.
namespace FieldLook {
// Styles `w` (a line edit, text edit or combo box) for the current finish and zoom.
void apply(QWidget *w, bool error = false, bool mono = false);
// A thin scroll bar of the finish instead of the platform's grey one.
void thinScrollBar(QWidget *bar);
// Both bars of `area` thin, kept in step with the finish and zoom.
void thinScrollBars(QAbstractScrollArea *area);
} // namespace FieldLook

// A one-line text box; edits go straight through the binding.
class ThemedTextField : public QLineEdit, public Refreshable
{
    Q_OBJECT
public:
    ThemedTextField(const TextBinding &value, const QString &placeholder = {}, bool mono = false,
                    QWidget *parent = nullptr);
    // Takes the bound text unless the user is typing here.
    void refresh() override;
    // What the box may hold: a text it refuses is never stored, and when the
    // user leaves the box on one, the box and the store go back to the text it
    // had when the user came in (a state's "Co" on the way to "Colorado" is no
    // answer) and says why.
    using Check = std::function<std::pair<bool, QString>(const QString &typed, QString *stored)>;
    void setCheck(Check check) { m_check = std::move(check); }

Q_SIGNALS:
    // The user left the box on a text it refuses; `message` says why and what was kept.
    void refused(const QString &message);

protected:
    void focusInEvent(QFocusEvent *e) override;

private:
    TextBinding m_value;
    bool m_mono;
    Check m_check;
    QString m_original;
};

// A text box of several lines; line breaks are kept.
class ThemedLongText : public QPlainTextEdit, public Refreshable
{
    Q_OBJECT
public:
    ThemedLongText(const TextBinding &value, qreal height = 70, QWidget *parent = nullptr);
    void refresh() override;

private:
    TextBinding m_value;
    qreal m_height;
    bool m_updating = false;
};

// A pick list of (value, label) options; an unknown stored value reads "Choose…" and is kept.
class ThemedChoice : public QComboBox, public Refreshable
{
    Q_OBJECT
public:
    using Options = QList<std::pair<QString, QString>>;
    ThemedChoice(const TextBinding &value, const Options &options, QWidget *parent = nullptr);
    // Replaces the options when they differ, keeping the shown value.
    void setOptions(const Options &options);
    const Options &options() const { return m_options; }
    // The label on the closed face: the chosen option's, or "Choose…".
    QString shownLabel() const;
    void refresh() override;

private:
    TextBinding m_value;
    Options m_options;
};

// A day: "Set date" when empty, else a day picker with a button that clears it.
class ThemedDate : public QWidget, public Refreshable
{
    Q_OBJECT
public:
    explicit ThemedDate(const TextBinding &value, QWidget *parent = nullptr);
    void refresh() override;
    // While no date is stored: the date the value comes to all the same (a task's
    // start worked out from its predecessors), shown on the Set face with a link
    // symbol and `why` as its tip, and stored when Set is chosen. An invalid date
    // brings back the plain "Set date".
    void setSuggestion(const QDate &date, const QString &why);
    // The narrowest picker that shows every date of the year whole at the current zoom.
    static int pickerWidth();
    // The picker with its clear button: what a column of fixed width must allow.
    static int fullWidth();
    // Names the parts for a screen reader after the field's visible label.
    void setLabel(const QString &label);
    // The parts, for tests and focus handling.
    FWChromeButton *setButton() const { return m_set; }
    QDateEdit *picker() const { return m_picker; }
    FWChromeButton *clearButton() const { return m_clear; }

private:
    TextBinding m_value;
    QStackedLayout *m_stack;
    FWChromeButton *m_set;
    QWidget *m_pickerRow;
    QDateEdit *m_picker;
    FWChromeButton *m_clear;
    QDate m_suggested;
    bool m_updating = false;
};

// The control for one field definition, bound to one text.
class FieldEditor : public QWidget, public Refreshable
{
    Q_OBJECT
public:
    // `project` limits refIn lists; `compact` is the form inside a line grid.
    FieldEditor(DB &db, const FD &fd, const TextBinding &value, const QString &project, bool compact,
                QWidget *parent = nullptr);
    // Re-reads the value, and for references the option list.
    void refresh() override;
    // The input control made for the field.
    QWidget *control() const { return m_control; }
    // The label shown beside the control, which a screen reader says for it
    // (the field's own label until a form shows another).
    void setLabel(const QString &label);
    void setProject(const QString &project);

private:
    void showRefusal(const QString &message);
    DB &m_db;
    FD m_fd;
    class QLabel *m_refusal = nullptr;
    TextBinding m_value;
    QString m_project;
    QWidget *m_control = nullptr;
    Refreshable *m_refreshable = nullptr;
    FWSwitch *m_switch = nullptr;
};
