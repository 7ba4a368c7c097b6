// The field editors driven by typing: the money box's rules, number cleaning,
// unknown choices, dates and switches, and typing through a store refresh.
#include "testmain.h"

#include "calc/datefmt.h"
#include "calc/money.h"
#include "catalog/modules.h"
#include "look/buttons.h"
#include "look/fwui.h"
#include "look/segment.h"
#include "shell/fieldeditors.h"
#include "shell/nav.h"
#include "shell/numberfield.h"
#include "shell/recordeditor.h"
#include "store/db.h"
#include "workflows/binding.h"

#include <QtTest/QSignalSpy>
#include <QtWidgets/QApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDateEdit>
#include <QtWidgets/QLineEdit>

using namespace Qt::StringLiterals;

namespace {

// A window holding one editor and a second box to move the focus to.
struct Harness
{
    QWidget window;
    QLineEdit *other;
    explicit Harness(QWidget *editor)
    {
        auto *box = new QVBoxLayout(&window);
        editor->setParent(&window);
        box->addWidget(editor);
        other = new QLineEdit(&window);
        box->addWidget(other);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }
};

// Replaces the box's text by typing, as a user would.
void retype(QLineEdit *box, const QString &text)
{
    box->setFocus();
    box->selectAll();
    if (text.isEmpty())
        QTest::keyClick(box, Qt::Key_Backspace);
    else
        QTest::keyClicks(box, text); // the first key replaces the selection
}

} // namespace

class RecordFieldTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { DateFmt::setToday(QDate(2026, 3, 14)); }
    void cleanup() { DateFmt::setToday(QDate()); }

    void moneyTyping_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("error");
        QTest::addColumn<QString>("shownAfter");
        const QString invalid = Money::message(ParseError::invalid);
        QTest::newRow("grouped amount")
            << u"1250"_s << u"1,234.5"_s << u"123450"_s << QString() << u"1,234.50"_s;
        QTest::newRow("emptied stores empty text")
            << u"1250"_s << QString() << QString() << QString() << QString();
        QTest::newRow("bad entry keeps the amount")
            << u"1250"_s << u"1,2x"_s << u"1250"_s << QString(invalid + u" Kept $12.50."_s) << u"12.50"_s;
        QTest::newRow("bad entry on a blank box")
            << QString() << u"abc"_s << QString() << QString(invalid + u" Kept blank."_s) << QString();
        QTest::newRow("too large") << u"500"_s << u"1000000000"_s << u"500"_s
                                   << QString(Money::message(ParseError::tooLarge) + u" Kept $5.00."_s)
                                   << u"5.00"_s;
        QTest::newRow("negative in brackets")
            << QString() << u"(5.00)"_s << u"-500"_s << QString() << u"-5.00"_s;
    }
    void moneyTyping()
    {
        QFETCH(QString, start);
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        QFETCH(QString, error);
        QFETCH(QString, shownAfter);
        QString value = start;
        auto *field = new NumberField(TextBinding::local(&value), true, u"0.00"_s);
        Harness h(field);
        retype(field->box(), typed);
        QCOMPARE(value, stored);
        QCOMPARE(field->error().value_or(QString()), error);
        QCOMPARE(field->box()->text(), typed); // the user keeps seeing what they typed
        h.other->setFocus();
        QCOMPARE(field->box()->text(), shownAfter);
        QCOMPARE(field->error().value_or(QString()), error); // the message stays up after leaving
        if (shownAfter.isEmpty())
            QCOMPARE(field->box()->placeholderText(), u"0.00"_s);
    }

    // Erasing the bad character clears the message at once and stores again.
    void moneyErrorClearsWhileTyping()
    {
        QString value = u"1250"_s;
        auto *field = new NumberField(TextBinding::local(&value), true, u"0.00"_s);
        Harness h(field);
        retype(field->box(), u"7.5x"_s);
        QVERIFY(field->error());
        QCOMPARE(value, u"1250"_s);
        QTest::keyClick(field->box(), Qt::Key_Backspace);
        QVERIFY(!field->error());
        QCOMPARE(value, u"750"_s);
    }

    void numberCleaning_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");
        QTest::newRow("percent sign") << u"10%"_s << u"10"_s;
        QTest::newRow("grouping") << u"1,500"_s << u"1500"_s;
        QTest::newRow("blanks around") << u" 2.50 "_s << u"2.5"_s;
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("unreadable keeps the value") << u"abc"_s << u"7"_s;
        QTest::newRow("infinity keeps the value") << u"inf"_s << u"7"_s;
    }
    void numberCleaning()
    {
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        QString value = u"7"_s;
        auto *field = new NumberField(TextBinding::local(&value), false, u"0"_s);
        Harness h(field);
        retype(field->box(), typed);
        QCOMPARE(value, stored);
        QVERIFY(!field->error());
    }

    // A value not in the list (as after an import) reads "Choose…" and is kept until a pick.
    void unknownChoiceSurvives()
    {
        DB db;
        db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s);
        const Rec rec = db.add(u"po"_s, {}, {}, {{u"status"_s, u"Backordered"_s}});
        const ModuleDef &m = *Modules::get(u"pos");
        FieldEditor editor(db, *m.field(u"status"), TextBinding::of(recBinding(db, rec.id, u"status"_s)), {},
                           false);
        auto *choice = qobject_cast<ThemedChoice *>(editor.control());
        QVERIFY(choice);
        QCOMPARE(choice->shownLabel(), u"Choose…"_s);
        QCOMPARE(choice->currentIndex(), -1);
        editor.refresh();
        QCOMPARE(db.get(rec.id)->f.value(u"status"), u"Backordered"_s);
        Q_EMIT choice->activated(2);
        QCOMPARE(db.get(rec.id)->f.value(u"status"), u"Received"_s);
        QCOMPARE(choice->shownLabel(), u"Received"_s);
    }

    void dateSetAndClear()
    {
        QString value;
        auto *date = new ThemedDate(TextBinding::local(&value));
        Harness h(date);
        QVERIFY(date->setButton()->isVisible());
        QTest::mouseClick(date->setButton(), Qt::LeftButton);
        QCOMPARE(value, u"2026-03-14"_s);
        QVERIFY(date->picker()->isVisible());
        QTest::mouseClick(date->clearButton(), Qt::LeftButton);
        QCOMPARE(value, QString());
        QVERIFY(date->setButton()->isVisible());
    }

    void dateByKeyboard_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QStringList>("keys"); // key sequences, or "type:" and the text
        QTest::addColumn<QString>("expected");
        QTest::newRow("a digit on Set date starts the date")
            << QString() << QStringList{u"type:1"_s} << u"2026-03-14"_s;
        QTest::newRow("a letter on Set date does nothing")
            << QString() << QStringList{u"type:x"_s} << QString();
        QTest::newRow("all selected, Delete clears")
            << u"2026-03-10"_s << QStringList{u"Ctrl+A"_s, u"Del"_s} << QString();
        QTest::newRow("all selected, Backspace clears")
            << u"2026-03-10"_s << QStringList{u"Ctrl+A"_s, u"Backspace"_s} << QString();
        QTest::newRow("Delete in one part keeps the date")
            << u"2026-03-10"_s << QStringList{u"Del"_s, u"Tab"_s} << u"2026-03-10"_s;
    }
    void dateByKeyboard()
    {
        QFETCH(QString, stored);
        QFETCH(QStringList, keys);
        QFETCH(QString, expected);
        QString value = stored;
        auto *date = new ThemedDate(TextBinding::local(&value));
        Harness h(date);
        // One stop: the clear button is for the mouse.
        QVERIFY(!(date->clearButton()->focusPolicy() & Qt::TabFocus));
        QWidget *start = stored.isEmpty() ? static_cast<QWidget *>(date->setButton()) : date->picker();
        start->setFocus();
        for (const QString &k : keys) {
            QWidget *to = QApplication::focusWidget();
            if (k.startsWith(u"type:"_s))
                QTest::keyClicks(to, k.mid(5));
            else
                QTest::keySequence(to, QKeySequence(k));
        }
        QCOMPARE(value, expected);
        if (stored.isEmpty() && !expected.isEmpty())
            QVERIFY(date->picker()->isAncestorOf(QApplication::focusWidget()) ||
                    QApplication::focusWidget() == date->picker());
    }

    void dateFitsItsFullWidth_data()
    {
        QTest::addColumn<double>("zoom");
        QTest::addColumn<QString>("date");
        QTest::newRow("smallest zoom, wide month") << 0.85 << u"2026-11-16"_s;
        QTest::newRow("actual size, widest month name") << 1.0 << u"2026-05-28"_s;
        QTest::newRow("actual size, two-digit day") << 1.0 << u"2026-09-30"_s;
        QTest::newRow("odd zoom rounds the font") << 1.1 << u"2026-11-16"_s;
        QTest::newRow("largest zoom") << 2.0 << u"2026-12-31"_s;
    }
    void dateFitsItsFullWidth()
    {
        QFETCH(double, zoom);
        QFETCH(QString, date);
        FWUI &ui = FWUI::shared();
        const double before = ui.zoom();
        ui.setZoom(zoom);
        QString value = date;
        {
            // A table column holds the control at exactly the width it asks for.
            auto *dateBox = new ThemedDate(TextBinding::local(&value));
            dateBox->setFixedWidth(ThemedDate::fullWidth());
            Harness h(dateBox);
            auto *edit = dateBox->picker()->findChild<QLineEdit *>();
            QVERIFY(edit);
            QVERIFY(dateBox->picker()->width() >= ThemedDate::pickerWidth());
            QVERIFY2(edit->width() >= edit->fontMetrics().horizontalAdvance(edit->text()),
                     qPrintable(edit->text() + u" does not fit in "_s + QString::number(edit->width())));
            QVERIFY(dateBox->clearButton()->geometry().right() < dateBox->width());
        }
        ui.setZoom(before);
    }

    void switchStoresOneOrZero()
    {
        DB db;
        QString value = u"0"_s;
        FieldEditor editor(db, FD{u"billable"_s, u"Billable"_s, FT::of(FT::boolean)},
                           TextBinding::local(&value), {}, false);
        auto *sw = qobject_cast<FWSwitch *>(editor.control());
        QVERIFY(sw && !sw->isChecked());
        sw->click();
        QCOMPARE(value, u"1"_s);
        value = u"yes"_s; // only "1" is on
        editor.refresh();
        QVERIFY(!sw->isChecked());
    }

    // The window refreshes after every keystroke's save: the box being typed in
    // keeps focus, caret and text, the other fields follow the store, and the
    // refresh itself writes nothing.
    void typingSurvivesRefresh()
    {
        DB db;
        db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s);
        Nav nav;
        const Rec rec = db.add(u"expense"_s, {}, {}, {{u"amount"_s, u"1250"_s}});
        const ModuleDef &m = *Modules::get(u"expenses");
        auto *editor = new RecordEditor(db, nav, m, rec.id);
        connect(&db, &DB::changed, editor, [editor] { editor->refresh(); });
        Harness h(editor);
        auto *amount = qobject_cast<NumberField *>(editor->fieldEditor(u"amount"_s)->control());
        QVERIFY(amount);
        retype(amount->box(), u"12"_s);
        QTest::keyClick(amount->box(), Qt::Key_Left);
        QTest::keyClicks(amount->box(), u"3"_s);
        QVERIFY(amount->box()->hasFocus());
        QCOMPARE(amount->box()->text(), u"132"_s);
        QCOMPARE(amount->box()->cursorPosition(), 2);
        QCOMPARE(db.get(rec.id)->f.value(u"amount"), u"13200"_s);

        // A change made elsewhere reaches the other fields at once.
        recBinding(db, rec.id, u"memo"_s).set(u"from elsewhere"_s);
        auto *notes = qobject_cast<ThemedLongText *>(editor->fieldEditor(u"memo"_s)->control());
        QVERIFY(notes);
        QCOMPARE(notes->toPlainText(), u"from elsewhere"_s);
        QVERIFY(amount->box()->hasFocus());

        QSignalSpy writes(&db, &DB::changed);
        editor->refresh();
        QCOMPARE(writes.count(), 0);
    }
};

TRESTLE_TEST(RecordFieldTests);
#include "recordfieldtests.moc"
