#include "MMYuvPlanes.h"
#include <turbojpeg.h>

namespace {
unsigned char clampByte(double v)
{
    return (unsigned char)(v < 0 ? 0 : v > 255 ? 255 : int(v + 0.5));
}
}

MMYuvPlanes::MMYuvPlanes(const QSize &size, MMJpegHeader::Subsampling subsampling)
{
    if (size.width() < 1 || size.height() < 1 || size.width() > 65535 || size.height() > 65535
        || subsampling == MMJpegHeader::Sub411)
        return;
    m_subsampling = subsampling;
    size_t total = 0;
    for (int i = 0; i < count(); ++i) {
        m_planeSize[i] = QSize(tjPlaneWidth(i, size.width(), subsampling), tjPlaneHeight(i, size.height(), subsampling));
        m_offset[i] = total;
        total += size_t(m_planeSize[i].width()) * size_t(m_planeSize[i].height());
    }
    // Large pages were tried for the turned writes: no faster here, and a
    // fault on one may wait for the kernel to compact memory.
    m_data.reset(static_cast<unsigned char *>(std::malloc(total)));
    if (!m_data)
        return;
    m_size = size;
}

int MMYuvPlanes::chromaWidth() const
{
    return count() == 1 ? 1 : tjMCUWidth[m_subsampling] / 8;
}

int MMYuvPlanes::chromaHeight() const
{
    return count() == 1 ? 1 : tjMCUHeight[m_subsampling] / 8;
}

QImage MMYuvPlanes::preview(const QSize &bound) const
{
    if (isNull())
        return QImage();
    const QSize size = m_size.scaled(bound, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)).boundedTo(m_size);
    QImage out(size, QImage::Format_RGB888);
    if (out.isNull())
        return out;
    const int grid = 4, cw = chromaWidth(), ch = chromaHeight();
    for (int oy = 0; oy < size.height(); ++oy) {
        const qint64 y0 = qint64(oy) * m_size.height() / size.height();
        const qint64 y1 = qint64(oy + 1) * m_size.height() / size.height();
        unsigned char *rgb = out.scanLine(oy);
        for (int ox = 0; ox < size.width(); ++ox, rgb += 3) {
            const qint64 x0 = qint64(ox) * m_size.width() / size.width();
            const qint64 x1 = qint64(ox + 1) * m_size.width() / size.width();
            double sum[3] = {};
            for (int gy = 0; gy < grid; ++gy) {
                const qint64 y = y0 + (y1 - y0) * (2 * gy + 1) / (2 * grid);
                for (int gx = 0; gx < grid; ++gx) {
                    const qint64 x = x0 + (x1 - x0) * (2 * gx + 1) / (2 * grid);
                    sum[0] += plane(0)[y * m_planeSize[0].width() + x];
                    for (int i = 1; i < count(); ++i)
                        sum[i] += plane(i)[(y / ch) * m_planeSize[i].width() + x / cw];
                }
            }
            const double l = sum[0] / (grid * grid);
            const double cb = count() == 1 ? 0 : sum[1] / (grid * grid) - 128;
            const double cr = count() == 1 ? 0 : sum[2] / (grid * grid) - 128;
            // JFIF's YCbCr.
            rgb[0] = clampByte(l + 1.402 * cr);
            rgb[1] = clampByte(l - 0.344136 * cb - 0.714136 * cr);
            rgb[2] = clampByte(l + 1.772 * cb);
        }
    }
    return out;
}
