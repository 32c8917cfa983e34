#include "ImgImplSafeSave.h"

#include "ImgImplBackupJournal.h"
#include "ImgImplFileOps.h"

#include <QFile>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

namespace {
constexpr qint64 ReservedBlocks = 5;

// Unsynced: renamed into place, but the folder would not flush, so a power
// cut could still bring the old file back.
enum Outcome { Done, Unsynced, Failed, CannotRename };

bool fitsIn(int dirFd, qint64 bytes)
{
    struct statfs fs;
    if (fstatfs(dirFd, &fs) != 0)
        return false;
    // 64-bit throughout: block counts times block size overflow 32 bits on
    // large media.
    const qint64 blockSize = qint64(fs.f_bsize);
    if (bytes < blockSize * qint64(fs.f_bavail) - ReservedBlocks * blockSize)
        return true;
    errno = ENOSPC;
    return false;
}

// An error that says "not this way", as opposed to a failing medium.
bool refusedByRights(int error)
{
    return error == EACCES || error == EPERM || error == ENOTSUP || error == EOPNOTSUPP;
}

mode_t umaskMode()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

// Everything one write works with; the destructor closes what is open.
struct Job {
    int sourceFd = -1;
    qint64 size = 0;
    int dirFd = -1;
    QByteArray dir;
    QByteArray name;
    ~Job()
    {
        if (sourceFd >= 0)
            ::close(sourceFd);
        if (dirFd >= 0)
            ::close(dirFd);
    }
};

// A fresh file beside the target, filled and flushed; given metadata by
// dress (which may refuse); then moved into place by publish.
template <typename Dress, typename Publish>
Outcome writeBeside(Job &job, mode_t mode, Dress dress, Publish publish, int &kept)
{
    QByteArray temp;
    const int fd = ImgImplFileOps::createExclusive(job.dirFd, ImgImplBackupJournal::tempStem(job.name), mode, temp);
    if (fd < 0)
        return refusedByRights(errno) || errno == EROFS ? CannotRename : Failed;
    ImgImplFileOps::madeTemporary(job.dirFd, temp);
    Outcome outcome = Failed;
    if (ImgImplFileOps::copyBytes(job.sourceFd, 0, fd, 0, job.size, true)) {
        const Outcome dressed = dress(fd);
        outcome = dressed != Done ? dressed
            : ImgImplFileOps::sync(fd) && publish(temp) ? Done : Failed;
    }
    if (outcome != Done) {
        const int error = errno;
        ::unlinkat(job.dirFd, temp.constData(), 0);
        ::close(fd);
        errno = error;
        return outcome;
    }
    // After the rename only flushing the folder makes it durable.
    kept = fd;
    return ImgImplFileOps::sync(job.dirFd) ? Done : Unsynced;
}

int replaceExisting(Job &job, int *lockFd)
{
    const int oldFd = ::openat(job.dirFd, job.name.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (oldFd < 0)
        return -1;
    struct stat old;
    if (fstat(oldFd, &old) != 0 || !S_ISREG(old.st_mode)) {
        ::close(oldFd);
        errno = EISDIR;
        return -1;
    }
    // Renaming would split a hard-linked file from its other names, and
    // give someone else's file to us: write in place then.
    const bool renameKeepsIt = old.st_nlink == 1 && (geteuid() == 0 || old.st_uid == geteuid());
    Outcome outcome = CannotRename;
    int newFd = -1;
    if (renameKeepsIt) {
        if (!fitsIn(job.dirFd, job.size)) {
            ::close(oldFd);
            return -1;
        }
        auto dress = [&](int fd) {
            if (!ImgImplFileOps::copyOwnerAndMode(old, fd))
                return refusedByRights(errno) ? CannotRename : Failed;
            const int copied = ImgImplFileOps::copyXattrs(oldFd, fd);
            return copied == 0 ? Done : copied > 0 ? CannotRename : Failed;
        };
        auto publish = [&](const QByteArray &temp) {
            // Only over the very file we examined: not one swapped in since.
            struct stat now;
            if (fstatat(job.dirFd, job.name.constData(), &now, AT_SYMLINK_NOFOLLOW) != 0
                || now.st_dev != old.st_dev || now.st_ino != old.st_ino)
                return false;
            return ImgImplFileOps::renameAt(job.dirFd, temp, job.name);
        };
        outcome = writeBeside(job, 0600, dress, publish, newFd);
    }
    int result = -1;
    if (outcome == Done || outcome == Unsynced) {
        const int error = errno;
        struct stat locked;
        if (lockFd && *lockFd >= 0 && fstat(*lockFd, &locked) == 0 && locked.st_dev == old.st_dev
            && locked.st_ino == old.st_ino) {
            // The new file has carried the lock since it was made.
            ::close(*lockFd);
            *lockFd = newFd;
        } else {
            ::close(newFd);
        }
        errno = error;
        result = outcome == Done ? 0 : -1;
    } else if (outcome == CannotRename) {
        const qint64 needed = qMax<qint64>(job.size, old.st_size);
        if (fitsIn(job.dirFd, needed))
            result = ImgImplBackupJournal::writeInPlace(job.sourceFd, job.size, job.dirFd, job.dir, job.name, old);
    }
    const int error = errno;
    ::close(oldFd);
    errno = error;
    return result;
}

int createNew(Job &job)
{
    if (!fitsIn(job.dirFd, job.size))
        return -1;
    auto dress = [](int fd) {
        return ::fchmod(fd, umaskMode()) == 0 ? Done : Failed;
    };
    auto publish = [&](const QByteArray &temp) {
        return ImgImplFileOps::renameNoReplace(job.dirFd, temp, job.name);
    };
    int fd = -1;
    const Outcome outcome = writeBeside(job, 0600, dress, publish, fd);
    if (fd >= 0) {
        const int error = errno;
        ::close(fd);
        errno = error;
    }
    return outcome == Done ? 0 : -1;
}
} // namespace

bool ImgImplSafeSave::fits(qint64 bytes, const QByteArray &dir)
{
    const int dirFd = ImgImplFileOps::openDir(dir);
    if (dirFd < 0)
        return false;
    const bool ok = fitsIn(dirFd, bytes);
    ::close(dirFd);
    return ok;
}

int ImgImplSafeSave::write(const QString &source, const QString &target, int *lockFd, Replace replace)
{
    Job job;
    job.sourceFd = ::open(QFile::encodeName(source).constData(), O_RDONLY | O_CLOEXEC);
    struct stat src;
    if (job.sourceFd < 0 || fstat(job.sourceFd, &src) != 0)
        return -1;
    if (!S_ISREG(src.st_mode)) {
        errno = EISDIR;
        return -1;
    }
    job.size = src.st_size;

    const QByteArray given = QFile::encodeName(target);
    if (replace == Replace::Never) {
        // What is at the name now does not matter: only a new file is made.
        ImgImplFileOps::splitPath(given, job.dir, job.name);
        job.dirFd = ImgImplFileOps::openDir(job.dir);
        if (job.dirFd < 0 || job.name.isEmpty())
            return -1;
        return createNew(job);
    }
    struct stat st;
    const bool exists = ::lstat(given.constData(), &st) == 0;
    if (!exists && errno != ENOENT)
        return -1;
    QByteArray path = given;
    if (exists) {
        // The file a link points to, however the link is written; a dangling
        // link is not a file to replace.
        char resolved[PATH_MAX];
        if (!realpath(given.constData(), resolved))
            return -1;
        path = resolved;
    }
    ImgImplFileOps::splitPath(path, job.dir, job.name);
    job.dirFd = ImgImplFileOps::openDir(job.dir);
    if (job.dirFd < 0 || job.name.isEmpty())
        return -1;
    return exists ? replaceExisting(job, lockFd) : createNew(job);
}
