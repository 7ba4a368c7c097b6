#pragma once
// The compact editors of one line field inside the lines grid. Each writes
// through recBinding as the user works and takes the stored value back on
// refresh only while it does not have the focus, so typing never loses the caret.
#include "catalog/moduledef.h"
#include "store/rec.h"
#include "workflows/binding.h"

#include <QtWidgets/QWidget>

class DB;

// One cell of a line: the editor of field `fd` of one line record.
class LineCell : public QWidget
{
    Q_OBJECT
public:
    LineCell(DB &db, const QString &lineId, const FD &fd, QWidget *parent);
    // Takes the stored value of the line, unless the user is editing it.
    virtual void refresh(const Rec &line) = 0;
    // The error of a refused entry, empty when none.
    virtual QString error() const { return {}; }
    // Re-applies the zoom and finish.
    virtual void restyle() {}
    const FD &field() const { return m_fd; }

    // The cell editing `fd` of the line `lineId`; `project` limits refIn choices.
    static LineCell *make(DB &db, const QString &lineId, const FD &fd, const QString &project,
                          QWidget *parent);

Q_SIGNALS:
    // The error text changed (money cells only).
    void errorChanged();

protected:
    DB &m_db;
    RecBinding m_value;
    FD m_fd;
};

// The options of a choice, ref or refIn field as (value, label), in order.
QList<std::pair<QString, QString>> choiceOptions(const DB &db, const FD &fd, const QString &project);
