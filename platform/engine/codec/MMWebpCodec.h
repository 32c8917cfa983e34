#pragma once
#include "MMAnimation.h"
#include <QByteArray>
#include <QImage>
#include <functional>

// WebP through libwebp: still pictures lossy or lossless, and animations.
class MMWebpCodec
{
public:
    struct Header
    {
        QSize canvas;
        int frames = 0;
        bool lossless = false;
        bool alpha = false;
        int loopCount = 0;
    };

    static bool readHeader(const QByteArray &data, Header &header);
    // The first (or only) frame, whole canvas, ARGB32.
    static QImage decode(const QByteArray &data);
    // Every frame as the full canvas it shows (offset 0), with its delay.
    static bool decodeFrames(const QByteArray &data, MMAnimation &info,
                             const std::function<bool(MMAnimationFrame &)> &sink);
    // Lossy at quality (1..100) or lossless.
    static QByteArray encode(const QImage &image, bool lossless, int quality);

    // Writes full-canvas frames one at a time.
    class Writer
    {
    public:
        Writer(const QSize &canvas, int loopCount, bool lossless, int quality);
        ~Writer();
        bool addFrame(const MMAnimationFrame &frame);
        QByteArray finish();

    private:
        struct State;
        State *d;
    };

    // Quality a lossy picture is written at again: WebP does not record
    // the one it was made with.
    static constexpr int DefaultQuality = 90;
};
