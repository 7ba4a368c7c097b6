#pragma once
#include <QtGui/QPageLayout>

#include <optional>

class QWidget;

// The page setup of this run: paper and orientation only. The printed page
// draws its own margins, so the layout's margins stay zero.
namespace PrintSetup {
// The page layout in force (US Letter, portrait, until changed).
QPageLayout shared();
// A copy of the layout, in landscape or portrait when `landscape` is given.
QPageLayout info(std::optional<bool> landscape = std::nullopt);
// Puts `layout`'s paper and orientation in force, as the dialog does.
void setShared(const QPageLayout &layout);
// Shows the page setup dialog over `parent`; keeps the paper and orientation chosen.
void pageSetup(QWidget *parent);
} // namespace PrintSetup
