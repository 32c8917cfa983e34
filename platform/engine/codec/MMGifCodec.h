#pragma once
#include "MMAnimation.h"
#include <QByteArray>
#include <QSize>
#include <functional>

// GIF through giflib, still and animated. The header is walked block by
// block without decoding any LZW data, so the cost of a file is known
// before it is decoded.
class MMGifCodec
{
public:
    struct Header
    {
        QSize canvas;
        int frames = 0;
        // Pixels of all frame rectangles together: what the decoded file
        // holds at a byte a pixel.
        qint64 framePixels = 0;
    };

    // False for a file that is no GIF, is cut short before its first whole
    // frame, or whose frames lie outside the canvas.
    static bool readHeader(const QByteArray &data, Header &header);
    // Decodes frame by frame; each frame goes to sink in file order
    // (offset, delay and disposal filled in). False on a damaged file or
    // when sink returns false.
    static bool decode(const QByteArray &data, MMAnimation &info,
                       const std::function<bool(MMAnimationFrame &)> &sink);
    // Writes frames one at a time: begin, then frame for each, then finish.
    class Writer
    {
    public:
        Writer(const QSize &canvas, int loopCount);
        ~Writer();
        bool addFrame(const MMAnimationFrame &frame);
        // The file's bytes; empty when any step failed.
        QByteArray finish();

    private:
        struct State;
        State *d;
    };
    // A still picture as a one-frame GIF.
    static QByteArray encode(const QImage &image);
};
