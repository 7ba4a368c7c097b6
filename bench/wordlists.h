#pragma once
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>

// The words the reference company is written with: names, trades, items and
// the sentences field people type into logs, RFIs and minutes.
namespace BenchText {

// Which kinds of job a cost code is used on.
enum JobType : unsigned { Residential = 1, Commercial = 2, HeavyCivil = 4 };

// One line an estimator prices under a cost code: unit cost in cents.
struct Item
{
    const char16_t *name;
    const char16_t *unit;
    int costLo;
    int costHi;
    double qtyLo;
    double qtyHi;
};

// The items of one of the default cost codes, matched by its code text.
struct Division
{
    const char16_t *code;
    unsigned jobTypes;
    const char16_t *specSection;
    std::array<Item, 3> items;
};

const std::array<Division, 22> &divisions();

const QStringList &firstNames();
const QStringList &lastNames();
const QStringList &streets();
const QStringList &cities();
const QStringList &trades();
const QStringList &supplierNames();
const QStringList &buildingNames(unsigned jobType);
const QStringList &equipmentTypes();
const QStringList &phases(unsigned jobType);
const QStringList &locations();
const QStringList &workSentences();
const QStringList &delaySentences();
const QStringList &visitorSentences();
const QStringList &safetyTopics();
const QStringList &rfiQuestions();
const QStringList &rfiAnswers();
const QStringList &meetingNotes();
const QStringList &actionItems();
const QStringList &punchItems();
const QStringList &changeReasons();
const QStringList &extraWork();

} // namespace BenchText
