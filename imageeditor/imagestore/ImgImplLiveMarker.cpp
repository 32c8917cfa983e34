#include "ImgImplLiveMarker.h"

#include "ImgImplFileOps.h"

#include <QList>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr char Prefix[] = "live_";

QByteArray readAll(int fd)
{
    QByteArray all;
    char buffer[4096];
    ssize_t n;
    while ((n = ::read(fd, buffer, sizeof buffer)) > 0 || (n < 0 && errno == EINTR)) {
        if (n > 0)
            all.append(buffer, int(n));
    }
    return all;
}

// Only our own regular files or links: a listed name that someone else
// took after we let it go is left alone.
void removeIfOurs(const QByteArray &path)
{
    struct stat st;
    if (path.isEmpty() || ::lstat(path.constData(), &st) != 0 || st.st_uid != geteuid())
        return;
    if (S_ISREG(st.st_mode) || S_ISLNK(st.st_mode))
        ::unlink(path.constData());
}
} // namespace

ImgImplLiveMarker::ImgImplLiveMarker(const QByteArray &workDir)
{
    dirFd = ImgImplFileOps::openDir(workDir);
    if (dirFd < 0)
        return;
    // createExclusive leaves the new file locked.
    fd = ImgImplFileOps::createExclusive(dirFd, Prefix + QByteArray::number(qint64(getpid())) + '_', 0600, name);
}

ImgImplLiveMarker::~ImgImplLiveMarker()
{
    if (fd >= 0) {
        ::unlinkat(dirFd, name.constData(), 0);
        ::close(fd);
    }
    if (dirFd >= 0)
        ::close(dirFd);
}

void ImgImplLiveMarker::record(const QByteArray &path)
{
    if (fd < 0)
        return;
    const QByteArray line = path + '\n';
    ImgImplFileOps::writeAllAt(fd, line.constData(), line.size(), ::lseek(fd, 0, SEEK_END), false);
}

void ImgImplLiveMarker::sweep(const QByteArray &workDir)
{
    const int dir = ImgImplFileOps::openDir(workDir);
    if (dir < 0)
        return;
    QList<QByteArray> markers;
    if (DIR *listing = fdopendir(::dup(dir))) {
        while (dirent *entry = readdir(listing)) {
            if (qstrncmp(entry->d_name, Prefix, sizeof Prefix - 1) == 0)
                markers.append(entry->d_name);
        }
        closedir(listing);
    }
    for (const QByteArray &marker : markers) {
        const int fd = ::openat(dir, marker.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
        if (fd < 0)
            continue;
        struct stat st;
        if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_uid == geteuid() && ::flock(fd, LOCK_EX | LOCK_NB) == 0) {
            for (const QByteArray &path : readAll(fd).split('\n'))
                removeIfOurs(path);
            ::unlinkat(dir, marker.constData(), 0);
        }
        ::close(fd);
    }
    ::close(dir);
}
