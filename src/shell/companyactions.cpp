#include "companyactions.h"

#include "headerbar.h"
#include "nav.h"

#include "interchange/snapshots.h"
#include "look/alert.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QMessageBox>

using namespace Qt::StringLiterals;

namespace CompanyActions {

AskName &askNameHook()
{
    static AskName hook;
    return hook;
}

Confirm &confirmHook()
{
    static Confirm hook;
    return hook;
}

std::optional<QString> rename(DB &db, const QString &id, const QString &name)
{
    std::optional<Rec> company = db.get(id);
    if (!company || company->kind != u"company")
        return u"There is no such company."_s;
    const QString clean = name.simplified();
    if (clean.isEmpty())
        return u"A company needs a name."_s;
    for (const Rec &other : db.list(u"company"_s))
        if (other.id != id && other.f.value(u"name").simplified().compare(clean, Qt::CaseInsensitive) == 0)
            return u"Another company is already called \u201C"_s + clean + u"\u201D."_s;
    company->f.insert(u"name"_s, clean);
    db.save(*company);
    return std::nullopt;
}

std::optional<QString> remove(DB &db, Nav &nav, const QString &id, QString *snapshot)
{
    const std::optional<Rec> company = db.get(id);
    if (!company || company->kind != u"company")
        return u"There is no such company."_s;
    // Everything as it stands goes into a snapshot first, so a removal can be undone.
    QString made;
    const Backup::Result taken = Snapshots::make(db, &made);
    if (!taken.ok)
        return u"No snapshot could be taken, so nothing was removed. "_s + taken.message;
    if (snapshot)
        *snapshot = made;
    db.remove(id);
    const QList<Rec> left = db.list(u"company"_s);
    if (db.companyID() == id || db.companyID().isEmpty()) {
        if (left.isEmpty()) {
            db.setCompanyID({});
            nav.setProjectID({});
            nav.setNewCompany(true);
        } else {
            HeaderBar::chooseCompany(db, nav, left.first().id);
        }
    }
    return std::nullopt;
}

void askRename(QWidget *parent, DB &db)
{
    const std::optional<Rec> company = db.company();
    if (!company)
        return;
    const QString current = company->f.value(u"name");
    AskName ask = askNameHook();
    if (!ask)
        ask = [](QWidget *p, const QString &now) -> std::optional<QString> {
            bool ok = false;
            const QString typed =
                QInputDialog::getText(p, u"Rename Company"_s, u"New name:"_s, QLineEdit::Normal, now, &ok);
            if (!ok)
                return std::nullopt;
            return typed;
        };
    const std::optional<QString> name = ask(parent, current);
    if (!name)
        return;
    if (const std::optional<QString> refused = rename(db, company->id, *name))
        FWAlert::show(parent, u"Not renamed"_s,
                      *refused + u" The company is still \u201C"_s + current + u"\u201D."_s);
}

void askRemove(QWidget *parent, DB &db, Nav &nav)
{
    const std::optional<Rec> company = db.company();
    if (!company)
        return;
    const QString name = company->f.value(u"name");
    const QString question = u"Remove \u201C"_s + name +
                             u"\u201D with all its projects, records and files? A snapshot of everything is "
                             u"taken first; File \u25B8 Restore From Snapshot brings it back."_s;
    Confirm confirm = confirmHook();
    if (!confirm)
        confirm = [](QWidget *p, const QString &q) {
            return QMessageBox::question(p, u"Remove Company"_s, q, QMessageBox::Yes | QMessageBox::No,
                                         QMessageBox::No) == QMessageBox::Yes;
        };
    if (!confirm(parent, question))
        return;
    QString snapshot;
    if (const std::optional<QString> refused = remove(db, nav, company->id, &snapshot)) {
        FWAlert::show(parent, u"Not removed"_s, *refused);
        return;
    }
    FWAlert::show(parent, u"Company removed"_s,
                  u"\u201C"_s + name + u"\u201D was removed. The snapshot taken just before is in "_s +
                      QDir::toNativeSeparators(snapshot) + u'.');
}

} // namespace CompanyActions
