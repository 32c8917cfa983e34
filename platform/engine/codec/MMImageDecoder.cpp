#include "MMImageDecoder.h"
#include "MMHeifCodec.h"
#include "MMImageHeader.h"
#include "MMJpegCodec.h"
#include "MMJpegRegionDecoder.h"
#include "MMWebpCodec.h"
#include <QFile>
#include <QImageReader>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {
// A reduced decode of a file this large gives its freed memory back.
const qint64 kTrimAfterBytes = 4 * 1024 * 1024;
// Qt's limit is in megabytes; allow four bytes a pixel at our largest size.
const int kAllocationLimitMB = int(MMImageDecoder::MaxPixels * 4 / (1024 * 1024)) + 16;

QSize fitWithin(const QSize &size, const QSize &bound)
{
    if (size.width() <= bound.width() && size.height() <= bound.height())
        return size;
    QSize fitted;
    if (qint64(size.width()) * bound.height() <= qint64(size.height()) * bound.width())
        fitted = QSize(int((qint64(size.width()) * bound.height() + size.height() / 2) / size.height()), bound.height());
    else
        fitted = QSize(bound.width(), int((qint64(size.height()) * bound.width() + size.width() / 2) / size.width()));
    return fitted.expandedTo(QSize(1, 1));
}

// A reduced JPEG: libjpeg's DCT scaling to the smallest scale still at
// least target (as Qt's reader picks it), then a Lanczos shrink down to
// target, turned while decoded. Null when the picture would have to grow or
// libjpeg reports damage (Qt's reader then shows what it can of it).
QImage decodeJpegReduced(const QString &path, const MMImageHeader &header, const QSize &uprightTarget)
{
    const QSize stored = header.storedSize();
    const QSize want = header.orientation().map(uprightTarget);
    int denom = 8;
    auto scaled = [&stored](int d) { return QSize((stored.width() + d - 1) / d, (stored.height() + d - 1) / d); };
    while (denom > 1 && (scaled(denom).width() < want.width() || scaled(denom).height() < want.height()))
        denom /= 2;
    if (scaled(denom).width() < want.width() || scaled(denom).height() < want.height())
        return QImage();
    QImage image;
    qint64 bytes = 0;
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return QImage();
        const QByteArray data = file.readAll();
        bytes = data.size();
        image = MMJpegRegionDecoder::decode(data, stored, denom, QRect(QPoint(0, 0), scaled(denom)),
                                            header.orientation(), QImage::Format_RGB32, uprightTarget);
    }
#ifdef __GLIBC__
    // The file and a progressive picture's coefficients (tens of MB) are
    // freed into the heap, which glibc keeps; the editor then sits idle on a
    // small preview, so give them back.
    if (bytes >= kTrimAfterBytes)
        malloc_trim(0);
#endif
    return image;
}

// Decodes path upright at uprightTarget, or at full size when that is
// invalid.
QImage load(const QString &path, const MMImageHeader &header, const QSize &uprightTarget)
{
    if (!header.isValid())
        return QImage();
    if (uprightTarget.isValid() && (uprightTarget.isEmpty() || !MMImageHeader::isAcceptableSize(uprightTarget)))
        return QImage();

    const MMOrientation orientation = header.orientation();
    const int components = header.jpeg().components();
    if (header.format() == MM_FORMAT_JPEG && !uprightTarget.isValid() && (components == 1 || components == 3)) {
        // Full-size pictures are the ones that get saved: decode them where
        // damage is reported (CMYK is left to Qt, which knows Adobe's
        // inverted variant).
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return QImage();
        const QImage image = MMJpegCodec::decode(file.readAll());
        if (image.size() != header.storedSize())
            return QImage();
        return orientation.apply(image);
    }

    if (header.format() == MM_FORMAT_JPEG && (components == 1 || components == 3)) {
        const QImage reduced = decodeJpegReduced(path, header, uprightTarget);
        if (!reduced.isNull())
            return reduced;
    }

    if (header.format() == MM_FORMAT_WEBP || header.format() == MM_FORMAT_HEIF) {
        // Qt has no reader for these; the header has been judged already.
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return QImage();
        const QByteArray data = file.readAll();
        QImage image = header.format() == MM_FORMAT_WEBP ? MMWebpCodec::decode(data) : MMHeifCodec::decode(data);
        if (image.size() != header.storedSize())
            return QImage();
        if (uprightTarget.isValid() && image.size() != uprightTarget)
            image = image.scaled(uprightTarget, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        return image;
    }

    QImageReader reader(path, header.qtFormat());
    reader.setAutoTransform(false); // orientation is ours, from the same header the size came from
    reader.setAllocationLimit(kAllocationLimitMB);
    reader.setQuality(100); // accurate DCT and smooth scaling in Qt's JPEG reader
    QSize expected = header.storedSize();
    const bool scaledRead = uprightTarget.isValid() && reader.supportsOption(QImageIOHandler::ScaledSize);
    if (scaledRead) {
        // The reader scales the stored pixels, before any turn.
        expected = orientation.map(uprightTarget);
        reader.setScaledSize(expected);
    }
    QImage image;
    if (!reader.read(&image) || image.size() != expected)
        return QImage();
    image = orientation.apply(image);
    if (uprightTarget.isValid() && image.size() != uprightTarget)
        image = image.scaled(uprightTarget, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return image;
}
}

QImage MMImageDecoder::decode(const QString &path)
{
    return load(path, MMImageHeader::read(path), QSize());
}

QImage MMImageDecoder::decodeFitting(const QString &path, const QSize &bound)
{
    if (bound.isEmpty())
        return QImage();
    const MMImageHeader header = MMImageHeader::read(path);
    if (!header.isValid())
        return QImage();
    return load(path, header, fitWithin(header.uprightSize(), bound));
}

QImage MMImageDecoder::decodeScaled(const QString &path, const QSize &size)
{
    if (size.isEmpty())
        return QImage();
    return load(path, MMImageHeader::read(path), size);
}
