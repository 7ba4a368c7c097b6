#pragma once
#include "look/buttons.h"

#include <functional>

// The "Print" button of a screen: prints its own document, whatever is in front.
class PrintButton : public FWChromeButton
{
    Q_OBJECT
public:
    // `print` runs the print dialog for the document titled `title`.
    PrintButton(const QString &title, const std::function<void()> &print, bool compact = false,
                bool prominent = false, QWidget *parent = nullptr);
    // The help text: what is printed and how to reach PDF.
    static QString help(const QString &title);
};
