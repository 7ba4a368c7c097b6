#include "recordscreenmodel.h"

#include "calc/datefmt.h"
#include "calc/fmt.h"
#include "calc/rules.h"
#include "look/fwui.h"
#include "store/db.h"

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
        if (e.value.contains(needle, Qt::CaseInsensitive))
            return true;
    return false;
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
    const QString needle = search.toLower();
    RecFilter filter;
    filter.project = scopedProject;
    QList<Rec> rows;
    m_db.visit(m_m.kind, filter, [&](const Rec &r) {
        if (matches(r, needle))
            rows.append(r);
    });
    QList<FD> cols = colDefs(m_m, scopedProject.has_value() || !m_m.perProject);
    // Every save stamps `updated`, so equal ids and stamps mean equal rows;
    // comparing whole records would cost more than the search itself.
    const bool sameRows =
        rows.size() == m_rows.size() &&
        std::equal(rows.cbegin(), rows.cend(), m_rows.cbegin(),
                   [](const Rec &a, const Rec &b) { return a.id == b.id && a.updated == b.updated; });
    if (sameRows && cols == m_cols)
        return;
    beginResetModel();
    m_rows = std::move(rows);
    m_cols = std::move(cols);
    endResetModel();
}

int RecordListModel::rowOf(const QString &id) const
{
    for (int i = 0; i < m_rows.size(); ++i)
        if (m_rows.at(i).id == id)
            return i;
    return -1;
}

int RecordListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int RecordListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_cols.size()) + (m_badge ? 1 : 0);
}

QVariant RecordListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Rec &rec = m_rows.at(index.row());
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
