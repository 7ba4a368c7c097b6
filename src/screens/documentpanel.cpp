#include "documentpanel.h"
#include "shell/savedpdf.h"

#include "documentpanelflow.h"
#include "richtext.h"

#include "documents/docstore.h"
#include "documents/doctemplates.h"
#include "documents/pdfwrite.h"
#include "interchange/snapshots.h"
#include "look/alert.h"
#include "look/buttons.h"
#include "look/fwui.h"
#include "shell/fieldeditors.h"
#include "shell/moduleextras.h"
#include "store/db.h"

#include <QtCore/QBuffer>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtGui/QImageReader>
#include <QtGui/QTextBlock>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLayout>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QScrollBar>

using namespace Qt::StringLiterals;

namespace {
// Long enough to gather a burst of typing into one write, short enough that a
// print started right after typing reads the new text.
constexpr int kSaveDelayMs = 250;

// A file name made safe from the title, for the save dialogs.
QString fileStem(const QString &title)
{
    QString stem = title.trimmed();
    stem.replace(u'/', u'-');
    return stem.isEmpty() ? u"Document"_s : stem;
}
} // namespace

DocumentPanel::DocumentPanel(DB &db, const QString &recordId, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_id(recordId)
    , m_view(new RichTextView(this))
    , m_controller(std::make_unique<RichTextController>(m_view))
    , m_toolbar(new QWidget(this))
    , m_templates(new QMenu(this))
    , m_template(new FWChromeButton(u"Template"_s, u"doc.text.fill"_s, this))
    , m_pdf(new FWChromeButton(u"Export PDF"_s, u"doc.richtext"_s, this))
    , m_word(new FWChromeButton(u"Export Word (.docx)"_s, u"doc.text.fill"_s, this))
    , m_attach(new FWChromeButton(u"Attach File…"_s, u"arrow.up.doc.fill"_s, this))
    , m_open(new FWChromeButton(QString(), u"arrow.up.forward.app"_s, this))
{
    m_view->setObjectName(u"body"_s);
    m_save.setSingleShot(true);
    m_save.setInterval(kSaveDelayMs);
    connect(&m_save, &QTimer::timeout, this, &DocumentPanel::flush);
    connect(m_view, &RichTextView::textDidChange, this, &DocumentPanel::changed);
    connect(m_view, &RichTextView::traitKey, this,
            [this](int trait) { m_controller->toggleTrait(RichTextController::Trait(trait)); });
    // A quit never waits for the timer.
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &DocumentPanel::flush);
    m_view->installEventFilter(this);

    auto *col = new QVBoxLayout(this);
    col->setContentsMargins(0, 0, 0, 0);
    buildToolbar();
    col->addWidget(m_toolbar);
    col->addWidget(m_view);
    buildButtons();

    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &DocumentPanel::restyle);
    load();
    refresh();
}

DocumentPanel::~DocumentPanel()
{
    flush();
}

DocumentPanel::Confirm &DocumentPanel::confirmHook()
{
    static Confirm hook;
    return hook;
}

QString DocumentPanel::replaceQuestion()
{
    return u"Replace this document's text with the template?"_s;
}

void DocumentPanel::registerExtras()
{
    documentPanelFactory() = [](DB &db, Nav &, const QString &recordId, QWidget *parent) -> QWidget * {
        return new DocumentPanel(db, recordId, parent);
    };
}

