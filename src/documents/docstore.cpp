#include "docstore.h"

#include "doctemplates.h"
#include "store/db.h"

#include <QtCore/QBuffer>
#include <QtCore/QRegularExpression>
#include <QtCore/QSaveFile>
#include <QtGui/QImage>
#include <QtGui/QTextBlock>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>

using namespace Qt::StringLiterals;

namespace DocStore {

namespace {
constexpr qint64 kMaxBody = 256LL * 1024 * 1024; // far beyond any letter; refuses a runaway file
const QString kEmbedded = u"trestle-embedded:"_s;

// The picture named `name` as the document holds it, as a PNG data URL.
QString dataUrl(const QTextDocument &doc, const QString &name)
{
    const QVariant res = doc.resource(QTextDocument::ImageResource, QUrl(name));
    QImage image;
    if (res.canConvert<QImage>())
        image = res.value<QImage>();
    if (image.isNull() && res.typeId() == QMetaType::QByteArray)
        image.loadFromData(res.toByteArray());
    if (image.isNull())
        return QString();
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return u"data:image/png;base64,"_s + QString::fromLatin1(png.toBase64());
}
} // namespace

QString bodyPath(const DB &db, const Rec &document)
{
    return db.fileURL(u"doc-"_s + document.id + u".html"_s, document.company);
}

bool write(const QString &path, const QTextDocument &text, const PictureEncoder &encode)
{
    // Pictures go into the file itself, so the body stays one file.
    std::unique_ptr<QTextDocument> copy(text.clone());
    QList<QPair<int, QTextImageFormat>> images;
    for (QTextBlock block = copy->begin(); block.isValid(); block = block.next())
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment frag = it.fragment();
            if (!frag.charFormat().isImageFormat())
                continue;
            QTextImageFormat format = frag.charFormat().toImageFormat();
            if (format.name().startsWith(u"data:"_s))
                continue;
            const QString url = encode ? encode(text, format.name()) : dataUrl(text, format.name());
            if (url.isEmpty())
                continue;
            format.setName(url);
            images.append({frag.position(), format});
        }
    for (const auto &[pos, format] : images) {
        QTextCursor cursor(copy.get());
        cursor.setPosition(pos);
        cursor.setPosition(pos + 1, QTextCursor::KeepAnchor);
        cursor.setCharFormat(format);
    }
    const QByteArray html = copy->toHtml().toUtf8();
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(html) == html.size() && file.commit();
}

std::unique_ptr<QTextDocument> read(const QString &path)
{
    auto doc = std::make_unique<QTextDocument>();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > kMaxBody)
        return doc;
    QString html = QString::fromUtf8(file.readAll());
    // Embedded pictures become document resources before the import, so the
    // importer never has to resolve a data URL itself.
    static const QRegularExpression data(u"src=\"data:image/[a-zA-Z0-9.+-]+;base64,([A-Za-z0-9+/=\\s]*)\""_s);
    QString out;
    qsizetype last = 0;
    int n = 0;
    QList<QPair<QString, QImage>> pictures;
    for (auto it = data.globalMatch(html); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        QImage image;
        image.loadFromData(QByteArray::fromBase64(m.captured(1).toLatin1()));
        const QString name = kEmbedded + QString::number(++n);
        out += QStringView(html).mid(last, m.capturedStart() - last);
        out += u"src=\""_s + name + u'"';
        last = m.capturedEnd();
        if (!image.isNull())
            pictures.append({name, image});
    }
    out += QStringView(html).mid(last);
    for (const auto &[name, image] : pictures)
        doc->addResource(QTextDocument::ImageResource, QUrl(name), image);
    doc->setHtml(out);
    return doc;
}

void applyTemplate(DB &db, Rec &document, const QString &key)
{
    const auto tpl = DocTemplates::find(key);
    const std::optional<Rec> project = db.get(document.project);
    const QString body = DocTemplates::fill(db, tpl ? tpl->body : u"<p></p>"_s, project);
    const auto doc = DocTemplates::attributed(db, body);
    write(bodyPath(db, document), *doc);
    const QString title = document.f.value(u"title");
    if (tpl && (title.isEmpty() || title == u"Blank document"_s)) {
        document.f.insert(u"title"_s, tpl->name);
        db.save(document);
    }
}

} // namespace DocStore
