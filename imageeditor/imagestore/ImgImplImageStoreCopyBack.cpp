#include "ImgImplImageStore.h"

#include "ImgImplSafeSave.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

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
    struct stat src;
    if (stat(QFile::encodeName(source).constData(), &src) != 0)
        return false;
    // Through a symlink the file is written beside its target, so that is
    // the file system to ask, as the writer does.
    const QFileInfo target(destination);
    const QString resolved = target.exists() ? target.canonicalFilePath() : target.absoluteFilePath();
    return ImgImplSafeSave::fits(src.st_size, QFile::encodeName(QFileInfo(resolved).absolutePath()));
}

int ImgImplImageStore::copyFile(const QString &source, const QString &destination, int *lockFd)
{
    return ImgImplSafeSave::write(source, destination, lockFd);
}

int ImgImplImageStore::saveToOriginalFile(int *lockFd)
{
    // The writer applies the room rule to the way it writes.
    return ImgImplSafeSave::write(realFile, originalFile, lockFd);
}
