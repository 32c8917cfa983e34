#pragma once
#include "MMOrientation.h"
#include <QByteArray>

// Turns or mirrors a sequential JPEG by moving its DCT coefficients, with
// both cores: the stream is entropy-decoded once, then the result is
// entropy-coded in strips of whole MCU rows on two threads, each strip
// turning its own blocks, and the strips are joined by restart markers.
// A result of one strip (a small picture) is byte for byte what
// `jpegtran -perfect -copy all` writes, but for the EXIF picture size, which
// the metadata step sets.
//
// Only exact transforms: every side the transform reverses is whole MCUs,
// so that a partial MCU stays at a trailing edge (as `jpegtran -perfect`
// requires). A progressive stream keeps its scans through the general
// transform.
class MMJpegLosslessTurner
{
public:
    // keepMarkers copies every APPn and COM segment unchanged. Empty when
    // the stream is not such a picture, or is damaged; damaged then says
    // which. Damage is any libjpeg warning, or a coefficient sequential
    // coding cannot carry: no lossless transform may be tried on such a
    // stream, or it would save the damage (or garbage) as a picture.
    static QByteArray transform(const QByteArray &jpeg, const MMOrientation &orientation, bool keepMarkers,
                                bool *damaged = nullptr);
};
