#include "ImgImplBackupJournal.h"
#include "ImgImplFileOps.h"
#include "ImgImplImageStore.h"
#include "ImgImplIoStep.h"
#include "ImgImplSafeSave.h"
#include "ImgImplSaveResult.h"
#include "MMAtomicFile.h"
#include "VOUtility.h"
#include "testimages.h"
#include "datarows.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace testimages;

// Saving over a photo: whatever stops or fails the save at whatever step,
// the photo is the old one or the new one byte for byte, and the next
// launch leaves nothing behind.
namespace {
constexpr qint64 Chunk = 4096;

QByteArray noise(qint64 size, quint32 seed)
{
    QByteArray data(int(size), Qt::Uninitialized);
    QRandomGenerator gen(seed);
    for (char &c : data)
        c = char(gen.bounded(256));
    return data;
}

// Where the planting hook's links point, at how many names it plants
// them, and only at names that hold g_plantAt.
QByteArray g_victim, g_plantAt;
int g_plantsLeft = 0;

void plantLink(const QByteArray &path)
{
    if (g_plantsLeft == 0 || !path.contains(g_plantAt))
        return;
    --g_plantsLeft;
    symlink(g_victim.constData(), path.constData());
}
} // namespace

class TestSaveDurability : public QObject
{
    Q_OBJECT
    QTemporaryDir m_work;
    QTemporaryDir m_pics;
    QByteArray m_old;
    QByteArray m_new;

    QString m_path;

    QString photo() const { return m_pics.filePath("photo.jpg"); }
    // What the save writes: the photo, or for a save as a new file beside it
    // (before the save: none, read as no bytes).
    QString target() const { return m_path == "saveas" ? m_pics.filePath("copy.jpg") : photo(); }
    QByteArray before() const { return m_path == "saveas" ? QByteArray() : m_old; }
    QString second() const { return m_pics.filePath("second link.jpg"); }

    // The photo, and the new bytes in the working copy of a store on it.
    // "inplace" gives the photo a second hard link, which a rename would
    // split off.
    void setUp(const QString &path, qint64 oldSize, qint64 newSize)
    {
        for (const QString &f : QDir(m_pics.path()).entryList(QDir::Files | QDir::Hidden | QDir::System))
            QFile::remove(m_pics.filePath(f));
        m_path = path;
        m_old = noise(oldSize, 1);
        m_new = noise(newSize, 2);
        QVERIFY(writeBytes(photo(), m_old));
        if (path == "inplace")
            QCOMPARE(link(QFile::encodeName(photo()).constData(), QFile::encodeName(second()).constData()), 0);
    }

