// The first sheet of an .xlsx workbook read as a table of text, with libzip
// and Qt's XML reader: shared strings, inline strings, numbers, and numbers
// whose cell format is a date turned into ISO days.
#include "calc/datefmt.h"
#include "importread.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QRegularExpression>
#include <QtCore/QSet>
#include <QtCore/QXmlStreamReader>

#include <zip.h>

#include <cmath>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

struct ZipCloser
{
    void operator()(zip_t *z) const { zip_discard(z); }
};
using Zip = std::unique_ptr<zip_t, ZipCloser>;

// An entry's bytes; nothing when the workbook lacks it. Parts past 256 MB are not a list of names.
std::optional<QByteArray> entry(zip_t *zip, const QString &name)
{
    zip_stat_t st;
    const QByteArray n = name.toUtf8();
    if (zip_stat(zip, n.constData(), 0, &st) != 0 || !(st.valid & ZIP_STAT_SIZE) || st.size > (256u << 20))
        return std::nullopt;
    zip_file_t *f = zip_fopen(zip, n.constData(), 0);
    if (!f)
        return std::nullopt;
    QByteArray bytes(qsizetype(st.size), Qt::Uninitialized);
    const zip_int64_t got = zip_fread(f, bytes.data(), st.size);
    zip_fclose(f);
    if (got != zip_int64_t(st.size))
        return std::nullopt;
    return bytes;
}

QStringList sharedStrings(const QByteArray &xml)
{
    QStringList out;
    QXmlStreamReader r(xml);
    QString current;
    int phonetic = 0; // reading hints inside a string are not its text
    while (!r.atEnd()) {
        r.readNext();
        if (r.isStartElement()) {
            if (r.name() == u"si")
                current.clear();
            else if (r.name() == u"rPh")
                ++phonetic;
            else if (r.name() == u"t" && phonetic == 0)
                current += r.readElementText();
        } else if (r.isEndElement()) {
            if (r.name() == u"si")
                out.append(current);
            else if (r.name() == u"rPh")
                --phonetic;
        }
    }
    return out;
}

// Which cell styles (by index) show a date: the built-in date formats and
// custom ones that name a day or a year outside quoted text.
QSet<int> dateStyles(const QByteArray &xml)
{
    QSet<int> dateFormats{14, 15, 16, 17, 22, 27, 30, 36, 50, 57};
    QSet<int> out;
    QXmlStreamReader r(xml);
    bool inXfs = false;
    int index = 0;
    while (!r.atEnd()) {
        r.readNext();
        if (r.isStartElement() && r.name() == u"numFmt") {
            QString code = r.attributes().value(u"formatCode"_s).toString();
            code.remove(QRegularExpression(u"\"[^\"]*\"|\\[[^\\]]*\\]"_s));
            if (code.contains(u'd', Qt::CaseInsensitive) || code.contains(u'y', Qt::CaseInsensitive))
                dateFormats.insert(r.attributes().value(u"numFmtId"_s).toInt());
        } else if (r.isStartElement() && r.name() == u"cellXfs") {
            inXfs = true;
        } else if (r.isEndElement() && r.name() == u"cellXfs") {
            inXfs = false;
        } else if (inXfs && r.isStartElement() && r.name() == u"xf") {
            if (dateFormats.contains(r.attributes().value(u"numFmtId"_s).toInt()))
                out.insert(index);
            ++index;
        }
    }
    return out;
}

// "C12" → column 2 (from 0); -1 when it names no column.
int columnOf(QStringView ref)
{
    int col = 0;
    qsizetype k = 0;
    for (; k < ref.size() && ref.at(k).toUpper() >= u'A' && ref.at(k).toUpper() <= u'Z'; ++k) {
        col = col * 26 + (ref.at(k).toUpper().unicode() - u'A' + 1);
        if (col > 16384) // past the last column a sheet may have
            return -1;
    }
    return k == 0 || col > 16384 ? -1 : col - 1;
}

