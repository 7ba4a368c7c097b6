#pragma once
#include "store/rec.h"

#include <QtCore/QHash>
#include <QtCore/QObject>

#include <optional>

class DB;

// What is on screen: the module, the selected project, each module's selected
// record, the open sheets and the search. Every change emits changed(); a
// change of project is written to the user default "tl.project" at once.
class Nav : public QObject
{
    Q_OBJECT
public:
    // Starts on the hub with the stored project.
    explicit Nav(QObject *parent = nullptr);
    // The application's navigation state.
    static Nav &shared();

    QString module() const { return m_module; }
    QString projectID() const { return m_projectID; }
    // Per module id, the id of the record selected in it.
    QString selected(const QString &module) const { return m_selected.value(module); }
    bool newProject() const { return m_newProject; }
    bool newCompany() const { return m_newCompany; }
    QString search() const { return m_search; }

    void setModule(const QString &module);
    // Sets the project and persists it.
    void setProjectID(const QString &id);
    void setSelected(const QString &module, const QString &record);
    void setNewProject(bool open);
    void setNewCompany(bool open);
    void setSearch(const QString &text);

    // The selected project when it is a project of the current company of `db`.
    std::optional<Rec> project(const DB &db) const;
    // Moves to `module`, first setting the project and the module's selection when given.
    void open(const QString &module, const std::optional<QString> &record = std::nullopt,
              const std::optional<QString> &project = std::nullopt);

Q_SIGNALS:
    void changed();

private:
    QString m_module;
    QString m_projectID;
    QHash<QString, QString> m_selected;
    bool m_newProject = false;
    bool m_newCompany = false;
    QString m_search;
};
