#pragma once
#include "shell/refreshable.h"

#include <QtCore/QHash>
#include <QtCore/QPointer>
#include <QtCore/QSize>
#include <QtCore/QTimer>
#include <QtGui/QPageLayout>
#include <QtWidgets/QWidget>

#include <functional>

class DB;
class FWChromeButton;
class QLabel;
class QMenu;
class QTextDocument;
class RichTextController;
class RichTextView;

// The editor of a `document` record's body: formatting toolbar, templates,
// exports and an attached file. The body is written to its file shortly after
// every change, and at once whenever the panel goes away, so nothing typed is lost.
class DocumentPanel : public QWidget, public Refreshable
{
    Q_OBJECT
public:
    DocumentPanel(DB &db, const QString &recordId, QWidget *parent = nullptr);
    ~DocumentPanel() override;

    // Re-reads the record's file buttons; the text stays as the user left it.
    void refresh() override;
    // Shows another record: writes the current body, then loads the other one.
    void showRecord(const QString &recordId);
    // Writes the body now when a change is waiting.
    void flush();
    // Replaces the body with template `key`, asking first when the document has text.
    void chooseTemplate(const QString &key);
    // Stores the file at `path` with the document; false when it could not be read.
    bool attachFile(const QString &path);
    // Writes the body as a PDF or a Word file at `path`.
    bool exportPDF(const QString &path, QPageLayout::Orientation orientation = QPageLayout::Portrait);
    bool exportWord(const QString &path);

    QString recordId() const { return m_id; }
    RichTextView *view() const { return m_view; }
    RichTextController *controller() const { return m_controller.get(); }
    bool hasPendingWrite() const { return m_dirty; }

    // The question before a template replaces text: parent and question, true to go on.
    // Empty means a message box; tests answer it themselves.
    using Confirm = std::function<bool(QWidget *, const QString &)>;
    static Confirm &confirmHook();
    // The question asked before a template replaces text.
    static QString replaceQuestion();
    // Registers the panel as the record editor's extras of the documents module.
    static void registerExtras();

protected:
    void hideEvent(QHideEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildToolbar();
    void buildButtons();
    void load();
    void changed();
    void restyle();
    void exportAs(bool word);
    void askAttach();
    void openAttached();
    // The picture `name` of `doc` as a PNG data URL, encoded once and then kept; empty for none.
    QString dataUrl(const QTextDocument &doc, const QString &name);
    // Keeps the data URLs of the pictures in the body file just read.
    void rememberEmbedded();

    DB &m_db;
    QString m_id;
    QString m_path;
    RichTextView *m_view;
    std::unique_ptr<RichTextController> m_controller;
    QTimer m_save;
    bool m_dirty = false;
    bool m_loading = false;
    QWidget *m_toolbar;
    QMenu *m_templates;
    FWChromeButton *m_template;
    FWChromeButton *m_pdf;
    FWChromeButton *m_word;
    FWChromeButton *m_attach;
    FWChromeButton *m_open;
    QList<FWChromeButton *> m_tools;
    // Picture name → its data URL and the size it was made from.
    QHash<QString, std::pair<QString, QSize>> m_dataUrls;
};
