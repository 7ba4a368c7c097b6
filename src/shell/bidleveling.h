#pragma once
#include "refreshable.h"

#include <QtWidgets/QWidget>

class DB;
class QGridLayout;
class QLabel;

// A bid package's bids ranked low to high with their spread, and the award
// button of each bid that is not the awarded one.
class BidLevelingPanel : public QWidget, public Refreshable
{
    Q_OBJECT
public:
    BidLevelingPanel(DB &db, const QString &packageId, QWidget *parent = nullptr);
    void refresh() override;

    // The spread line as shown.
    QString spreadText() const;

private:
    void rebuild();
    void restyle();

    DB &m_db;
    QString m_id;
    QStringList m_shown; // what the rows show, to skip rebuilding an unchanged ranking
    QWidget *m_rows;
    QGridLayout *m_grid;
    QLabel *m_spread;
};
