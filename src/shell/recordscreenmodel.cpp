#include "recordscreenmodel.h"

#include "calc/datefmt.h"
#include "calc/fmt.h"
#include "calc/rules.h"
#include "look/fwui.h"
#include "store/db.h"

#include <QtCore/QHash>

using namespace Qt::StringLiterals;

RecordListModel::RecordListModel(const DB &db, const ModuleDef &m, QObject *parent)
    : QAbstractTableModel(parent)
    , m_db(db)
    , m_m(m)
    , m_cols(colDefs(m, false))
    , m_badge(m.kind == u"compliance")
{}

QList<FD> RecordListModel::colDefs(const ModuleDef &m, bool projectChosen)
{
    QList<FD> out;
    for (const QString &key : m.columns) {
        if (key == u"number")
            out.append(FD{u"number"_s, u"#"_s, FT::of(FT::text)});
        else if (const FD *fd = m.field(key))
            out.append(*fd);
    }
    if (m.perProject && !projectChosen)
        out.prepend(FD{u"__project"_s, u"Project"_s, FT::of(FT::text)});
    return out;
}

bool RecordListModel::matches(const Rec &rec, QStringView needle)
{
    if (needle.isEmpty())
        return true;
    for (const Fields::Entry &e : rec.f)
        if (e.value.toLower().contains(needle))
            return true;
    return false;
}

namespace {
// Joins the lower-cased values of a record; no typed search holds it, so no
// match can run across two values.
constexpr QChar kSeparator = QChar(0);
} // namespace

RecordListModel::Entry RecordListModel::entryOf(const Rec &rec)
{
    qsizetype length = 0;
    for (const Fields::Entry &e : rec.f)
        length += e.value.size() + 1;
    Entry out{rec, {}};
    out.haystack.reserve(length);
    for (const Fields::Entry &e : rec.f) {
        out.haystack += e.value.toLower();
        out.haystack += kSeparator;
    }
    return out;
}

bool RecordListModel::entryMatches(const Entry &e, QStringView needle) const
{
    if (needle.isEmpty())
        return true;
    // A pasted text holding the separator could match across values; test those one by one.
    if (needle.contains(kSeparator))
        return matches(e.rec, needle);
    return e.haystack.contains(needle);
}

std::pair<QString, QColor> RecordListModel::complianceBadge(const Rec &rec)
{
    const Calc::Compliance c =
        Calc::complianceStatus(DateFmt::parseIso(rec.f.value(u"expires").left(10)), DateFmt::today(), 30);
    if (c.status == u"expired")
        return {u"Expired"_s, QColor(0xFF, 0x3B, 0x30)};
    if (c.status == u"expiring")
        return {QString::number(c.days) + u"d left"_s, QColor(0xFF, 0x95, 0x00)};
    if (c.status == u"missing")
        return {u"No date"_s, FWUI::shared().theme().dim};
    return {u"OK"_s, QColor(0x34, 0xC7, 0x59)};
}

void RecordListModel::reload(const std::optional<QString> &scopedProject, const QString &search)
{
    RecFilter filter;
    filter.project = scopedProject;
    // Records whose save stamp is unchanged keep their entry (and its lower-cased
    // text); every save stamps `updated`, so equal stamps mean equal records.
    std::vector<Entry> all;
    all.reserve(m_all.size());
    std::vector<int> reusedFrom; // per new entry: the old index it was kept from, or -1
    reusedFrom.reserve(m_all.size());
    QHash<QString, qsizetype> oldIndex;
    qsizetype next = 0; // the store's order rarely changes: try the old entry after the last one first
    m_db.visit(m_m.kind, filter, [&](const Rec &r) {
        qsizetype at = -1;
        if (next < qsizetype(m_all.size()) && m_all[next].rec.id == r.id) {
            at = next;
        } else if (!m_all.empty()) {
            if (oldIndex.isEmpty())
                for (qsizetype i = 0; i < qsizetype(m_all.size()); ++i)
                    oldIndex.insert(m_all[i].rec.id, i);
            at = oldIndex.value(r.id, -1);
        }
        if (at >= 0)
            next = at + 1;
        if (at >= 0 && m_all[at].rec.updated == r.updated && m_all[at].rec.id == r.id) {
            all.push_back(std::move(m_all[at]));
            reusedFrom.push_back(int(at));
        } else {
            all.push_back(entryOf(r));
            reusedFrom.push_back(-1);
        }
    });
    const QString needle = search.toLower();
    QList<int> shown;
    for (int i = 0; i < int(all.size()); ++i)
        if (entryMatches(all[i], needle))
            shown.append(i);
    bool sameRows = shown.size() == m_shown.size();
    for (qsizetype k = 0; sameRows && k < shown.size(); ++k)
        sameRows = reusedFrom[shown[k]] == m_shown[k];
    QList<FD> cols = colDefs(m_m, scopedProject.has_value() || !m_m.perProject);
    const bool reset = !sameRows || cols != m_cols;
    if (reset)
        beginResetModel();
    m_all = std::move(all);
    m_shown = std::move(shown);
    m_cols = std::move(cols);
    m_needle = needle;
    if (reset)
        endResetModel();
}

void RecordListModel::setSearch(const QString &search)
{
    const QString needle = search.toLower();
    if (needle == m_needle)
        return;
    QList<int> shown;
    if (needle.startsWith(m_needle)) {
        // Whatever holds the longer text holds the shorter one: narrow the rows shown.
        for (int i : std::as_const(m_shown))
            if (entryMatches(m_all[i], needle))
                shown.append(i);
    } else {
        for (int i = 0; i < int(m_all.size()); ++i)
            if (entryMatches(m_all[i], needle))
                shown.append(i);
    }
    if (shown == m_shown) {
        m_needle = needle;
        return;
    }
    beginResetModel();
    m_shown = std::move(shown);
    m_needle = needle;
    endResetModel();
}

QList<Rec> RecordListModel::rows() const
{
    QList<Rec> out;
    out.reserve(m_shown.size());
    for (int i : m_shown)
        out.append(m_all[i].rec);
    return out;
}

int RecordListModel::rowOf(const QString &id) const
{
    for (int k = 0; k < m_shown.size(); ++k)
        if (m_all[m_shown[k]].rec.id == id)
            return k;
    return -1;
}

int RecordListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_shown.size());
}

int RecordListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_cols.size()) + (m_badge ? 1 : 0);
}

QVariant RecordListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_shown.size())
        return {};
    const Rec &rec = rowRecord(index.row());
    if (role == IdRole)
        return rec.id;
    if (index.column() >= m_cols.size()) {
        const auto [text, colour] = complianceBadge(rec);
        switch (role) {
        case Qt::DisplayRole: return text;
        case KindRole: return Badge;
        case ColourRole: return colour;
        default: return {};
        }
    }
    const FD &fd = m_cols.at(index.column());
    const CellKind kind = fd.key == u"__project"                      ? Project
                          : fd.key == u"status" || fd.key == u"stage" ? Pill
                          : fd.key == u"number"                       ? Number
                          : fd.type.kind == FT::money                 ? Money
                                                                      : Plain;
    if (role == KindRole)
        return kind;
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return {};
    switch (kind) {
    case Project: return m_db.label(rec.project);
    case Pill:
    case Number: return rec.f.value(fd.key);
    default: return Fmt::value(m_db, rec, fd);
    }
}

QVariant RecordListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    if (section < m_cols.size())
        return m_cols.at(section).label.toUpper();
    return m_badge && section == m_cols.size() ? QVariant(u"STATUS"_s) : QVariant();
}
