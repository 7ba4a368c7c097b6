#include "docxwriter.h"

#include <QtCore/QBuffer>
#include <QtCore/QSaveFile>
#include <QtGui/QImage>
#include <QtGui/QTextBlock>
#include <QtGui/QTextDocument>
#include <QtGui/QTextFrame>
#include <QtGui/QTextList>
#include <QtGui/QTextTable>

#include <zip.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace DocxWriter {

namespace {
constexpr int kEmuPerPoint = 12700;
constexpr int kTwipsPerPoint = 20;
constexpr double kTextWidthPt = 468; // Letter with one-inch margins

QString xmlEsc(QString text)
{
    return text.replace(u'&', u"&amp;"_s)
        .replace(u'<', u"&lt;"_s)
        .replace(u'>', u"&gt;"_s)
        .replace(u'"', u"&quot;"_s);
}

QString hex(const QColor &c)
{
    return c.name(QColor::HexRgb).mid(1).toUpper();
}

// Builds document.xml while collecting the pictures it refers to.
class Writer
{
public:
    explicit Writer(const QTextDocument &doc)
        : m_doc(doc)
    {}

    QString body()
    {
        frame(m_doc.rootFrame()->begin());
        return m_out;
    }
    QList<QByteArray> images;

private:
    void frame(QTextFrame::iterator it)
    {
        for (; !it.atEnd(); ++it) {
            if (QTextFrame *child = it.currentFrame()) {
                if (auto *t = qobject_cast<QTextTable *>(child))
                    table(t);
                else
                    frame(child->begin());
            } else {
                paragraph(it.currentBlock());
            }
        }
    }

    void table(QTextTable *t)
    {
        const int cols = std::max(1, t->columns());
        const QTextTableFormat tf = t->format();
        const bool borders = tf.border() > 0;
        const QString border = borders ? u"single"_s : u"nil"_s;
        m_out += u"<w:tbl><w:tblPr><w:tblW w:w=\"5000\" w:type=\"pct\"/><w:tblBorders>"_s;
        for (const char16_t *side : {u"top", u"left", u"bottom", u"right", u"insideH", u"insideV"})
            m_out += u"<w:"_s + QStringView(side) + u" w:val=\""_s + border +
                     u"\" w:sz=\"4\" w:space=\"0\" w:color=\"000000\"/>"_s;
        const int pad = int(std::lround(tf.cellPadding() * kTwipsPerPoint));
        m_out += u"</w:tblBorders><w:tblCellMar><w:top w:w=\"%1\" w:type=\"dxa\"/><w:left w:w=\"%1\" "
                 u"w:type=\"dxa\"/><w:bottom w:w=\"%1\" w:type=\"dxa\"/><w:right w:w=\"%1\" w:type=\"dxa\"/>"
                 u"</w:tblCellMar></w:tblPr><w:tblGrid>"_s.arg(pad);
        const int colWidth = int(kTextWidthPt * kTwipsPerPoint / cols);
        for (int c = 0; c < cols; ++c)
            m_out += u"<w:gridCol w:w=\"%1\"/>"_s.arg(colWidth);
        m_out += u"</w:tblGrid>"_s;
        for (int r = 0; r < t->rows(); ++r) {
            m_out += u"<w:tr>"_s;
            for (int c = 0; c < t->columns(); ++c) {
                const QTextTableCell cell = t->cellAt(r, c);
                if (cell.row() != r || cell.column() != c)
                    continue; // covered by a spanning cell
                m_out +=
                    u"<w:tc><w:tcPr><w:tcW w:w=\"%1\" w:type=\"dxa\"/>"_s.arg(colWidth * cell.columnSpan());
                if (cell.columnSpan() > 1)
                    m_out += u"<w:gridSpan w:val=\"%1\"/>"_s.arg(cell.columnSpan());
                const QTextCharFormat cf = cell.format();
                if (cf.hasProperty(QTextFormat::BackgroundBrush) && cf.background().style() != Qt::NoBrush)
                    m_out += u"<w:shd w:val=\"clear\" w:color=\"auto\" w:fill=\""_s +
                             hex(cf.background().color()) + u"\"/>"_s;
                m_out += u"</w:tcPr>"_s;
                const qsizetype before = m_out.size();
                frame(cell.begin());
                if (m_out.size() == before || !m_out.endsWith(u"</w:p>"_s))
                    m_out += u"<w:p/>"_s; // a cell must end with a paragraph
                m_out += u"</w:tc>"_s;
            }
            m_out += u"</w:tr>"_s;
        }
        m_out += u"</w:tbl>"_s;
    }

