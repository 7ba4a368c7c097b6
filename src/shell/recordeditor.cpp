#include "recordeditor.h"
#include "serverpanels.h"

#include "fieldeditors.h"
#include "moduleextras.h"
#include "nav.h"
#include "printbutton.h"
#include "printcenter.h"
#include "savedpdf.h"

#include "documents/docstore.h"
#include "documents/pageddocument.h"
#include "documents/pdfout.h"
#include "documents/pdfwrite.h"
#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "store/db.h"
#include "workflows/binding.h"

#include <QtCore/QDir>
#include <QtCore/QRegularExpression>
#include <QtGui/QPainter>
#include <QtGui/QTextDocument>
#include <QtPrintSupport/QPrintDialog>
#include <QtPrintSupport/QPrinter>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

using namespace Qt::StringLiterals;

namespace {

// "Contacts" → "contact": the module's title in lower case less one trailing "s".
QString singular(const ModuleDef &m)
{
    return m.title.toLower().remove(QRegularExpression(u"s$"_s));
}

// The modules whose records carry photos, shown where the extras stand.
bool hasPhotos(const ModuleDef &m)
{
    return m.id == u"dailylogs" || m.id == u"punch" || m.id == u"safety";
}

} // namespace

RecordEditor::RecordEditor(DB &db, Nav &nav, const ModuleDef &m, const QString &id, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_nav(nav)
    , m_m(m)
    , m_id(id)
    , m_body(new FWPanel(this))
    , m_title(new QLabel(m_body))
    , m_content(new QWidget)
{
    const FWUI &ui = FWUI::shared();
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(m_body);
    auto *col = new QVBoxLayout(m_body);
    col->setSpacing(ui.px(10));
    col->setContentsMargins(ui.px(14), ui.px(14), ui.px(14), ui.px(14));

    const std::optional<Rec> rec = db.get(id);
    const QString printTitle = rec ? PDFOut::recordTitle(m, *rec) : m.title;

    auto *header = new QHBoxLayout;
    m_title->setTextFormat(Qt::PlainText);
    m_title->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    header->addWidget(m_title, 1);
    auto *pdf = new FWChromeButton(u"PDF"_s, u"doc.richtext"_s, m_body);
    connect(pdf, &QAbstractButton::clicked, this, &RecordEditor::savePDF);
    header->addWidget(pdf);
    m_print = new PrintButton(printJob(), true, false, m_body);
    header->addWidget(m_print);
    auto *trash = new FWChromeButton(QString(), u"trash"_s, m_body);
    trash->setCompact(true);
    trash->setToolTip(u"Delete"_s);
    connect(trash, &QAbstractButton::clicked, this, &RecordEditor::askDelete);
    header->addWidget(trash);
    col->addLayout(header);

    auto *scroll = new QScrollArea(m_body);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->viewport()->setAutoFillBackground(false);
    auto *fields = new QVBoxLayout(m_content);
    fields->setContentsMargins(0, 0, ui.px(6), 0);
    fields->setSpacing(ui.px(10));
    scroll->setWidget(m_content);
    // The panel shows through; setWidget turned the page's own fill on.
    m_content->setAutoFillBackground(false);
    col->addWidget(scroll, 1);

    const QString project = rec ? rec->project : QString();
    if (m.perProject) {
        // The project is a column of the record, not a field: saved as is, without the hooks.
        TextBinding binding{[this] {
                                const Rec *r = m_db.find(m_id);
                                return r ? r->project : QString();
                            },
                            [this](const QString &v) {
                                std::optional<Rec> r = m_db.get(m_id);
                                if (!r || r->project == v)
                                    return;
                                r->project = v;
                                m_db.save(*r);
                            }};
        m_project = new ThemedChoice(binding, {}, m_content);
        m_project->setAccessibleName(u"Project"_s);
        auto *row = new QVBoxLayout;
        row->setSpacing(3);
        row->addWidget(new FWCaption(u"Project"_s, m_content));
        row->addWidget(m_project);
        fields->addLayout(row);
    }
    for (const FD &fd : m.fields) {
        auto *row = new QVBoxLayout;
        row->setSpacing(3);
        row->addWidget(new FWCaption(fd.label, m_content));
        auto *editor =
            new FieldEditor(db, fd, TextBinding::of(recBinding(db, id, fd.key)), project, false, m_content);
        editor->setObjectName(fd.key);
        m_fields.append(editor);
        row->addWidget(editor);
        fields->addLayout(row);
    }
    if (hasPhotos(m))
        addPart(makePhotoStrip(db, id, m_content));
    addPart(makeModuleExtras(db, nav, m, id, m_content));
    if (m.lineKind)
        addPart(makeLinesEditor(db, nav, m, id, m_content));
    addPart(makeModuleExtrasAfterLines(db, nav, m, id, m_content));
    addPart(makeServerPanels(db, id, m_content));
    fields->addStretch(1);

    m_printable = new Printable(this, 2, printJob());
    auto restyle = [this, scroll] {
        FieldLook::thinScrollBar(scroll->verticalScrollBar());
        m_title->setFont(FWUI::shared().font(15, QFont::Bold));
        QPalette p = m_title->palette();
        p.setColor(QPalette::WindowText, FWUI::shared().theme().text);
        m_title->setPalette(p);
    };
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, restyle);
    refresh();
}

