#pragma once
#include "look/helppage.h"

#include <QtCore/QHash>

struct FD;
struct ModuleDef;

// The program's own guide: hand-written pages for what no module shows, and
// one page per module generated from the module table, so it stays true of it.
namespace TLHelp {
// The hand-written pages, then every module's page in table order.
QList<HelpPage> pages();
// The hand-written pages alone, in order.
QList<HelpPage> guidePages();
// The page on importing lists, spreadsheets and open jobs.
HelpPage importPage();
// The generated page of module `m`.
HelpPage page(const ModuleDef &m);
// A sentence on how field `fd` is filled in.
QString fieldHelp(const FD &fd);
// Hand-written blocks per module id, placed after the module's blurb.
const QHash<QString, QList<HelpBlock>> &extra();
// Fills the shell's help hooks: the pages at launch, the window on request.
void install();
} // namespace TLHelp
