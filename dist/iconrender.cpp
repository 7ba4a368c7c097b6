// Renders the application icon's SVG to square PNGs at build time, so the
// bitmaps of every size come from the one drawing and are never committed.
// Usage: trestle-iconrender <icon.svg> <out-dir> <size>...
// Writes <out-dir>/<size>x<size>/<basename>.png for each size.
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

#include <cstdio>

int main(int argc, char *argv[])
{
    // Runs during the build, where there may be no display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 4) {
        std::fprintf(stderr, "usage: trestle-iconrender <icon.svg> <out-dir> <size>...\n");
        return 2;
    }
    QSvgRenderer svg(args.at(1));
    if (!svg.isValid()) {
        std::fprintf(stderr, "trestle-iconrender: cannot read %s\n", qPrintable(args.at(1)));
        return 1;
    }
    const QString base = QFileInfo(args.at(1)).completeBaseName();
    for (qsizetype i = 3; i < args.size(); ++i) {
        bool ok = false;
        const int size = args.at(i).toInt(&ok);
        if (!ok || size < 8 || size > 1024) {
            std::fprintf(stderr, "trestle-iconrender: bad size %s\n", qPrintable(args.at(i)));
            return 2;
        }
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        {
            QPainter p(&image);
            p.setRenderHint(QPainter::Antialiasing);
            svg.render(&p, QRectF(0, 0, size, size));
        }
        const QString dir = args.at(2) + QStringLiteral("/%1x%1").arg(size);
        const QString file = dir + u'/' + base + QStringLiteral(".png");
        if (!QDir().mkpath(dir) || !image.save(file, "PNG")) {
            std::fprintf(stderr, "trestle-iconrender: cannot write %s\n", qPrintable(file));
            return 1;
        }
    }
    return 0;
}
