#pragma once
#include <QtCore/QDate>
#include <QtCore/QDateTime>
#include <QtCore/QString>

#include <optional>

// Dates as the records hold them ("yyyy-MM-dd") and as people read them.
namespace DateFmt {
// "yyyy-MM-dd" of a date.
QString iso(const QDate &date);
// The date of a "yyyy-MM-dd" text, or nothing.
std::optional<QDate> parseIso(QStringView text);
// Display form, United States style: "Nov 15, 2026".
QString nice(const QDate &date);
// A stored date text for display: empty stays empty, an unreadable text stays as typed.
QString show(const QString &text);

// Today on this machine, or the day a test (or TRESTLE_TODAY) fixed.
QDate today();
// The current moment; on a fixed "today", that day at the current time of day.
QDateTime now();
// Fixes "today" for tests; an invalid date returns to the real clock.
void setToday(const QDate &date);
} // namespace DateFmt

// The text with its first character upper-cased when that is a lower-case letter.
QString capitalizedIfLower(const QString &text);
