#pragma once
#include "fwui.h"

#include <QtCore/QList>

// The colours that carry meaning over a finish. Each is made from the finish so that it keeps
// its contrast with everything it is drawn on; pairs() lists every such pairing once, so that
// a test can measure all of them in every finish rather than anyone checking by eye.
struct FWTones
{
    enum Pill { Green, Red, Orange, Neutral };

    QColor error;             // inline error text and icons
    QColor warning;           // warning text, e.g. a line billed past its value
    QColor good;              // a favourable variance
    QColor bad;               // an unfavourable variance
    QColor focus;             // the focus ring
    QColor edge;              // the boundary of a field or control
    QColor railText;          // an unselected rail item over the rail strip
    QColor railStrip;         // the rail's background, as it shows
    QColor metalStops[3];     // the chrome gradient top, middle and bottom, each carrying the text
    QColor metalIcon;         // a symbol on the chrome gradient
    QColor prominentStops[2]; // a prominent button's gradient, top and bottom
    QColor onAccent;          // ink on the prominent gradient and on the selection
    QColor selection;         // the background of a selected list row
    QColor pillFill[4];
    QColor pillText[4];

    // One pairing of a foreground with what it is drawn on, and the ratio it must reach.
    struct Pair
    {
        QString name;
        QColor fore;
        QColor back;
        double minimum;
    };

    // The tones of `t`.
    static FWTones of(const FWTheme &t);
    // The tones of the current finish.
    static const FWTones &current();
    // Every pairing that the program paints with the finish `t` and these tones.
    QList<Pair> pairs(const FWTheme &t) const;
};
