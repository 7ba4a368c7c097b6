#include "printbutton.h"

using namespace Qt::StringLiterals;

PrintButton::PrintButton(const QString &title, const std::function<void()> &print, bool compact,
                         bool prominent, QWidget *parent)
    : FWChromeButton(u"Print"_s, u"printer.fill"_s, parent)
{
    setCompact(compact);
    setProminent(prominent);
    setToolTip(help(title));
    connect(this, &QAbstractButton::clicked, this, [print] { print(); });
}

QString PrintButton::help(const QString &title)
{
    return u"Print "_s + title + u" — preview, choose a printer, or PDF ▸ Save as PDF (Ctrl+P)"_s;
}
