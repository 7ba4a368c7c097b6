#pragma once
#include <QtWidgets/QAccessibleWidget>

class FWSegment;
class QComboBox;
class QLabel;

// Interfaces for controls the toolkit reads too little of: a segmented
// control as tabs, a pick list by its label, a symbol beside words as decoration.
namespace ControlAccess {
QAccessibleInterface *segment(FWSegment *segment);
QAccessibleInterface *choice(QComboBox *box);
// A decoration interface for `label` when it is a bare symbol; null otherwise.
QAccessibleInterface *decoration(QLabel *label);
} // namespace ControlAccess
