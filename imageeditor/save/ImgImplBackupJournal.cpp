#include "ImgImplBackupJournal.h"

#include "ImgImplFileOps.h"
#include "ImgImplImageStore.h"

#include <QCryptographicHash>
#include <QFile>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <vector>

namespace {
constexpr char BackupMagic[8] = {'V', 'O', 'B', 'K', 'U', 'P', '0', '2'};
constexpr char EntryMagic[8] = {'V', 'O', 'J', 'R', 'N', 'L', '0', '1'};
// Granularity of the fingerprints: a write cut short by a kill stops at a
// page boundary, so every block is wholly old or wholly new.
constexpr qint64 Block = 4096;
constexpr char WorkBackupPrefix[] = "backup_";
constexpr char WorkTempStem[] = "tempbackup_";
constexpr char EntryPrefix[] = "journal_";
constexpr char EntryTempStem[] = "tempjournal_";

// The file a backup belongs to, as it was before the save and as the save
// makes it.
struct Identity {
    quint64 dev = 0;
    quint64 ino = 0;
    quint64 sizeBefore = 0;
    qint64 mtimeSec = 0;
    qint64 mtimeNsec = 0;
    quint64 sizeAfter = 0;
};

struct Header {
    Identity id;
    QByteArray fingerprints; // 8 bytes per block of the new bytes
    qint64 dataOffset = 0;
};

QByteArray fingerprint(const char *data, qint64 size)
{
    return QCryptographicHash::hash(QByteArrayView(data, size), QCryptographicHash::Sha256).left(8);
}

template <typename T> void put(QByteArray &out, const T &value)
{
    out.append(reinterpret_cast<const char *>(&value), sizeof value);
}

template <typename T> bool take(const QByteArray &in, int &at, T &value)
{
    if (at + int(sizeof value) > in.size())
        return false;
    memcpy(&value, in.constData() + at, sizeof value);
    at += int(sizeof value);
    return true;
}

// Fingerprints of size bytes of fd, block by block.
bool fingerprintsOf(int fd, qint64 size, QByteArray &out)
{
    const qint64 chunk = 256 * Block;
    std::vector<char> buffer(size_t(qMin(chunk, qMax<qint64>(size, 1))));
    for (qint64 at = 0; at < size; at += chunk) {
        const qint64 want = qMin(chunk, size - at);
        if (!ImgImplFileOps::readAllAt(fd, buffer.data(), want, at))
            return false;
        for (qint64 b = 0; b < want; b += Block)
            out += fingerprint(buffer.data() + b, qMin(Block, want - b));
    }
    return true;
}

QByteArray header(const Identity &id, const QByteArray &fingerprints)
{
    QByteArray h(BackupMagic, sizeof BackupMagic);
    put(h, id);
    return h + fingerprints;
}

qint64 blocksOf(quint64 size) { return qint64((size + Block - 1) / Block); }

// False for anything incomplete or not a backup.
bool readHeader(int fd, Header &h)
{
    QByteArray fixed(int(sizeof BackupMagic + sizeof(Identity)), Qt::Uninitialized);
    if (!ImgImplFileOps::readAllAt(fd, fixed.data(), fixed.size(), 0) || memcmp(fixed.constData(), BackupMagic, sizeof BackupMagic) != 0)
        return false;
    int at = sizeof BackupMagic;
    take(fixed, at, h.id);
    const qint64 blocks = blocksOf(h.id.sizeAfter);
    if (h.id.sizeAfter > (quint64(1) << 40) || h.id.sizeBefore > (quint64(1) << 40))
        return false;
    h.fingerprints.resize(int(blocks * 8));
    if (!ImgImplFileOps::readAllAt(fd, h.fingerprints.data(), h.fingerprints.size(), fixed.size()))
        return false;
    h.dataOffset = fixed.size() + h.fingerprints.size();
    struct stat st;
    return fstat(fd, &st) == 0 && quint64(st.st_size) == quint64(h.dataOffset) + h.id.sizeBefore;
}

// A journal entry: the backup's identity and path, and the path the file
// had. Paths only say where to look; identities decide.
struct Entry {
    quint64 backupDev = 0;
    quint64 backupIno = 0;
    QByteArray target;
    QByteArray backup;
};

QByteArray entryBytes(const Entry &e)
{
    QByteArray out(EntryMagic, sizeof EntryMagic);
    put(out, e.backupDev);
    put(out, e.backupIno);
    put(out, quint32(e.target.size()));
    out += e.target;
    put(out, quint32(e.backup.size()));
    return out + e.backup;
}

bool readEntry(int fd, Entry &e)
{
    struct stat st;
    if (fstat(fd, &st) != 0 || st.st_size > 3 * PATH_MAX)
        return false;
    QByteArray in(int(st.st_size), Qt::Uninitialized);
    if (!ImgImplFileOps::readAllAt(fd, in.data(), in.size(), 0) || !in.startsWith(QByteArray(EntryMagic, sizeof EntryMagic)))
        return false;
    int at = sizeof EntryMagic;
    quint32 length = 0;
    if (!take(in, at, e.backupDev) || !take(in, at, e.backupIno) || !take(in, at, length) || at + qint64(length) > in.size())
        return false;
    e.target = in.mid(at, int(length));
    at += int(length);
    if (!take(in, at, length) || at + qint64(length) != in.size())
        return false;
    e.backup = in.mid(at, int(length));
    return e.target.startsWith('/') && e.backup.startsWith('/');
}

// Whether the file is still as the save left it: every block wholly old
// (as the backup holds it) or wholly new (as fingerprinted), its size
// between the two. A file someone changed since fails this and is kept.
bool asLeft(int targetFd, const struct stat &now, int backupFd, const Header &h)
{
    const qint64 cur = now.st_size, old = qint64(h.id.sizeBefore), neu = qint64(h.id.sizeAfter);
    if (cur < qMin(old, neu) || cur > qMax(old, neu))
        return false;
    std::vector<char> t(Block), o(Block);
    const qint64 end = qMax(old, neu);
    for (qint64 off = 0; off < end; off += Block) {
        const qint64 tl = qBound<qint64>(0, cur - off, Block);
        const qint64 ol = qBound<qint64>(0, old - off, Block);
        const qint64 nl = qBound<qint64>(0, neu - off, Block);
        if (!ImgImplFileOps::readAllAt(targetFd, t.data(), tl, off) || !ImgImplFileOps::readAllAt(backupFd, o.data(), ol, h.dataOffset + off))
            return false;
        const bool untouched = tl == ol && memcmp(t.data(), o.data(), size_t(tl)) == 0;
        bool written = false;
        if (nl == 0) {
            written = tl == 0; // cut off by the final truncation
        } else if (tl >= nl && tl <= qMax(nl, ol)) {
            // The new bytes, and old ones past them until the truncation.
            written = fingerprint(t.data(), nl) == h.fingerprints.mid(int(off / Block) * 8, 8)
                && memcmp(t.data() + nl, o.data() + nl, size_t(tl - nl)) == 0;
        }
        if (!untouched && !written)
            return false;
    }
    return true;
}

// Puts a backup's bytes back into its file. Not counted: it also runs as
// the undo of a failed save, which an injected fault must not block.
bool restore(int backupFd, int targetFd, qint64 dataOffset, qint64 size)
{
    return ImgImplFileOps::copyBytes(backupFd, dataOffset, targetFd, 0, size, false)
        && ::ftruncate(targetFd, off_t(size)) == 0 && ::fsync(targetFd) == 0;
}

bool sameFile(const struct stat &a, const struct stat &b) { return a.st_dev == b.st_dev && a.st_ino == b.st_ino; }

// Removes dir/name only while it is still the file fd has open.
void removeIfSame(int dirFd, const QByteArray &name, int fd)
{
    struct stat mine, there;
    if (fstat(fd, &mine) == 0 && fstatat(dirFd, name.constData(), &there, AT_SYMLINK_NOFOLLOW) == 0
        && sameFile(mine, there))
        ::unlinkat(dirFd, name.constData(), 0);
}

enum class Verdict { Restored, Gone, Busy, LeftAlone };

using Report = ImgImplBackupJournal::Report;

Verdict leave(Report &report, const QByteArray &backup, const char *why)
{
    report.note(backup + ": " + why);
    return Verdict::LeftAlone;
}

// Puts the backup at backupPath back onto the file at targetPath, when
// both are what they must be. expected, when given, is the backup's
// identity as the journal recorded it.
Verdict recoverOne(const QByteArray &backupPath, const QByteArray &targetPath, const struct stat *expected, Report &report)
{
    QByteArray dir, name;
    ImgImplFileOps::splitPath(backupPath, dir, name);
    const int dirFd = ImgImplFileOps::openDir(dir);
    if (dirFd < 0)
        return errno == ENOENT ? Verdict::Gone : leave(report, backupPath, "its folder cannot be read");
    const int fd = ::openat(dirFd, name.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    int targetFd = -1;
    auto done = [&](Verdict v) {
        if (targetFd >= 0)
            ::close(targetFd);
        if (fd >= 0)
            ::close(fd);
        ::close(dirFd);
        return v;
    };
    if (fd < 0)
        return done(errno == ENOENT ? Verdict::Gone : leave(report, backupPath, "cannot be opened"));
    struct stat bst;
    if (fstat(fd, &bst) != 0 || !S_ISREG(bst.st_mode))
        return done(leave(report, backupPath, "not a regular file"));
    if (expected && !sameFile(bst, *expected))
        return done(Verdict::Gone); // the journal's backup is gone; this one is not it
    if (bst.st_uid != geteuid())
        return done(leave(report, backupPath, "owned by another user"));
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0)
        return done(Verdict::Busy);
    Header h;
    if (!readHeader(fd, h))
        return done(leave(report, backupPath, "not a complete backup"));
    targetFd = ::open(targetPath.constData(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    struct stat tst;
    if (targetFd < 0 || fstat(targetFd, &tst) != 0 || !S_ISREG(tst.st_mode) || quint64(tst.st_dev) != h.id.dev
        || quint64(tst.st_ino) != h.id.ino)
        return done(leave(report, backupPath, "its file is not at " + targetPath));
    const bool untouched = quint64(tst.st_size) == h.id.sizeBefore && tst.st_mtim.tv_sec == h.id.mtimeSec
        && tst.st_mtim.tv_nsec == h.id.mtimeNsec;
    if (!untouched) {
        if (!asLeft(targetFd, tst, fd, h))
            return done(leave(report, backupPath, "its file " + targetPath + " changed since"));
        if (!restore(fd, targetFd, h.dataOffset, qint64(h.id.sizeBefore)))
            return done(leave(report, backupPath, "could not be put back"));
        ++report.restored;
    }
    removeIfSame(dirFd, name, fd);
    ::fsync(dirFd);
    return done(Verdict::Restored);
}

// Replays the entry workDir/entry; target, when given, is the path the
// file was opened by (it may be another hard link than the recorded one).
void replayEntry(int workFd, const QByteArray &workDir, const QByteArray &entry, const QByteArray &target, Report &report)
{
    const int fd = ::openat(workFd, entry.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return;
    struct stat st;
    Entry e;
    const QByteArray where = workDir + '/' + entry;
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_uid != geteuid()) {
        report.note(where + ": not an entry of ours");
    } else if (::flock(fd, LOCK_EX | LOCK_NB) == 0) {
        if (!readEntry(fd, e)) {
            report.note(where + ": unreadable");
        } else {
            struct stat expected{};
            expected.st_dev = dev_t(e.backupDev);
            expected.st_ino = ino_t(e.backupIno);
            const Verdict v = recoverOne(e.backup, target.isEmpty() ? e.target : target, &expected, report);
            if (v == Verdict::Restored || v == Verdict::Gone) {
                removeIfSame(workFd, entry, fd);
                ::fsync(workFd);
            }
        }
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
    if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_uid == geteuid() && ::flock(fd, LOCK_EX | LOCK_NB) == 0)
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
    QList<QByteArray> names;
    while (dirent *entry = readdir(dir))
        names += QByteArray(entry->d_name);
    closedir(dir);
    for (const QByteArray &name : names)
        visit(name);
}

QByteArray trimmed(QByteArray dir)
{
    while (dir.size() > 1 && dir.endsWith('/'))
        dir.chop(1);
    return dir;
}

// A durable file of our own in dirFd under final, with bytes in it; its
// descriptor stays open and locked while the save runs. -1 on failure.
int commitNew(int dirFd, const QByteArray &stem, const QByteArray &final, const QByteArray &bytes, QByteArray &temp)
{
    const int fd = ImgImplFileOps::createExclusive(dirFd, stem, 0600, temp);
    if (fd < 0)
        return -1;
    if (ImgImplFileOps::writeAllAt(fd, bytes.constData(), bytes.size(), 0, true) && ImgImplFileOps::sync(fd)
        && ImgImplFileOps::renameNoReplace(dirFd, temp, final) && ImgImplFileOps::sync(dirFd))
        return fd;
    const int saved = errno;
    ::unlinkat(dirFd, temp.constData(), 0);
    removeIfSame(dirFd, final, fd);
    ::close(fd);
    errno = saved;
    return -1;
}

struct Place {
    int dirFd = -1;
    QByteArray dir;
    QByteArray committed;
    QByteArray stem;
};
} // namespace

QByteArray ImgImplBackupJournal::entryName(dev_t dev, ino_t ino)
{
    return EntryPrefix + QByteArray::number(quint64(dev)) + '_' + QByteArray::number(quint64(ino));
}

int ImgImplBackupJournal::writeInPlace(int sourceFd, qint64 size, int dirFd, const QByteArray &dir,
                                       const QByteArray &name, const struct stat &old)
{
    const int targetFd = ::openat(dirFd, name.constData(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
    struct stat now;
    if (targetFd < 0)
        return -1;
    if (fstat(targetFd, &now) != 0 || !sameFile(now, old)) {
        ::close(targetFd);
        errno = ESTALE;
        return -1;
    }
    // The journal lives in the working folder; without it no in-place write.
    const QByteArray workDir = trimmed(QFile::encodeName(ImgImplImageStore::workingDir()));
    const int workFd = ImgImplFileOps::openDir(workDir);
    int backupFd = -1, entryFd = -1;
    Place place{dirFd, dir, backupName(name), tempStem(name)};
    auto finish = [&](int result) {
        const int saved = errno;
        for (int fd : {backupFd, entryFd, workFd, targetFd})
            if (fd >= 0)
                ::close(fd);
        errno = saved;
        return result;
    };
    Identity id;
    id.dev = quint64(old.st_dev);
    id.ino = quint64(old.st_ino);
    id.sizeBefore = quint64(old.st_size);
    id.mtimeSec = now.st_mtim.tv_sec;
    id.mtimeNsec = now.st_mtim.tv_nsec;
    id.sizeAfter = quint64(size);
    QByteArray prints;
    if (workFd < 0 || !fingerprintsOf(sourceFd, size, prints))
        return finish(-1);

    // Beside the file when its folder lets us; otherwise the working folder
    // if it shares the file system.
    QByteArray tempName;
    backupFd = ImgImplFileOps::createExclusive(place.dirFd, place.stem, 0600, tempName);
    if (backupFd < 0 && (errno == EACCES || errno == EPERM || errno == EROFS)) {
        struct stat work;
        if (fstat(workFd, &work) == 0 && work.st_dev == old.st_dev) {
            place = {workFd, workDir, WorkBackupPrefix + QByteArray::number(id.dev) + '_' + QByteArray::number(id.ino),
                     WorkTempStem};
            backupFd = ImgImplFileOps::createExclusive(place.dirFd, place.stem, 0600, tempName);
        }
    }
    if (backupFd < 0)
        return finish(-1);
    ImgImplFileOps::madeTemporary(place.dirFd, tempName);

    const QByteArray head = header(id, prints);
    const bool saved = ImgImplFileOps::writeAllAt(backupFd, head.constData(), head.size(), 0, true)
        && ImgImplFileOps::copyBytes(targetFd, 0, backupFd, head.size(), old.st_size, true)
        && ImgImplFileOps::sync(backupFd)
        && ImgImplFileOps::renameNoReplace(place.dirFd, tempName, place.committed)
        && ImgImplFileOps::sync(place.dirFd);
    if (!saved) {
        // The file is untouched; whichever name the backup has now goes.
        const int error = errno;
        ::unlinkat(place.dirFd, tempName.constData(), 0);
        removeIfSame(place.dirFd, place.committed, backupFd);
        errno = error;
        return finish(-1);
    }
    // The entry names the file by identity and says where its backup is.
    struct stat bst;
    fstat(backupFd, &bst);
    char resolvedDir[PATH_MAX];
    const QByteArray absDir = realpath(dir.constData(), resolvedDir) ? QByteArray(resolvedDir) : dir;
    const QByteArray absPlace = place.dirFd == workFd ? workDir : absDir;
    Entry e{quint64(bst.st_dev), quint64(bst.st_ino), absDir + '/' + name, absPlace + '/' + place.committed};
    const QByteArray entry = entryName(old.st_dev, old.st_ino);
    QByteArray entryTemp;
    entryFd = commitNew(workFd, EntryTempStem, entry, entryBytes(e), entryTemp);
    if (entryFd < 0) {
        const int error = errno;
        removeIfSame(place.dirFd, place.committed, backupFd);
        ::fsync(place.dirFd);
        errno = error;
        return finish(-1);
    }

    const qint64 dataOffset = head.size();
    const bool written = ImgImplFileOps::copyBytes(sourceFd, 0, targetFd, 0, size, true)
        && (size >= old.st_size || ImgImplFileOps::truncate(targetFd, size))
        && ImgImplFileOps::sync(targetFd);
    // Dropping the backup commits the save; its folder flushed makes it last.
    const bool committed = written && ImgImplFileOps::unlinkAt(place.dirFd, place.committed);
    if (!committed) {
        const int error = errno;
        // Undo now; if even that fails the backup stays for the next launch.
        if (restore(backupFd, targetFd, dataOffset, old.st_size)) {
            removeIfSame(place.dirFd, place.committed, backupFd);
            ::fsync(place.dirFd);
            removeIfSame(workFd, entry, entryFd);
            ::fsync(workFd);
        }
        errno = error;
        return finish(-1);
    }
    // Unflushed, a power cut could bring the backup back and with it the
    // old bytes: the file reads as new, but the save is not reported done.
    const bool durable = ImgImplFileOps::sync(place.dirFd);
    const int error = errno;
    // A lost entry removal only costs a look at a backup that is gone.
    removeIfSame(workFd, entry, entryFd);
    ::fsync(workFd);
    errno = error;
    return finish(durable ? 0 : -1);
}

ImgImplBackupJournal::Report ImgImplBackupJournal::recoverAll(const QByteArray &workDir)
{
    Report report;
    const QByteArray dir = trimmed(workDir);
    const int dirFd = ImgImplFileOps::openDir(dir);
    if (dirFd < 0)
        return report;
    forEachEntry(dirFd, [&](const QByteArray &entry) {
        if (entry.startsWith(EntryPrefix))
            replayEntry(dirFd, dir, entry, QByteArray(), report);
        else if (entry.startsWith(WorkTempStem) || entry.startsWith(EntryTempStem))
            sweepTemp(dirFd, entry.constData());
    });
    // A backup without an entry was made before its file was touched.
    forEachEntry(dirFd, [&](const QByteArray &entry) {
        if (!entry.startsWith(WorkBackupPrefix))
            return;
        const QByteArray id = entry.mid(int(strlen(WorkBackupPrefix)));
        struct stat st;
        if (fstatat(dirFd, (EntryPrefix + id).constData(), &st, AT_SYMLINK_NOFOLLOW) != 0)
            sweepTemp(dirFd, entry.constData());
    });
    ::close(dirFd);
    return report;
}

ImgImplBackupJournal::Report ImgImplBackupJournal::recoverFile(const QByteArray &workDir, const QByteArray &file)
{
    Report report;
    char resolved[PATH_MAX];
    struct stat st;
    if (!realpath(file.constData(), resolved) || ::stat(resolved, &st) != 0)
        return report;
    const QByteArray path(resolved);
    const QByteArray work = trimmed(workDir);
    const int workFd = ImgImplFileOps::openDir(work);
    if (workFd >= 0) {
        replayEntry(workFd, work, entryName(st.st_dev, st.st_ino), path, report);
        ::close(workFd);
    }
    // A backup beside this name whose entry is lost (or never written).
    QByteArray dir, name;
    ImgImplFileOps::splitPath(path, dir, name);
    recoverOne(dir + '/' + backupName(name), path, nullptr, report);
    const int dirFd = ImgImplFileOps::openDir(dir);
    if (dirFd < 0)
        return report;
    const QByteArray stem = tempStem(name);
    const QByteArray committed = backupName(name);
    forEachEntry(dirFd, [&](const QByteArray &entry) {
        if (entry.startsWith(stem) && entry != committed)
            sweepTemp(dirFd, entry.constData());
    });
    ::close(dirFd);
    return report;
}
