#include "serverbar.h"

#include "notice.h"

#include "calc/fmt.h"
#include "catalog/modules.h"
#include "look/buttons.h"
#include "look/fwui.h"
#include "store/db.h"
#include "store/server/pg.h"
#include "store/server/serverlink.h"
#include "store/server/serversync.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLineEdit>

using namespace Qt::StringLiterals;

std::pair<QString, QString> ServerBar::fieldValue(const DB &db, const QString &recId, const QString &key,
                                                  const QString &value)
{
    const Rec *rec = db.find(recId);
    const QList<FD> *fields = rec ? Modules::fieldsOf(rec->kind) : nullptr;
    if (fields)
        for (const FD &fd : *fields)
            if (fd.key == key) {
                Rec copy = *rec;
                copy.f.insert(key, value);
                const QString text = value.isEmpty() ? u"(blank)"_s : Fmt::value(db, copy, fd);
                return {fd.label, text};
            }
    if (key == u"project")
        return {u"Project"_s, value.isEmpty() ? u"(blank)"_s : db.label(value)};
    return {key, value.isEmpty() ? u"(blank)"_s : value};
}

namespace {
QString named(const DB &db, const SeatNotice &n)
{
    QString label = db.label(n.recId);
    if (label.isEmpty())
        label = n.copy.f.value(u"name");
    if (label.isEmpty())
        label = n.copy.f.value(u"title");
    const QString kind = db.find(n.recId) ? db.find(n.recId)->kind : n.copy.kind;
    const ModuleDef *m = Modules::ofKind(kind);
    const QString what = m ? m->title : kind;
    return label.isEmpty() ? what : what + u" “"_s + label + u"”"_s;
}
} // namespace

ServerBar::ServerBar(DB &db, ServerSync *sync, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_sync(sync)
    , m_box(new QVBoxLayout(this))
{
    setObjectName(u"serverBar"_s);
    m_box->setSpacing(FWUI::shared().px(6));
    if (m_sync) {
        connect(m_sync, &ServerSync::stateChanged, this, &ServerBar::rebuild);
        connect(m_sync, &ServerSync::noticesChanged, this, &ServerBar::rebuild);
    }
    rebuild();
}

QString ServerBar::offlineText(qsizetype waiting)
{
    return u"Working offline — "_s + QString::number(waiting) +
           (waiting == 1 ? u" change"_s : u" changes"_s) + u" will be sent when the company server is back"_s;
}

QString ServerBar::describe(const DB &db, const ServerSync &sync, const SeatNotice &n)
{
    const QString who = n.by.isEmpty() ? u"another seat"_s : sync.person(n.by);
    const QString when = n.at.isValid() ? u" at "_s + n.at.toLocalTime().toString(u"h:mm AP"_s) : QString();
    switch (n.kind) {
    case SeatNotice::Replaced: {
        const auto [field, mine] = fieldValue(db, n.recId, n.field, n.mine);
        const QString theirs = fieldValue(db, n.recId, n.field, n.theirs).second;
        return u"Your "_s + field + u" on "_s + named(db, n) + u" (" + mine + u") was replaced by "_s +
               theirs + u": changed by "_s + who + when + u'.';
    }
    case SeatNotice::RemovedElsewhere:
        return named(db, n) + u" was removed by "_s + who + when + u"; your changes to it were not kept."_s;
    case SeatNotice::KeptAfterRemove:
        return named(db, n) + u" was changed by "_s + who + when +
               u" after you removed it, so it was kept."_s;
    case SeatNotice::Renumbered:
        return u"Number "_s + n.mine + u" of "_s + named(db, n) +
               u" was taken on another seat; the company server gave it number "_s + n.theirs + u'.';
    case SeatNotice::Refused:
        return u"The company server refused your change to "_s + named(db, n) + u": "_s + n.message + u'.';
    case SeatNotice::RoleChanged:
        return u"Your role is now "_s + n.theirs + u" (it was "_s + n.mine +
               u"); Trestle read the company again as that role allows."_s;
    }
    return QString();
}

QStringList ServerBar::texts() const
{
    QStringList out;
    for (const Notice *n : findChildren<Notice *>())
        out.append(n->text());
    return out;
}

void ServerBar::rebuild()
{
    while (QLayoutItem *item = m_box->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    const FWUI &ui = FWUI::shared();
    m_box->setContentsMargins(ui.px(14), ui.px(8), ui.px(14), 0);
    if (!m_sync) {
        hide();
        return;
    }
    bool any = false;
    const qsizetype waiting = m_sync->waiting();
    if (m_sync->state() == ServerSync::State::Offline) {
        // Why the seat is offline is said in words, and a refused password can be given again here.
        QString problem = m_sync->problem();
        if (!problem.isEmpty())
            problem[0] = problem[0].toUpper();
        QString text = problem + u'.';
        if (waiting > 0)
            text = offlineText(waiting) + u". "_s + text;
        auto *offline = new Notice(text, Notice::Tone::Warning, u"wifi.slash"_s, this);
        if (ServerLink::loginRefused(m_sync->problem())) {
            const bool out = m_sync->problem().contains(u"signed out"_s);
            auto *signIn = new FWChromeButton(out ? u"Sign In…"_s : u"Enter Password…"_s, {}, offline);
            offline->layout()->addWidget(signIn);
            connect(signIn, &QAbstractButton::clicked, this, [this] {
                bool ok = false;
                const QString password =
                    QInputDialog::getText(this, u"Company Server Password"_s,
                                          u"Password for "_s + Pg::describe(m_sync->conninfo()) + u':',
                                          QLineEdit::Password, QString(), &ok);
                if (ok && !password.isEmpty())
                    m_sync->setPassword(password);
            });
        }
        m_box->addWidget(offline);
        any = true;
    }
    const QList<SeatNotice> notices = m_sync->notices();
    for (qsizetype i = 0; i < notices.size(); ++i) {
        const SeatNotice &n = notices.at(i);
        auto *notice =
            new Notice(describe(m_db, *m_sync, n), Notice::Tone::Warning, u"person.2.fill"_s, this);
        QString remedy;
        if (n.kind == SeatNotice::Replaced)
            remedy = u"Put Mine Back"_s;
        else if (n.kind == SeatNotice::RemovedElsewhere)
            remedy = u"Put It Back"_s;
        else if (n.kind == SeatNotice::KeptAfterRemove)
            remedy = u"Remove It"_s;
        if (!remedy.isEmpty()) {
            auto *act = new FWChromeButton(remedy, {}, notice);
            notice->layout()->addWidget(act);
            connect(act, &QAbstractButton::clicked, this, [this, i] {
                QMetaObject::invokeMethod(
                    this, [this, i] { m_sync->act(i); }, Qt::QueuedConnection);
            });
        }
        auto *dismiss = new FWChromeButton(u"Dismiss"_s, {}, notice);
        notice->layout()->addWidget(dismiss);
        connect(dismiss, &QAbstractButton::clicked, this, [this, i] {
            QMetaObject::invokeMethod(
                this, [this, i] { m_sync->dismiss(i); }, Qt::QueuedConnection);
        });
        m_box->addWidget(notice);
        any = true;
    }
    setVisible(any);
}
