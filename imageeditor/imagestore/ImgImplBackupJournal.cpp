#include "ImgImplBackupJournal.h"

#include "ImgImplFileOps.h"
#include "ImgImplImageStore.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {
constexpr char Magic[8] = {'V', 'O', 'B', 'K', 'U', 'P', '0', '1'};
constexpr char WorkBackupPrefix[] = "backup_";
constexpr char WorkTempStem[] = "tempbackup_";

QByteArray header(const QByteArray &target, qint64 size)
{
    QByteArray h(Magic, sizeof Magic);
    const quint64 length = quint64(size);
    const quint32 pathLength = quint32(target.size());
    h.append(reinterpret_cast<const char *>(&length), sizeof length);
    h.append(reinterpret_cast<const char *>(&pathLength), sizeof pathLength);
    return h + target;
}

// Reads a backup's header: the file it belongs to, where its data starts
// and how long it is. False for anything incomplete or not ours.
bool readHeader(int fd, QByteArray &target, qint64 &dataOffset, qint64 &size)
{
    char fixed[sizeof Magic + 8 + 4];
    if (::pread(fd, fixed, sizeof fixed, 0) != ssize_t(sizeof fixed) || memcmp(fixed, Magic, sizeof Magic) != 0)
        return false;
    quint64 length;
    quint32 pathLength;
    memcpy(&length, fixed + sizeof Magic, sizeof length);
    memcpy(&pathLength, fixed + sizeof Magic + 8, sizeof pathLength);
    if (pathLength == 0 || pathLength > 4096)
        return false;
    target.resize(int(pathLength));
    if (::pread(fd, target.data(), pathLength, sizeof fixed) != ssize_t(pathLength) || !target.startsWith('/'))
        return false;
    dataOffset = qint64(sizeof fixed) + pathLength;
    size = qint64(length);
    struct stat st;
    return fstat(fd, &st) == 0 && st.st_size == dataOffset + size;
}

// Puts a backup's bytes back into its file. Not counted: it also runs as
// the undo of a failed save, which an injected fault must not block.
bool restore(int backupFd, int targetFd, qint64 dataOffset, qint64 size)
{
    return ImgImplFileOps::copyBytes(backupFd, dataOffset, targetFd, 0, size, false)
        && ::ftruncate(targetFd, off_t(size)) == 0 && ::fsync(targetFd) == 0;
}