void DocumentPanel::buildToolbar()
{
    RichTextController *c = m_controller.get();
    struct Tool
    {
        QString name;
        QString label;
        QString help;
        std::function<void()> action;
    };
    const QList<Tool> tools{
        {u"Bold"_s, u"B"_s, u"Bold: turns bold on or off for the selected text (Ctrl+B)"_s,
         [c] { c->toggleTrait(RichTextController::Bold); }},
        {u"Italic"_s, u"I"_s, u"Italic: turns italic on or off for the selected text (Ctrl+I)"_s,
         [c] { c->toggleTrait(RichTextController::Italic); }},
        {u"Underline"_s, u"U"_s, u"Underline: turns underlining on or off for the selected text (Ctrl+U)"_s,
         [c] { c->toggleTrait(RichTextController::Underline); }},
        {u"Heading 1"_s, u"H1"_s, u"Heading 1: makes the selected paragraphs a large bold heading"_s,
         [c] { c->heading(RichTextController::kHeading1, 1); }},
        {u"Heading 2"_s, u"H2"_s, u"Heading 2: makes the selected paragraphs a smaller bold heading"_s,
         [c] { c->heading(RichTextController::kHeading2, 2); }},
        {u"Normal text"_s, u"Normal"_s, u"Normal text: makes the selected paragraphs plain 12-point text"_s,
         [c] { c->normalText(); }},
        {u"Bullet list"_s, u"• List"_s, u"Bullet list: puts a bullet before each selected paragraph"_s,
         [c] { c->bullets(); }},
        {u"Align left"_s, u"Left"_s, u"Align left: lines up the selected paragraphs on the left margin"_s,
         [c] { c->align(Qt::AlignLeft); }},
        {u"Center"_s, u"Center"_s, u"Center: centers the selected paragraphs"_s,
         [c] { c->align(Qt::AlignHCenter); }},
        {u"Align right"_s, u"Right"_s, u"Align right: lines up the selected paragraphs on the right margin"_s,
         [c] { c->align(Qt::AlignRight); }},
        {u"Red text"_s, u"Red"_s, u"Red text: colours the selected text red, for what must not be missed"_s,
         [c] { c->redText(); }},
        {u"Fonts"_s, u"Fonts…"_s, u"Fonts: choose the typeface, style and size of the selected text"_s,
         [c] { c->chooseFont(); }},
    };
    auto *row = new FlowLayout(m_toolbar);
    row->setSpacing(FWUI::shared().px(4));
    for (const Tool &t : tools) {
        auto *b = new FWChromeButton(t.label, {}, m_toolbar);
        b->setCompact(true);
        b->setObjectName(t.name);
        b->setAccessibleName(t.name);
        b->setToolTip(t.help);
        b->setFocusPolicy(Qt::NoFocus); // the selection stays in the text
        const auto action = t.action;
        connect(b, &QAbstractButton::clicked, this, [this, action] {
            action();
            m_view->setFocus();
        });
        m_tools.append(b);
        row->addWidget(b);
    }
    for (const DocTemplates::Template &t : DocTemplates::all()) {
        const QString key = t.key;
        m_templates->addAction(t.name, this, [this, key] { chooseTemplate(key); });
    }
    m_template->setObjectName(u"template"_s);
    m_template->setToolTip(
        u"Start from a template: a letter, scope of work, subcontract, notice, change order "
        u"request, RFI or transmittal"_s);
    connect(m_template, &QAbstractButton::clicked, this,
            [this] { m_templates->popup(m_template->mapToGlobal(QPoint(0, m_template->height()))); });
}

void DocumentPanel::buildButtons()
{
    auto *buttons = new QWidget(this);
    auto *row = new FlowLayout(buttons);
    row->setSpacing(FWUI::shared().px(6));
    m_pdf->setObjectName(u"exportPDF"_s);
    m_pdf->setToolTip(u"Save this document as a PDF file"_s);
    m_word->setObjectName(u"exportWord"_s);
    m_word->setToolTip(u"Save this document as a Word file that Word and LibreOffice open"_s);
    m_attach->setObjectName(u"attach"_s);
    m_attach->setToolTip(u"Attach File… stores any file (contract, permit, photo) with the document."_s);
    m_open->setObjectName(u"open"_s);
    m_open->setToolTip(u"Open the attached file in its own program"_s);
    connect(m_pdf, &QAbstractButton::clicked, this, [this] { exportAs(false); });
    connect(m_word, &QAbstractButton::clicked, this, [this] { exportAs(true); });
    connect(m_attach, &QAbstractButton::clicked, this, &DocumentPanel::askAttach);
    connect(m_open, &QAbstractButton::clicked, this, &DocumentPanel::openAttached);
    for (QWidget *w :
         {static_cast<QWidget *>(m_template), static_cast<QWidget *>(m_pdf), static_cast<QWidget *>(m_word),
          static_cast<QWidget *>(m_attach), static_cast<QWidget *>(m_open)})
        row->addWidget(w);
    // The record's buttons stand between the toolbar and the text, in sight without scrolling.
    static_cast<QBoxLayout *>(layout())->insertWidget(1, buttons);
}

