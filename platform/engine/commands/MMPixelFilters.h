#pragma once
#include <QImage>

// The pixel arithmetic behind the styles. Each filter takes an RGB32 or
// ARGB32 image, changes only the colour channels (alpha is kept) and clamps
// at the edges by repeating the border pixels.
class MMPixelFilters
{
public:
    // Luma with BT.601 weights, rounded: (299 R + 587 G + 114 B) / 1000.
    static void grayscale(QImage &image);
    // The usual sepia matrix, rounded and clipped to 255.
    static void sepia(QImage &image);
    static void negative(QImage &image);
    // Half the picture and half a box blur of it: sharp detail with a glow.
    // The blur radius grows with the picture so that a preview and the
    // full-size result look alike.
    static void softFocus(QImage &image);
    static int softFocusRadius(const QSize &size);
    // 3x3 kernel: 5 in the centre, -1 on its four sides.
    static void sharpen(QImage &image);
    // Grey relief: 128 plus the luma difference across the top-left to
    // bottom-right diagonal (kernel -1 -1 0 / -1 0 1 / 0 1 1).
    static void emboss(QImage &image);

    static int luma(QRgb c) { return (299 * qRed(c) + 587 * qGreen(c) + 114 * qBlue(c) + 500) / 1000; }
};
