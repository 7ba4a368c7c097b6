#include "samplefiles.h"

#include "docstore.h"

#include "store/db.h"

#include <QtCore/QSaveFile>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QPdfWriter>

#include <cmath>

using namespace Qt::StringLiterals;

namespace SampleDocs {

namespace {

// Drawn at 1/8" = 1'-0": one foot of building is 9 points of paper.
constexpr double kFoot = 9;
constexpr double kOriginX = 190, kOriginY = 250; // top left corner of the building on the sheet

QPointF at(double xFeet, double yFeet)
{
    return {kOriginX + xFeet * kFoot, kOriginY + yFeet * kFoot};
}

QRectF room(double x, double y, double w, double h)
{
    return QRectF(at(x, y), at(x + w, y + h));
}

QString feet(double ft)
{
    return QString::number(int(ft)) + u"'-0\""_s;
}

QFont font(double pt, bool bold = false)
{
    QFont f(u"DejaVu Sans"_s);
    f.setPointSizeF(pt);
    f.setBold(bold);
    return f;
}

// A dimension line with end ticks and its length written on it.
void dimension(QPainter &p, QPointF a, QPointF b, const QString &text)
{
    p.setPen(QPen(Qt::black, 0.8));
    p.drawLine(a, b);
    const bool horizontal = std::abs(a.y() - b.y()) < 0.1;
    for (const QPointF &end : {a, b}) {
        p.drawLine(end + QPointF(-5, 5), end + QPointF(5, -5));
        p.drawLine(horizontal ? QLineF(end + QPointF(0, -9), end + QPointF(0, 9))
                              : QLineF(end + QPointF(-9, 0), end + QPointF(9, 0)));
    }
    p.setFont(font(11));
    const QPointF mid = (a + b) / 2;
    p.save();
    p.translate(mid);
    if (!horizontal)
        p.rotate(-90);
    p.fillRect(QRectF(-34, -9, 68, 18), Qt::white);
    p.drawText(QRectF(-40, -9, 80, 18), Qt::AlignCenter, text);
    p.restore();
}

// A door: its leaf and swing, hinged at `hinge`, opening `angle` degrees from its wall.
void door(QPainter &p, QPointF hinge, double width, double startAngle)
{
    p.setPen(QPen(Qt::black, 0.8));
    const double r = width * kFoot;
    const QRectF box(hinge - QPointF(r, r), QSizeF(2 * r, 2 * r));
    p.drawArc(box, int(startAngle * 16), 90 * 16);
    const double rad = (startAngle + 90) * M_PI / 180;
    p.drawLine(hinge, hinge + QPointF(r * std::cos(rad), -r * std::sin(rad)));
}

void label(QPainter &p, const QRectF &r, const QString &name, const QString &size)
{
    p.setPen(Qt::black);
    p.setFont(font(18, true));
    p.drawText(r.adjusted(0, 0, 0, -16), Qt::AlignCenter, name);
    p.setFont(font(11));
    p.drawText(r.adjusted(0, 30, 0, 0), Qt::AlignCenter, size);
}

void grid(QPainter &p)
{
    QPen pen(QColor(0x66, 0x66, 0x66), 0.6, Qt::DashDotLine);
    p.setFont(font(12, true));
    const QList<double> columns{0, 30, 60, 90, 120};
    for (int i = 0; i < columns.size(); ++i) {
        const QPointF top = at(columns[i], -15), bottom = at(columns[i], 86);
        p.setPen(pen);
        p.drawLine(top + QPointF(0, 14), bottom);
        p.setPen(QPen(Qt::black, 1));
        p.drawEllipse(top, 12, 12);
        p.drawText(QRectF(top - QPointF(12, 12), QSizeF(24, 24)), Qt::AlignCenter, QString(QChar(u'A' + i)));
    }
    const QList<double> rows{0, 40, 80};
    for (int i = 0; i < rows.size(); ++i) {
        const QPointF left = at(-12, rows[i]);
        p.setPen(pen);
        p.drawLine(left + QPointF(14, 0), at(122, rows[i]));
        p.setPen(QPen(Qt::black, 1));
        p.drawEllipse(left, 12, 12);
        p.drawText(QRectF(left - QPointF(12, 12), QSizeF(24, 24)), Qt::AlignCenter, QString::number(i + 1));
    }
}

void building(QPainter &p)
{
    // Walls: heavy outside, lighter inside.
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(Qt::black, 7, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    p.drawRect(room(0, 0, 120, 80));
    p.setPen(QPen(Qt::black, 3.5, Qt::SolidLine, Qt::SquareCap));
    p.drawLine(at(70, 0), at(70, 80));    // great room | service side
    p.drawLine(at(70, 45), at(120, 45));  // kitchen | lobby
    p.drawLine(at(100, 45), at(100, 80)); // lobby | mech.
    p.drawLine(at(0, 62), at(28, 62));    // restrooms
    p.drawLine(at(28, 62), at(28, 80));
    // Openings: white gaps in the walls with their doors.
    p.setPen(QPen(Qt::white, 8));
    p.drawLine(at(108, 80), at(114, 80)); // main entry
    p.drawLine(at(70, 58), at(70, 64));   // lobby to great room
    p.drawLine(at(84, 45), at(90, 45));   // lobby to kitchen
    p.drawLine(at(100, 70), at(100, 74)); // mech.
    p.drawLine(at(20, 62), at(24, 62));   // restrooms
    door(p, at(108, 80), 6, 0);
    door(p, at(70, 64), 6, 0);
    door(p, at(90, 45), 6, 180);
    door(p, at(100, 74), 4, 0);
    door(p, at(24, 62), 4, 180);
    // Windows along the great room: thin triple lines in the wall.
    p.setPen(QPen(Qt::black, 0.8));
    for (double x : {10.0, 25.0, 40.0, 55.0})
        for (double dy : {-0.3, 0.0, 0.3}) {
            p.fillRect(QRectF(at(x, -0.4), at(x + 8, 0.4)), Qt::white);
            p.drawLine(at(x, dy), at(x + 8, dy));
        }
    // Covered patio, dashed, off the great room.
    p.setPen(QPen(Qt::black, 1.2, Qt::DashLine));
    p.drawRect(room(10, 80, 50, 16));
    p.setFont(font(12));
    p.drawText(room(10, 80, 50, 16), Qt::AlignCenter, u"COVERED PATIO (CO #1)"_s);
    // Kitchen counters.
    p.setPen(QPen(Qt::black, 1));
    p.drawRect(room(72, 2, 46, 3));
    p.drawRect(room(115, 5, 3, 30));
    p.drawRect(room(78, 33, 20, 4));

    label(p, room(0, 0, 70, 62), u"GREAT ROOM"_s, u"70' × 62'"_s);
    label(p, room(70, 0, 50, 45), u"KITCHEN"_s, u"50' × 45'"_s);
    label(p, room(70, 45, 30, 35), u"LOBBY"_s, u"30' × 35'"_s);
    label(p, room(100, 45, 20, 35), u"MECH."_s, u"20' × 35'"_s);
    p.setFont(font(12, true));
    p.drawText(room(0, 62, 28, 18), Qt::AlignCenter, u"RESTROOMS"_s);

    dimension(p, at(0, -10), at(120, -10), feet(120));
    dimension(p, at(0, -5), at(70, -5), feet(70));
    dimension(p, at(70, -5), at(120, -5), feet(50));
    dimension(p, at(128, 0), at(128, 80), feet(80));
    dimension(p, at(124.5, 0), at(124.5, 45), feet(45));
    dimension(p, at(124.5, 45), at(124.5, 80), feet(35));
}

void northArrow(QPainter &p, QPointF c)
{
    p.setPen(QPen(Qt::black, 1.2));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(c, 30, 30);
    QPainterPath arrow;
    arrow.moveTo(c + QPointF(0, -28));
    arrow.lineTo(c + QPointF(12, 20));
    arrow.lineTo(c + QPointF(0, 10));
    arrow.closeSubpath();
    p.setBrush(Qt::black);
    p.drawPath(arrow);
    p.setBrush(Qt::NoBrush);
    p.drawLine(c + QPointF(0, -28), c + QPointF(-12, 20));
    p.drawLine(c + QPointF(-12, 20), c + QPointF(0, 10));
    p.setFont(font(14, true));
    p.drawText(QRectF(c.x() - 20, c.y() - 62, 40, 24), Qt::AlignCenter, u"N"_s);
}

void titleBlock(QPainter &p, const QRectF &box)
{
    p.setPen(QPen(Qt::black, 2));
    p.setBrush(Qt::NoBrush);
    p.drawRect(box);
    const double row = box.height() / 6;
    p.setPen(QPen(Qt::black, 0.8));
    for (int i = 1; i < 6; ++i)
        p.drawLine(QPointF(box.left(), box.top() + i * row), QPointF(box.right(), box.top() + i * row));
    const auto cell = [&](int i) {
        return QRectF(box.left() + 10, box.top() + i * row, box.width() - 20, row);
    };
    p.setFont(font(16, true));
    p.drawText(cell(0), Qt::AlignVCenter | Qt::AlignLeft, u"Studio 81 Architects"_s);
    p.setFont(font(10));
    p.drawText(cell(1), Qt::AlignVCenter | Qt::AlignLeft, u"PROJECT\nMonument Ridge Clubhouse"_s);
    p.drawText(cell(2), Qt::AlignVCenter | Qt::AlignLeft, u"100 Ridge Dr, Grand Junction, CO"_s);
    p.drawText(cell(3), Qt::AlignVCenter | Qt::AlignLeft, u"SCALE: 1/8\" = 1'-0\""_s);
    p.drawText(cell(4), Qt::AlignVCenter | Qt::AlignLeft, u"Rev 1 — Issued for construction"_s);
    p.setFont(font(26, true));
    p.drawText(cell(5), Qt::AlignVCenter | Qt::AlignLeft, u"A-101  FLOOR PLAN"_s);
}

} // namespace

bool samplePlan(const QString &path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    {
        QPdfWriter writer(&file);
        writer.setResolution(72); // one unit per point
        writer.setTitle(u"A-101 Floor Plan"_s);
        writer.setCreator(u"Studio 81 Architects"_s);
        writer.setPageLayout(QPageLayout(QPageSize(QSizeF(kPlanWidth, kPlanHeight), QPageSize::Point),
                                         QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
        QPainter p;
        if (!p.begin(&writer))
            return false;
        p.setRenderHint(QPainter::Antialiasing);
        p.fillRect(QRectF(0, 0, kPlanWidth, kPlanHeight), Qt::white);
        // Sheet border and the title block along the right edge, as drawing sets have them.
        const QRectF border(36, 36, kPlanWidth - 72, kPlanHeight - 72);
        p.setPen(QPen(Qt::black, 3));
        p.drawRect(border);
        const QRectF block(border.right() - 330, border.bottom() - 420, 330, 420);
        p.setPen(QPen(Qt::black, 2));
        p.drawLine(QPointF(block.left(), border.top()), QPointF(block.left(), border.bottom()));
        titleBlock(p, block);
        grid(p);
        building(p);
        northArrow(p, QPointF(block.left() - 70, border.bottom() - 90));
        p.setFont(font(14, true));
        p.drawText(QPointF(kOriginX, border.bottom() - 40), u"FLOOR PLAN"_s);
        p.setFont(font(10));
        p.drawText(QPointF(kOriginX, border.bottom() - 22), u"SCALE: 1/8\" = 1'-0\""_s);
        p.end();
    }
    return file.commit();
}

std::optional<QString> planPDF(DB &db)
{
    const QString name = newID().left(8) + u"-A-101 Floor Plan.pdf"_s;
    if (!samplePlan(db.fileURL(name)))
        return std::nullopt;
    return name;
}

void documentBody(DB &db, const Rec &document)
{
    Rec doc = document;
    DocStore::applyTemplate(db, doc, u"ntp"_s);
}

SampleFiles files()
{
    return {planPDF, documentBody};
}

} // namespace SampleDocs
