#pragma once
#include <QRect>
#include <QSize>

// Handset screen geometry. The screen is 240 x 320 unless the environment
// variable VO_SCREEN_SIZE ("WxH", e.g. "480x640") selects another size.
class ZGlobal
{
public:
    static QSize screenSize();
    static QRect getScreenR();
    // Title bar at the top of the screen.
    static QRect getTitleR();
    // Soft-key bar at the bottom of the screen.
    static QRect getCstR();
    // Area below the title bar down to the bottom of the screen (the soft-key
    // bar included); with true, the whole screen.
    static QRect getHomeR(bool includeTitle);
};
