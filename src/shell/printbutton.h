#pragma once
#include "look/buttons.h"

#include "documents/printsource.h"

// The "Print" button of a screen: prints its own job, whatever is in front.
class PrintButton : public FWChromeButton
{
    Q_OBJECT
public:
    // Runs `job` through the print dialog when clicked; its title names it in the help text.
    explicit PrintButton(const PrintJob &job, bool compact = false, bool prominent = false,
                         QWidget *parent = nullptr);
    // Changes what the button prints, and its help text with it.
    void setJob(const PrintJob &job);
    const PrintJob &job() const { return m_job; }
    // The help text: what is printed and how to reach PDF.
    static QString help(const QString &title);

private:
    PrintJob m_job;
};
