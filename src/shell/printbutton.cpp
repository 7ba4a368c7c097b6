#include "printbutton.h"

#include "printengine.h"

using namespace Qt::StringLiterals;

PrintButton::PrintButton(const PrintJob &job, bool compact, bool prominent, QWidget *parent)
    : FWChromeButton(u"Print"_s, u"printer.fill"_s, parent)
{
    setCompact(compact);
    setProminent(prominent);
    setJob(job);
    connect(this, &QAbstractButton::clicked, this, [this] { PrintEngine::run(m_job, window()); });
}

void PrintButton::setJob(const PrintJob &job)
{
    m_job = job;
    setToolTip(help(job.title));
}

QString PrintButton::help(const QString &title)
{
    return u"Print "_s + title + u" — preview, choose a printer, or PDF ▸ Save as PDF (Ctrl+P)"_s;
}
