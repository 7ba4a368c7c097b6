#pragma once
#include "refreshable.h"

#include <QtCore/QHash>
#include <QtWidgets/QWidget>

class DB;
class FWChromeButton;
class PhotoTile;
class QHBoxLayout;
class QLabel;
class QScrollArea;

// The photos attached to a record, side by side: a thumbnail that opens the
// file on a double click, an editable caption and a delete button each.
class PhotoStrip : public QWidget, public Refreshable
{
    Q_OBJECT
public:
    PhotoStrip(DB &db, const QString &recordId, QWidget *parent = nullptr);
    void refresh() override;
    // Asks for images and attaches each one that could be stored.
    void addPhotos();
    // Attaches the files at `paths` in order; a file that cannot be stored is skipped.
    void addFiles(const QStringList &paths);
    // The caption row's text: "Photos (2)" or "Photos (none)".
    QString caption() const;
    // The ids of the photos shown, in order.
    QStringList photoIds() const { return m_order; }

private:
    void restyle();

    DB &m_db;
    QString m_id;
    QLabel *m_caption;
    FWChromeButton *m_add;
    QScrollArea *m_scroll;
    QHBoxLayout *m_tilesLayout;
    QHash<QString, PhotoTile *> m_tiles;
    QStringList m_order;
};

// A thumbnail with rounded corners, cropped to fill; a picture that cannot be read shows a placeholder.
class PhotoThumb : public QWidget
{
    Q_OBJECT
public:
    explicit PhotoThumb(const QString &path, QWidget *parent = nullptr);
    // Whether the file was read as a picture.
    bool readable() const { return !m_image.isNull(); }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *) override;
    void mouseDoubleClickEvent(QMouseEvent *) override;

private:
    QString m_path;
    QImage m_image;
};
