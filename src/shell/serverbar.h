#pragma once
#include <QtWidgets/QWidget>

class DB;
class ServerSync;
struct SeatNotice;
class QVBoxLayout;

// What the company server means for the person at this seat, under the
// header: working offline with changes waiting, and the notices of what
// other seats' saves did to their work, each with its one-click remedy.
// Hidden on a folder that works on its own records.
class ServerBar : public QWidget
{
    Q_OBJECT
public:
    ServerBar(DB &db, ServerSync *sync, QWidget *parent = nullptr);
    // The words of a notice, with names, labels and formatted values.
    static QString describe(const DB &db, const ServerSync &sync, const SeatNotice &notice);
    // A field's label and a value of it as the record editor shows them.
    static std::pair<QString, QString> fieldValue(const DB &db, const QString &recId, const QString &key,
                                                  const QString &value);
    // The banner's words while the server cannot be reached.
    static QString offlineText(qsizetype waiting);
    QStringList texts() const;

private:
    void rebuild();
    DB &m_db;
    ServerSync *m_sync;
    QVBoxLayout *m_box;
};
