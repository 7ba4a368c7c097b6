// The names a screen reader says for the shell's controls: every field editor
// after its label, the header's menus with what is chosen, icon buttons by
// their tooltip.
#include "testmain.h"

#include "catalog/moduledef.h"
#include "look/buttons.h"
#include "shell/fieldeditors.h"
#include "shell/headerbar.h"
#include "shell/numberfield.h"
#include "store/db.h"

#include <QtGui/QAccessible>
#include <QtWidgets/QDateEdit>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>

using namespace Qt::StringLiterals;

namespace {
// The widget a person types or picks in, inside the control a field editor made.
QWidget *input(QWidget *control)
{
    if (auto *number = qobject_cast<NumberField *>(control))
        return number->box();
    if (auto *date = qobject_cast<ThemedDate *>(control))
        return date->picker();
    return control;
}
} // namespace

class AccessNamesTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fieldEditorIsNamedByItsLabel_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("stored");
        QTest::newRow("text") << int(FT::text) << u"Main St"_s;
        QTest::newRow("time") << int(FT::time) << u"07:30"_s;
        QTest::newRow("long text") << int(FT::longText) << u"Gate code 2500"_s;
        QTest::newRow("money") << int(FT::money) << u"125000"_s;
        QTest::newRow("number") << int(FT::number) << u"12"_s;
        QTest::newRow("percent") << int(FT::percent) << u"10"_s;
        QTest::newRow("date") << int(FT::date) << u"2026-11-02"_s;
        QTest::newRow("empty date") << int(FT::date) << QString();
        QTest::newRow("switch") << int(FT::boolean) << u"1"_s;
    }
    void fieldEditorIsNamedByItsLabel()
    {
        QFETCH(int, kind);
        QFETCH(QString, stored);
        DB db;
        const FT type =
            kind == FT::choice ? FT::makeChoice({u"Residential"_s, u"Commercial"_s}) : FT::of(FT::Case(kind));
        const FD fd{u"field"_s, u"Job address"_s, type};
        QString value = stored;
        FieldEditor editor(db, fd, TextBinding::local(&value), QString(), false);
        editor.show();
        QAccessibleInterface *i = QAccessible::queryAccessibleInterface(input(editor.control()));
        QVERIFY(i);
        QCOMPARE(i->text(QAccessible::Name), u"Job address"_s);
        if (auto *date = qobject_cast<ThemedDate *>(editor.control())) {
            QCOMPARE(date->setButton()->accessibleName(), u"Job address: Set date"_s);
            QCOMPARE(date->clearButton()->accessibleName(), u"Clear Job address"_s);
        }
        // A form that shows another label renames every part.
        editor.setLabel(u"Site"_s);
        QCOMPARE(i->text(QAccessible::Name), u"Site"_s);
    }

    // A field refuses what it cannot hold with a message under it, and the
    // store keeps the last good value; a good value clears the message.
    void fieldRefusesInPlace_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message"); // empty: taken
        QTest::addColumn<QString>("stored");
        QTest::newRow("retainage over 100") << u"retainage"_s << int(FT::percent) << u"150"_s
                                            << u"Must be from 0 to 100 %. Kept 10."_s << u"10"_s;
        QTest::newRow("retainage below 0") << u"retainage"_s << int(FT::percent) << u"-5"_s
                                           << u"Must be from 0 to 100 %. Kept 10."_s << u"10"_s;
        QTest::newRow("retainage taken")
            << u"retainage"_s << int(FT::percent) << u"5"_s << QString() << u"5"_s;
        QTest::newRow("state by name")
            << u"state"_s << int(FT::text) << u"Colorado"_s
            << u"Not a US state. Use its two letters, such as CO. Kept 10."_s << u"10"_s;
        QTest::newRow("state taken") << u"state"_s << int(FT::text) << u"ca"_s << QString() << u"CA"_s;
    }
    void fieldRefusesInPlace()
    {
        QFETCH(QString, key);
        QFETCH(int, kind);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        QFETCH(QString, stored);
        DB db;
        // The store starts at "10" for both, an odd state, so "Kept" shows what it kept.
        QString value = u"10"_s;
        FieldEditor editor(db, {key, u"Field"_s, FT::of(FT::Case(kind))}, TextBinding::local(&value), {},
                           false);
        editor.show();
        editor.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&editor));
        QLineEdit *box = kind == FT::text ? qobject_cast<QLineEdit *>(editor.control())
                                          : qobject_cast<NumberField *>(editor.control())->box();
        QVERIFY(box);
        box->setFocus();
        box->selectAll();
        QTest::keyClicks(box, typed);
        QTest::keyClick(box, Qt::Key_Return);
        QCOMPARE(value, stored);
        QString shown;
        if (auto *number = qobject_cast<NumberField *>(editor.control()))
            shown = number->error().value_or(QString());
        else if (auto *refusal = editor.findChild<QLabel *>(u"refusal"_s); refusal && refusal->isVisible())
            shown = refusal->text();
        QCOMPARE(shown, message);
    }

    void headerMenuSaysWhatIsChosen_data()
    {
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("name");
        QTest::newRow("company") << u"Company"_s << u"Acme Builders"_s << u"Company: Acme Builders"_s;
        QTest::newRow("long project") << u"Project"_s << u"Monument Ridge Clubhouse and Pool House"_s
                                      << u"Project: Monument Ridge Clubhouse and Pool House"_s;
        QTest::newRow("nothing chosen") << u"Project"_s << QString() << u"Project"_s;
    }
    void headerMenuSaysWhatIsChosen()
    {
        QFETCH(QString, caption);
        QFETCH(QString, value);
        QFETCH(QString, name);
        QMenu menu;
        HeaderMenuButton button(caption, u"building.2.fill"_s, &menu);
        button.setValue(u"Someone else"_s);
        button.setValue(value);
        QCOMPARE(button.accessibleName(), name);
        button.setCaption(u"Signed in"_s);
        QVERIFY(button.accessibleName().startsWith(u"Signed in"_s));
    }

    // A symbol-only button is named by its tooltip until named otherwise; one with words keeps them.
    void iconButtonIsNamedByItsTooltip()
    {
        FWChromeButton symbol(QString(), u"minus.circle.fill"_s);
        symbol.setToolTip(u"Remove task"_s);
        QCOMPARE(symbol.accessibleName(), u"Remove task"_s);
        symbol.setToolTip(u"Remove line"_s);
        QCOMPARE(symbol.accessibleName(), u"Remove line"_s);
        symbol.setAccessibleName(u"Remove task Dig"_s);
        symbol.setToolTip(u"Remove"_s);
        QCOMPARE(symbol.accessibleName(), u"Remove task Dig"_s);

        FWChromeButton words(u"Print"_s, u"printer"_s);
        words.setToolTip(u"Print the schedule"_s);
        QVERIFY(words.accessibleName().isEmpty());
        QCOMPARE(QAccessible::queryAccessibleInterface(&words)->text(QAccessible::Name), u"Print"_s);
    }
};

TRESTLE_TEST(AccessNamesTests);
#include "accessnamestests.moc"
