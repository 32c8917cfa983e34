#pragma once
#include <QImage>

// One of the eight exact turns and flips of a picture (the symmetries of a
// rectangle). EXIF orientations, rotations and mirrors all map onto it, so
// a chain of them can be composed into a single transform and applied once,
// to pixels or losslessly to JPEG coefficients.
class MMOrientation
{
public:
    MMOrientation() = default;

    // The transform that shows a picture stored with this EXIF orientation
    // upright; values outside 1..8 are treated as 1.
    static MMOrientation fromExif(int orientation);
    // Clockwise turn; degree must be a multiple of 90 (negative turns left).
    static MMOrientation rotation(int degreeClockwise);
    // horizontal true swaps left and right, false swaps top and bottom.
    static MMOrientation mirror(bool horizontal);

    // The EXIF orientation (1..8) whose display transform this is.
    int exifValue() const;
    // This transform followed by next.
    MMOrientation then(const MMOrientation &next) const;
    bool isIdentity() const { return exifValue() == 1; }
    // True when width and height trade places.
    bool swapsAxes() const { return m_xx == 0; }
    QSize map(const QSize &size) const { return swapsAxes() ? size.transposed() : size; }

    // The transform that undoes this one.
    MMOrientation inverted() const { return MMOrientation(m_xx, m_yx, m_xy, m_yy); }
    // Where rect of a picture of the given size lands once the picture is
    // transformed.
    QRect mapRect(const QRect &rect, const QSize &size) const;

    QImage apply(const QImage &image) const;
    // Same, but reuses image's memory for mirrors when nothing else shares it.
    QImage apply(QImage &&image) const;

    bool operator==(const MMOrientation &o) const
    { return m_xx == o.m_xx && m_xy == o.m_xy && m_yx == o.m_yx && m_yy == o.m_yy; }

private:
    MMOrientation(int xx, int xy, int yx, int yy) : m_xx(xx), m_xy(xy), m_yx(yx), m_yy(yy) {}

    // Matrix acting on (x, y) about the picture's centre, y pointing down.
    int m_xx = 1;
    int m_xy = 0;
    int m_yx = 0;
    int m_yy = 1;
};
