#pragma once
#include <QtGlobal>

// The shared layout table of the image services, in pixels.
//   0: left margin of bars in the home area
//   1: right margin of bars, 2: gap between the title and a bar
//   3: gap between a bar and the soft-key bar
//   69, 70, 71, 72: content padding left, right, top, bottom
class ImgSvcLayout
{
public:
    static const qint16 layout[80];
};
