#include "savebanner.h"

#include "failedwrites.h"

#include "notice.h"

#include "look/buttons.h"
#include "look/fwui.h"
#include "store/db.h"

#include <QtWidgets/QBoxLayout>

using namespace Qt::StringLiterals;

SaveBanner::SaveBanner(DB &db, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_notice(new Notice(QString(), Notice::red(), u"exclamationmark.triangle.fill"_s, this))
    , m_retry(new FWChromeButton(u"Try Again"_s, {}, this))
{
    setObjectName(u"saveBanner"_s);
    auto *box = new QHBoxLayout(this);
    box->addWidget(m_notice, 1);
    // The button sits on the notice, at its right end.
    m_notice->layout()->addWidget(m_retry);
    connect(m_retry, &QAbstractButton::clicked, this, [this] {
        m_db.retryUnsaved();
        FailedWrites::shared().retryAll();
    });
    connect(&db, &DB::unsavedChanged, this, &SaveBanner::sync);
    connect(&FailedWrites::shared(), &FailedWrites::changed, this, &SaveBanner::sync);
    auto margins = [this, box] {
        const FWUI &ui = FWUI::shared();
        box->setContentsMargins(ui.px(14), ui.px(8), ui.px(14), 0);
    };
    connect(&FWUI::shared(), &FWUI::changed, this, margins);
    margins();
    sync();
}

QString SaveBanner::message(qsizetype count, const QString &cause)
{
    const QString changes = count == 1 ? u"1 change is"_s : QString::number(count) + u" changes are"_s;
    QString why = cause;
    if (!why.isEmpty())
        why[0] = why[0].toUpper();
    return u"Not saved: "_s + why + u". "_s + changes +
           u" kept in this window and will be written as soon as Trestle can; it keeps trying. "
           u"Don't quit until this goes away."_s;
}

QString SaveBanner::text() const
{
    return m_notice->text();
}

void SaveBanner::sync()
{
    // The store's waiting changes and the files that could not be written are one count.
    const FailedWrites &files = FailedWrites::shared();
    const qsizetype n = m_db.unsavedCount() + files.count();
    if (n > 0)
        m_notice->setText(message(n, m_db.unsavedCount() > 0 ? m_db.unsavedCause() : files.cause()));
    setVisible(n > 0);
}
