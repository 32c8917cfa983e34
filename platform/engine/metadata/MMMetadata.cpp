#include "MMMetadata.h"
#include "MMAreaScaler.h"
#include "MMJpegCodec.h"
#include "MMJpegHeader.h"
#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <exiv2/exiv2.hpp>
#include <mutex>

namespace {
const QSize kThumbnailBound(160, 160);

void initExiv2()
{
    static std::once_flag once;
    std::call_once(once, [] {
        // Odd metadata is common in the wild and is not our user's business.
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::XmpParser::initialize();
    });
}

template <typename Value>
void setIfPresent(Exiv2::ExifData &data, const char *key, const Value &value)
{
    auto it = data.findKey(Exiv2::ExifKey(key));
    if (it != data.end())
        *it = value;
}

void setIfPresent(Exiv2::XmpData &data, const char *key, const std::string &value)
{
    auto it = data.findKey(Exiv2::XmpKey(key));
    if (it != data.end())
        *it = value;
}

// The thumbnail by an area average read straight from the picture: Qt's
// smooth scaling would first widen a packed picture to 32 bits, a second
// full-size copy while the encoders still hold theirs.
QImage shrunk(const QImage &picture)
{
    const int channels = picture.format() == QImage::Format_RGB888 ? 3
        : picture.format() == QImage::Format_RGB32                  ? 4
        : picture.format() == QImage::Format_Grayscale8             ? 1
                                                                    : 0;
    const QSize size = picture.size().scaled(kThumbnailBound, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    if (channels == 0 || size.width() > picture.width() || size.height() > picture.height())
        return picture.scaled(kThumbnailBound, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QImage small(size, picture.format());
    if (small.isNull())
        return small;
    MMAreaScaler scaler(picture.size(), size, channels, 0, size.height());
    for (int y = 0; y < picture.height(); ++y)
        scaler.push(y, picture.constScanLine(y), [&small](int row) { return small.scanLine(row); });
    return small;
}

QByteArray thumbnailJpeg(const QImage &picture)
{
    if (picture.isNull())
        return QByteArray();
    const QImage small = shrunk(picture);
    return MMJpegCodec::encode(small, 80, MMJpegHeader::Sub420, false);
}

// The chroma sampling of jpeg's frame; invalid when it has no chroma or no
// readable frame.
QSize frameSampling(const QByteArray &jpeg)
{
    QBuffer buffer;
    buffer.setData(jpeg);
    MMJpegHeader header;
    return buffer.open(QIODevice::ReadOnly) && header.read(buffer) ? header.chromaSampling() : QSize();
}

// Makes the metadata describe an upright picture of the given size, in a
// frame whose chroma is sampled as sampling says.
void fix(Exiv2::ExifData &exif, Exiv2::XmpData &xmp, const QSize &size, const QSize &sampling,
         const MMMetadata::PictureSource &picture)
{
    const uint32_t w = uint32_t(size.width()), h = uint32_t(size.height());
    setIfPresent(exif, "Exif.Image.Orientation", uint16_t(1));
    setIfPresent(exif, "Exif.Photo.PixelXDimension", w);
    setIfPresent(exif, "Exif.Photo.PixelYDimension", h);
    setIfPresent(exif, "Exif.Image.ImageWidth", w);
    setIfPresent(exif, "Exif.Image.ImageLength", h);
    // A quarter turn makes 4:2:2 chroma 4:4:0, and a re-encode may choose
    // its own.
    if (sampling.isValid())
        setIfPresent(exif, "Exif.Image.YCbCrSubSampling",
                     std::to_string(sampling.width()) + ' ' + std::to_string(sampling.height()));
    setIfPresent(xmp, "Xmp.tiff.Orientation", std::string("1"));
    setIfPresent(xmp, "Xmp.exif.PixelXDimension", std::to_string(w));
    setIfPresent(xmp, "Xmp.exif.PixelYDimension", std::to_string(h));
    setIfPresent(xmp, "Xmp.tiff.ImageWidth", std::to_string(w));
    setIfPresent(xmp, "Xmp.tiff.ImageLength", std::to_string(h));

    // The old thumbnail shows the old picture.
    Exiv2::ExifThumb thumb(exif);
    const bool hadThumbnail = thumb.copy().size_ > 0;
    thumb.erase();
    if (hadThumbnail) {
        const QByteArray small = thumbnailJpeg(picture ? picture() : QImage());
        if (!small.isEmpty())
            thumb.setJpegThumbnail(reinterpret_cast<const Exiv2::byte *>(small.constData()), small.size());
    }
}

QByteArray contents(Exiv2::Image &image)
{
    Exiv2::BasicIo &io = image.io();
    if (io.open() != 0)
        return QByteArray();
    // Straight into the result: one copy of the picture instead of two.
    const long size = io.size();
    QByteArray out(int(size), Qt::Uninitialized);
    const long read = io.read(reinterpret_cast<Exiv2::byte *>(out.data()), size);
    io.close();
    return read == size ? out : QByteArray();
}

// Where the first scan's header starts, found by walking the segments ahead
// of it; -1 when they are not laid out plainly.
qsizetype firstScan(const QByteArray &jpeg)
{
    const auto *b = reinterpret_cast<const uchar *>(jpeg.constData());
    const qsizetype n = jpeg.size();
    if (n < 4 || b[0] != 0xFF || b[1] != 0xD8)
        return -1;
    qsizetype at = 2;
    while (at + 4 <= n && b[at] == 0xFF && b[at + 1] != 0xD9) {
        if (b[at + 1] == 0xDA)
            return at;
        at += 2 + ((b[at + 2] << 8) | b[at + 3]);
    }
    return -1;
}

// Exiv2 reads and rewrites only the segments ahead of the first scan and
// copies the rest as it is; handing it the picture's header alone (closed
// by the scan's header and an end marker) keeps it from copying the coded
// picture, megabytes, twice. The header it returns is joined to the rest.
struct Header
{
    QByteArray bytes;
    qsizetype scan = -1; // in the whole picture
};

Header headerOf(const QByteArray &jpeg)
{
    Header h;
    h.scan = firstScan(jpeg);
    if (h.scan < 0 || h.scan + 4 > jpeg.size()) {
        h.scan = -1;
        h.bytes = jpeg;
        return h;
    }
    const int length = (uchar(jpeg[h.scan + 2]) << 8) | uchar(jpeg[h.scan + 3]);
    h.bytes = jpeg.left(h.scan + 2 + length) + QByteArray("\xFF\xD9", 2);
    return h;
}

QByteArray withPicture(const QByteArray &header, const Header &h, const QByteArray &jpeg)
{
    if (h.scan < 0 || header.isEmpty())
        return header;
    const qsizetype scan = firstScan(header);
    if (scan < 0)
        return QByteArray();
    QByteArray out;
    out.reserve(scan + jpeg.size() - h.scan);
    out.append(header.constData(), scan);
    out.append(jpeg.constData() + h.scan, jpeg.size() - h.scan);
    return out;
}

// Walks the application and comment segments right after the start marker,
// giving visit(marker, offset, length) each until it returns false. Where
// the walk stopped (the first other segment, or the one visit stopped at);
// -1 when the stream does not start as a JPEG.
template <class Visit> qsizetype walkApplicationSegments(const QByteArray &jpeg, Visit visit)
{
    const auto *b = reinterpret_cast<const uchar *>(jpeg.constData());
    const qsizetype n = jpeg.size();
    if (n < 2 || b[0] != 0xFF || b[1] != 0xD8)
        return -1;
    qsizetype at = 2;
    while (at + 4 <= n && b[at] == 0xFF && ((b[at + 1] >= 0xE0 && b[at + 1] <= 0xEF) || b[at + 1] == 0xFE)) {
        const int length = (b[at + 2] << 8) | b[at + 3];
        if (!visit(b[at + 1], at, length))
            break;
        at += 2 + length;
    }
    return at;
}

// Offset of the JFIF APP0 segment's payload among the markers ahead of the
// image data, or -1.
qsizetype jfifPayload(const QByteArray &jpeg)
{
    qsizetype payload = -1;
    walkApplicationSegments(jpeg, [&](int marker, qsizetype at, int length) {
        if (marker == 0xE0 && length >= 16 && jpeg.mid(at + 4, 5) == QByteArray("JFIF", 5))
            payload = at + 4;
        return payload < 0;
    });
    return payload;
}

// The density (unit, horizontal, vertical) a print shop reads, taken from
// the source's JFIF header into the one our encoder wrote.
void copyJfifDensity(const QString &sourcePath, QByteArray &jpeg)
{
    QFile file(sourcePath);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray head = file.read(1 << 16);
    const qsizetype from = jfifPayload(head), to = jfifPayload(jpeg);
    // The payload: "JFIF\0", version (2), unit (1), densities (2 + 2).
    if (from < 0 || to < 0)
        return;
    jpeg.replace(to + 7, 5, head.mid(from + 7, 5));
}
} // namespace

QByteArray MMMetadata::transplant(const QString &sourcePath, const QByteArray &jpeg, const QSize &size,
                                  const PictureSource &picture, bool keepIcc)
{
    return transplant(sourcePath, jpeg, size, frameSampling(jpeg), picture, keepIcc);
}

QByteArray MMMetadata::transplant(const QString &sourcePath, const QByteArray &jpeg, const QSize &size,
                                  const QSize &sampling, const PictureSource &picture, bool keepIcc)
{
    QByteArray result = transplantSegments(sourcePath, jpeg, size, sampling, picture, keepIcc);
    if (!result.isEmpty())
        copyJfifDensity(sourcePath, result);
    return result;
}

QByteArray MMMetadata::transplantSegments(const QString &sourcePath, const QByteArray &jpeg, const QSize &size,
                                          const QSize &sampling, const PictureSource &picture, bool keepIcc)
{
    initExiv2();
    // An XMP packet Exiv2 cannot write back must not cost the EXIF and the
    // profile too: the second attempt leaves it out.
    for (const bool withXmp : { true, false }) {
        try {
            auto source = Exiv2::ImageFactory::open(std::string(QFile::encodeName(sourcePath).constData()));
            if (!source.get())
                return QByteArray();
            source->readMetadata();
            Exiv2::ExifData exif = source->exifData();
            Exiv2::XmpData xmp = withXmp ? source->xmpData() : Exiv2::XmpData();
            const Exiv2::IptcData iptc = source->iptcData();
            const bool icc = keepIcc && source->iccProfileDefined();
            const std::string comment = source->comment();
            if (exif.empty() && xmp.empty() && iptc.empty() && !icc && comment.empty())
                return jpeg;

            const Header header = headerOf(jpeg);
            auto target = Exiv2::ImageFactory::open(
                reinterpret_cast<const Exiv2::byte *>(header.bytes.constData()), long(header.bytes.size()));
            if (!target.get())
                return QByteArray();
            target->readMetadata();
            fix(exif, xmp, size, sampling, picture);
            target->setExifData(exif);
            target->setXmpData(xmp);
            target->setIptcData(iptc);
            if (icc)
                target->setIccProfile(*source->iccProfile(), false);
            if (!comment.empty())
                target->setComment(comment);
            target->writeMetadata();
            return withPicture(contents(*target), header, jpeg);
        } catch (...) {
        }
    }
    return QByteArray();
}

namespace {
// The start marker and JFIF header libjpeg writes for a colour or grey
// picture: version 1.01, no unit, 1:1 density, no thumbnail.
const QByteArray kJfifStart("\xFF\xD8\xFF\xE0\x00\x10JFIF\x00\x01\x01\x00\x00\x01\x00\x01\x00\x00", 20);
}

MMMetadata::Segments MMMetadata::segmentsFor(const QString &sourcePath, const QSize &size, const QSize &sampling,
                                             const PictureSource &picture, bool keepIcc)
{
    // A header with no picture: the start, the JFIF header, a table, a scan
    // header and the end. Exiv2 reads and writes only what comes before the
    // scan, and puts what it adds in front of the first segment that is
    // not an application one (the table).
    const QByteArray table = QByteArray("\xFF\xDB\x00\x43\x00", 5) + QByteArray(64, '\x01');
    const QByteArray stub
        = kJfifStart + table + QByteArray("\xFF\xDA\x00\x08\x01\x01\x00\x00\x3F\x00\xFF\xD9", 12);
    const QByteArray header = transplant(sourcePath, stub, size, sampling, picture, keepIcc);
    Segments segments;
    const qsizetype at = walkApplicationSegments(header, [](int, qsizetype, int) { return true; });
    if (firstScan(header) < 0 || at < 2 || header.mid(at, table.size()) != table)
        return segments;
    segments.ok = true;
    segments.bytes = header.mid(2, at - 2);
    segments.sampling = sampling;
    return segments;
}

QByteArray MMMetadata::withSegments(const Segments &segments, const QByteArray &jpeg)
{
    if (!segments.ok || !jpeg.startsWith(kJfifStart) || frameSampling(jpeg) != segments.sampling)
        return QByteArray();
    QByteArray out;
    out.reserve(2 + segments.bytes.size() + jpeg.size() - kJfifStart.size());
    out.append(jpeg.constData(), 2);
    out.append(segments.bytes);
    out.append(jpeg.constData() + kJfifStart.size(), jpeg.size() - kJfifStart.size());
    return out;
}

QByteArray MMMetadata::normalize(const QByteArray &jpeg, const QSize &size, const PictureSource &picture)
{
    initExiv2();
    try {
        const Header header = headerOf(jpeg);
        auto image = Exiv2::ImageFactory::open(reinterpret_cast<const Exiv2::byte *>(header.bytes.constData()),
                                               long(header.bytes.size()));
        if (!image.get())
            return QByteArray();
        image->readMetadata();
        Exiv2::ExifData exif = image->exifData();
        Exiv2::XmpData xmp = image->xmpData();
        if (exif.empty() && xmp.empty())
            return jpeg;
        fix(exif, xmp, size, frameSampling(header.bytes), picture);
        image->setExifData(exif);
        image->setXmpData(xmp);
        image->writeMetadata();
        return withPicture(contents(*image), header, jpeg);
    } catch (...) {
        return QByteArray();
    }
}

QImage MMMetadata::thumbnailSource(const QByteArray &jpeg)
{
    QBuffer buffer;
    buffer.setData(jpeg);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, "jpeg");
    reader.setAutoTransform(false);
    const QSize size = reader.size();
    if (size.isEmpty())
        return QImage();
    reader.setScaledSize(size.scaled(kThumbnailBound, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    return reader.read();
}

QDate MMMetadata::captureDate(const QString &path)
{
    initExiv2();
    try {
        auto image = Exiv2::ImageFactory::open(std::string(QFile::encodeName(path).constData()));
        if (!image.get())
            return QDate();
        image->readMetadata();
        const Exiv2::ExifData &exif = image->exifData();
        for (const char *key : {"Exif.Photo.DateTimeOriginal", "Exif.Photo.DateTimeDigitized"}) {
            const auto it = exif.findKey(Exiv2::ExifKey(key));
            if (it == exif.end())
                continue;
            // "YYYY:MM:DD HH:MM:SS"; cameras without a clock write blanks or zeros.
            const QDate date = QDate::fromString(QString::fromStdString(it->toString()).left(10), "yyyy:MM:dd");
            if (date.isValid())
                return date;
        }
    } catch (...) {
    }
    return QDate();
}
