#include "MMImageHeader.h"
#include "MMDecodeBudget.h"
#include "MMFileFormat.h"
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
    if (startsWithJpegMarker(path)) {
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
        if (qtFormat.isEmpty() || qtFormat == "jpeg" || !isAcceptableSize(size))
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

bool MMImageHeader::startsWithJpegMarker(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(2) == QByteArray("\xFF\xD8", 2);
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
