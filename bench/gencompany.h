#pragma once
// Internal to the generator: the state it carries while it writes a company.
#include "wordlists.h"

#include "store/db.h"

#include <QtCore/QDate>
#include <QtCore/QHash>
#include <QtCore/QRandomGenerator>

namespace BenchData {

// Collects new records and saves them a thousand at a time: one transaction
// per batch keeps generating the reference store to seconds.
class Batch
{
public:
    static constexpr qsizetype kSize = 1000;
    explicit Batch(DB &db);
    ~Batch();
    Batch(const Batch &) = delete;
    Batch &operator=(const Batch &) = delete;
    // Queues a new record of the current company; its id.
    QString add(const QString &kind, const QString &project, const QString &parent, Fields f);
    void flush();

private:
    DB &m_db;
    QList<Rec> m_recs;
};

// The one source of chance, so a seed decides everything.
struct Dice
{
    QRandomGenerator rng;
    // A whole number in [lo, hi].
    int in(int lo, int hi);
    qint64 cents(qint64 lo, qint64 hi);
    double real(double lo, double hi);
    bool chance(double p);
    template<class T> const T &pick(const QList<T> &list) { return list.at(in(0, int(list.size()) - 1)); }
};

QString qtyText(double q);
QString iso(const QDate &d);
// The sentence with its place filled in, when it has one.
QString fill(const QString &sentence, const QString &place);

struct Worker
{
    QString id;
    QString name;
    QString rate;
};

struct Machine
{
    QString id;
    QString name;
};

// One cost code of a job: its budget, its row on the schedule of values and
// the stretch of the job (as fractions of its length) when its work happens.
struct Scope
{
    const BenchText::Division *div = nullptr;
    QString codeID;
    qint64 budget = 0;
    qint64 scheduled = 0;
    QString sovID;
    double from = 0;
    double to = 1;
    qint64 billed = 0;
};

struct Job
{
    QString id;
    QString name;
    unsigned type = BenchText::Commercial;
    QDate start;
    QDate end;
    QDate last; // the last day worked so far: the finish, or today
    QString client;
    QString architect;
    Worker pm;
    QList<Worker> crew;
    QList<Scope> scopes;

    // How far through its planned length the job is on `day` (0 to 1).
    double at(const QDate &day) const;
};

// A job's estimate revisions as priced: each line's quantity in every revision.
struct Estimate
{
    struct Line
    {
        qsizetype scope; // index into Job::scopes
        const BenchText::Item *item;
        qint64 unitCost;
        QStringList qty;
    };
    QList<QDate> dates;
    QList<Line> lines;
};

class Generator
{
public:
    Generator(DB &db, quint32 seed);
    void run(int projects, int years);

private:
    // generator.cpp: the company, its contacts, team and fleet
    void makeCompany();
    QString contact(const QString &type, const QString &name, const QString &company, const QString &trade);
    QString personName();
    QString phone();
    QString address();

    // genproject.cpp: one job from estimate to closeout
    void makeProject(int index, const QDate &start);
    // Prices every revision of the job's estimate and sets the scopes' budgets
    // from the accepted one; written once the project has its id.
    Estimate priceEstimates(Job &job);
    void writeEstimates(const Job &job, const Estimate &e);
    void tasks(const Job &job);
    void fieldDay(const Job &job, const QDate &day);
    void meeting(const Job &job, const QDate &day, int n);
    void payApp(Job &job, const QDate &periodTo, int n);
    // genpaper.cpp: the paperwork spread over a job
    void changeOrders(const Job &job);
    void purchaseOrders(const Job &job);
    void rfis(const Job &job);
    void submittals(const Job &job);
    void punchList(const Job &job);
    void invoices(const Job &job);
    void waivers(const Job &job, const QString &payApp, const QDate &periodTo, qint64 amount,
                 const QString &status);

    // A day within the stretch [a, b] of the job, or an invalid date when it is after today.
    QDate dayIn(const Job &job, double a, double b);
    const Scope &anyScope(const Job &job);
    // Picks `n` different workers of the crew.
    QList<const Worker *> pickCrew(const Job &job, int n);

    DB &m_db;
    Batch m_batch;
    Dice m_dice;
    QDate m_today;
    QString m_state;
    QString m_companyName;
    QString m_ownerName;
    QList<QString> m_clients, m_subs, m_vendors, m_designers;
    QHash<QString, QString> m_contactName;
    QHash<QString, QString> m_contactCompany;
    QList<Worker> m_managers, m_field;
    QList<Machine> m_fleet;
    QHash<QString, QString> m_codeID;   // code text -> cost code id
    QHash<QString, QString> m_codeName; // cost code id -> its name
};

} // namespace BenchData
