// The metadata path of a save: the input is the picture the metadata comes
// from (EXIF, XMP, ICC, comments, thumbnail) and is carried over into a
// freshly encoded picture, fixed up in place as after a lossless transform,
// and read for its thumbnail, all through Exiv2 as the engine does.
#include "FuzzScratch.h"
#include "MMImageHeader.h"
#include "MMImageWriter.h"
#include "MMJpegCodec.h"
#include "MMMetadata.h"
#include <QBuffer>
#include <QCoreApplication>
#include <QImage>

namespace {
const QSize kSize(24, 16);

QImage picture()
{
    QImage image(kSize, QImage::Format_RGB32);
    image.fill(qRgb(200, 120, 40));
    return image;
}

// The result must still be a whole JPEG stream of the same picture.
void requireJpeg(const QByteArray &jpeg)
{
    QBuffer buffer;
    buffer.setData(jpeg);
    buffer.open(QIODevice::ReadOnly);
    MMJpegHeader header;
    fuzz::require(header.read(buffer) && QSize(header.width(), header.height()) == kSize);
}
}

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QByteArray encoded = MMJpegCodec::encode(picture(), 80, MMJpegHeader::Sub420, false);
    const QByteArray input(reinterpret_cast<const char *>(data), int(size));
    const QString path = fuzz::scratchPath(QStringLiteral("meta.jpg"));
    if (!fuzz::writeFile(path, input))
        return 0;
    const MMMetadata::PictureSource thumb = [] { return picture(); };

    const QByteArray withMeta = MMMetadata::transplant(path, encoded, kSize, thumb, size & 1);
    if (!withMeta.isEmpty()) {
        requireJpeg(withMeta);
        const QByteArray fixed = MMMetadata::normalize(withMeta, kSize, thumb);
        if (!fixed.isEmpty())
            requireJpeg(fixed);
    }
    // The input itself as a picture whose markers were copied unchanged.
    MMMetadata::normalize(input, kSize, thumb);
    MMMetadata::thumbnailSource(input);
    return 0;
}
