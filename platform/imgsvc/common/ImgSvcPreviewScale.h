#pragma once
#include <QSize>
#include <QString>

// Remembers which pictures are reduced previews of larger ones, so that a
// screen working on a preview (or on a working copy named after it) can
// speak in the pixels of the picture the user will get.
class ImgSvcPreviewScale
{
public:
    static void record(const QString &preview, const QSize &previewSize, const QSize &sourceSize);
    // Preview pixels per source pixel for a picture of inputSize at input
    // (a recorded preview, or a file whose name ends with a preview's, in
    // either orientation); 1 for anything else.
    static float scaleFor(const QString &input, const QSize &inputSize);
    // A length of the input in source pixels, truncated as the editor maps it.
    static int toSource(int length, float scale) { return int(length / double(scale)); }
};
