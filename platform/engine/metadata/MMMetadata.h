#pragma once
#include <QByteArray>
#include <QDate>
#include <QImage>
#include <QSize>
#include <QString>
#include <functional>

// EXIF, XMP, ICC and comment handling for written JPEG files, through
// Exiv2. Our pixels are always saved upright, so the orientation becomes 1,
// the recorded pixel size and chroma sampling become the saved frame's, and
// an embedded thumbnail is redrawn from the new picture (dropped when none is
// given).
class MMMetadata
{
public:
    // The saved picture, asked for only when a thumbnail is to be redrawn.
    using PictureSource = std::function<QImage()>;

    // Copies the metadata of the file at sourcePath (EXIF, IPTC, XMP, ICC,
    // comment, JFIF density) into jpeg, a picture of size. jpeg is returned unchanged when the source carries none; empty
    // on failure. keepIcc false leaves the colour profile out (a CMYK
    // profile must not describe RGB output).
    static QByteArray transplant(const QString &sourcePath, const QByteArray &jpeg, const QSize &size,
                                 const PictureSource &picture, bool keepIcc);
    // The same, made ready without the coded picture (so while it is being
    // encoded): the metadata segments for a JFIF stream of size whose chroma
    // is sampled as sampling says (MMJpegHeader::chromaSampling), to follow
    // its start marker. ok false on failure.
    struct Segments
    {
        bool ok = false;
        QByteArray bytes;
        QSize sampling;
    };
    static Segments segmentsFor(const QString &sourcePath, const QSize &size, const QSize &sampling,
                                const PictureSource &picture, bool keepIcc);
    // jpeg, as our encoders write it (start marker, then the plain JFIF
    // header), with its header replaced by segments; empty when jpeg does
    // not begin as expected or its frame is not sampled as the segments say.
    static QByteArray withSegments(const Segments &segments, const QByteArray &jpeg);

private:
    // transplant, for a frame whose chroma is sampled as sampling says.
    static QByteArray transplant(const QString &sourcePath, const QByteArray &jpeg, const QSize &size,
                                 const QSize &sampling, const PictureSource &picture, bool keepIcc);
    static QByteArray transplantSegments(const QString &sourcePath, const QByteArray &jpeg, const QSize &size,
                                         const QSize &sampling, const PictureSource &picture, bool keepIcc);

public:
    // Fixes, in place, the metadata that jpeg already carries (markers
    // copied by a lossless transform). Empty on failure.
    static QByteArray normalize(const QByteArray &jpeg, const QSize &size, const PictureSource &picture);
    // The day the photo at path was taken, from its EXIF (original, then
    // digitized date); invalid when it says none or can not be read.
    static QDate captureDate(const QString &path);
    // A small upright copy of a JPEG stream, decoded at reduced scale, for
    // the thumbnail.
    static QImage thumbnailSource(const QByteArray &jpeg);
};
