#pragma once
#include <QByteArray>
#include <QImage>

// HEIF/HEIC through libheif: the primary picture, upright (its own
// rotation and mirror boxes applied), and HEVC encoding of a picture with
// the EXIF of another HEIF file.
class MMHeifCodec
{
public:
    struct Header
    {
        // As shown, after the file's rotation and mirror.
        QSize size;
        bool alpha = false;
    };

    // Reads the boxes only: no picture data is decoded.
    static bool readHeader(const QByteArray &data, Header &header);
    static QImage decode(const QByteArray &data);
    // The primary picture's EXIF as a TIFF structure; empty when none.
    static QByteArray exif(const QByteArray &data);
    // exif, when given, goes into the file with its orientation set to
    // upright: the pixels are written as shown.
    static QByteArray encode(const QImage &image, int quality, const QByteArray &exif = QByteArray());
    // Whether this libheif can write HEVC at all (its encoder is a plugin).
    static bool canEncode();

    static constexpr int DefaultQuality = 90;
};
