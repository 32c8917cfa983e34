#include "MMAtomicFile.h"
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
MMAtomicFile::Hooks g_hooks;
thread_local int t_lastError = 0;

bool writeAll(int fd, const char *data, qint64 size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size_t(qMin<qint64>(size, 1 << 20)));
        if (n < 0 && errno == EINTR)
            continue;
        if (n == 0)
            errno = EIO;
        if (n <= 0)
            return false;
        data += n;
        size -= n;
    }
    return true;
}

bool writeAndSync(int fd, const QByteArray &data)
{
    if (g_hooks.writeAndSync)
        return g_hooks.writeAndSync(fd, data);
    return writeAll(fd, data.constData(), data.size()) && ::fsync(fd) == 0;
}

int fail(int error)
{
    t_lastError = error ? error : EIO;
    return -1;
}
} // namespace

void MMAtomicFile::setHooks(const Hooks &hooks) { g_hooks = hooks; }
MMAtomicFile::Hooks MMAtomicFile::hooks() { return g_hooks; }
int MMAtomicFile::lastError() { return t_lastError; }
void MMAtomicFile::clearLastError() { t_lastError = 0; }

int MMAtomicFile::write(const QString &path, const QByteArray &data)
{
    if (path.isEmpty())
        return fail(EINVAL);
    const QByteArray target = QFile::encodeName(path);
    struct stat old;
    const bool existed = ::stat(target.constData(), &old) == 0;
    if (existed && !S_ISREG(old.st_mode))
        return fail(EISDIR);

    const QByteArray dir = QFile::encodeName(QFileInfo(path).absolutePath());
    QByteArray temp;
    int fd = -1;
    for (int attempt = 0; attempt < 64 && fd < 0; ++attempt) {
        temp = dir + "/.vo_" + QByteArray::number(QRandomGenerator::system()->generate64(), 36) + ".tmp";
        // Private while the bytes go in: in /tmp others could read it.
        fd = ::open(temp.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        if (fd < 0 && errno != EEXIST)
            return fail(errno);
    }
    if (fd < 0)
        return fail(EEXIST);
    if (g_hooks.created)
        g_hooks.created(temp, g_hooks.createdContext);

    // The replaced file's permission bits, or those the umask gives a new file.
    mode_t mode = old.st_mode & 07777;
    if (!existed) {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        mode = 0666 & ~mask;
    }
    bool ok = ::fchmod(fd, mode) == 0 && writeAndSync(fd, data);
    int error = ok ? 0 : errno;
    if (::close(fd) != 0 && ok) {
        ok = false;
        error = errno;
    }
    if (ok && ::rename(temp.constData(), target.constData()) != 0) {
        ok = false;
        error = errno;
    }
    if (!ok) {
        ::unlink(temp.constData());
        return fail(error);
    }
    // The rename is durable only once its folder is flushed.
    const int dirFd = ::open(dir.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd < 0 || ::fsync(dirFd) != 0) {
        error = errno;
        if (dirFd >= 0)
            ::close(dirFd);
        return fail(error);
    }
    ::close(dirFd);
    return 0;
}
