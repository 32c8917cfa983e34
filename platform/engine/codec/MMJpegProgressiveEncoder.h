#pragma once
#include <QByteArray>
#include <QImage>

// Encodes a large colour picture as a progressive JPEG on two threads. Each
// scan of a progressive stream is coded on its own (with its own optimised
// Huffman tables), so one encoder writes the DC and luma scans and a second
// the chroma scans, each from the same pixels, and the scans are joined into
// one stream, the chroma ones last, with the same coefficients as a
// one-piece encode.
class MMJpegProgressiveEncoder
{
public:
    // image is RGB888 or RGB32; subsampling a TurboJPEG TJSAMP value. Empty
    // when the picture is too small to gain from it, not colour, or the
    // scans cannot be joined; the caller then encodes it in one piece.
    static QByteArray encode(const QImage &image, int quality, int subsampling);
};
