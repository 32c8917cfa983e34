#pragma once
#include <QSize>
#include <QString>

// Writes a reduced copy of an image file (the screen preview): decoded at
// reduced scale where the format allows, never at full size for a JPEG that
// is much larger than the target.
class MMImageScaler
{
public:
    // 0 on success, -1 on failure (the destination is then untouched).
    static int scaleFile(const QString &source, const QString &destination, const QSize &size);
};
