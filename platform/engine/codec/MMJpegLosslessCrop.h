#pragma once
#include <QByteArray>
#include <QRect>

// Cuts a JPEG to a rectangle of its stored pixels by copying its DCT
// coefficients, as jpegtran -crop does: no loss, the same pixels. The
// rectangle's left and top must lie on the grid of whole MCUs; its right
// and bottom may end anywhere inside the picture (the last MCUs keep the
// blocks beyond, as a decoder ignores them). Only the rows down to the
// rectangle's bottom are read from a stream coded in one interleaved scan,
// and only the rectangle's rows are kept whole; a progressive stream is read
// whole (its later scans refine every block) and keeps one bit a coefficient
// outside them. Markers (EXIF, ICC, XMP, comments) are copied when asked.
class MMJpegLosslessCrop
{
public:
    // The cut stream; empty when rect does not fit the picture's MCU grid,
    // or the stream is damaged (any libjpeg warning fails).
    static QByteArray crop(const QByteArray &jpeg, const QRect &rect, bool keepMarkers);
};
