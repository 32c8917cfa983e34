#include "MMAtomicFile.h"
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
bool writeAll(int fd, const char *data, qint64 size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size_t(qMin<qint64>(size, 1 << 20)));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        data += n;
        size -= n;
    }
    return true;
}

void syncDirectory(const QByteArray &dir)
{
    // Makes the rename itself durable; a failure here loses nothing we can
    // still act on.
    const int fd = ::open(dir.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}
}

int MMAtomicFile::write(const QString &path, const QByteArray &data)
{
    if (path.isEmpty())
        return -1;
    const QByteArray target = QFile::encodeName(path);
    struct stat old;
    const bool existed = ::stat(target.constData(), &old) == 0;
    if (existed && !S_ISREG(old.st_mode))
        return -1;

    const QByteArray dir = QFile::encodeName(QFileInfo(path).absolutePath());
    QByteArray temp;
    int fd = -1;
    for (int attempt = 0; attempt < 64 && fd < 0; ++attempt) {
        temp = dir + "/.vo_" + QByteArray::number(QRandomGenerator::system()->generate64(), 36) + ".tmp";
        // Private while the bytes go in: in /tmp others could read it.
        fd = ::open(temp.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        if (fd < 0 && errno != EEXIST)
            return -1;
    }
    if (fd < 0)
        return -1;

    bool ok = writeAll(fd, data.constData(), data.size());
    // The replaced file's permission bits, or those the umask gives a new file.
    mode_t mode = old.st_mode & 07777;
    if (!existed) {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        mode = 0666 & ~mask;
    }
    ok = ok && ::fchmod(fd, mode) == 0;
    ok = ok && ::fsync(fd) == 0;
    ok = (::close(fd) == 0) && ok;
    ok = ok && ::rename(temp.constData(), target.constData()) == 0;
    if (!ok) {
        ::unlink(temp.constData());
        return -1;
    }
    syncDirectory(dir);
    return 0;
}
