#pragma once
#include <QtCore/QHash>
#include <QtGui/QImage>
#include <QtWidgets/QAbstractScrollArea>

#include <functional>
#include <memory>
#include <optional>

class PdfMarkup;

// A plan sheet's pages one below the other, fitted to the width and sharp at
// every zoom, on which the user draws. Each finished mark, and each undo,
// rewrites the sheet's file at once. A file that cannot be written keeps its
// marks (on screen, and for any view that opens the sheet again) and waits in
// FileWrites, which the save banner shows, until a write goes through.
class MarkupView : public QAbstractScrollArea
{
    Q_OBJECT
public:
    // The tools, by the names the screen keeps.
    static const QStringList &toolNames();

    explicit MarkupView(const QString &path, QWidget *parent = nullptr);
    ~MarkupView() override;

    bool isValid() const;
    int pageCount() const;
    // What the sheet is called to a screen reader (its number and title).
    void setSheetName(const QString &name) { m_sheetName = name; }
    QString sheetName() const { return m_sheetName; }
    void setTool(const QString &tool);
    QString tool() const { return m_tool; }
    void setMarkColor(const QColor &color) { m_color = color; }
    // Zoom over the fitted width: 1 fits the widest page to the view.
    void setZoom(double zoom);
    double zoom() const { return m_zoom; }
    // The viewport's top left as a share of the content's width and height.
    QPointF position() const { return m_at; }
    // Pixels per point at which pages are drawn now.
    double scale() const;
    // Takes away the last mark made in this view; false when there is none.
    bool undoLast();
    // Marks made in this view that undo can take away.
    int undoable() const { return int(m_added.size()); }
    // Where point `at` of page `page` shows in the viewport.
    QPointF toViewport(int page, const QPointF &at) const;
    // The adapter, for reading the marks.
    const PdfMarkup &pdf() const { return *m_pdf; }

    // Asks for a note's text; nothing when cancelled. Tests put their own here.
    using AskNote = std::function<std::optional<QString>(QWidget *parent)>;
    static AskNote &askNoteHook();
    // How many page parts were drawn by the library since the view was made.
    int renders() const { return m_renders; }

Q_SIGNALS:
    // A mark was added or taken away and the file rewritten (or not, when it could not be).
    void marksChanged();

protected:
    void paintEvent(QPaintEvent *) override;
    void resizeEvent(QResizeEvent *) override;
    void mousePressEvent(QMouseEvent *) override;
    void mouseMoveEvent(QMouseEvent *) override;
    void mouseReleaseEvent(QMouseEvent *) override;
    void wheelEvent(QWheelEvent *) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    // One drawn part of a page at one scale.
    struct Tile
    {
        double scale = 0;
        QRect area; // in device pixels of the page at that scale
        QImage image;
    };

    void layoutPages();
    QRectF pageRect(int page) const; // in content pixels
    std::optional<std::pair<int, QPointF>> pageAt(const QPoint &viewportPos) const;
    const QImage &tileFor(int page, const QRect &visible, double dpr);
    void finishMark(int handle, int page);
    void dropTiles(int page);
    // Writes the sheet with its marks, or leaves the write waiting in FileWrites.
    void write();

    QString m_file;
    std::shared_ptr<PdfMarkup> m_pdf;
    QString m_sheetName;
    QString m_tool = QStringLiteral("pan");
    QColor m_color = Qt::red;
    double m_zoom = 1;
    QList<QSizeF> m_sizes; // page sizes in points
    QList<qreal> m_tops;   // page tops in content pixels
    qreal m_contentW = 0, m_contentH = 0;
    QPointF m_at;            // the viewport's top left as a share of the content, kept over relayouts
    bool m_relayout = false; // the scroll bars are being set by a relayout, not by the user
    QHash<int, Tile> m_tiles;
    QList<std::pair<int, int>> m_added; // (handle, page) of this view's marks, oldest first
    int m_renders = 0;

    // The mark being drawn.
    int m_page = -1;
    QPointF m_start;
    QList<QPointF> m_path;
    QPointF m_end;
    QPoint m_panFrom;
    bool m_panning = false;
};
