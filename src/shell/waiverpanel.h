#pragma once
#include "refreshable.h"

#include <QtWidgets/QWidget>

class DB;
class Notice;
class QLabel;

// The statutory-form warning of a lien waiver and a preview of its wording.
class WaiverPanel : public QWidget, public Refreshable
{
    Q_OBJECT
public:
    WaiverPanel(DB &db, const QString &waiverId, QWidget *parent = nullptr);
    void refresh() override;

    // The warning shown, empty when the waiver's state has no statutory form.
    QString warning() const;
    // The wording as the preview shows it (document HTML).
    QString preview() const { return m_html; }

private:
    void restyle();
    DB &m_db;
    QString m_id;
    QString m_html;
    Notice *m_notice;
    QLabel *m_caption;
    QLabel *m_preview;
};
