// What a failed SQLite call means to someone who has never heard of SQLite.
#include "db.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

QString DB::plainCause(int code)
{
    switch (code & 0xff) {
    case SQLITE_FULL: return u"the disk is full"_s;
    case SQLITE_READONLY: return u"the data file or its folder is read-only"_s;
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return u"the data file is locked by another program"_s;
    case SQLITE_IOERR: return u"the disk reported an input/output error"_s;
    case SQLITE_PERM:
    case SQLITE_AUTH: return u"Trestle has no permission to use the data file"_s;
    case SQLITE_CANTOPEN: return u"the data file cannot be opened"_s;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB: return u"the data file is damaged"_s;
    case SQLITE_NOMEM: return u"the computer ran out of memory"_s;
    case SQLITE_MISUSE: return u"the data file is closed"_s;
    default:
        return u"the data file could not be written ("_s + QString::fromUtf8(sqlite3_errstr(code)) + u')';
    }
}
