#include "ImgImplImageStore.h"

#include "ImgImplShell.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <sys/statfs.h>

// Coordinate mapping, the room rule and the copy back over the edited file.

void ImgImplImageStore::mapToRealPoint(QPoint &point) const
{
    if (!hasPreview)
        return;
    point.setX(int(point.x() / double(previewScale)));
    point.setY(int(point.y() / double(previewScale)));
}

void ImgImplImageStore::mapToRealRect(QRect &rect) const
{
    if (!hasPreview)
        return;
    QPoint corner = rect.topLeft();
    const int w = rect.right() - rect.left() + 1;
    const int h = rect.bottom() - rect.top() + 1;
    mapToRealPoint(corner);
    const int realW = int(w / double(previewScale));
    const int realH = int(h / double(previewScale));
    rect.moveTopLeft(corner);
    rect.setSize(QSize(realW, realH));
}

bool ImgImplImageStore::hasEnoughSpace(const QString &source, const QString &destination)
{
    const QByteArray dir = QFile::encodeName(QFileInfo(destination).absolutePath());
    struct statfs fs;
    if (statfs(dir.constData(), &fs) != 0)
        return false;
    struct stat src;
    if (stat(QFile::encodeName(source).constData(), &src) != 0)
        return false;
    // 64-bit throughout: block counts times block size overflow 32 bits on
    // large media.
    const qint64 blockSize = qint64(fs.f_bsize);
    const qint64 available = blockSize * qint64(fs.f_bavail);
    struct stat dst;
    const qint64 existing = stat(QFile::encodeName(destination).constData(), &dst) == 0 ? qint64(dst.st_size) : 0;
    return qint64(src.st_size) < available + existing - 5 * blockSize;
}

int ImgImplImageStore::copyFile(const QString &source, const QString &destination)
{
    return ImgImplShell::run(ImgImplShell::copyCommand(source, destination, "  "));
}

int ImgImplImageStore::saveToOriginalFile()
{
    if (!hasEnoughSpace(realFile, originalFile))
        return -1;
    return copyFile(realFile, originalFile);
}
