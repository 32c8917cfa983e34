#pragma once
// Byte-level makers of odd image files: headers that lie about their size,
// EXIF blocks with chosen (or broken) contents.
#include <QByteArray>
#include <QtEndian>

class CraftedFiles
{
public:
    static quint32 crc32(const QByteArray &data)
    {
        quint32 crc = 0xFFFFFFFFu;
        for (char ch : data) {
            crc ^= uchar(ch);
            for (int k = 0; k < 8; ++k)
                crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
        }
        return ~crc;
    }

    static QByteArray be32(quint32 v)
    {
        QByteArray b(4, '\0');
        qToBigEndian(v, b.data());
        return b;
    }

    static QByteArray be16(quint16 v)
    {
        QByteArray b(2, '\0');
        qToBigEndian(v, b.data());
        return b;
    }

    static QByteArray pngChunk(const QByteArray &type, const QByteArray &body)
    {
        return be32(quint32(body.size())) + type + body + be32(crc32(type + body));
    }

    // A PNG whose header declares width x height but which carries only a
    // few bytes of image data.
    static QByteArray pngHeaderOnly(quint32 width, quint32 height)
    {
        const QByteArray ihdr = be32(width) + be32(height) + QByteArray("\x08\x06\x00\x00\x00", 5);
        const QByteArray idat = qCompress(QByteArray(64, '\0')).mid(4);
        return QByteArray("\x89PNG\r\n\x1a\n", 8) + pngChunk("IHDR", ihdr) + pngChunk("IDAT", idat)
            + pngChunk("IEND", QByteArray());
    }

    // A baseline JPEG header declaring width x height, one grey component,
    // with a token scan and an end marker.
    static QByteArray jpegHeaderOnly(quint16 width, quint16 height)
    {
        QByteArray dqt = QByteArray(1, '\0') + QByteArray(64, '\x01');
        QByteArray sof = QByteArray(1, '\x08') + be16(height) + be16(width) + QByteArray("\x01\x01\x11\x00", 4);
        QByteArray sos("\x01\x01\x00\x00\x3f\x00", 6);
        return QByteArray("\xFF\xD8", 2) + segment(0xDB, dqt) + segment(0xC0, sof) + segment(0xDA, sos)
            + QByteArray(16, '\x00') + QByteArray("\xFF\xD9", 2);
    }

    static QByteArray segment(uchar marker, const QByteArray &payload)
    {
        return QByteArray(1, '\xFF') + QByteArray(1, char(marker)) + be16(quint16(payload.size() + 2)) + payload;
    }

    // An EXIF block holding only an orientation tag. ifdOffset and
    // entryCount may be set to nonsense to make a broken block.
    static QByteArray exifOrientation(int orientation, bool bigEndian = true, quint32 ifdOffset = 8,
                                      quint16 entryCount = 1)
    {
        QByteArray tiff;
        auto u16 = [&](quint16 v) {
            QByteArray b(2, '\0');
            if (bigEndian) qToBigEndian(v, b.data()); else qToLittleEndian(v, b.data());
            tiff += b;
        };
        auto u32 = [&](quint32 v) {
            QByteArray b(4, '\0');
            if (bigEndian) qToBigEndian(v, b.data()); else qToLittleEndian(v, b.data());
            tiff += b;
        };
        tiff += bigEndian ? "MM" : "II";
        u16(42);
        u32(ifdOffset);
        u16(entryCount);
        u16(0x0112);
        u16(3);
        u32(1);
        u16(quint16(orientation));
        u16(0);
        u32(0);
        return segment(0xE1, QByteArray("Exif\0\0", 6) + tiff);
    }

    // jpeg with an extra segment right after its start marker.
    static QByteArray withSegment(const QByteArray &jpeg, const QByteArray &segmentBytes)
    {
        return jpeg.left(2) + segmentBytes + jpeg.mid(2);
    }
};
