#include "MMOrientation.h"
#include <QTransform>

namespace {
// Matrices for EXIF orientations 1..8 (index 0 unused): the map from a stored
// pixel position to its place in the upright picture.
const int kExif[9][4] = {
    { 1, 0, 0, 1 },
    { 1, 0, 0, 1 },   // 1 as stored
    { -1, 0, 0, 1 },  // 2 left-right mirror
    { -1, 0, 0, -1 }, // 3 half turn
    { 1, 0, 0, -1 },  // 4 top-bottom mirror
    { 0, 1, 1, 0 },   // 5 transpose (main diagonal)
    { 0, -1, 1, 0 },  // 6 quarter turn clockwise
    { 0, -1, -1, 0 }, // 7 transverse (anti-diagonal)
    { 0, 1, -1, 0 },  // 8 quarter turn anticlockwise
};

QImage rotated(const QImage &image, int degree)
{
    // QTransform::rotate keeps quarter turns exact, and QImage::transformed
    // takes its pixel-moving path for them, so no resampling happens.
    return image.transformed(QTransform().rotate(degree));
}
}

MMOrientation MMOrientation::fromExif(int orientation)
{
    if (orientation < 1 || orientation > 8)
        orientation = 1;
    const int *m = kExif[orientation];
    return MMOrientation(m[0], m[1], m[2], m[3]);
}

MMOrientation MMOrientation::rotation(int degreeClockwise)
{
    switch (((degreeClockwise / 90) % 4 + 4) % 4) {
    case 1: return fromExif(6);
    case 2: return fromExif(3);
    case 3: return fromExif(8);
    default: return MMOrientation();
    }
}

MMOrientation MMOrientation::mirror(bool horizontal)
{
    return fromExif(horizontal ? 2 : 4);
}

int MMOrientation::exifValue() const
{
    for (int i = 1; i <= 8; ++i) {
        const int *m = kExif[i];
        if (m[0] == m_xx && m[1] == m_xy && m[2] == m_yx && m[3] == m_yy)
            return i;
    }
    return 1;
}

MMOrientation MMOrientation::then(const MMOrientation &next) const
{
    // Applying this first and next second is the product next * this.
    return MMOrientation(next.m_xx * m_xx + next.m_xy * m_yx,
                         next.m_xx * m_xy + next.m_xy * m_yy,
                         next.m_yx * m_xx + next.m_yy * m_yx,
                         next.m_yx * m_xy + next.m_yy * m_yy);
}

QRect MMOrientation::mapRect(const QRect &rect, const QSize &size) const
{
    // Doubled coordinates keep the centres of pixels integral: a pixel at p
    // moves to M (2p - (size - 1)) + (mapped size - 1), all halved.
    const QSize out = map(size);
    auto mapPoint = [&](int x, int y) {
        const int dx = 2 * x - (size.width() - 1), dy = 2 * y - (size.height() - 1);
        return QPoint((m_xx * dx + m_xy * dy + out.width() - 1) / 2, (m_yx * dx + m_yy * dy + out.height() - 1) / 2);
    };
    const QPoint a = mapPoint(rect.left(), rect.top()), b = mapPoint(rect.right(), rect.bottom());
    // Not QRect::normalized(), which moves swapped edges by a pixel.
    return QRect(QPoint(qMin(a.x(), b.x()), qMin(a.y(), b.y())), QPoint(qMax(a.x(), b.x()), qMax(a.y(), b.y())));
}

QImage MMOrientation::apply(QImage &&image) const
{
    switch (exifValue()) {
    case 2: return std::move(image).mirrored(true, false);
    case 3: return std::move(image).mirrored(true, true);
    case 4: return std::move(image).mirrored(false, true);
    default: return apply(static_cast<const QImage &>(image));
    }
}

QImage MMOrientation::apply(const QImage &image) const
{
    switch (exifValue()) {
    case 2: return image.mirrored(true, false);
    case 3: return image.mirrored(true, true);
    case 4: return image.mirrored(false, true);
    case 5: return rotated(image, 90).mirrored(true, false);
    case 6: return rotated(image, 90);
    case 7: return rotated(image, 90).mirrored(false, true);
    case 8: return rotated(image, 270);
    default: return image;
    }
}