QString firstSheetPath(zip_t *zip)
{
    const std::optional<QByteArray> book = entry(zip, u"xl/workbook.xml"_s);
    const std::optional<QByteArray> rels = entry(zip, u"xl/_rels/workbook.xml.rels"_s);
    QString rid;
    if (book) {
        QXmlStreamReader r(*book);
        while (!r.atEnd() && rid.isEmpty())
            if (r.readNext() == QXmlStreamReader::StartElement && r.name() == u"sheet")
                for (const QXmlStreamAttribute &a : r.attributes())
                    if (a.name() == u"id")
                        rid = a.value().toString();
    }
    if (rels && !rid.isEmpty()) {
        QXmlStreamReader r(*rels);
        while (!r.atEnd())
            if (r.readNext() == QXmlStreamReader::StartElement && r.name() == u"Relationship" &&
                r.attributes().value(u"Id"_s) == rid) {
                const QString target = r.attributes().value(u"Target"_s).toString();
                return target.startsWith(u'/') ? target.mid(1) : u"xl/"_s + target;
            }
    }
    return u"xl/worksheets/sheet1.xml"_s;
}

} // namespace

namespace Import {

Source xlsx(const QString &path)
{
    Source source;
    const QString name = QFileInfo(path).fileName();
    int error = 0;
    Zip zip(zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY, &error));
    if (!zip) {
        source.error = name + u" is not a workbook that can be read (not a zip file)."_s;
        return source;
    }
    const std::optional<QByteArray> sheet = entry(zip.get(), firstSheetPath(zip.get()));
    if (!sheet) {
        source.error = name + u" holds no worksheet."_s;
        return source;
    }
    const QStringList strings =
        sharedStrings(entry(zip.get(), u"xl/sharedStrings.xml"_s).value_or(QByteArray()));
    const QSet<int> dates = dateStyles(entry(zip.get(), u"xl/styles.xml"_s).value_or(QByteArray()));

    QList<Table::Row> rows;
    QXmlStreamReader r(*sheet);
    Table::Row row;
    int nextRow = 1;
    while (!r.atEnd()) {
        r.readNext();
        if (r.isStartElement() && r.name() == u"row") {
            row = Table::Row();
            const int n = r.attributes().value(u"r"_s).toInt();
            row.line = n > 0 ? n : nextRow;
            nextRow = row.line + 1;
        } else if (r.isEndElement() && r.name() == u"row") {
            while (!row.cells.isEmpty() && row.cells.last().trimmed().isEmpty())
                row.cells.removeLast();
            if (!row.cells.isEmpty())
                rows.append(row);
        } else if (r.isStartElement() && r.name() == u"c") {
            const QXmlStreamAttributes a = r.attributes();
            int col = columnOf(a.value(u"r"_s));
            if (col < 0)
                col = int(row.cells.size());
            const QString type = a.value(u"t"_s).toString();
            const bool isDate = dates.contains(a.value(u"s"_s).toInt());
            QString value;
            while (!(r.isEndElement() && r.name() == u"c") && !r.atEnd()) {
                r.readNext();
                if (r.isStartElement() && (r.name() == u"v" || r.name() == u"t"))
                    value += r.readElementText();
            }
            if (type == u"s") {
                const int k = value.toInt();
                value = k >= 0 && k < strings.size() ? strings.at(k) : QString();
            } else if (isDate && (type.isEmpty() || type == u"n") && !value.isEmpty()) {
                bool ok = false;
                const double serial = value.toDouble(&ok);
                if (ok && serial >= 1 && serial < 2958466) // 1900-01-01 to 9999-12-31
                    value = DateFmt::iso(QDate(1899, 12, 30).addDays(qint64(std::floor(serial))));
            }
            while (row.cells.size() <= col)
                row.cells.append(QString());
            row.cells[col] = value;
        }
    }
    if (r.hasError()) {
        source.error = name + u": the worksheet cannot be read ("_s + r.errorString() + u")."_s;
        return source;
    }
    Table table;
    table.file = name;
    if (!rows.isEmpty()) {
        table.header = rows.takeFirst().cells;
        for (QString &h : table.header)
            h = h.trimmed();
    }
    table.rows = std::move(rows);
    source.tables.append(std::move(table));
    return source;
}

} // namespace Import