    void paragraph(const QTextBlock &block)
    {
        const QTextBlockFormat bf = block.blockFormat();
        m_out += u"<w:p><w:pPr>"_s;
        if (bf.headingLevel() >= 1 && bf.headingLevel() <= 3)
            m_out += u"<w:pStyle w:val=\"Heading%1\"/>"_s.arg(bf.headingLevel());
        if (QTextList *list = block.textList()) {
            const auto style = list->format().style();
            const bool numbered =
                style == QTextListFormat::ListDecimal || style == QTextListFormat::ListLowerAlpha ||
                style == QTextListFormat::ListUpperAlpha || style == QTextListFormat::ListLowerRoman ||
                style == QTextListFormat::ListUpperRoman;
            m_out += u"<w:numPr><w:ilvl w:val=\"%1\"/><w:numId w:val=\"%2\"/></w:numPr>"_s
                         .arg(std::clamp(list->format().indent() - 1, 0, 8))
                         .arg(numbered ? 2 : 1);
        }
        if (bf.hasProperty(QTextFormat::BlockTrailingHorizontalRulerWidth))
            m_out +=
                u"<w:pBdr><w:bottom w:val=\"single\" w:sz=\"6\" w:space=\"1\" w:color=\"999999\"/></w:pBdr>"_s;
        m_out += u"<w:spacing w:before=\"%1\" w:after=\"%2\"/>"_s.arg(int(bf.topMargin() * kTwipsPerPoint))
                     .arg(int(bf.bottomMargin() * kTwipsPerPoint));
        const Qt::Alignment a = bf.alignment();
        if (a & Qt::AlignHCenter)
            m_out += u"<w:jc w:val=\"center\"/>"_s;
        else if (a & Qt::AlignRight)
            m_out += u"<w:jc w:val=\"right\"/>"_s;
        else if (a & Qt::AlignJustify)
            m_out += u"<w:jc w:val=\"both\"/>"_s;
        m_out += u"</w:pPr>"_s;
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment frag = it.fragment();
            const QTextCharFormat cf = frag.charFormat();
            if (cf.isImageFormat())
                image(cf.toImageFormat());
            else
                run(frag.text(), cf);
        }
        m_out += u"</w:p>"_s;
    }

    QString runProps(const QTextCharFormat &cf) const
    {
        QString p;
        const QStringList families = cf.fontFamilies().toStringList();
        if (!families.isEmpty())
            p += u"<w:rFonts w:ascii=\"%1\" w:hAnsi=\"%1\" w:cs=\"%1\"/>"_s.arg(xmlEsc(families.first()));
        if (cf.fontWeight() >= QFont::DemiBold)
            p += u"<w:b/>"_s;
        if (cf.fontItalic())
            p += u"<w:i/>"_s;
        if (cf.fontStrikeOut())
            p += u"<w:strike/>"_s;
        if (cf.hasProperty(QTextFormat::ForegroundBrush) && cf.foreground().style() != Qt::NoBrush)
            p += u"<w:color w:val=\""_s + hex(cf.foreground().color()) + u"\"/>"_s;
        if (cf.hasProperty(QTextFormat::FontPointSize) && cf.fontPointSize() > 0)
            p += u"<w:sz w:val=\"%1\"/>"_s.arg(int(std::lround(cf.fontPointSize() * 2)));
        if (cf.fontUnderline() || cf.underlineStyle() != QTextCharFormat::NoUnderline)
            p += u"<w:u w:val=\"single\"/>"_s;
        if (cf.hasProperty(QTextFormat::BackgroundBrush) && cf.background().style() != Qt::NoBrush)
            p += u"<w:shd w:val=\"clear\" w:color=\"auto\" w:fill=\""_s + hex(cf.background().color()) +
                 u"\"/>"_s;
        return p.isEmpty() ? p : u"<w:rPr>"_s + p + u"</w:rPr>"_s;
    }

    void run(const QString &text, const QTextCharFormat &cf)
    {
        const QString props = runProps(cf);
        // A line break inside a paragraph (<br>) is its own element in a run.
        const QStringList pieces = text.split(QChar::LineSeparator);
        m_out += u"<w:r>"_s + props;
        for (qsizetype i = 0; i < pieces.size(); ++i) {
            if (i > 0)
                m_out += u"<w:br/>"_s;
            if (!pieces.at(i).isEmpty())
                m_out += u"<w:t xml:space=\"preserve\">"_s + xmlEsc(pieces.at(i)) + u"</w:t>"_s;
        }
        m_out += u"</w:r>"_s;
    }

