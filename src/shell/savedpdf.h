#pragma once
#include <QtCore/QString>
#include <QtGui/QPageLayout>

#include <functional>

class QWidget;

// The last step of saving a PDF from the window: the file is written in the
// orientation of the page setup in force, then opened in the default viewer.
// Headless verbs write through PDFOut directly and never come here.
namespace SavedPdf {
// Writes the file by `write` in the page setup's orientation; opens it when
// written, or tells the user it could not be. Whether it was written.
bool save(QWidget *parent, const QString &path, const std::function<bool(QPageLayout::Orientation)> &write);
// Opens `path` in the desktop's default viewer.
void open(const QString &path);
// What open() does instead, when set: tests watch it here and nothing opens.
std::function<void(const QString &)> &openHook();
} // namespace SavedPdf
