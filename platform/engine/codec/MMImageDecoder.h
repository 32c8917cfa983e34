#pragma once
#include "MMDecodeBudget.h"
#include <QImage>
#include <QSize>
#include <QString>

// Decodes image files for display and processing, upright (EXIF orientation
// applied) and within an allocation limit, so that a hostile header cannot
// make us allocate without bound.
class MMImageDecoder
{
public:
    // Largest picture we decode, in pixels (see MMDecodeBudget).
    static constexpr qint64 MaxPixels = MMDecodeBudget::MaxPixels;

    // The whole picture; a null image on failure (missing, not an image,
    // truncated, too large).
    static QImage decode(const QString &path);
    // A picture that fits within bound (aspect kept, never enlarged), decoded
    // at reduced scale where the format allows (JPEG DCT scaling).
    static QImage decodeFitting(const QString &path, const QSize &bound);
    // The picture scaled to exactly size, decoded at reduced scale when the
    // format allows.
    static QImage decodeScaled(const QString &path, const QSize &size);
};