    void image(const QTextImageFormat &f)
    {
        const QVariant res = m_doc.resource(QTextDocument::ImageResource, QUrl(f.name()));
        QImage img;
        if (res.canConvert<QImage>())
            img = res.value<QImage>();
        if (img.isNull() && res.typeId() == QMetaType::QByteArray)
            img.loadFromData(res.toByteArray());
        if (img.isNull())
            return;
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        img.save(&buffer, "PNG");
        images.append(png);
        const int n = int(images.size());
        double w = f.width() > 0 ? f.width() : img.width() * 0.75; // pixels at 96 dpi to points
        double h = f.height() > 0 ? f.height() : w * img.height() / img.width();
        if (w > kTextWidthPt) {
            h = h * kTextWidthPt / w;
            w = kTextWidthPt;
        }
        const qint64 cx = std::llround(w * kEmuPerPoint), cy = std::llround(h * kEmuPerPoint);
        m_out +=
            uR"(<w:r><w:drawing><wp:inline distT="0" distB="0" distL="0" distR="0"><wp:extent cx="%1" cy="%2"/>)"
            uR"(<wp:docPr id="%3" name="Picture %3"/><a:graphic><a:graphicData )"
            uR"(uri="http://schemas.openxmlformats.org/drawingml/2006/picture"><pic:pic><pic:nvPicPr>)"
            uR"(<pic:cNvPr id="%3" name="image%3.png"/><pic:cNvPicPr/></pic:nvPicPr><pic:blipFill>)"
            uR"(<a:blip r:embed="rIdImg%3"/><a:stretch><a:fillRect/></a:stretch></pic:blipFill><pic:spPr>)"
            uR"(<a:xfrm><a:off x="0" y="0"/><a:ext cx="%1" cy="%2"/></a:xfrm><a:prstGeom prst="rect">)"
            uR"(<a:avLst/></a:prstGeom></pic:spPr></pic:pic></a:graphicData></a:graphic></wp:inline>)"
            uR"(</w:drawing></w:r>)"_s.arg(cx)
                .arg(cy)
                .arg(n);
    }

    const QTextDocument &m_doc;
    QString m_out;
};

const QString kXmlHead = u"<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"_s;

QString styles()
{
    QString s =
        kXmlHead +
        uR"(<w:styles xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main">)"
        uR"(<w:docDefaults><w:rPrDefault><w:rPr><w:rFonts w:ascii="Helvetica" w:hAnsi="Helvetica"/>)"
        uR"(<w:sz w:val="24"/></w:rPr></w:rPrDefault></w:docDefaults>)"
        uR"(<w:style w:type="paragraph" w:default="1" w:styleId="Normal"><w:name w:val="Normal"/></w:style>)"_s;
    const int sizes[] = {44, 30, 24};
    for (int level = 1; level <= 3; ++level)
        s +=
            uR"(<w:style w:type="paragraph" w:styleId="Heading%1"><w:name w:val="heading %1"/>)"
            uR"(<w:basedOn w:val="Normal"/><w:next w:val="Normal"/><w:pPr><w:keepNext/><w:outlineLvl w:val="%2"/>)"
            uR"(</w:pPr><w:rPr><w:b/><w:sz w:val="%3"/></w:rPr></w:style>)"_s.arg(level)
                .arg(level - 1)
                .arg(sizes[level - 1]);
    return s + u"</w:styles>"_s;
}

QString numbering()
{
    QString s = kXmlHead +
                uR"(<w:numbering xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main">)"_s;
    for (int abs = 0; abs < 2; ++abs) {
        s +=
            uR"(<w:abstractNum w:abstractNumId="%1"><w:multiLevelType w:val="hybridMultilevel"/>)"_s.arg(abs);
        for (int lvl = 0; lvl < 9; ++lvl)
            s += uR"(<w:lvl w:ilvl="%1"><w:start w:val="1"/><w:numFmt w:val="%2"/><w:lvlText w:val="%3"/>)"
                 uR"(<w:lvlJc w:val="left"/><w:pPr><w:ind w:left="%4" w:hanging="360"/></w:pPr></w:lvl>)"_s
                     .arg(lvl)
                     .arg(abs == 0 ? u"bullet"_s : u"decimal"_s)
                     .arg(abs == 0 ? u"•"_s : u"%"_s + QString::number(lvl + 1) + u'.')
                     .arg(720 * (lvl + 1));
        s += u"</w:abstractNum>"_s;
    }
    s += uR"(<w:num w:numId="1"><w:abstractNumId w:val="0"/></w:num>)"
         uR"(<w:num w:numId="2"><w:abstractNumId w:val="1"/></w:num></w:numbering>)"_s;
    return s;
}
} // namespace

