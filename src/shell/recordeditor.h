#pragma once
#include "refreshable.h"

#include "catalog/moduledef.h"
#include "store/rec.h"

#include <QtWidgets/QWidget>

class DB;
class Nav;
class FieldEditor;
class Printable;
class PrintButton;
class QLabel;
class QScrollArea;
class ThemedChoice;
struct PrintSource;
struct PrintJob;

// Edits one record in place beside its list: no Save button, every field
// writes through recBinding as the user works. Built once per selected record
// and refreshed in place, so typing never loses the caret.
class RecordEditor : public QWidget, public Refreshable
{
    Q_OBJECT
public:
    RecordEditor(DB &db, Nav &nav, const ModuleDef &m, const QString &id, QWidget *parent = nullptr);
    ~RecordEditor() override;
    // Re-reads the record; with the record gone the editor draws nothing.
    void refresh() override;

    const QString &recordId() const { return m_id; }
    // "#number first-field", or the first field alone when there is no number.
    static QString title(const ModuleDef &m, const Rec &rec);
    // The delete confirmation's title and message for a module.
    static QString deleteTitle(const ModuleDef &m);
    static QString deleteMessage(const ModuleDef &m);
    // Deletes the record and clears the module's selection, without asking.
    void deleteRecord();
    // The editor of field `key`, or null.
    FieldEditor *fieldEditor(const QString &key) const;
    // The project chooser, for per-project modules.
    ThemedChoice *projectChoice() const { return m_project; }
    QString shownTitle() const;

private:
    void askDelete();
    void savePDF();
    // The record's print job: its document as the PDF button saves it.
    PrintJob printJob() const;
    void addPart(QWidget *part);

    DB &m_db;
    Nav &m_nav;
    ModuleDef m_m;
    QString m_id;
    QWidget *m_body;
    QLabel *m_title;
    ThemedChoice *m_project = nullptr;
    QList<FieldEditor *> m_fields;
    QList<QWidget *> m_parts; // extras, lines, photos: each a Refreshable
    QWidget *m_content;
    Printable *m_printable;
    PrintButton *m_print; // its job is made again as the record changes, like the Print menu's
};
