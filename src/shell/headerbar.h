#pragma once
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QWidget>

class DB;
class Nav;
class QLabel;
class QMenu;
class FWOrbButton;
class FWChromeButton;

// A header control: a small caption over the current value, with a symbol;
// pressing it opens its menu.
class HeaderMenuButton : public QAbstractButton
{
    Q_OBJECT
public:
    HeaderMenuButton(const QString &caption, const QString &symbol, QMenu *menu, QWidget *parent = nullptr);
    void setValue(const QString &value);
    QString value() const { return text(); }
    // The small word over the value ("User", or "Signed in" on a company server).
    void setCaption(const QString &caption);
    // The compact form shows only the value.
    void setCompact(bool compact);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *) override;

private:
    void nameForReader();
    QString m_caption;
    QString m_symbol;
    QMenu *m_menu;
    bool m_compact = false;
};

// The bar across the top: company, project and user menus, then the theme
// picker, zoom and help. Menus are rebuilt from the store when opened.
class HeaderBar : public QWidget
{
    Q_OBJECT
public:
    HeaderBar(DB &db, Nav &nav, QWidget *parent = nullptr);
    // Re-reads the current company, project and user.
    void refresh();
    // Fills the three menus from the store (also done each time one opens).
    void rebuildMenus();
    QMenu *companyMenu() const { return m_companyMenu; }
    QMenu *projectMenu() const { return m_projectMenu; }
    QMenu *userMenu() const { return m_userMenu; }

    // Makes `id` the current company, its first user the current user, and clears the project.
    static void chooseCompany(DB &db, Nav &nav, const QString &id);

Q_SIGNALS:
    // The help button was pressed.
    void helpRequested();

protected:
    void resizeEvent(QResizeEvent *) override;
    void paintEvent(QPaintEvent *) override;

private:
    void restyle();
    // The compact form when the bar is too narrow for the captions, the brand and the theme name.
    void fitToWidth();
    DB &m_db;
    Nav &m_nav;
    QMenu *m_companyMenu;
    QMenu *m_projectMenu;
    QMenu *m_userMenu;
    QMenu *m_themeMenu;
    HeaderMenuButton *m_company;
    HeaderMenuButton *m_project;
    HeaderMenuButton *m_user;
    FWChromeButton *m_theme;
    FWOrbButton *m_zoomOut;
    FWOrbButton *m_zoomIn;
    QLabel *m_zoom;
    FWOrbButton *m_help;
    QLabel *m_brand;
    // Connected / offline with changes waiting / reconnecting; only on a company server.
    QLabel *m_server;
    void showServer();
};