// A backup whose writer is gone: restore its file, then drop it.
void recoverOne(int dirFd, const char *name)
{
    const int fd = ::openat(dirFd, name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return;
    QByteArray target;
    qint64 offset = 0, size = 0;
    if (::flock(fd, LOCK_EX | LOCK_NB) == 0 && readHeader(fd, target, offset, size)) {
        const int targetFd = ::open(target.constData(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
        if (targetFd >= 0 && restore(fd, targetFd, offset, size) && ::unlinkat(dirFd, name, 0) == 0)
            ::fsync(dirFd);
        if (targetFd >= 0)
            ::close(targetFd);
    }
    ::close(fd);
}

// Removes a temporary when no live writer holds its lock.
void sweepTemp(int dirFd, const char *name)
{
    const int fd = ::openat(dirFd, name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        // A link planted at one of our names points nowhere we write; drop it.
        struct stat st;
        if (fstatat(dirFd, name, &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(st.st_mode) && st.st_uid == geteuid())
            ::unlinkat(dirFd, name, 0);
        return;
    }
    struct stat st;
    if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && ::flock(fd, LOCK_EX | LOCK_NB) == 0)
        ::unlinkat(dirFd, name, 0);
    ::close(fd);
}

template <typename Visit> void forEachEntry(int dirFd, Visit visit)
{
    const int listFd = ::dup(dirFd);
    DIR *dir = listFd >= 0 ? fdopendir(listFd) : nullptr;
    if (!dir) {
        if (listFd >= 0)
            ::close(listFd);
        return;
    }
    while (dirent *entry = readdir(dir))
        visit(QByteArray(entry->d_name));
    closedir(dir);
}

struct Place {
    int dirFd = -1;
    QByteArray committed;
    QByteArray stem;
};
} // namespace

int ImgImplBackupJournal::writeInPlace(int sourceFd, qint64 size, int dirFd, const QByteArray &dir,
                                       const QByteArray &name, const struct stat &old)
{
    const int targetFd = ::openat(dirFd, name.constData(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
    struct stat now;
    if (targetFd < 0)
        return -1;
    if (fstat(targetFd, &now) != 0 || now.st_dev != old.st_dev || now.st_ino != old.st_ino) {
        ::close(targetFd);
        return -1;
    }

    // Beside the file when its folder lets us; otherwise the working folder
    // if it shares the file system.
    Place place{dirFd, backupName(name), tempStem(name)};
    QByteArray tempName;
    int backupFd = ImgImplFileOps::createExclusive(place.dirFd, place.stem, 0600, tempName);
    int workFd = -1;
    if (backupFd < 0 && (errno == EACCES || errno == EPERM || errno == EROFS)) {
        workFd = ImgImplFileOps::openDir(QFile::encodeName(ImgImplImageStore::workingDir()));
        struct stat work;
        if (workFd >= 0 && fstat(workFd, &work) == 0 && work.st_dev == old.st_dev) {
            place = {workFd, WorkBackupPrefix + QByteArray::number(quint64(old.st_dev)) + '_'
                                 + QByteArray::number(quint64(old.st_ino)),
                     WorkTempStem};
            backupFd = ImgImplFileOps::createExclusive(place.dirFd, place.stem, 0600, tempName);
        }
    }
    auto finish = [&](int result) {
        if (backupFd >= 0)
            ::close(backupFd);
        if (workFd >= 0)
            ::close(workFd);
        ::close(targetFd);
        return result;
    };
    if (backupFd < 0)
        return finish(-1);

    const QByteArray head = header(dir + '/' + name, old.st_size);
    const bool saved = ImgImplFileOps::writeAllAt(backupFd, head.constData(), head.size(), 0, true)
        && ImgImplFileOps::copyBytes(targetFd, 0, backupFd, head.size(), old.st_size, true)
        && ImgImplFileOps::sync(backupFd)
        && ImgImplFileOps::renameNoReplace(place.dirFd, tempName, place.committed)
        && ImgImplFileOps::sync(place.dirFd);
    if (!saved) {
        // The file is untouched; whichever name the backup has now goes.
        ::unlinkat(place.dirFd, tempName.constData(), 0);
        struct stat st;
        if (fstatat(place.dirFd, place.committed.constData(), &st, AT_SYMLINK_NOFOLLOW) == 0) {
            struct stat mine;
            if (fstat(backupFd, &mine) == 0 && mine.st_ino == st.st_ino && mine.st_dev == st.st_dev)
                ::unlinkat(place.dirFd, place.committed.constData(), 0);
        }
        return finish(-1);
    }

    const qint64 dataOffset = head.size();
    const bool written = ImgImplFileOps::copyBytes(sourceFd, 0, targetFd, 0, size, true)
        && (size >= old.st_size || ImgImplFileOps::truncate(targetFd, size))
        && ImgImplFileOps::sync(targetFd);
    // Dropping the backup commits the save.
    const bool committed = written && ImgImplFileOps::unlinkAt(place.dirFd, place.committed);
    if (!committed) {
        // Undo now; if even that fails the backup stays for the next launch.
        if (restore(backupFd, targetFd, dataOffset, old.st_size))
            ::unlinkat(place.dirFd, place.committed.constData(), 0);
        ::fsync(place.dirFd);
        return finish(-1);
    }
    // Best effort: if the removal is lost the next launch restores the old
    // bytes, which is still a whole picture.
    ImgImplFileOps::sync(place.dirFd);
    return finish(0);
}

void ImgImplBackupJournal::recoverBeside(const QByteArray &file)
{
    char resolved[PATH_MAX];
    if (!realpath(file.constData(), resolved))
        return;
    QByteArray dir, name;
    ImgImplFileOps::splitPath(QByteArray(resolved), dir, name);
    const int dirFd = ImgImplFileOps::openDir(dir);
    if (dirFd < 0)
        return;
    recoverOne(dirFd, backupName(name).constData());
    const QByteArray stem = tempStem(name);
    const QByteArray committed = backupName(name);
    forEachEntry(dirFd, [&](const QByteArray &entry) {
        if (entry.startsWith(stem) && entry != committed)
            sweepTemp(dirFd, entry.constData());
    });
    ::close(dirFd);
}

void ImgImplBackupJournal::recoverIn(const QByteArray &workDir)
{
    const int dirFd = ImgImplFileOps::openDir(workDir);
    if (dirFd < 0)
        return;
    forEachEntry(dirFd, [&](const QByteArray &entry) {
        if (entry.startsWith(WorkBackupPrefix))
            recoverOne(dirFd, entry.constData());
        else if (entry.startsWith(WorkTempStem))
            sweepTemp(dirFd, entry.constData());
    });
    ::close(dirFd);
}