RecordEditor::~RecordEditor() = default;

void RecordEditor::addPart(QWidget *part)
{
    if (!part)
        return;
    m_parts.append(part);
    static_cast<QBoxLayout *>(m_content->layout())->addWidget(part);
}

QString RecordEditor::title(const ModuleDef &m, const Rec &rec)
{
    QString out;
    const QString number = rec.f.value(u"number");
    if (!number.isEmpty())
        out = u"#"_s + number + u' ';
    if (!m.fields.isEmpty())
        out += rec.f.value(m.fields.first().key);
    return out;
}

QString RecordEditor::deleteTitle(const ModuleDef &m)
{
    return u"Delete this "_s + singular(m) + u'?';
}

QString RecordEditor::deleteMessage(const ModuleDef &m)
{
    return m.kind == u"project"
               ? u"Everything in this project (estimates, pay apps, logs, photos…) is deleted too."_s
               : u"This can't be undone."_s;
}

QString RecordEditor::shownTitle() const
{
    return m_title->text();
}

FieldEditor *RecordEditor::fieldEditor(const QString &key) const
{
    for (FieldEditor *e : m_fields)
        if (e->objectName() == key)
            return e;
    return nullptr;
}

void RecordEditor::refresh()
{
    const Rec *rec = m_db.find(m_id);
    m_body->setVisible(rec != nullptr);
    if (!rec)
        return;
    const Rec r = *rec; // the view goes stale at the next write, which an editor may cause
    m_title->setText(title(m_m, r));
    m_printable->setTitle(PDFOut::recordTitle(m_m, r));
    m_print->setJob(printJob());
    if (m_project) {
        ThemedChoice::Options options;
        m_db.visit(u"project"_s, {}, [&](const Rec &p) { options.append({p.id, m_db.label(p.id)}); });
        m_project->setOptions(options);
    }
    for (FieldEditor *e : std::as_const(m_fields)) {
        e->setProject(r.project);
        e->refresh();
    }
    for (QWidget *part : std::as_const(m_parts))
        if (auto *p = dynamic_cast<Refreshable *>(part))
            p->refresh();
}

void RecordEditor::askDelete()
{
    QMessageBox box(QMessageBox::Warning, deleteTitle(m_m), deleteTitle(m_m), QMessageBox::NoButton, this);
    box.setInformativeText(deleteMessage(m_m));
    QPushButton *del = box.addButton(u"Delete"_s, QMessageBox::DestructiveRole);
    box.addButton(u"Cancel"_s, QMessageBox::RejectRole);
    box.exec();
    if (box.clickedButton() == del)
        deleteRecord();
}

void RecordEditor::deleteRecord()
{
    m_db.remove(m_id);
    m_nav.setSelected(m_m.id, QString());
}

void RecordEditor::savePDF()
{
    const std::optional<Rec> rec = m_db.get(m_id);
    if (!rec)
        return;
    const QString proposed = QDir::home().filePath(PDFOut::recordTitle(m_m, *rec) + u".pdf"_s);
    const QString path = QFileDialog::getSaveFileName(this, u"Save PDF"_s, proposed, u"PDF files (*.pdf)"_s);
    SavedPdf::save(this, path,
                   [&](QPageLayout::Orientation o) { return PDFOut::record(m_db, m_m, *rec, path, o); });
}

PrintJob RecordEditor::printJob() const
{
    const std::optional<Rec> rec = m_db.get(m_id);
    const QString title = rec ? PDFOut::recordTitle(m_m, *rec) : m_m.title;
    // The source is made only when printing, from the record as it then stands.
    return PrintJob{title, [db = &m_db, m = &m_m, id = m_id]() -> std::optional<PrintSource> {
                        const std::optional<Rec> rec = db->get(id);
                        if (!rec)
                            return std::nullopt;
                        // A document prints its rich-text body, as its saved PDF does.
                        if (m->id == u"documents") {
                            std::shared_ptr<const QTextDocument> doc =
                                DocStore::read(DocStore::bodyPath(*db, *rec));
                            return PrintSource::fromDocument(doc);
                        }
                        return PrintSource::fromHtml(PDFOut::recordHTML(*db, *m, *rec));
                    }};
}
