#include "richtext.h"

#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtCore/QUrl>
#include <QtGui/QFontDatabase>
#include <QtGui/QImageReader>
#include <QtGui/QKeyEvent>
#include <QtGui/QTextBlock>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>
#include <QtGui/QTextList>
#include <QtWidgets/QFontDialog>

using namespace Qt::StringLiterals;

namespace {
// Only local files that Qt can read as pictures are taken in as pictures.
QImage pictureAt(const QUrl &url)
{
    if (!url.isLocalFile())
        return {};
    QImageReader reader(url.toLocalFile());
    reader.setAutoTransform(true);
    return reader.canRead() ? reader.read() : QImage();
}

bool hasPictureFiles(const QMimeData *source)
{
    if (!source->hasUrls())
        return false;
    for (const QUrl &url : source->urls())
        if (url.isLocalFile() && !QImageReader::imageFormat(url.toLocalFile()).isEmpty())
            return true;
    return false;
}
} // namespace

RichTextView::RichTextView(QWidget *parent)
    : QTextEdit(parent)
{
    setAcceptRichText(true);
    setTabChangesFocus(false);
    connect(this, &QTextEdit::textChanged, this, &RichTextView::textDidChange);
}

void RichTextView::insertImage(const QImage &original)
{
    if (original.isNull())
        return;
    // A camera photo is far sharper than any page needs, and the body file
    // re-encodes every picture on each write: keep pictures at print size.
    constexpr int kLongestSide = 2000;
    const QImage image =
        qMax(original.width(), original.height()) > kLongestSide
            ? original.scaled(kLongestSide, kLongestSide, Qt::KeepAspectRatio, Qt::SmoothTransformation)
            : original;
    // A name of its own per picture; the body file embeds the picture itself.
    const QString name = u"trestle-pasted:"_s + QString::number(++m_pictures) + u'-' +
                         QString::number(qint64(image.cacheKey()));
    document()->addResource(QTextDocument::ImageResource, QUrl(name), image);
    QTextImageFormat format;
    format.setName(name);
    const qreal widest = qMax(120.0, document()->textWidth() > 0 ? document()->textWidth() - 24 : 480.0);
    const qreal ratio = image.devicePixelRatio() > 0 ? image.devicePixelRatio() : 1.0;
    qreal width = image.width() / ratio;
    qreal height = image.height() / ratio;
    if (width > widest) {
        height = height * widest / width;
        width = widest;
    }
    format.setWidth(width);
    format.setHeight(height);
    textCursor().insertImage(format);
}

namespace {
// The trait of a formatting key, or -1.
int traitOf(const QKeyEvent *e)
{
    if (e->modifiers() != Qt::ControlModifier)
        return -1;
    switch (e->key()) {
    case Qt::Key_B: return 0;
    case Qt::Key_I: return 1;
    case Qt::Key_U: return 2;
    default: return -1;
    }
}
} // namespace

bool RichTextView::event(QEvent *e)
{
    // In the text these keys format, ahead of the window's own shortcuts (Ctrl+B backs up).
    if (e->type() == QEvent::ShortcutOverride && traitOf(static_cast<QKeyEvent *>(e)) >= 0) {
        e->accept();
        return true;
    }
    return QTextEdit::event(e);
}

void RichTextView::keyPressEvent(QKeyEvent *e)
{
    const int trait = traitOf(e);
    if (trait >= 0) {
        Q_EMIT traitKey(trait);
        e->accept();
        return;
    }
    QTextEdit::keyPressEvent(e);
}

bool RichTextView::canInsertFromMimeData(const QMimeData *source) const
{
    return source->hasImage() || hasPictureFiles(source) || QTextEdit::canInsertFromMimeData(source);
}

void RichTextView::insertFromMimeData(const QMimeData *source)
{
    if (source->hasImage()) {
        insertImage(qvariant_cast<QImage>(source->imageData()));
        return;
    }
    if (hasPictureFiles(source)) {
        for (const QUrl &url : source->urls())
            insertImage(pictureAt(url));
        return;
    }
    QTextEdit::insertFromMimeData(source);
}

// --- controller ---

RichTextController::RichTextController(RichTextView *view)
    : m_view(view)
{}

QColor RichTextController::red()
{
    return QColor(0xFF, 0x3B, 0x30);
}

QTextCursor RichTextController::wordOrSelection() const
{
    QTextCursor cursor = m_view->textCursor();
    if (!cursor.hasSelection())
        cursor.select(QTextCursor::WordUnderCursor);
    return cursor;
}

QTextCursor RichTextController::paragraphs() const
{
    const QTextCursor sel = m_view->textCursor();
    QTextCursor cursor(m_view->document());
    cursor.setPosition(qMin(sel.position(), sel.anchor()));
    cursor.movePosition(QTextCursor::StartOfBlock);
    cursor.setPosition(qMax(sel.position(), sel.anchor()), QTextCursor::KeepAnchor);
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    return cursor;
}

