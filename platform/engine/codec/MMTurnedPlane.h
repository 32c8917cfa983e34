#pragma once
#include "MMOrientation.h"
#include <QSize>
#include <cstddef>

// Where the samples of one plane (one byte each) go in its turned copy, and
// the copying of them there a band of rows at a time, so that a plane is
// turned while it is decoded and never held twice.
class MMTurnedPlane
{
public:
    // turned: the turned plane's samples, stride bytes a row; stored: the
    // size of the plane before the turn.
    MMTurnedPlane(unsigned char *turned, ptrdiff_t stride, const QSize &stored, const MMOrientation &orientation);

    // Copies stored rows [firstRow, firstRow + rows), width samples each,
    // from src (srcStride bytes a row) to their turned place.
    void place(const unsigned char *src, ptrdiff_t srcStride, int firstRow, int rows, int width) const;

    // Whether orientation runs the stored columns (x) or rows (y) backwards.
    static bool reversesX(const MMOrientation &orientation);
    static bool reversesY(const MMOrientation &orientation);

private:
    // Sample (x, y) of the stored plane lands at m_origin + x * m_stepX + y * m_stepY.
    unsigned char *m_origin;
    ptrdiff_t m_stepX;
    ptrdiff_t m_stepY;
};
