#include "MMImageWriter.h"
#include "MMAtomicFile.h"
#include "MMFileFormat.h"
#include "MMJpegCodec.h"
#include "MMMetadata.h"
#include <QBuffer>
#include <QImageWriter>
#include <thread>

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
        if (options.metadataSource.isEmpty())
            return MMJpegCodec::encode(image, options.jpegQuality, options.jpegSubsampling, options.jpegProgressive);
        // The metadata needs the picture's size and a thumbnail of it, not
        // its coding: it is made ready on a second thread while the
        // picture is encoded, then put in front of it.
        const auto picture = [&image] { return image; };
        MMMetadata::Segments segments;
        std::thread metadata([&] {
            segments = MMMetadata::segmentsFor(options.metadataSource, image.size(), picture, options.keepIccProfile);
        });
        const QByteArray jpeg = MMJpegCodec::encode(image, options.jpegQuality, options.jpegSubsampling,
                                                    options.jpegProgressive);
        metadata.join();
        if (jpeg.isEmpty())
            return jpeg;
        QByteArray withMetadata = MMMetadata::withSegments(segments, jpeg);
        if (withMetadata.isEmpty())
            withMetadata = MMMetadata::transplant(options.metadataSource, jpeg, image.size(), picture,
                                                  options.keepIccProfile);
        // Metadata we cannot carry over must not cost the user the picture.
        return withMetadata.isEmpty() ? jpeg : withMetadata;
    }

    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    if (!writer.write(image))
        return QByteArray();
    return data;
}