QMap<QString, QByteArray> parts(const QTextDocument &doc)
{
    Writer writer(doc);
    const QString body = writer.body();
    QMap<QString, QByteArray> p;
    p[u"[Content_Types].xml"_s] =
        QString(
            kXmlHead +
            uR"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)"
            uR"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)"
            uR"(<Default Extension="xml" ContentType="application/xml"/>)"
            uR"(<Default Extension="png" ContentType="image/png"/>)"
            uR"(<Override PartName="/word/document.xml" ContentType="application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml"/>)"
            uR"(<Override PartName="/word/styles.xml" ContentType="application/vnd.openxmlformats-officedocument.wordprocessingml.styles+xml"/>)"
            uR"(<Override PartName="/word/numbering.xml" ContentType="application/vnd.openxmlformats-officedocument.wordprocessingml.numbering+xml"/>)"
            uR"(</Types>)"_s)
            .toUtf8();
    p[u"_rels/.rels"_s] =
        QString(
            kXmlHead +
            uR"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
            uR"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="word/document.xml"/>)"
            uR"(</Relationships>)"_s)
            .toUtf8();
    QString rels =
        kXmlHead +
        uR"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
        uR"(<Relationship Id="rIdStyles" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles" Target="styles.xml"/>)"
        uR"(<Relationship Id="rIdNumbering" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/numbering" Target="numbering.xml"/>)"_s;
    for (qsizetype i = 0; i < writer.images.size(); ++i) {
        const int n = int(i + 1);
        rels +=
            uR"(<Relationship Id="rIdImg%1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/image" Target="media/image%1.png"/>)"_s
                .arg(n);
        p[u"word/media/image%1.png"_s.arg(n)] = writer.images.at(i);
    }
    p[u"word/_rels/document.xml.rels"_s] = QString(rels + u"</Relationships>"_s).toUtf8();
    p[u"word/styles.xml"_s] = styles().toUtf8();
    p[u"word/numbering.xml"_s] = numbering().toUtf8();
    p[u"word/document.xml"_s] =
        QString(kXmlHead +
                uR"(<w:document xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main" )"
                uR"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships" )"
                uR"(xmlns:wp="http://schemas.openxmlformats.org/drawingml/2006/wordprocessingDrawing" )"
                uR"(xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main" )"
                uR"(xmlns:pic="http://schemas.openxmlformats.org/drawingml/2006/picture"><w:body>)"_s +
                body +
                uR"(<w:sectPr><w:pgSz w:w="12240" w:h="15840"/><w:pgMar w:top="1440" w:right="1440" )"
                uR"(w:bottom="1440" w:left="1440" w:header="720" w:footer="720" w:gutter="0"/></w:sectPr>)"
                uR"(</w:body></w:document>)"_s)
            .toUtf8();
    return p;
}

QByteArray package(const QTextDocument &doc)
{
    const QMap<QString, QByteArray> files = parts(doc);
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t *buffer = zip_source_buffer_create(nullptr, 0, 0, &error);
    if (!buffer)
        return {};
    zip_t *archive = zip_open_from_source(buffer, ZIP_TRUNCATE, &error);
    if (!archive) {
        zip_source_free(buffer);
        return {};
    }
    zip_source_keep(buffer); // read back after the archive closes
    bool ok = true;
    for (auto it = files.begin(); ok && it != files.end(); ++it) {
        zip_source_t *src =
            zip_source_buffer(archive, it.value().constData(), zip_uint64_t(it.value().size()), 0);
        ok = src && zip_file_add(archive, it.key().toUtf8().constData(), src, ZIP_FL_ENC_UTF_8) >= 0;
        if (!ok && src)
            zip_source_free(src);
    }
    if (!ok || zip_close(archive) < 0) {
        if (!ok)
            zip_discard(archive);
        zip_source_free(buffer);
        return {};
    }
    QByteArray out;
    if (zip_source_open(buffer) == 0) {
        zip_stat_t st;
        zip_stat_init(&st);
        if (zip_source_stat(buffer, &st) == 0 && (st.valid & ZIP_STAT_SIZE)) {
            out.resize(qsizetype(st.size));
            if (zip_source_read(buffer, out.data(), st.size) != zip_int64_t(st.size))
                out.clear();
        }
        zip_source_close(buffer);
    }
    zip_source_free(buffer);
    return out;
}

bool write(const QTextDocument &doc, const QString &path)
{
    const QByteArray bytes = package(doc);
    if (bytes.isEmpty())
        return false;
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

} // namespace DocxWriter
