#include "importread.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStringDecoder>

using namespace Qt::StringLiterals;

namespace Import {

namespace {

// Windows-1252 differs from Latin-1 only in 0x80–0x9F; five codes there are unassigned.
constexpr char16_t kCp1252High[32] = {0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
                                      0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

QString cp1252(const QByteArray &bytes)
{
    QString out(bytes.size(), Qt::Uninitialized);
    QChar *d = out.data();
    for (const char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        *d++ = QChar(b >= 0x80 && b < 0xA0 ? kCp1252High[b - 0x80] : char16_t(b));
    }
    return out;
}

Table::Row trimmedRow(Table::Row row)
{
    // Trailing tabs and separators make empty cells that name nothing.
    while (!row.cells.isEmpty() && row.cells.last().trimmed().isEmpty())
        row.cells.removeLast();
    return row;
}

} // namespace

QString decode(const QByteArray &bytes)
{
    // Excel's "Unicode Text" is UTF-16 with its byte-order mark.
    if (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF")) {
        QStringDecoder utf16(bytes.startsWith("\xFF\xFE") ? QStringConverter::Utf16LE
                                                          : QStringConverter::Utf16BE);
        return utf16.decode(bytes.mid(2));
    }
    QByteArray body = bytes;
    if (body.startsWith("\xEF\xBB\xBF"))
        body.remove(0, 3);
    QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString text = utf8.decode(body);
    if (!utf8.hasError())
        return text;
    return cp1252(body);
}

QChar separatorOf(QStringView firstLine)
{
    int comma = 0, semicolon = 0, tab = 0;
    bool quoted = false;
    for (const QChar c : firstLine) {
        if (c == u'"')
            quoted = !quoted;
        else if (!quoted)
            comma += c == u',', semicolon += c == u';', tab += c == u'\t';
    }
    if (tab > comma && tab >= semicolon)
        return u'\t';
    if (semicolon > comma)
        return u';';
    return u',';
}

QList<Table::Row> splitRows(QStringView text, QChar separator)
{
    QList<Table::Row> rows;
    Table::Row row;
    QString cell;
    bool quoted = false;
    bool any = false; // the row has a character, a separator or a quote
    int line = 1;
    row.line = 1;
    const auto endRow = [&] {
        if (any) {
            row.cells.append(cell);
            rows.append(trimmedRow(std::move(row)));
        }
        row = Table::Row();
        cell.clear();
        any = false;
    };
    for (qsizetype k = 0; k < text.size(); ++k) {
        const QChar c = text.at(k);
        if (quoted) {
            if (c == u'"') {
                if (k + 1 < text.size() && text.at(k + 1) == u'"') {
                    cell += u'"';
                    ++k;
                } else {
                    quoted = false;
                }
            } else {
                if (c == u'\r' && k + 1 < text.size() && text.at(k + 1) == u'\n')
                    ++k;
                if (c == u'\n' || c == u'\r') {
                    ++line;
                    cell += u'\n';
                } else {
                    cell += c;
                }
            }
            continue;
        }
        if (c == u'"' && cell.trimmed().isEmpty()) {
            cell.clear();
            quoted = any = true;
        } else if (c == separator) {
            row.cells.append(cell);
            cell.clear();
            any = true;
        } else if (c == u'\r' || c == u'\n') {
            if (c == u'\r' && k + 1 < text.size() && text.at(k + 1) == u'\n')
                ++k;
            endRow();
            row.line = ++line;
        } else {
            cell += c;
            any = true;
        }
    }
    endRow();
    return rows;
}

Table csv(const QString &fileName, const QString &text)
{
    Table table;
    table.file = fileName;
    const qsizetype eol = text.indexOf(u'\n');
    QList<Table::Row> rows =
        splitRows(text, separatorOf(QStringView(text).left(eol < 0 ? text.size() : eol)));
    if (rows.isEmpty())
        return table;
    table.header = rows.takeFirst().cells;
    for (QString &h : table.header)
        h = h.trimmed();
    table.rows = std::move(rows);
    return table;
}

QList<Table> iif(const QString &fileName, const QString &text)
{
    QList<Table> tables;
    QHash<QString, qsizetype> bySection;
    for (Table::Row &row : splitRows(text, u'\t')) {
        if (row.cells.isEmpty())
            continue;
        const QString first = row.cells.first().trimmed();
        if (first.startsWith(u'!')) {
            const QString section = first.mid(1).toUpper();
            if (section.startsWith(u"END"_s) || section == u"HDR")
                continue;
            Table t;
            t.file = fileName;
            t.section = section;
            t.header = row.cells.mid(1);
            for (QString &h : t.header)
                h = h.trimmed().toUpper();
            if (const auto it = bySection.constFind(section); it != bySection.cend())
                tables[*it].header = t.header; // a second header row renames the columns that follow
            else {
                bySection.insert(section, tables.size());
                tables.append(std::move(t));
            }
            continue;
        }
        const auto it = bySection.constFind(first.toUpper());
        if (it == bySection.cend())
            continue; // HDR, ENDGRP, ENDTRNS and rows of no announced section
        row.cells.removeFirst();
        tables[*it].rows.append(std::move(row));
    }
    return tables;
}

Source read(const QString &path)
{
    Source source;
    const QFileInfo info(path);
    if (!info.exists()) {
        source.error = u"There is no file or folder "_s + QDir::toNativeSeparators(path) + u'.';
        return source;
    }
    QStringList files;
    if (info.isDir()) {
        const QDir dir(path);
        for (const QString &name :
             dir.entryList({u"*.csv"_s, u"*.txt"_s, u"*.iif"_s, u"*.xlsx"_s}, QDir::Files, QDir::Name))
            files.append(dir.filePath(name));
        if (files.isEmpty()) {
            source.error =
                u"The folder "_s + QDir::toNativeSeparators(path) + u" holds no .csv, .iif or .xlsx file."_s;
            return source;
        }
    } else {
        files.append(path);
    }
    for (const QString &file : std::as_const(files)) {
        const QString name = QFileInfo(file).fileName();
        const QString suffix = QFileInfo(file).suffix().toLower();
        if (suffix == u"xlsx") {
            Source sheet = xlsx(file);
            if (!sheet.error.isEmpty())
                return sheet;
            source.tables += sheet.tables;
            continue;
        }
        QFile f(file);
        if (!f.open(QIODevice::ReadOnly)) {
            source.error = u"Could not read "_s + QDir::toNativeSeparators(file) + u": "_s + f.errorString();
            return source;
        }
        const QString text = decode(f.readAll());
        const bool isIIF = suffix == u"iif" || text.trimmed().startsWith(u'!');
        if (isIIF)
            source.tables += iif(name, text);
        else
            source.tables.append(csv(name, text));
    }
    return source;
}

} // namespace Import