    QStringList leftovers() const
    {
        QStringList left = QDir(m_pics.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
        left.removeAll("photo.jpg");
        left.removeAll("second link.jpg");
        left.removeAll("other.jpg");
        left.removeAll("copy.jpg");
        left += QDir(m_work.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
        return left;
    }

    // One save as an editor does it, in a store of its own.
    int save()
    {
        ImgImplImageStore store(photo());
        if (!writeBytes(store.realFilePath(), m_new))
            return -2;
        if (m_path == "saveas")
            return ImgImplSafeSave::write(store.realFilePath(), target(), nullptr, ImgImplSafeSave::Replace::Never);
        return store.saveToOriginalFile();
    }

private slots:
    void initTestCase()
    {
        ImgImplImageStore::setWorkingDirForTest(m_work.path());
        ImgImplFileOps::setChunkSize(Chunk);
    }
    void cleanup()
    {
        ImgImplIoStep::disarm();
        ImgImplFileOps::setCreateHookForTest(nullptr);
    }

    void everyStepInterrupted_data()
    {
        // error: the step fails with it; 0: the save is stopped dead (_exit)
        // right after the step.
        columns<QString, qint64, qint64, int>({"path", "oldSize", "newSize", "error"});
        for (int error : {0, ENOSPC, EIO}) {
            const char *how = error == ENOSPC ? "no space" : error == EIO ? "I/O error" : "stopped";
            QTest::addRow("rename, grows, %s", how) << "rename" << 3 * Chunk + 100 << 4 * Chunk + 7 << error;
            QTest::addRow("rename, shrinks, %s", how) << "rename" << 4 * Chunk << Chunk + 1 << error;
            QTest::addRow("in place, grows, %s", how) << "inplace" << 2 * Chunk + 5 << 3 * Chunk + 11 << error;
            QTest::addRow("in place, shrinks, %s", how) << "inplace" << 3 * Chunk + 9 << 2 * Chunk << error;
            QTest::addRow("save as a new file, %s", how) << "saveas" << Chunk << 3 * Chunk + 1 << error;
        }
    }

    // Each step of the save in turn fails or is the last before the process
    // dies. A failure before the commit leaves the photo as it was and
    // nothing beside it; the last step (flushing the folder after the commit)
    // cannot take the new photo back any more, yet it fails the save. After
    // a stop the photo is old or new, never torn, once the next launch has
    // put a backup back. A save as a new file is stepped the same way.
    void everyStepInterrupted()
    {
        auto [path, oldSize, newSize, error] = fetch<QString, qint64, qint64, int>({"path", "oldSize", "newSize", "error"});
        setUp(path, oldSize, newSize);
        ImgImplIoStep::disarm(); // counts the steps from here
        QCOMPARE(save(), 0);
        QCOMPARE(bytes(target()), m_new);
        QVERIFY(leftovers().isEmpty());
        const int steps = ImgImplIoStep::count();
        QVERIFY(steps > 4);
        qInfo("%s: %d steps", qPrintable(path), steps);
        for (int n = 1; n <= steps; ++n) {
            setUp(path, oldSize, newSize);
            const QString step = QString("step %1: ").arg(n);
            if (error) {
                ImgImplIoStep::arm(ImgImplIoStep::FailAt, n, error);
                const int result = save();
                ImgImplIoStep::disarm();
                // The last step flushes the folder after the commit: the
                // photo reads as new, but it is not durable, so not saved.
                QCOMPARE(result, -1);
                QVERIFY2(bytes(target()) == (n == steps ? m_new : before()), qPrintable(step));
                QCOMPARE(bytes(photo()), path == "saveas" ? m_old : bytes(target()));
                QVERIFY2(leftovers().isEmpty(), qPrintable(step + leftovers().join(", ")));
                continue;
            }
            const pid_t child = fork();
            if (child == 0) {
                ImgImplIoStep::arm(ImgImplIoStep::StopAfter, n);
                save();
                _exit(0);
            }
            int status = 0;
            QCOMPARE(waitpid(child, &status, 0), child);
            QVERIFY2(WIFEXITED(status) && WEXITSTATUS(status) == ImgImplIoStep::StopExitCode, qPrintable(step));
            // A rename leaves the photo whole at every instant; in place it
            // may be torn until the next launch puts the backup back.
            const QByteArray now = bytes(target());
            QVERIFY2(path == "inplace" || now == before() || now == m_new, qPrintable(step + "torn"));
            delete new ImgImplImageStore(photo()); // the next launch
            const QByteArray recovered = bytes(target());
            QVERIFY2(recovered == before() || recovered == m_new, qPrintable(step));
            QCOMPARE(bytes(photo()), path == "saveas" ? m_old : recovered);
            // A renamed-in file is committed; in place, only the backup's
            // removal commits.
            if (now == m_new && path != "inplace")
                QCOMPARE(recovered, m_new);
            QVERIFY2(leftovers().isEmpty(), qPrintable(step + leftovers().join(", ")));
            if (path == "inplace")
                QCOMPARE(bytes(second()), recovered);
        }
    }

    // A save in place killed with SIGKILL after its first write to the
    // photo: the photo is torn, its backup and journal entry are left.
    void killMidInPlaceSave()
    {
        setUp("inplace", 3 * Chunk, 3 * Chunk + 11);
        const pid_t child = fork();
        if (child == 0) {
            // Header, 3 backup chunks, flush, commit, folder flush, the
            // entry's 4 steps, then the photo's first chunk.
            ImgImplIoStep::arm(ImgImplIoStep::KillAfter, 12);
            save();
            _exit(0);
        }
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
        QVERIFY(bytes(photo()) != m_old && bytes(photo()) != m_new);
        QCOMPARE(QDir(m_work.path()).entryList(QDir::Files).filter("journal_").size(), 1);
    }

    // After such a kill a backup goes back only onto the inode it came
    // from, in the state the save left it, from a backup of our own user;
    // every launch tries, whatever photo it opens. Anything else is left
    // alone and reported, and nothing is written.
    void recoveryGoesByIdentity_data()
    {
        // then: what happens after the kill; launchOn: the photo the next
        // launch opens; restored/leftAlone: the launch's report; photo: what
        // the torn inode holds after it.
        columns<QString, QString, int, int, QString>({"then", "launchOn", "restored", "leftAlone", "photo"});
        QTest::newRow("launch on another photo") << "" << "other" << 1 << 0 << "old";
        QTest::newRow("launch on the other hard link") << "" << "second" << 1 << 0 << "old";
        QTest::newRow("launch on the photo") << "" << "photo" << 1 << 0 << "old";
        QTest::newRow("name re-used, launch on it") << "reuse" << "photo" << 0 << 1 << "torn";
        QTest::newRow("name re-used, launch on the other link") << "reuse" << "second" << 1 << 0 << "old";
        QTest::newRow("photo changed since the kill") << "change" << "other" << 0 << 1 << "changed";
        QTest::newRow("backup moved beside another photo") << "move" << "other" << 0 << 1 << "torn";
        QTest::newRow("backup of another user") << "chown" << "photo" << 0 << 1 << "torn";
    }

    void recoveryGoesByIdentity()
    {
        auto [then, launchOn, restored, leftAlone, expected] =
            fetch<QString, QString, int, int, QString>({"then", "launchOn", "restored", "leftAlone", "photo"});
        if (then == "chown" && geteuid() != 0)
            QSKIP("needs root to give the backup to another user");
        killMidInPlaceSave();
        if (QTest::currentTestFailed())
            return;
        const QString other = m_pics.filePath("other.jpg");
        const QByteArray theirs = noise(2 * Chunk, 9);
        QVERIFY(writeBytes(other, theirs));
        const QByteArray torn = bytes(photo());
        QByteArray changed = torn;
        const QString backup = m_pics.filePath(".photo.jpg.vo-backup");
        if (then == "reuse") {
            // Another picture takes the name; the torn photo keeps its other one.
            QVERIFY(writeBytes(m_pics.filePath("new name.jpg"), theirs));
            QCOMPARE(::rename(QFile::encodeName(m_pics.filePath("new name.jpg")).constData(),
                              QFile::encodeName(photo()).constData()), 0);
        } else if (then == "change") {
            changed[5] = char(~changed[5]);
            QVERIFY(writeBytes(second(), changed)); // the same inode, rewritten
        } else if (then == "move") {
            for (const QString &f : QDir(m_work.path()).entryList({"journal_*"}, QDir::Files))
                QVERIFY(QFile::remove(m_work.filePath(f)));
            QVERIFY(QFile::rename(backup, m_pics.filePath(".other.jpg.vo-backup")));
        } else if (then == "chown") {
            QCOMPARE(chown(QFile::encodeName(backup).constData(), 4321, 4321), 0);
        }
        const QString opened = launchOn == "other" ? other : launchOn == "second" ? second() : photo();
        const ImgImplBackupJournal::Report report = ImgImplImageStore::recover(opened);
        QCOMPARE(report.restored, restored);
        QCOMPARE(report.leftAlone.size(), leftAlone);
        const QByteArray now = bytes(second());
        QCOMPARE(now, expected == "old" ? m_old : expected == "changed" ? changed : torn);
        QCOMPARE(bytes(other), theirs);
        if (then == "reuse")
            QCOMPARE(bytes(photo()), theirs);
        if (expected == "old") {
            QVERIFY2(leftovers().isEmpty(), qPrintable(leftovers().join(", ")));
        } else {
            // A second launch reports again and still writes nothing.
            QCOMPARE(ImgImplImageStore::recover(opened).leftAlone.size(), leftAlone);
            QCOMPARE(bytes(second()), now);
        }
    }

    // A link planted at a name the store is about to create is never
    // followed: one planted name (the live marker's, the working copy's or
    // the save's) is avoided, a link at every name makes the save fail with
    // the photo unchanged. The link's target is never written.
    void plantedLinksAreNeverFollowed_data()
    {
        // atLaunch: planted when the store is made, at names holding this
        columns<QString, int, bool, QString>({"path", "plants", "saved", "atLaunch"});
        QTest::newRow("live marker's name taken") << "rename" << 1 << true << "live_";
        QTest::newRow("working copy's name taken") << "rename" << 1 << true << "tempreal_";
        QTest::newRow("rename, first name taken") << "rename" << 1 << true << QString();
        QTest::newRow("rename, every name taken") << "rename" << 1000 << false << QString();
        QTest::newRow("in place, first names taken") << "inplace" << 2 << true << QString();
        QTest::newRow("in place, every name taken") << "inplace" << 1000 << false << QString();
    }

    void plantedLinksAreNeverFollowed()
    {
        auto [path, plants, saved, atLaunch] = fetch<QString, int, bool, QString>({"path", "plants", "saved", "atLaunch"});
        QTemporaryDir elsewhere;
        const QString victim = elsewhere.filePath("victim");
        QVERIFY(writeBytes(victim, "not yours"));
        setUp(path, 2 * Chunk, 3 * Chunk);
        g_victim = QFile::encodeName(victim);
        g_plantsLeft = plants;
        g_plantAt = atLaunch.toUtf8();
        if (!atLaunch.isEmpty())
            ImgImplFileOps::setCreateHookForTest(plantLink);
        ImgImplImageStore store(photo());
        QCOMPARE(g_plantsLeft, atLaunch.isEmpty() ? plants : 0);
        QCOMPARE(bytes(store.realFilePath()), m_old);
        QVERIFY(!QFileInfo(store.realFilePath()).isSymLink());
        QVERIFY(writeBytes(store.realFilePath(), m_new));
        ImgImplFileOps::setCreateHookForTest(plantLink);
        const int result = store.saveToOriginalFile();
        ImgImplFileOps::setCreateHookForTest(nullptr);
        QCOMPARE(result, saved ? 0 : -1);
        QCOMPARE(bytes(photo()), saved ? m_new : m_old);
        QCOMPARE(bytes(victim), QByteArray("not yours"));
        QCOMPARE(QDir(elsewhere.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"victim"});
    }

    // The lock moves with the save: before, during and after, no other
    // editor can lock the photo.
    void editLockMovesToTheNewFile()
    {
        setUp("rename", 1000, 2000);
        ImgImplImageStore store(photo());
        int lockFd = ::open(QFile::encodeName(photo()).constData(), O_RDWR | O_CLOEXEC);
        QCOMPARE(flock(lockFd, LOCK_EX | LOCK_NB), 0);
        QVERIFY(writeBytes(store.realFilePath(), m_new));
        const int before = lockFd;
        QCOMPARE(store.saveToOriginalFile(&lockFd), 0);
        QVERIFY(lockFd != before);
        QCOMPARE(fcntl(before, F_GETFD), -1); // the old descriptor is closed
        struct stat locked, onDisk;
        QCOMPARE(fstat(lockFd, &locked), 0);
        QCOMPARE(stat(QFile::encodeName(photo()).constData(), &onDisk), 0);
        QCOMPARE(locked.st_ino, onDisk.st_ino);
        const int other = ::open(QFile::encodeName(photo()).constData(), O_RDWR | O_CLOEXEC);
        QCOMPARE(flock(other, LOCK_EX | LOCK_NB), -1);
        ::close(other);
        ::close(lockFd);
    }

    // Files of live editors survive a launch; those of a dead one do not,
    // the engine's temporaries and overlay pictures included.
    void launchSweepsOnlyDeadEditors()
    {
        setUp("rename", 100, 100);
        QVERIFY(writeBytes(m_pics.filePath("other.jpg"), "other"));
        auto *live1 = new ImgImplImageStore(photo());
        auto *live2 = new ImgImplImageStore(m_pics.filePath("other.jpg"));
        live1->getTmpSource(1);
        const pid_t child = fork();
        if (child == 0) {
            ImgImplImageStore dead(photo());
            dead.getTmpSource(1);
            // An overlay picture, and an engine write stopped mid-way.
            VOUtility::genTempFileName(QFile::encodeName(m_pics.path()).toStdString() + '/', ".png");
            ImgImplIoStep::arm(ImgImplIoStep::StopAfter, 1);
            MMAtomicFile::write(m_pics.filePath("engine.png"), "bytes");
            _exit(0); // no destructor: as if killed
        }
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status) && WEXITSTATUS(status) == ImgImplIoStep::StopExitCode);
        const QRegularExpression temporaries("^\\.?vo_");
        const auto pics = [&] { return QDir(m_pics.path()).entryList(QDir::Files | QDir::Hidden).filter(temporaries); };
        QCOMPARE(pics().size(), 2);
        const QStringList withDead = QDir(m_work.path()).entryList(QDir::Files);
        QCOMPARE(withDead.filter("live_").size(), 3);
        delete new ImgImplImageStore(photo());
        const QStringList after = QDir(m_work.path()).entryList(QDir::Files);
        QCOMPARE(pics(), QStringList());
        QCOMPARE(after.filter("live_").size(), 2);
        for (const QString &f : {live1->realFilePath(), live1->tmpFilePath(), live2->realFilePath()})
            QVERIFY2(after.contains(QFileInfo(f).fileName()), qPrintable(f));
        QCOMPARE(after.size(), 5);
        delete live1;
        delete live2;
        QVERIFY(QDir(m_work.path()).entryList(QDir::Files).isEmpty());
    }

