#include "MMImageHeader.h"
#include "MMDecodeBudget.h"
#include "MMFileFormat.h"
#include "MMGifCodec.h"
#include "MMHeifCodec.h"
#include "MMWebpCodec.h"
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

bool MMImageHeader::isAcceptableSize(const QSize &size)
{
    return MMDecodeBudget::allowsSize(size);
}

MMImageHeader MMImageHeader::read(const QString &path)
{
    MMImageHeader h;
    const QFileInfo fi(path);
    if (path.isEmpty() || !fi.isFile() || fi.size() <= 0)
        return h;

    QByteArray qtFormat;
    QSize size;
    QByteArray head;
    {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            head = file.read(32);
    }
    const QByteArray own = sniff(head);
    if (!own.isEmpty()) {
        if (!h.readOwn(path, own, size))
            return MMImageHeader();
        qtFormat = own;
    } else if (head.startsWith(QByteArray("\xFF\xD8", 2))) {
        // Our own parser reads JPEG headers: it checks every length and
        // stays quiet about damaged files.
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly) || !h.m_jpeg.read(file))
            return h;
        qtFormat = "jpeg";
        size = QSize(h.m_jpeg.width(), h.m_jpeg.height());
        if (!MMDecodeBudget::allowsJpeg(h.m_jpeg) || !MMJpegHeader::isComplete(path))
            return MMImageHeader();
    } else {
        QImageReader reader(path);
        reader.setDecideFormatFromContent(true);
        qtFormat = reader.format().toLower();
        size = reader.size();
        if (qtFormat.isEmpty() || qtFormat == "jpeg" || qtFormat == "gif" || !isAcceptableSize(size))
            return h;
        if (qtFormat == "png" && !isPngComplete(path))
            return h;
    }

    h.m_valid = true;
    h.m_storedSize = size;
    h.m_qtFormat = qtFormat;
    h.m_format = MMFileFormat::fromQtName(qtFormat);
    return h;
}

QByteArray MMImageHeader::sniff(const QByteArray &head)
{
    if (head.startsWith("GIF87a") || head.startsWith("GIF89a"))
        return "gif";
    if (head.size() >= 12 && head.startsWith("RIFF") && head.mid(8, 4) == "WEBP")
        return "webp";
    // An ISO media file whose major brand is one of HEIF's still-image brands.
    static const char *const brands[] = {"heic", "heix", "heim", "heis", "hevc", "hevx", "mif1", "msf1"};
    if (head.size() >= 12 && head.mid(4, 4) == "ftyp") {
        const QByteArray brand = head.mid(8, 4);
        for (const char *b : brands) {
            if (brand == b)
                return "heif";
        }
    }
    return QByteArray();
}

// GIF, WebP and HEIF are judged by our own codecs' header readers, and each
// against the decode budget: a GIF by the bytes of all its frames (giflib
// keeps them all, a byte a pixel), an animation by its canvas, which every
// frame is edited at.
bool MMImageHeader::readOwn(const QString &path, const QByteArray &format, QSize &size)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray data = file.readAll();
    if (format == "gif") {
        MMGifCodec::Header gif;
        if (!MMGifCodec::readHeader(data, gif) || !MMDecodeBudget::allowsAnimation(gif.canvas, gif.frames)
            || gif.framePixels > MMDecodeBudget::MaxBytes)
            return false;
        size = gif.canvas;
        m_frames = gif.frames;
        return true;
    }
    if (format == "webp") {
        MMWebpCodec::Header webp;
        if (!MMWebpCodec::readHeader(data, webp) || !MMDecodeBudget::allowsAnimation(webp.canvas, webp.frames))
            return false;
        size = webp.canvas;
        m_frames = webp.frames;
        m_lossless = webp.lossless;
        return true;
    }
    MMHeifCodec::Header heif;
    if (!MMHeifCodec::readHeader(data, heif) || !isAcceptableSize(heif.size))
        return false;
    size = heif.size;
    return true;
}

bool MMImageHeader::isPngComplete(const QString &path)
{
    // A PNG ends with its IEND chunk; the chunk lengths let us find it
    // without reading the image data.
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const qint64 n = file.size();
    static const char iend[] = "\0\0\0\0IEND\xAE\x42\x60\x82";
    if (n >= 8 + 12) {
        file.seek(n - 12);
        if (file.read(12) == QByteArray(iend, 12))
            return true;
    }
    qint64 pos = 8;
    while (pos + 8 <= n) {
        file.seek(pos);
        const QByteArray head = file.read(8);
        if (head.size() != 8)
            return false;
        const uchar *p = reinterpret_cast<const uchar *>(head.constData());
        const qint64 length = (qint64(p[0]) << 24) | (p[1] << 16) | (p[2] << 8) | p[3];
        if (head.mid(4, 4) == "IEND")
            return true;
        pos += 12 + length;
    }
    return false;
}
