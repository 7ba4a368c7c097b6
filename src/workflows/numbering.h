#pragma once
#include <QtCore/QString>

class DB;

// The next number of a numbered kind in a project (the empty text: company-wide)
// of the current company: one above the highest, so gaps are never filled.
qint64 nextNumber(const DB &db, const QString &kind, const QString &project);
