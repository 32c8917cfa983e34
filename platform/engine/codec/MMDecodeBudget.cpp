#include "MMDecodeBudget.h"
#include "MMJpegHeader.h"
#include <QFile>

bool MMDecodeBudget::allowsSize(const QSize &size)
{
    return size.width() > 0 && size.height() > 0 && size.width() <= MaxSide && size.height() <= MaxSide
        && qint64(size.width()) * size.height() <= MaxPixels;
}

bool MMDecodeBudget::allowsAnimation(const QSize &canvas, int frames)
{
    return allowsSize(canvas) && frames >= 1 && frames <= MaxFrames
        && (frames == 1 || qint64(canvas.width()) * canvas.height() * frames <= MaxAnimationPixels);
}

bool MMDecodeBudget::allowsJpeg(const MMJpegHeader &jpeg)
{
    if (!allowsSize(QSize(jpeg.width(), jpeg.height())))
        return false;
    return !jpeg.buffersWholePicture() || coefficientBytes(jpeg) <= MaxBytes;
}

qint64 MMDecodeBudget::coefficientBytes(const MMJpegHeader &jpeg)
{
    // Padded to 16 x 16, the largest usual MCU; the chroma share follows
    // the subsampling, and unusual samplings count as full-size planes,
    // which bounds them from above.
    const qint64 padded = (qint64(jpeg.width()) + 15) / 16 * 16 * ((qint64(jpeg.height()) + 15) / 16 * 16);
    qint64 chromaQuarters = 4;
    switch (jpeg.subsampling()) {
    case MMJpegHeader::Sub422:
    case MMJpegHeader::Sub440:
        chromaQuarters = 2;
        break;
    case MMJpegHeader::Sub420:
    case MMJpegHeader::Sub411:
        chromaQuarters = 1;
        break;
    default:
        break;
    }
    const qint64 samples = padded + padded * (jpeg.components() - 1) * chromaQuarters / 4;
    return samples * 2;
}

bool MMDecodeBudget::canSpareExtra(qint64 bytes)
{
    QFile meminfo(QStringLiteral("/proc/meminfo"));
    if (!meminfo.open(QIODevice::ReadOnly))
        return false;
    // readAll: a /proc file says it is empty until read.
    for (const QByteArray &line : meminfo.readAll().split('\n')) {
        if (line.startsWith("MemAvailable:")) {
            bool ok = false;
            const qint64 kib = line.mid(13).trimmed().split(' ').value(0).toLongLong(&ok);
            return ok && bytes >= 0 && bytes <= kib * 1024 / 4;
        }
    }
    return false;
}
