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

    // Brightness, contrast and saturation, each from -100 to 100, 0 leaving
    // the picture as it is.
    struct Adjustment
    {
        int brightness = 0;
        int contrast = 0;
        int saturation = 0;
        bool isNone() const { return brightness == 0 && contrast == 0 && saturation == 0; }
    };
    // Brightness and contrast as ImageMagick's -brightness-contrast, then
    // saturation as -modulate 100,100+saturation (HSL: the hue and the
    // lightness kept, the saturation scaled but never past full). All in
    // floating point from the original values and rounded once, so that a
    // smooth gradient stays smooth.
    static void adjust(QImage &image, const Adjustment &adjustment);

    // Per channel (red, green, blue): the value that becomes 0 and the one
    // that becomes 255.
    struct Levels
    {
        int low[3] = {0, 0, 0};
        int high[3] = {255, 255, 255};
        bool operator==(const Levels &o) const;
    };
    // The levels that stretch each channel to the full range, leaving the
    // darkest and the brightest half a percent of the pixels to clip; a
    // channel is stretched at most eightfold, so a flat picture does not
    // turn its noise into contrast.
    static Levels measureLevels(const QImage &image);
    static void applyLevels(QImage &image, const Levels &levels);

    static int luma(QRgb c) { return (299 * qRed(c) + 587 * qGreen(c) + 114 * qBlue(c) + 500) / 1000; }
};
