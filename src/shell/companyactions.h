#pragma once
#include <QtCore/QString>

#include <functional>
#include <optional>

class DB;
class Nav;
class QWidget;

// Company ▸ Rename… and Remove…: a company's name changed, or the company
// taken away whole after a snapshot of everything, which the message names.
namespace CompanyActions {
// Renames company `id`; the reason it was refused (an empty name, one another
// company has), or nothing when done.
std::optional<QString> rename(DB &db, const QString &id, const QString &name);
// Takes a snapshot, then removes company `id` with all it holds and makes
// another company current (none left: the New Company screen). The snapshot's
// folder in `snapshot`; the reason when nothing was removed.
std::optional<QString> remove(DB &db, Nav &nav, const QString &id, QString *snapshot);

// The window's side: asks for the name, or asks whether to remove, then says what happened.
void askRename(QWidget *parent, DB &db);
void askRemove(QWidget *parent, DB &db, Nav &nav);
// The questions asked, for tests: a new name (none: cancelled), and yes or no.
using AskName = std::function<std::optional<QString>(QWidget *, const QString &current)>;
using Confirm = std::function<bool(QWidget *, const QString &question)>;
AskName &askNameHook();
Confirm &confirmHook();
} // namespace CompanyActions
