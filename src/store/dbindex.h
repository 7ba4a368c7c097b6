#pragma once
#include "rec.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

// In-memory indexes over the store's records, kept in step with every write.
// They only narrow the search: callers still test every condition on each
// candidate, so a result is always exactly what a walk over all records gives.
// Invariant: every stored record is in its company+kind bucket, in its
// project+kind bucket when `project` is not empty, and in its parent bucket when `parent`
// is not empty; company records are also in `companies`.
// A record as the store holds it, with its list order key read once.
struct StoredRec
{
    Rec rec;
    qint64 sort = 0;      // Rec::i("sort"), kept in step by the store
    bool sortBad = false; // the sort text does not fit 64 bits: listing it stops the program
};

class RecIndex
{
public:
    using Bucket = QSet<const StoredRec *>;

    void add(const StoredRec *rec);
    void remove(const StoredRec *rec);
    void clear();

    // The smallest bucket that holds every record matching the filter (the
    // project and parent texts only when given). Null means "no record".
    const Bucket *candidates(const QString &kind, const QString &company, const QString *project,
                             const QString *parent) const;
    const Bucket *byParent(const QString &parent) const;
    // Every project+kind bucket of one project.
    QList<const Bucket *> byProject(const QString &project) const;
    // Every company+kind bucket of one company.
    QList<const Bucket *> byCompany(const QString &company) const;

private:
    using CompanyKind = std::pair<QString, QString>;
    QHash<CompanyKind, Bucket> m_ck;
    using ProjectKind = std::pair<QString, QString>;
    QHash<ProjectKind, Bucket> m_project;
    QHash<QString, Bucket> m_parent;
    Bucket m_companies;
};
