#pragma once
#include <QImage>
#include <QRect>
#include <QSize>
#include <vector>

// The frames of an animated (or multi-frame) picture as its file stores
// them: each frame covers a rectangle of the canvas and says how long it
// shows and what becomes of its rectangle afterwards.
struct MMAnimationFrame
{
    enum Disposal { DisposeUnspecified = 0, DisposeNone = 1, DisposeBackground = 2, DisposePrevious = 3 };

    // ARGB32; transparent where the frames below show through.
    QImage image;
    // Where image lies on the canvas (its size is image's).
    QPoint offset;
    int delayMs = 0;
    Disposal disposal = DisposeUnspecified;

    QRect rect() const { return QRect(offset, image.size()); }
};

struct MMAnimation
{
    QSize canvas;
    // 0 loops for ever; -1 plays once (no loop extension in the file).
    int loopCount = -1;
    std::vector<MMAnimationFrame> frames;
};