void DocumentPanel::restyle()
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    // The body is edited on white paper, as it prints, so its own colours read true.
    m_view->setStyleSheet(u"QTextEdit { background: #FFFFFF; color: #000000; border: 1px solid "_s +
                          t.deep.name() + u"; border-radius: "_s + QString::number(ui.px(6)) +
                          u"px; selection-background-color: "_s + t.accent.name() + u"; padding: "_s +
                          QString::number(ui.px(10)) + u"px; }"_s);
    m_view->setMinimumHeight(ui.px(420));
    FieldLook::thinScrollBar(m_view->verticalScrollBar());
}

void DocumentPanel::load()
{
    const std::optional<Rec> rec = m_db.get(m_id);
    m_path = rec ? DocStore::bodyPath(m_db, *rec) : QString();
    std::unique_ptr<QTextDocument> doc =
        m_path.isEmpty() ? std::make_unique<QTextDocument>() : DocStore::read(m_path);
    // The editor deletes a document it owns itself; one of ours goes here.
    const QPointer<QTextDocument> old = m_view->document();
    doc->setParent(this);
    doc->setDefaultFont(QFont(doc->defaultFont().family(), int(RichTextController::kNormal)));
    rememberEmbedded();
    m_loading = true;
    m_view->setDocument(doc.release());
    m_loading = false;
    if (old && old->parent() == this)
        delete old;
    m_dirty = false;
}

void DocumentPanel::changed()
{
    if (m_loading || m_path.isEmpty())
        return;
    m_dirty = true;
    m_save.start();
}

void DocumentPanel::flush()
{
    m_save.stop();
    if (!m_dirty || m_path.isEmpty())
        return;
    m_dirty = false;
    // The record may have been deleted meanwhile: its body must not come back.
    if (!m_db.find(m_id))
        return;
    // Each picture goes into the file as the data URL made when it first came
    // in, so a keystroke never costs a fresh encoding of every photo.
    DocStore::write(m_path, *m_view->document(),
                    [this](const QTextDocument &doc, const QString &name) { return dataUrl(doc, name); });
}

QString DocumentPanel::dataUrl(const QTextDocument &doc, const QString &name)
{
    if (name.isEmpty() || name.startsWith(u"data:"_s))
        return {};
    const QImage image = doc.resource(QTextDocument::ImageResource, QUrl(name)).value<QImage>();
    if (image.isNull())
        return {};
    auto cached = m_dataUrls.constFind(name);
    if (cached != m_dataUrls.cend() && cached->second == image.size())
        return cached->first;
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    const QString url = u"data:image/png;base64,"_s + QString::fromLatin1(png.toBase64());
    m_dataUrls.insert(name, {url, image.size()});
    return url;
}

void DocumentPanel::rememberEmbedded()
{
    // The reader names the file's pictures "trestle-embedded:1", ":2"... in file
    // order; their data URLs are kept as they stand. A picture whose size does
    // not match is encoded afresh at the next write, so a stale guess costs time only.
    m_dataUrls.clear();
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    static const QRegularExpression data(u"src=\"(data:image/[a-zA-Z0-9.+-]+;base64,[A-Za-z0-9+/=\\s]*)\""_s);
    const QString html = QString::fromUtf8(file.readAll());
    int n = 0;
    for (auto it = data.globalMatch(html); it.hasNext();) {
        const QString url = it.next().captured(1);
        const QString name = u"trestle-embedded:"_s + QString::number(++n);
        QByteArray bytes = QByteArray::fromBase64(url.mid(url.indexOf(u',') + 1).toLatin1());
        QBuffer buffer(&bytes);
        QImageReader reader(&buffer);
        const QSize size = reader.size();
        if (size.isValid())
            m_dataUrls.insert(name, {url, size});
    }
}