    // As root: another user's file with an ACL and an extended attribute,
    // a hard-linked file, absolute and relative symlinks.
    void fileStaysWhatItWas_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("other owner, ACL, xattr") << "owner";
        QTest::newRow("two hard links") << "hardlink";
        QTest::newRow("absolute symlink") << "abslink";
        QTest::newRow("relative symlink") << "rellink";
    }

    void fileStaysWhatItWas()
    {
        QFETCH(QString, kind);
        if (geteuid() != 0)
            QSKIP("needs root: the file must belong to another user");
        setUp(kind == "hardlink" ? "inplace" : "rename", 5000, 7000);
        const QByteArray target = QFile::encodeName(photo());
        QString edited = photo();
        if (kind == "owner") {
            QCOMPARE(chown(target.constData(), 4321, 4322), 0);
            QCOMPARE(chmod(target.constData(), 0640), 0);
            QCOMPARE(setxattr(target.constData(), "user.rating", "5", 1, 0), 0);
            // A POSIX ACL as the kernel stores it: u::rw, u:4323:rw, g::r, m::r, o::-.
            const quint32 header = 2;
            const struct { quint16 tag, perm; quint32 id; } entries[] = {
                {0x01, 6, 0xffffffffu}, {0x02, 6, 4323}, {0x04, 4, 0xffffffffu}, {0x10, 4, 0xffffffffu}, {0x20, 0, 0xffffffffu}};
            QByteArray acl(reinterpret_cast<const char *>(&header), 4);
            acl.append(reinterpret_cast<const char *>(entries), sizeof entries);
            QCOMPARE(setxattr(target.constData(), "system.posix_acl_access", acl.constData(), acl.size(), 0), 0);
        } else if (kind == "abslink" || kind == "rellink") {
            QDir(m_pics.path()).mkdir("links");
            edited = m_pics.filePath("links/link.jpg");
            QFile::remove(edited);
            const QByteArray to = kind == "abslink" ? target : QByteArray("../photo.jpg");
            QCOMPARE(symlink(to.constData(), QFile::encodeName(edited).constData()), 0);
        }
        struct stat before;
        QCOMPARE(stat(target.constData(), &before), 0);
        char acl[256], rating[8];
        const ssize_t aclSize = getxattr(target.constData(), "system.posix_acl_access", acl, sizeof acl);

        QVERIFY(writeBytes(m_work.filePath("new.jpg"), m_new));
        QCOMPARE(ImgImplImageStore::copyFile(m_work.filePath("new.jpg"), edited), 0);
        QCOMPARE(bytes(edited), m_new);
        struct stat after;
        QCOMPARE(stat(target.constData(), &after), 0);
        QCOMPARE(after.st_uid, before.st_uid);
        QCOMPARE(after.st_gid, before.st_gid);
        QCOMPARE(after.st_mode, before.st_mode);
        if (kind == "owner") {
            char aclAfter[256];
            QCOMPARE(getxattr(target.constData(), "system.posix_acl_access", aclAfter, sizeof aclAfter), aclSize);
            QCOMPARE(QByteArray(aclAfter, int(aclSize)), QByteArray(acl, int(aclSize)));
            QCOMPARE(getxattr(target.constData(), "user.rating", rating, sizeof rating), ssize_t(1));
            QCOMPARE(rating[0], '5');
        } else if (kind == "hardlink") {
            QCOMPARE(bytes(second()), m_new);
            QCOMPARE(after.st_ino, before.st_ino);
        } else {
            QVERIFY(QFileInfo(edited).isSymLink());
        }
        QVERIFY(leftovers().filter(".vo-").isEmpty());
    }

    // Without root's rights a rename cannot keep another user's file, nor
    // put a new file in a folder we may not write: the file is written in
    // place, its backup beside it or, failing that, in the working folder;
    // a save killed there is undone by the next launch.
    void inPlaceWhenRenameCannotServe_data()
    {
        columns<QString, int>({"kind", "stopAfter"});
        QTest::newRow("someone else's file") << "owner" << 0;
        QTest::newRow("folder we may not write") << "folder" << 0;
        // Header, two backup chunks, flush, commit, folder flush; the journal
        // entry written, flushed, committed, its folder flushed; first write.
        QTest::newRow("folder we may not write, killed mid-write") << "folder" << 11;
    }

    void inPlaceWhenRenameCannotServe()
    {
        auto [kind, stopAfter] = fetch<QString, int>({"kind", "stopAfter"});
        if (geteuid() != 0)
            QSKIP("needs root to act as two other users");
        const uid_t user = 4400, other = 4401;
        QTemporaryDir base;
        QCOMPARE(chmod(QFile::encodeName(base.path()).constData(), 0755), 0);
        const QString dir = base.filePath("pics"), work = base.filePath("work");
        QVERIFY(QDir().mkpath(dir) && QDir().mkpath(work));
        QCOMPARE(chown(QFile::encodeName(work).constData(), user, user), 0);
        QCOMPARE(chmod(QFile::encodeName(dir).constData(), kind == "owner" ? 0777 : 0755), 0);
        const QString file = dir + "/photo.jpg", source = base.filePath("new.jpg");
        m_old = noise(5000, 3);
        m_new = noise(6000, 4);
        QVERIFY(writeBytes(file, m_old) && writeBytes(source, m_new));
        const QByteArray path = QFile::encodeName(file);
        QCOMPARE(chown(path.constData(), kind == "owner" ? other : user, user), 0);
        QCOMPARE(chmod(path.constData(), 0660), 0);
        QCOMPARE(chmod(QFile::encodeName(source).constData(), 0644), 0);
        struct stat before;
        QCOMPARE(stat(path.constData(), &before), 0);

        const pid_t child = fork();
        if (child == 0) {
            if (setgroups(0, nullptr) != 0 || setgid(user) != 0 || setuid(user) != 0)
                _exit(3);
            ImgImplImageStore::setWorkingDirForTest(work);
            if (stopAfter)
                ImgImplIoStep::arm(ImgImplIoStep::StopAfter, stopAfter);
            _exit(ImgImplSafeSave::write(source, file) == 0 ? 0 : 1);
        }
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status));
        QCOMPARE(WEXITSTATUS(status), stopAfter ? ImgImplIoStep::StopExitCode : 0);
        if (stopAfter) {
            QCOMPARE(QDir(work).entryList(QDir::Files).filter("backup_").size(), 1);
            QCOMPARE(QDir(work).entryList(QDir::Files).filter("journal_").size(), 1);
            // Root leaves another user's backup alone; its owner's next
            // launch puts it back.
            QCOMPARE(ImgImplBackupJournal::recoverAll(QFile::encodeName(work)).leftAlone.size(), 1);
            QVERIFY(bytes(file) != m_old);
            const pid_t next = fork();
            if (next == 0) {
                if (setgroups(0, nullptr) != 0 || setgid(user) != 0 || setuid(user) != 0)
                    _exit(3);
                const auto report = ImgImplBackupJournal::recoverAll(QFile::encodeName(work));
                _exit(report.restored == 1 && report.leftAlone.isEmpty() ? 0 : 1);
            }
            QCOMPARE(waitpid(next, &status, 0), next);
            QVERIFY(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        }
        QCOMPARE(bytes(file), stopAfter ? m_old : m_new);
        struct stat after;
        QCOMPARE(stat(path.constData(), &after), 0);
        QCOMPARE(after.st_ino, before.st_ino);
        QCOMPARE(after.st_uid, before.st_uid);
        QCOMPARE(after.st_mode, before.st_mode);
        QCOMPARE(QDir(dir).entryList(QDir::Files | QDir::Hidden), QStringList{"photo.jpg"});
        QCOMPARE(QDir(work).entryList(QDir::Files | QDir::Hidden), QStringList());
    }

    // A new file gets the umask's mode and a file written over keeps its
    // own, whether the engine writes it (its working copies, the save-as
    // temporary) or the store saves as.
    void writtenFilesGetUsualModes_data()
    {
        columns<bool, bool>({"engine", "replaces"});
        QTest::newRow("engine, new file") << true << false;
        QTest::newRow("engine, over a file") << true << true;
        QTest::newRow("save as, new file") << false << false;
    }

    void writtenFilesGetUsualModes()
    {
        auto [engine, replaces] = fetch<bool, bool>({"engine", "replaces"});
        setUp("rename", 10, 10);
        const QString file = m_pics.filePath("written.jpg");
        QVERIFY(!replaces || (writeBytes(file, "old") && chmod(QFile::encodeName(file).constData(), 0600) == 0));
        QVERIFY(writeBytes(m_work.filePath("new.jpg"), m_new));
        const mode_t mask = umask(027);
        const int result = engine ? MMAtomicFile::write(file, m_new) : ImgImplImageStore::copyFile(m_work.filePath("new.jpg"), file);
        umask(mask);
        QCOMPARE(result, 0);
        QCOMPARE(bytes(file), m_new);
        struct stat st;
        QCOMPARE(stat(QFile::encodeName(file).constData(), &st), 0);
        QCOMPARE(int(st.st_mode & 07777), replaces ? 0600 : 0640);
    }

    // Save as replaces a file only when the person said yes to it; without
    // that a file at the name, there before or appearing while the new one
    // is written, stays untouched and the save fails as "name taken".
    void saveAsReplacesOnlyWhenConfirmed_data()
    {
        columns<QString, bool, bool>({"name", "confirmed", "saved"});
        QTest::newRow("new name") << "free" << false << true;
        QTest::newRow("existing name, replace confirmed") << "existing" << true << true;
        QTest::newRow("existing name, not confirmed") << "existing" << false << false;
        QTest::newRow("name taken while writing") << "late" << false << false;
        QTest::newRow("symlink at the name, not confirmed") << "link" << false << false;
    }

    void saveAsReplacesOnlyWhenConfirmed()
    {
        auto [name, confirmed, saved] = fetch<QString, bool, bool>({"name", "confirmed", "saved"});
        setUp("rename", 10, 10);
        QVERIFY(writeBytes(m_work.filePath("new.jpg"), m_new));
        static QString target;
        target = m_pics.filePath("chosen.jpg");
        QTemporaryDir elsewhere;
        const QString victim = elsewhere.filePath("victim");
        QVERIFY(writeBytes(victim, "theirs"));
        if (name == "existing")
            QVERIFY(writeBytes(target, "theirs"));
        else if (name == "link")
            QCOMPARE(symlink(QFile::encodeName(victim).constData(), QFile::encodeName(target).constData()), 0);
        else if (name == "late") // someone creates the name between the question and the rename
            ImgImplFileOps::setCreateHookForTest([](const QByteArray &) { writeBytes(target, "theirs"); });
        const auto replace = confirmed ? ImgImplSafeSave::Replace::IfExists : ImgImplSafeSave::Replace::Never;
        const int result = ImgImplSafeSave::write(m_work.filePath("new.jpg"), target, nullptr, replace);
        const int error = errno;
        ImgImplFileOps::setCreateHookForTest(nullptr);
        QCOMPARE(result, saved ? 0 : -1);
        if (!saved)
            QCOMPARE(saveResultFromErrno(error), ImgImplSaveResult::NameTaken);
        QCOMPARE(bytes(target), saved ? m_new : QByteArray("theirs"));
        QCOMPARE(bytes(victim), QByteArray("theirs"));
        QVERIFY(leftovers().filter(".vo-").isEmpty());
    }

    // The notice a failure shows follows from its errno: only a full medium
    // is "memory full".
    void failureKindsFollowTheError_data()
    {
        columns<int, int>({"error", "result"});
        QTest::newRow("ENOSPC") << ENOSPC << int(ImgImplSaveResult::NoRoom);
        QTest::newRow("EDQUOT") << EDQUOT << int(ImgImplSaveResult::NoRoom);
        QTest::newRow("EIO") << EIO << int(ImgImplSaveResult::IoError);
        QTest::newRow("EACCES") << EACCES << int(ImgImplSaveResult::Permission);
        QTest::newRow("EPERM") << EPERM << int(ImgImplSaveResult::Permission);
        QTest::newRow("EROFS") << EROFS << int(ImgImplSaveResult::Permission);
        QTest::newRow("EEXIST") << EEXIST << int(ImgImplSaveResult::NameTaken);
        QTest::newRow("ESTALE") << ESTALE << int(ImgImplSaveResult::IoError);
    }

    void failureKindsFollowTheError()
    {
        auto [error, result] = fetch<int, int>({"error", "result"});
        QCOMPARE(int(saveResultFromErrno(error)), result);
    }
};

QTEST_MAIN(TestSaveDurability)
#include "tst_savedurability.moc"
