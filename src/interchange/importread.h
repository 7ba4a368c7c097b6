#pragma once
#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

// Reading the files a company brings in: CSV and tab-separated text as
// spreadsheets save it, QuickBooks IIF list exports and the first sheet of an
// .xlsx workbook, all into plain tables of text. Nothing here knows records.
namespace Import {

// One table of a file. Invariant: every row's `line` is the 1-based line of
// the file where the row starts (a quoted cell may run over several lines).
struct Table
{
    QString file;    // the file's name, as messages show it
    QString section; // an IIF section ("CUST", "VEND"...), empty for other files
    QStringList header;
    struct Row
    {
        int line = 0;
        QStringList cells;
    };
    QList<Row> rows;
};

// What a file or folder held.
struct Source
{
    QList<Table> tables;
    QString error; // why nothing could be read; empty when read
};

// Text of a file's bytes: UTF-16 after its byte-order mark; UTF-8 (with or
// without a mark) when the bytes are valid UTF-8; else Windows-1252, as older
// Windows programs save.
QString decode(const QByteArray &bytes);
// The cell separator a header line uses: comma, semicolon or tab, whichever
// appears most outside quotes (comma when none does).
QChar separatorOf(QStringView firstLine);
// Rows of delimited text: quoted cells may hold the separator, doubled quotes
// and line breaks; CRLF, CR and LF all end a row; blank lines are passed over.
QList<Table::Row> splitRows(QStringView text, QChar separator);
// A CSV file's table: the first row is the header.
Table csv(const QString &fileName, const QString &text);
// The sections of an IIF list export, each with the columns of its "!" row.
// Rows of a section whose header never appeared are left out; ENDGRP ends nothing.
QList<Table> iif(const QString &fileName, const QString &text);
// The first sheet of an .xlsx file; cells with a date format read as ISO days.
Source xlsx(const QString &path);
// Reads a file by its kind (.iif, .xlsx, anything else as CSV) or, for a
// folder, every such file in it, in name order.
Source read(const QString &path);

} // namespace Import