void DocumentPanel::showRecord(const QString &recordId)
{
    if (recordId == m_id)
        return;
    flush();
    m_id = recordId;
    load();
    refresh();
}

void DocumentPanel::refresh()
{
    const Rec *rec = m_db.find(m_id);
    setVisible(rec != nullptr);
    if (!rec)
        return;
    const QString file = rec->f.value(u"file"_s);
    m_attach->setText(file.isEmpty() ? u"Attach File…"_s : u"Replace File…"_s);
    m_open->setText(u"Open "_s + file);
    m_open->setVisible(!file.isEmpty());
}

void DocumentPanel::chooseTemplate(const QString &key)
{
    std::optional<Rec> rec = m_db.get(m_id);
    if (!rec)
        return;
    const bool empty = m_view->document()->toPlainText().trimmed().isEmpty() &&
                       !m_view->document()->toHtml().contains(u"<img"_s);
    if (!empty) {
        const Confirm &ask = confirmHook();
        const bool go =
            ask ? ask(this, replaceQuestion())
                : QMessageBox::question(this, u"Template"_s, replaceQuestion()) == QMessageBox::Yes;
        if (!go)
            return;
    }
    m_save.stop();
    m_dirty = false;
    DocStore::applyTemplate(m_db, *rec, key);
    load();
}

bool DocumentPanel::attachFile(const QString &path)
{
    std::optional<Rec> rec = m_db.get(m_id);
    if (!rec)
        return false;
    const std::optional<QString> stored = m_db.importFile(path);
    if (!stored)
        return false;
    rec->f.insert(u"file"_s, *stored);
    m_db.save(*rec);
    refresh();
    return true;
}

bool DocumentPanel::exportPDF(const QString &path, QPageLayout::Orientation orientation)
{
    flush();
    return PDFOut::save(m_db, *m_view->document(), path, orientation);
}

bool DocumentPanel::exportWord(const QString &path)
{
    flush();
    return PDFOut::saveWord(*m_view->document(), path);
}

void DocumentPanel::exportAs(bool word)
{
    const Rec *rec = m_db.find(m_id);
    if (!rec)
        return;
    const QString stem = fileStem(rec->f.value(u"title"_s));
    const QString path =
        word ? QFileDialog::getSaveFileName(this, u"Export Word (.docx)"_s,
                                            QDir::home().filePath(stem + u".docx"_s),
                                            u"Word documents (*.docx)"_s)
             : QFileDialog::getSaveFileName(this, u"Export PDF"_s, QDir::home().filePath(stem + u".pdf"_s),
                                            u"PDF documents (*.pdf)"_s);
    if (path.isEmpty())
        return;
    if (!word) {
        SavedPdf::save(this, path, [&](QPageLayout::Orientation o) { return exportPDF(path, o); });
        return;
    }
    if (!exportWord(path))
        FWAlert::show(this, u"Export failed"_s, u"The file could not be written to "_s + path + u'.');
}

void DocumentPanel::askAttach()
{
    const QString path = QFileDialog::getOpenFileName(this, m_attach->text(), QDir::homePath());
    if (!path.isEmpty())
        attachFile(path);
}

void DocumentPanel::openAttached()
{
    const Rec *rec = m_db.find(m_id);
    if (!rec || rec->f.value(u"file"_s).isEmpty())
        return;
    const QString path = m_db.fileURL(rec->f.value(u"file"_s), rec->company);
    // Another program may save over the file in place; the snapshots keep their own.
    Snapshots::unshare(path);
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

void DocumentPanel::hideEvent(QHideEvent *event)
{
    flush();
    QWidget::hideEvent(event);
}

bool DocumentPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_view && event->type() == QEvent::FocusOut)
        flush();
    return QWidget::eventFilter(watched, event);
}
