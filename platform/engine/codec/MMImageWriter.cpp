#include "MMImageWriter.h"
#include "MMAtomicFile.h"
#include "MMFileFormat.h"
#include "MMJpegCodec.h"
#include "MMMetadata.h"
#include <QBuffer>
#include <QImageWriter>

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
        const QByteArray jpeg = MMJpegCodec::encode(image, options.jpegQuality, options.jpegSubsampling,
                                                    options.jpegProgressive);
        if (jpeg.isEmpty() || options.metadataSource.isEmpty())
            return jpeg;
        const QByteArray withMetadata = MMMetadata::transplant(options.metadataSource, jpeg, image.size(),
                                                               [&image] { return image; }, options.keepIccProfile);
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