void RichTextController::merge(const QTextCharFormat &format)
{
    QTextCursor cursor = wordOrSelection();
    cursor.mergeCharFormat(format);
    // What is typed next at the caret takes the format too.
    m_view->mergeCurrentCharFormat(format);
}

bool RichTextController::hasTrait(Trait trait) const
{
    auto has = [trait](const QTextCharFormat &f) {
        switch (trait) {
        case Bold: return f.fontWeight() >= QFont::DemiBold;
        case Italic: return f.fontItalic();
        case Underline: return f.fontUnderline();
        }
        return false;
    };
    const QTextCursor cursor = wordOrSelection();
    if (!cursor.hasSelection())
        return has(m_view->currentCharFormat());
    const int from = cursor.selectionStart();
    const int to = cursor.selectionEnd();
    for (QTextBlock block = m_view->document()->findBlock(from); block.isValid() && block.position() < to;
         block = block.next())
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment frag = it.fragment();
            if (frag.position() + frag.length() <= from || frag.position() >= to)
                continue;
            if (!has(frag.charFormat()))
                return false;
        }
    return true;
}

void RichTextController::toggleTrait(Trait trait)
{
    const bool on = !hasTrait(trait);
    QTextCharFormat format;
    switch (trait) {
    case Bold: format.setFontWeight(on ? QFont::Bold : QFont::Normal); break;
    case Italic: format.setFontItalic(on); break;
    case Underline: format.setFontUnderline(on); break;
    }
    merge(format);
}

void RichTextController::heading(qreal size, int level)
{
    QTextCursor cursor = paragraphs();
    cursor.beginEditBlock();
    QTextCharFormat chars;
    chars.setFontFamilies(QFontDatabase::systemFont(QFontDatabase::GeneralFont).families());
    chars.setFontPointSize(size);
    chars.setFontWeight(QFont::Bold);
    cursor.mergeCharFormat(chars);
    QTextBlockFormat block;
    block.setHeadingLevel(level);
    cursor.mergeBlockFormat(block);
    cursor.endEditBlock();
    m_view->mergeCurrentCharFormat(chars);
}

void RichTextController::normalText()
{
    QTextCursor cursor = paragraphs();
    cursor.beginEditBlock();
    QTextCharFormat chars;
    chars.setFontFamilies(QFontDatabase::systemFont(QFontDatabase::GeneralFont).families());
    chars.setFontPointSize(kNormal);
    chars.setFontWeight(QFont::Normal);
    cursor.mergeCharFormat(chars);
    QTextBlockFormat block;
    block.setHeadingLevel(0);
    cursor.mergeBlockFormat(block);
    cursor.endEditBlock();
    m_view->mergeCurrentCharFormat(chars);
}

void RichTextController::bullets()
{
    QTextCursor cursor = paragraphs();
    QTextDocument *doc = m_view->document();
    QList<QTextBlock> blocks;
    for (QTextBlock b = doc->findBlock(cursor.selectionStart());
         b.isValid() && b.position() <= cursor.selectionEnd(); b = b.next())
        blocks.append(b);
    const bool all = std::all_of(blocks.cbegin(), blocks.cend(), [](const QTextBlock &b) {
        return b.textList() && b.textList()->format().style() == QTextListFormat::ListDisc;
    });
    cursor.beginEditBlock();
    if (all) {
        for (const QTextBlock &b : blocks) {
            b.textList()->remove(b);
            QTextCursor c(b);
            QTextBlockFormat f = b.blockFormat();
            f.setIndent(0);
            c.setBlockFormat(f);
        }
    } else {
        QTextListFormat list;
        list.setStyle(QTextListFormat::ListDisc);
        list.setIndent(1);
        cursor.createList(list);
    }
    cursor.endEditBlock();
}

void RichTextController::align(Qt::Alignment alignment)
{
    QTextCursor cursor = paragraphs();
    QTextBlockFormat block;
    block.setAlignment(alignment);
    cursor.mergeBlockFormat(block);
}

void RichTextController::redText()
{
    QTextCharFormat format;
    format.setForeground(red());
    merge(format);
}

void RichTextController::applyFont(const QFont &font)
{
    QTextCharFormat format;
    format.setFont(font, QTextCharFormat::FontPropertiesSpecifiedOnly);
    merge(format);
}

void RichTextController::chooseFont()
{
    bool ok = false;
    const QFont chosen = QFontDialog::getFont(&ok, m_view->currentFont(), m_view, u"Fonts"_s);
    if (ok)
        applyFont(chosen);
}
