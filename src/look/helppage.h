#pragma once
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

// One piece of a help page. Invariant: `name` is used only by control (the
// control's name) and key (the keys); `items` only by steps and bullets.
struct HelpBlock
{
    enum Kind { heading, text, steps, bullets, control, key, tip };
    Kind kind = text;
    QString name;
    QString body;
    QStringList items;

    static HelpBlock makeHeading(QString t) { return {heading, {}, std::move(t), {}}; }
    static HelpBlock makeText(QString t) { return {text, {}, std::move(t), {}}; }
    static HelpBlock makeSteps(QStringList l) { return {steps, {}, {}, std::move(l)}; }
    static HelpBlock makeBullets(QStringList l) { return {bullets, {}, {}, std::move(l)}; }
    static HelpBlock makeControl(QString n, QString t) { return {control, std::move(n), std::move(t), {}}; }
    static HelpBlock makeKey(QString k, QString t) { return {key, std::move(k), std::move(t), {}}; }
    static HelpBlock makeTip(QString t) { return {tip, {}, std::move(t), {}}; }

    // Every text the block shows, joined with blanks, for the search.
    QString searchText() const;
    bool operator==(const HelpBlock &) const = default;
};

// One page of the guide: its id, title, symbol and blocks in reading order.
struct HelpPage
{
    QString id;
    QString title;
    QString symbol;
    QList<HelpBlock> blocks;

    // The texts of all blocks joined with blanks.
    QString searchText() const;
};

// The pages every Fenwright program carries, for the program named `app`.
namespace FWCommonHelp {
QList<HelpPage> pages(const QString &app);
} // namespace FWCommonHelp

// The guide's pages as installed at launch, and the search over them.
namespace FWHelp {
// The installed pages, in the order the window lists them.
const QList<HelpPage> &pages();
void setPages(QList<HelpPage> pages);
// The page as HTML for the help window's reader.
QString html(const HelpPage &page);
} // namespace FWHelp
