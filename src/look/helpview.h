#pragma once
#include "helppage.h"

#include <QtWidgets/QWidget>

class QLineEdit;
class QListWidget;
class QTextBrowser;

// The guide: a search box over the list of pages, and the chosen page beside it.
class FWHelpView : public QWidget
{
    Q_OBJECT
public:
    explicit FWHelpView(QList<HelpPage> pages, QWidget *parent = nullptr);

    // The pages that a search keeps, in order: all of them for a blank search,
    // otherwise those whose title or block texts contain the trimmed text, ignoring case.
    static QList<HelpPage> filtered(const QList<HelpPage> &pages, const QString &search);

    // Shows the one help window with the installed pages, raising it when already open, at the
    // page `pageId` when there is one. It opens whole on the screen of `parent`.
    static FWHelpView *showWindow(QWidget *parent, const QString &pageId = {});
    // Where a window of `size` opens over `parent`: centred on it, moved inside `screen`.
    static QRect placement(const QRect &parent, const QSize &size, const QRect &screen);

    // Types `text` into the search box.
    void setSearch(const QString &text);
    // The ids of the pages listed now, in order.
    QStringList listedIds() const;
    // Opens the page `id` when it is listed; false otherwise.
    bool openPage(const QString &id);
    // The id of the page shown, or empty.
    QString shownId() const { return m_shown; }
    // The plain text of the page shown.
    QString shownText() const;

private:
    void relist();
    void showRow(int row);
    void restyle();

    QList<HelpPage> m_pages;
    QList<HelpPage> m_listed;
    QString m_shown;
    QLineEdit *m_search;
    QListWidget *m_list;
    QTextBrowser *m_reader;
};
