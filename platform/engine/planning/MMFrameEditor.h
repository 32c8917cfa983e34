#pragma once
#include "MMAnimation.h"
#include <QByteArray>
#include <QString>
#include <list>

class MMCommand;
struct MMEncodeOptions;

// Replays an edit list on every frame of an animation. A frame covers only
// part of the canvas, so it is put in its place on a transparent canvas,
// edited there (a turn, crop or resize of a frame is the same as of the
// whole picture), and its own rectangle is followed through the edits and
// cut out again: delays, disposal and the loop count stay as they were.
class MMFrameEditor
{
public:
    // canvas is the animation's canvas before the edits; on success frame
    // holds the edited frame and canvas the edited canvas size.
    static bool editFrame(MMAnimationFrame &frame, QSize &canvas, const std::list<MMCommand *> &commands);
    // Decodes the animation in in (GIF or WebP), edits every frame and
    // writes it to out in the same format. 0 on success, -1 on failure
    // (out untouched).
    static int run(const QString &in, const QString &out, const QByteArray &format,
                   const std::list<MMCommand *> &commands, const MMEncodeOptions &options);
};
