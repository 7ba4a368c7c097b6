#pragma once
#include <QtCore/QString>
#include <QtCore/QTextStream>

// The company server's figures on the reference company, beside the local
// open of the same run: first open from the server, open with the cache after
// changes made elsewhere, how soon a change is seen by another seat, and 25
// seats saving once a second. `conninfo` is an administrator's key=value
// connection string to an empty database (or one this benchmark set up).
int runServerBench(const QString &localPath, const QString &conninfo, int seats, int seconds,
                   QTextStream &out);
