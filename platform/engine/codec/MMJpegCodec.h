#pragma once
#include "MMJpegHeader.h"
#include "MMOrientation.h"
#include <QByteArray>
#include <QImage>

// JPEG encoding and lossless transforms through TurboJPEG.
class MMJpegCodec
{
public:
    // Decodes a 1- or 3-component JPEG at full size: RGB32, or Grayscale8
    // for grey files. libjpeg only warns about damaged data and goes on
    // with grey or garbled blocks, so any warning but the harmless
    // "extraneous bytes" one makes this fail: a damaged photo must not be
    // saved as if it were whole.
    static QImage decode(const QByteArray &jpeg);
    // Encodes image; a grey subsampling is used only when the picture is
    // grey. Transparent pixels are laid over white. Empty on failure.
    static QByteArray encode(const QImage &image, int quality, MMJpegHeader::Subsampling subsampling,
                             bool progressive);
    // Applies orientation to the DCT coefficients without decoding. Only a
    // perfect transform is accepted (no partial MCU at an edge that moves),
    // so the result is exactly the turned picture; empty when that is not
    // possible or the stream is damaged (any libjpeg warning, or a
    // coefficient 8-bit coding cannot carry), so that the caller re-encodes
    // what the decoder shows. keepMarkers copies every marker segment (EXIF,
    // ICC, XMP, comments) unchanged.
    static QByteArray transform(const QByteArray &jpeg, const MMOrientation &orientation, bool keepMarkers,
                                bool progressive);
};
