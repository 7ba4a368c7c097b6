#pragma once
#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

class DB;
class Nav;
class HeaderBar;
class ModuleRail;
class ModuleArea;
class RecoveryScreen;
class SaveBanner;
class QDialog;

// The main view: over the blueprint backdrop, the header bar on top and the
// rail beside the module area, with the banner of unsaved changes between
// them. It redraws once per turn of the event loop after any change of the
// store, the navigation or the look. A store that did not open shows the
// recovery screen in place of all of it.
class TLMain : public QWidget
{
    Q_OBJECT
public:
    TLMain(DB &db, Nav &nav, QWidget *parent = nullptr);
    HeaderBar *header() const { return m_header; }
    ModuleRail *rail() const { return m_rail; }
    ModuleArea *area() const { return m_area; }
    SaveBanner *banner() const { return m_banner; }
    // The recovery screen, when the store did not open; else null.
    RecoveryScreen *recovery() const { return m_recovery; }
    // Asks for one refresh on the next turn; several calls in a turn make one.
    void scheduleRefresh();
    // Refreshes header, rail and module area now, and opens or closes the sheets.
    void refresh();
    // How many refreshes have run (for measuring and for checking the coalescing).
    int refreshCount() const { return m_refreshes; }

Q_SIGNALS:
    void helpRequested();

protected:
    void paintEvent(QPaintEvent *) override;

private:
    void applyLook();
    void syncSheets();
    DB &m_db;
    Nav &m_nav;
    HeaderBar *m_header;
    ModuleRail *m_rail;
    ModuleArea *m_area;
    SaveBanner *m_banner;
    RecoveryScreen *m_recovery = nullptr;
    QPointer<QDialog> m_projectSheet;
    QPointer<QDialog> m_companySheet;
    bool m_pending = false;
    int m_refreshes = 0;
};
