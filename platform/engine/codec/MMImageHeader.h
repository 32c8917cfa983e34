#pragma once
#include "MMImageInfo.h"
#include "MMJpegHeader.h"
#include "MMOrientation.h"
#include <QByteArray>
#include <QSize>
#include <QString>

// What an image file's header says, read without decoding, and whether the
// file looks whole. Everything that opens an image starts here, so that a
// missing, damaged or absurdly large file is turned away before any pixel
// memory is allocated.
class MMImageHeader
{
public:
    static MMImageHeader read(const QString &path);

    bool isValid() const { return m_valid; }
    // Size of the pixels as stored in the file.
    QSize storedSize() const { return m_storedSize; }
    // Size of the picture as shown (EXIF orientation applied).
    QSize uprightSize() const { return orientation().map(m_storedSize); }
    MMImageFormat format() const { return m_format; }
    QByteArray qtFormat() const { return m_qtFormat; }
    int exifOrientation() const { return m_jpeg.orientation(); }
    // What turns the stored pixels upright.
    MMOrientation orientation() const { return MMOrientation::fromExif(exifOrientation()); }
    // More than one for an animated GIF or WebP.
    int frames() const { return m_frames; }
    // WebP only: whether its (first) frame is coded lossless.
    bool isLossless() const { return m_lossless; }
    // Meaningful for JPEG files only.
    const MMJpegHeader &jpeg() const { return m_jpeg; }

    // Upper bound on the pixels of a picture we open.
    static bool isAcceptableSize(const QSize &size);

private:
    static bool isPngComplete(const QString &path);
    // The format the first bytes of a file name, for the formats we decode
    // ourselves ("gif", "webp", "heif"); empty for others.
    static QByteArray sniff(const QByteArray &head);
    bool readOwn(const QString &path, const QByteArray &format, QSize &size);

    bool m_valid = false;
    QSize m_storedSize;
    MMImageFormat m_format = MM_FORMAT_UNKNOWN;
    QByteArray m_qtFormat;
    MMJpegHeader m_jpeg;
    int m_frames = 1;
    bool m_lossless = false;
};
