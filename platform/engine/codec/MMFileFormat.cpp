#include "MMFileFormat.h"
#include "MMHeifCodec.h"
#include "MMImageHeader.h"
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
    if (n == "webp")
        return MM_FORMAT_WEBP;
    if (n == "heif")
        return MM_FORMAT_HEIF;
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
    if (ext == "heic" || ext == "heif" || ext == "hif")
        return "heif";
    if (ext == "gif" || ext == "webp")
        return ext;
    if (QImageWriter::supportedImageFormats().contains(ext) || QImageReader::supportedImageFormats().contains(ext))
        return ext;
    return QByteArray();
}

QString MMFileFormat::extensionFor(const QByteArray &qtName)
{
    if (qtName == "jpeg")
        return QStringLiteral("jpg");
    if (qtName == "heif")
        return QStringLiteral("heic");
    return QString::fromLatin1(qtName);
}

bool MMFileFormat::isWritable(const QByteArray &qtName)
{
    // JPEG, GIF, WebP and HEIF go through their own libraries, not Qt's plugins.
    if (qtName == "jpeg" || qtName == "gif" || qtName == "webp")
        return true;
    if (qtName == "heif")
        return MMHeifCodec::canEncode();
    return !qtName.isEmpty() && QImageWriter::supportedImageFormats().contains(qtName);
}

QByteArray MMFileFormat::forOutput(const QString &path, const QByteArray &sourceQtName, bool sameFile)
{
    const QByteArray source = sourceQtName.toLower() == "jpg" ? QByteArray("jpeg") : sourceQtName.toLower();
    const QByteArray ext = fromExtension(path);
    const QByteArray wanted = sameFile || ext.isEmpty() ? source : ext;
    return isWritable(wanted) ? wanted : QByteArray();
}

bool MMFileFormat::canWriteBack(const QString &path)
{
    const MMImageHeader header = MMImageHeader::read(path);
    return header.isValid() && isWritable(header.qtFormat());
}

QString MMFileFormat::saveSuffixFor(const QString &path)
{
    const MMImageHeader header = MMImageHeader::read(path);
    if (!header.isValid()) {
        // No picture to judge (a name not yet written): by its name.
        const QString suffix = QFileInfo(path).suffix();
        return isWritable(fromExtension(path)) ? suffix : QStringLiteral("png");
    }
    if (isWritable(header.qtFormat())) {
        // The name's own extension when it names the picture's format.
        const QString suffix = QFileInfo(path).suffix();
        return fromExtension(path) == header.qtFormat() ? suffix : extensionFor(header.qtFormat());
    }
    return header.format() == MM_FORMAT_HEIF ? QStringLiteral("jpg") : QStringLiteral("png");
}
