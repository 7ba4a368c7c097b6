#pragma once
#include "moneygrid.h"

#include <QtCore/QHash>

class FWChromeButton;
class PayAppDetail;
class PayAppRow;
class Printable;
class PrintButton;
class QLabel;
class SOVEditor;
struct PrintJob;

// The pay applications of the chosen project: the list, newest last, the
// schedule of values behind its toggle, and the selected application's detail.
class PayAppScreen : public ProjectScreen
{
    Q_OBJECT
public:
    explicit PayAppScreen(const ScreenContext &ctx, QWidget *parent = nullptr);
    // Registers the screen of the module "payapps".
    static void registerScreen();
    void refresh() override;

    // "New Pay App": the next application of the project, selected.
    void newApp();
    // Shows or hides the schedule of values.
    void toggleSOV();
    bool showSOV() const { return m_showSOV; }

    // The project's applications by number, ties in list order.
    static QList<Rec> apps(const DB &db, const QString &projectId);
    // The one Nav selects, if it still exists, otherwise the last; none without applications.
    static std::optional<Rec> selected(const QList<Rec> &apps, const QString &selectedId);
    // What Print runs: the G702 / G703 of the application.
    static PrintJob printJob(DB &db, const QString &payAppId);

    // Parts, for tests.
    PayAppDetail *detail() const { return m_detail; }
    SOVEditor *sovEditor() const { return m_sov; }
    QLabel *emptyMessage() const { return m_empty; }
    FWChromeButton *sovButton() const { return m_sovButton; }
    FWChromeButton *newButton() const { return m_new; }
    // The ids of the listed applications, in order.
    QStringList listed() const { return m_order; }
    // Selects an application as a click on its row does.
    void select(const QString &payAppId);
    // Moves the selection as the key (an arrow, Home/End, Page Up/Down) does in the list.
    void step(int key);
    // The list of applications, the keyboard's stop for choosing one.
    QWidget *list() const { return m_list; }

private:
    bool m_showSOV = false;
    FWChromeButton *m_sovButton;
    FWChromeButton *m_new;
    PrintButton *m_print;
    Printable *m_printable;
    SOVEditor *m_sov = nullptr;
    QLabel *m_empty;
    QWidget *m_list;
    QVBoxLayout *m_listRows;
    QHash<QString, PayAppRow *> m_rows;
    QStringList m_order;
    QVBoxLayout *m_detailBox;
    PayAppDetail *m_detail = nullptr;
    QString m_printedId;
};
