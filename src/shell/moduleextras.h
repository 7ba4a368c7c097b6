#pragma once
#include <QtCore/QString>

#include <functional>

class DB;
class Nav;
class QWidget;
struct ModuleDef;

// The parts of a record editor beyond its fields. Each returns nullptr when the
// module has nothing there; every widget returned implements Refreshable. The
// editor places the photo strip itself, at the place of the extras above the lines.

// The panels, notices and boxes shown above the lines.
QWidget *makeModuleExtras(DB &db, Nav &nav, const ModuleDef &m, const QString &recordId, QWidget *parent);
// The grid of the record's line records, for a module with a line kind.
QWidget *makeLinesEditor(DB &db, Nav &nav, const ModuleDef &m, const QString &recordId, QWidget *parent);
// The totals and buttons shown below the lines.
QWidget *makeModuleExtrasAfterLines(DB &db, Nav &nav, const ModuleDef &m, const QString &recordId,
                                    QWidget *parent);
// The photos attached to a record.
QWidget *makePhotoStrip(DB &db, const QString &recordId, QWidget *parent);
// The editor of a document's body, which the screens layer supplies; empty until registered.
using PanelFactory = std::function<QWidget *(DB &, Nav &, const QString &recordId, QWidget *parent)>;
PanelFactory &documentPanelFactory();
