#pragma once
#include <QByteArray>
#include <QtGlobal>

#include <sys/stat.h>

// The low-level file steps the saves are built from. Steps marked "counted"
// are shown to the step hooks when a test has set them, so crash and fault
// tests can stop or fail each one. Every call handles EINTR and short writes; none follows a symlink at
// a name it creates.
class ImgImplFileOps
{
public:
    // Writes all of data at offset (counted when asked, one step).
    static bool writeAllAt(int fd, const char *data, qint64 size, qint64 offset, bool counted);
    // Reads exactly size bytes at offset; false (EIO) when the file is shorter.
    static bool readAllAt(int fd, char *data, qint64 size, qint64 offset);
    // Copies size bytes of from, starting at fromOffset, to to at toOffset,
    // one counted step per chunk when asked. False on a read error or a
    // source shorter than expected.
    static bool copyBytes(int from, qint64 fromOffset, int to, qint64 toOffset, qint64 size, bool counted);
    // Counted fsync of a file or a folder.
    static bool sync(int fd);
    // Counted ftruncate, rename and unlink.
    static bool truncate(int fd, qint64 size);
    static bool renameAt(int dirFd, const QByteArray &from, const QByteArray &to);
    static bool unlinkAt(int dirFd, const QByteArray &name);
    // Owner, group and mode of st onto fd, as two counted steps. EPERM means
    // the process may not give the file that owner.
    static bool copyOwnerAndMode(const struct stat &st, int fd);
    // Copies every extended attribute (POSIX ACLs are stored as one) from
    // one file to another, one counted step each. 0 on success, 1 when the
    // file system or our rights do not allow it (the caller can choose
    // another way), -1 on an I/O failure.
    static int copyXattrs(int from, int to);
    // Creates dir/<stem><random> exclusively, without following a link
    // planted there, retrying with new names; the descriptor is O_RDWR,
    // close-on-exec and flock'ed exclusively, so that a sweeper can tell a
    // live writer's file from a dead one's. -1 when no name could be made.
    static int createExclusive(int dirFd, const QByteArray &stem, mode_t mode, QByteArray &name);
    // Moves dir/from to dir/to without replacing anything that is there.
    // Counted.
    static bool renameNoReplace(int dirFd, const QByteArray &from, const QByteArray &to);
    // Opens a folder for *at() calls and fsync.
    static int openDir(const QByteArray &path);
    // Splits /a/b/c into /a/b and c.
    static void splitPath(const QByteArray &path, QByteArray &dir, QByteArray &name);

    // What tests hook into: begin runs before each counted step (false
    // fails it, errno set), end after a step that happened. Null (the
    // default, and all the library ever has) watches nothing.
    struct StepHooks {
        virtual ~StepHooks() = default;
        virtual bool begin() = 0;
        virtual void end() = 0;
    };
    static void setStepHooks(StepHooks *hooks);

    // Bytes per counted write; small values let tests reach many steps with
    // small files.
    static void setChunkSize(qint64 bytes);
    static qint64 chunkSize();
    // Only for the benchmark that measures what flushing costs: with false
    // the counted fsyncs are skipped. Never called by the editor.
    static void setSyncForBench(bool enabled);
    // Called with the full path before each exclusive creation, so a test
    // can plant a file or link at exactly the name about to be used.
    using CreateHook = void (*)(const QByteArray &path);
    static void setCreateHookForTest(CreateHook hook);
    // Runs the hook, for names made elsewhere.
    static void aboutToCreate(const QByteArray &path);

    // Told the full path of each temporary a save makes beside a file, so
    // that the editor lists it with its working files and a crash leaves
    // none behind. Process-wide; null unsets it.
    using TemporaryHook = void (*)(const QByteArray &path, void *context);
    static void setTemporaryHook(TemporaryHook hook, void *context);
    static void *temporaryHookContext();
    static void madeTemporary(int dirFd, const QByteArray &name);
};
