#pragma once
#include <QtCore/QString>

class QWidget;

// A modal message with a title and a text, over `parent`'s window.
namespace FWAlert {
void show(QWidget *parent, const QString &title, const QString &text);
} // namespace FWAlert
