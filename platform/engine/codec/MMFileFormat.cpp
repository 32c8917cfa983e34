#include "MMFileFormat.h"
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>

MMImageFormat MMFileFormat::fromQtName(const QByteArray &qtName)
{
    const QByteArray n = qtName.toLower();
    if (n.isEmpty())
        return MM_FORMAT_UNKNOWN;
    if (n == "jpeg" || n == "jpg")
        return MM_FORMAT_JPEG;
    if (n == "png")
        return MM_FORMAT_PNG;
    if (n == "bmp")
        return MM_FORMAT_BMP;
    if (n == "gif")
        return MM_FORMAT_GIF;
    return MM_FORMAT_OTHER;
}

QByteArray MMFileFormat::fromExtension(const QString &path)
{
    const QByteArray ext = QFileInfo(path).suffix().trimmed().toLower().toLatin1();
    if (ext.isEmpty())
        return QByteArray();
    if (ext == "jpg" || ext == "jpeg" || ext == "jpe" || ext == "jfif")
        return "jpeg";
    if (ext == "tif")
        return "tiff";
    if (QImageWriter::supportedImageFormats().contains(ext) || QImageReader::supportedImageFormats().contains(ext))
        return ext;
    return QByteArray();
}

bool MMFileFormat::isWritable(const QByteArray &qtName)
{
    // JPEG goes through TurboJPEG, not Qt's plugin.
    return qtName == "jpeg" || (!qtName.isEmpty() && QImageWriter::supportedImageFormats().contains(qtName));
}

QByteArray MMFileFormat::forOutput(const QString &path, const QByteArray &sourceQtName)
{
    const QByteArray ext = fromExtension(path);
    if (isWritable(ext))
        return ext;
    const QByteArray source = sourceQtName.toLower() == "jpg" ? QByteArray("jpeg") : sourceQtName.toLower();
    if (isWritable(source))
        return source;
    return "png";
}
