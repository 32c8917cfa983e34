#include "MMImageWriter.h"
#include "MMAtomicFile.h"
#include "MMFileFormat.h"
#include "MMGifCodec.h"
#include "MMHeifCodec.h"
#include "MMJpegCodec.h"
#include "MMJpegProgressiveEncoder.h"
#include "MMJpegStripEncoder.h"
#include "MMMetadata.h"
#include "MMWebpCodec.h"
#include "MMYuvPlanes.h"
#include <QBuffer>
#include <QImageWriter>
#include <thread>

namespace {
// The picture encoded by encode, with the metadata of options.metadataSource
// in front. The metadata needs the picture's size, its chroma sampling and a
// thumbnail of it, not its coding: it is made ready on a second thread while
// the picture is encoded, for the sampling asked of the encoder (made again
// when the encoder chose another).
template <class Encode>
QByteArray withMetadata(const QSize &size, MMJpegHeader::Subsampling subsampling,
                        const MMMetadata::PictureSource &picture, const MMEncodeOptions &options, Encode encode)
{
    if (options.metadataSource.isEmpty())
        return encode();
    MMMetadata::Segments segments;
    std::thread metadata([&] {
        segments = MMMetadata::segmentsFor(options.metadataSource, size, MMJpegHeader::chromaSampling(subsampling),
                                           picture, options.keepIccProfile);
    });
    const QByteArray jpeg = encode();
    metadata.join();
    if (jpeg.isEmpty())
        return jpeg;
    QByteArray result = MMMetadata::withSegments(segments, jpeg);
    if (result.isEmpty())
        result = MMMetadata::transplant(options.metadataSource, jpeg, size, picture, options.keepIccProfile);
    // Metadata we cannot carry over must not cost the user the picture.
    return result.isEmpty() ? jpeg : result;
}
}

int MMImageWriter::write(const QImage &image, const QString &path, int jpegQuality)
{
    MMEncodeOptions options;
    if (jpegQuality >= 1 && jpegQuality <= 100)
        options.jpegQuality = jpegQuality;
    return write(image, path, options);
}

int MMImageWriter::write(const QImage &image, const QString &path, const MMEncodeOptions &options)
{
    const QByteArray data = encode(image, path, options);
    if (data.isEmpty())
        return -1;
    return MMAtomicFile::write(path, data);
}

QByteArray MMImageWriter::encode(const QImage &image, const QString &path, const MMEncodeOptions &options)
{
    if (image.isNull())
        return QByteArray();
    const QByteArray format = options.format.isEmpty() ? MMFileFormat::fromExtension(path) : options.format;
    if (!MMFileFormat::isWritable(format))
        return QByteArray();

    if (format == "jpeg") {
        return withMetadata(image.size(), options.jpegSubsampling, [&image] { return image; }, options, [&] {
            return MMJpegCodec::encode(image, options.jpegQuality, options.jpegSubsampling, options.jpegProgressive);
        });
    }

    if (format == "gif")
        return MMGifCodec::encode(image);
    if (format == "webp")
        return MMWebpCodec::encode(image, options.webpLossless, options.webpQuality);
    if (format == "heif")
        return MMHeifCodec::encode(image, options.heifQuality, options.heifExif);

    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    if (!writer.write(image))
        return QByteArray();
    return data;
}

int MMImageWriter::write(const MMYuvPlanes &planes, const QString &path, const MMEncodeOptions &options,
                         const std::function<QByteArray()> &chromaScans)
{
    if (planes.isNull())
        return -1;
    // Twice the thumbnail's bound: the metadata averages it down from there.
    const auto picture = [&planes] { return planes.preview(QSize(320, 320)); };
    const int quality = qBound(1, options.jpegQuality, 100);
    const QByteArray data = withMetadata(planes.size(), planes.subsampling(), picture, options, [&] {
        if (!options.jpegProgressive)
            return MMJpegStripEncoder::encode(planes, quality);
        const QByteArray joined = MMJpegProgressiveEncoder::encode(planes, quality, chromaScans);
        return joined.isEmpty() ? MMJpegStripEncoder::encodeWhole(planes, quality, true) : joined;
    });
    if (data.isEmpty())
        return -1;
    return MMAtomicFile::write(path, data);
}
