#pragma once
#include <QByteArray>
#include <QImage>
#include <functional>

class MMYuvPlanes;

// Encodes a large colour picture as a progressive JPEG on two threads. Each
// scan of a progressive stream is coded on its own (with its own optimised
// Huffman tables), so one encoder writes the DC and luma scans and a second
// the chroma scans (from the same pixels, or from the chroma planes alone),
// and the scans are joined into one stream, the chroma ones last, with the
// same coefficients as a one-piece encode.
class MMJpegProgressiveEncoder
{
public:
    // image is RGB888 or RGB32; subsampling a TurboJPEG TJSAMP value. Empty
    // when the picture is too small to gain from it, not colour, or the
    // scans cannot be joined; the caller then encodes it in one piece.
    static QByteArray encode(const QImage &image, int quality, int subsampling);
    // The same from YCbCr planes at their own subsampling, coded as they
    // are (no colour conversion or downsampling). Empty when too small,
    // grey, or the scans cannot be joined. chromaScans, when given, gives
    // chromaScans(planes, quality), coded elsewhere meanwhile (it may block
    // until they are): only luma's scans are coded here then.
    static QByteArray encode(const MMYuvPlanes &planes, int quality,
                             const std::function<QByteArray()> &chromaScans = nullptr);
    // The chroma group of scans of encode(planes, quality), from the Cb and
    // Cr planes alone (Y is not read, so it may still be being filled).
    // Empty when encode would be.
    static QByteArray chromaScans(const MMYuvPlanes &planes, int quality);
};
