#pragma once
#include <QtCore/QString>
#include <QtGui/QPageLayout>

#include <functional>

class QWidget;

// The last step of saving a PDF from the window: the file is written in the
// orientation of the page setup in force, then a message says where it went,
// with Open and Show in Folder. Headless verbs write through PDFOut directly
// and never come here.
namespace SavedPdf {
// Writes the file by `write` in the page setup's orientation; says where it
// was saved, or that it could not be. Whether it was written.
bool save(QWidget *parent, const QString &path, const std::function<bool(QPageLayout::Orientation)> &write);
// Opens `path` in the desktop's default viewer; when none can be started, says
// so over `parent` with where the file is. Whether a viewer was started.
bool open(const QString &path, QWidget *parent = nullptr);
// What open() does instead, when set: tests watch it here and nothing opens.
std::function<void(const QString &)> &openHook();
// The object name of the "PDF saved" message, for tests and the keyboard path.
inline constexpr char16_t kSavedMessage[] = u"pdfSaved";
} // namespace SavedPdf
