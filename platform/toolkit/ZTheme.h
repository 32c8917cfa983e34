#pragma once
#include <QColor>
#include <QFont>

// The handset look shared by the toolkit widgets: colours, and fonts whose
// pixel sizes follow the screen height so a larger screen keeps the layout.
class ZTheme
{
public:
    // A length given for the 240 x 320 reference screen, scaled by the
    // current screen's shorter side (never below 1).
    static int scaled(int px);

    static QFont titleFont();
    static QFont softKeyFont();
    static QFont bodyFont();
    static QFont menuFont();

    static QColor barTop();
    static QColor barBottom();
    static QColor barText();
    static QColor disabledText();
    static QColor accent();
    static QColor accentDark();
    static QColor window();
    static QColor menuBackground();
    static QColor menuText();
    static QColor frame();
};
