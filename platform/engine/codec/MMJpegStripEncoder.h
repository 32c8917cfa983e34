#pragma once
#include <QByteArray>

class MMYuvPlanes;

// Encodes a large picture as horizontal strips of whole MCU rows on two
// threads and joins them into one baseline JPEG: a restart interval of one
// strip makes each strip's entropy-coded data start afresh, exactly as an
// encoder of the whole picture with that interval would write it, so the
// joined stream decodes to the same pixels as a one-piece encode.
class MMJpegStripEncoder
{
public:
    // pixels as tjCompress2 takes them (TurboJPEG pixel format and
    // subsampling). Empty when the picture is too small to gain from it or
    // the strips cannot be joined; the caller then encodes it in one piece.
    static QByteArray encode(const unsigned char *pixels, int width, int pitch, int height, int pixelFormat,
                             int subsampling, int quality);
    // Sample planes, coded at their own subsampling: in strips when large
    // enough, else in one piece. Empty on failure.
    static QByteArray encode(const MMYuvPlanes &planes, int quality);
    // Sample planes in one piece, baseline or progressive. Empty on failure.
    static QByteArray encodeWhole(const MMYuvPlanes &planes, int quality, bool progressive);
};
