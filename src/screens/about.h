#pragma once
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtWidgets/QDialog>

// The About window: the program's name, version and licence, and the
// libraries it stands on with their licences.
class AboutWindow : public QDialog
{
    Q_OBJECT
public:
    explicit AboutWindow(QWidget *parent = nullptr);

    // One library the program is built on: its name, what it does here, its licence.
    struct Library
    {
        QString name;
        QString use;
        QString licence;
    };
    static QList<Library> libraries();
    // The version line, e.g. "Version 1.0.0".
    static QString versionLine();
    // Shows the window over `parent` and waits until it is closed.
    static void showOver(QWidget *parent);
};
