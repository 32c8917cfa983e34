#pragma once
#include "MMJpegHeader.h"
#include <QByteArray>
#include <QString>

// How MMImageWriter encodes a picture.
struct MMEncodeOptions
{
    static constexpr int DefaultJpegQuality = 92;

    // Qt format name ("jpeg", "png", ...); empty: by the path's extension.
    QByteArray format;
    int jpegQuality = DefaultJpegQuality;
    MMJpegHeader::Subsampling jpegSubsampling = MMJpegHeader::Sub420;
    bool jpegProgressive = false;
    // JPEG only: the file whose EXIF, XMP, ICC and comment are carried
    // over (fixed for an upright picture); empty for none.
    QString metadataSource;
    bool keepIccProfile = true;
    // WebP: lossless, or lossy at webpQuality.
    bool webpLossless = false;
    int webpQuality = 90;
    // HEIF: quality, and EXIF (a TIFF structure) to carry.
    int heifQuality = 90;
    QByteArray heifExif;
};
