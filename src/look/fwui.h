#pragma once
#include <QtCore/QObject>
#include <QtGui/QColor>
#include <QtGui/QFont>

// One finish of the program: a stable id, a shown name and twelve colours,
// backgrounds from darkest (deep) to lightest (raised), then the chrome
// gradient's stops, the accents, text colours and the sunken-field colour.
struct FWTheme
{
    QString id;
    QString name;
    QColor deep, base, panel, raised;
    QColor metalHi, metalMid, metalLo;
    QColor accent, accent2;
    QColor text, dim, well;

    // The finishes in menu order: the six dark ones, the first being the default, then the light one.
    static const QList<FWTheme> &all();
    // The finish with that id, or the first finish for an unknown id.
    static const FWTheme &byId(QStringView id);
};

// The shared look: the chosen finish and the zoom of the whole interface.
// Both are stored in the user defaults the moment they change, and every
// change emits changed() once so the window repaints everything together.
class FWUI : public QObject
{
    Q_OBJECT
public:
    // Reads the stored finish and zoom; unknown or missing values fall back.
    explicit FWUI(QObject *parent = nullptr);

    // The application's look object.
    static FWUI &shared();
    // The zoom steps from smallest to largest.
    static const QList<double> &steps();
    // The last step smaller than `before` (with a 0.001 tolerance); the smallest at the bottom.
    static double previousZoom(double before);
    // The first step greater than `after` (with a 0.001 tolerance); the largest at the top.
    static double nextZoom(double after);

    const FWTheme &theme() const { return *m_theme; }
    double zoom() const { return m_zoom; }
    // Chooses the finish with that id (the first for an unknown id) and stores it.
    void setTheme(const QString &id);
    // True until the user picks a finish: the finish then follows the desktop's light or dark look.
    bool followsDesktop() const { return m_followsDesktop; }
    // The desktop's preference: the light finish for light, the first finish for dark. Ignored
    // once the user has picked a finish.
    void setDesktopPrefersLight(bool light);
    // Sets the zoom, kept within the smallest and largest step, and stores it.
    void setZoom(double zoom);
    void zoomIn() { setZoom(nextZoom(m_zoom)); }
    void zoomOut() { setZoom(previousZoom(m_zoom)); }

    // A size in points at the current zoom.
    qreal s(qreal points) const { return points * m_zoom; }
    // The same, rounded to whole pixels and at least 1.
    int px(qreal points) const;
    // The interface font at `points` (before zoom) and weight.
    QFont font(qreal points, QFont::Weight weight = QFont::Normal) const;
    // The zoom as a whole percentage, e.g. "125%".
    QString percent() const;

Q_SIGNALS:
    void changed();

private:
    void choose(const FWTheme *next);
    const FWTheme *m_theme;
    bool m_followsDesktop = true;
    double m_zoom = 1.0;
};
