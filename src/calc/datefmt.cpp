#include "datefmt.h"

#include <QtCore/QLocale>

using namespace Qt::StringLiterals;

namespace DateFmt {

namespace {
QDate &fixedToday()
{
    static QDate day = [] {
        const QByteArray env = qgetenv("TRESTLE_TODAY");
        return env.isEmpty() ? QDate() : QDate::fromString(QString::fromLatin1(env), Qt::ISODate);
    }();
    return day;
}
} // namespace

QString iso(const QDate &date)
{
    return date.toString(u"yyyy-MM-dd");
}

std::optional<QDate> parseIso(QStringView text)
{
    // Four-digit year, month and day; the fixed form the records use.
    if (text.size() != 10 || text.at(4) != u'-' || text.at(7) != u'-')
        return std::nullopt;
    bool ok1 = false, ok2 = false, ok3 = false;
    const int y = text.left(4).toInt(&ok1);
    const int m = text.mid(5, 2).toInt(&ok2);
    const int d = text.mid(8, 2).toInt(&ok3);
    for (qsizetype k : {0, 1, 2, 3, 5, 6, 8, 9})
        if (!text.at(k).isDigit())
            return std::nullopt;
    const QDate date(y, m, d);
    if (!(ok1 && ok2 && ok3) || !date.isValid())
        return std::nullopt;
    return date;
}

QString nice(const QDate &date)
{
    static const QLocale us(QLocale::English, QLocale::UnitedStates);
    return us.toString(date, u"MMM d, yyyy");
}

QString show(const QString &text)
{
    if (text.isEmpty())
        return text;
    if (auto date = parseIso(QStringView(text).left(10)))
        return nice(*date);
    return text;
}

QDate today()
{
    const QDate fixed = fixedToday();
    return fixed.isValid() ? fixed : QDate::currentDate();
}

QDateTime now()
{
    const QDateTime real = QDateTime::currentDateTime();
    const QDate fixed = fixedToday();
    return fixed.isValid() ? QDateTime(fixed, real.time()) : real;
}

void setToday(const QDate &date)
{
    fixedToday() = date;
}

} // namespace DateFmt

QString capitalizedIfLower(const QString &text)
{
    if (text.isEmpty() || !text.at(0).isLower())
        return text;
    QString out = text;
    out[0] = text.at(0).toUpper();
    return out;
}
