#pragma once
#include "store/rec.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtGui/QImage>

#include <optional>

class DB;
class QTextDocument;

// The company logo on letterheads: where it lives, how it is read, how it
// replaces the logo mark, and how a chosen picture is installed.
namespace PrintLogo {

// The mark a builder writes where the logo goes.
inline constexpr QStringView kMark = u"TLLOGOMARK";
// Alert shown (by the window) when a chosen logo cannot be installed: title and text.
inline constexpr QStringView kUnreadableTitle = u"That logo file could not be read";
inline constexpr QStringView kUnreadableText = u"Try a PNG, JPEG, HEIC, PDF or SVG file.";
// The message of the file chooser.
inline constexpr QStringView kChooseMessage = u"Choose your company logo for printouts and PDFs";

// The "Logo" folder beside the stored files root, created when needed.
QString dir(const DB &db);
// The logo of `company` (the current company when absent), or a null image.
QImage image(const DB &db, const std::optional<Rec> &company = std::nullopt);
// Replaces the first logo mark in `doc` with the current company's logo
// (54 pt high, at most 170 pt wide), or removes it when there is no logo.
void attach(const DB &db, QTextDocument &doc);
// Reads a picture file (raster, SVG, or the first page of a PDF); a null image when unreadable.
QImage load(const QString &path);
// PNG bytes of `image` fitted to 2400 by 600 pixels, or nothing for an empty image.
std::optional<QByteArray> pngData(const QImage &image);
// Installs `path` as the current company's logo: the original kept beside a
// fitted PNG, the company's `logo` field pointed at the PNG. False, with
// nothing changed, when there is no company or the file cannot be read.
bool install(DB &db, const QString &path);

} // namespace PrintLogo
