#include "ImgImplFileOps.h"

#include <QRandomGenerator>

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace {
qint64 g_chunk = 1 << 20;
ImgImplFileOps::CreateHook g_createHook = nullptr;
bool g_sync = true;
ImgImplFileOps::StepHooks *g_steps = nullptr;

// Runs one counted step: a test's hooks may fail it on purpose, or stop
// the process right after it.
template <typename Op> bool step(bool counted, Op op)
{
    if (counted && g_steps && !g_steps->begin())
        return false;
    const bool ok = op();
    if (counted && ok && g_steps)
        g_steps->end();
    return ok;
}

QByteArray randomSuffix()
{
    static const char digits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    QByteArray s(10, '0');
    for (char &c : s)
        c = digits[QRandomGenerator::system()->bounded(36)];
    return s;
}
} // namespace

void ImgImplFileOps::setStepHooks(StepHooks *hooks) { g_steps = hooks; }

namespace {
ImgImplFileOps::TemporaryHook g_temporary = nullptr;
void *g_temporaryContext = nullptr;

QByteArray dirPath(int dirFd)
{
    char dir[PATH_MAX];
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(dirFd);
    const ssize_t n = ::readlink(link.constData(), dir, sizeof dir);
    return n > 0 ? QByteArray(dir, int(n)) : QByteArray(".");
}
} // namespace

void ImgImplFileOps::setTemporaryHook(TemporaryHook hook, void *context)
{
    g_temporary = hook;
    g_temporaryContext = context;
}

void *ImgImplFileOps::temporaryHookContext() { return g_temporaryContext; }

void ImgImplFileOps::madeTemporary(int dirFd, const QByteArray &name)
{
    if (g_temporary)
        g_temporary(dirPath(dirFd) + '/' + name, g_temporaryContext);
}
void ImgImplFileOps::setChunkSize(qint64 bytes) { g_chunk = bytes > 0 ? bytes : (1 << 20); }
qint64 ImgImplFileOps::chunkSize() { return g_chunk; }
void ImgImplFileOps::setCreateHookForTest(CreateHook hook) { g_createHook = hook; }
void ImgImplFileOps::setSyncForBench(bool enabled) { g_sync = enabled; }

void ImgImplFileOps::aboutToCreate(const QByteArray &path)
{
    if (g_createHook)
        g_createHook(path);
}

bool ImgImplFileOps::writeAllAt(int fd, const char *data, qint64 size, qint64 offset, bool counted)
{
    return step(counted, [&] {
        while (size > 0) {
            const ssize_t n = ::pwrite(fd, data, size_t(size), off_t(offset));
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0)
                return false;
            if (n == 0) {
                errno = EIO;
                return false;
            }
            data += n;
            size -= n;
            offset += n;
        }
        return true;
    });
}

bool ImgImplFileOps::readAllAt(int fd, char *data, qint64 size, qint64 offset)
{
    while (size > 0) {
        const ssize_t n = ::pread(fd, data, size_t(size), off_t(offset));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            if (n == 0)
                errno = EIO; // the file shrank under us
            return false;
        }
        data += n;
        size -= n;
        offset += n;
    }
    return true;
}

bool ImgImplFileOps::copyBytes(int from, qint64 fromOffset, int to, qint64 toOffset, qint64 size, bool counted)
{
    std::vector<char> buffer(size_t(qMin<qint64>(g_chunk, qMax<qint64>(size, 1))));
    qint64 done = 0;
    while (done < size) {
        const qint64 want = qMin<qint64>(qint64(buffer.size()), size - done);
        if (!readAllAt(from, buffer.data(), want, fromOffset + done))
            return false;
        if (!writeAllAt(to, buffer.data(), want, toOffset + done, counted))
            return false;
        done += want;
    }
    return true;
}

bool ImgImplFileOps::sync(int fd)
{
    return step(true, [fd] { return !g_sync || ::fsync(fd) == 0; });
}

bool ImgImplFileOps::truncate(int fd, qint64 size)
{
    return step(true, [=] { return ::ftruncate(fd, off_t(size)) == 0; });
}

bool ImgImplFileOps::renameAt(int dirFd, const QByteArray &from, const QByteArray &to)
{
    return step(true, [&] { return ::renameat(dirFd, from.constData(), dirFd, to.constData()) == 0; });
}

bool ImgImplFileOps::unlinkAt(int dirFd, const QByteArray &name)
{
    return step(true, [&] { return ::unlinkat(dirFd, name.constData(), 0) == 0; });
}

bool ImgImplFileOps::copyOwnerAndMode(const struct stat &st, int fd)
{
    // Owner first: a change of owner clears set-id bits, which the mode then
    // puts back.
    return step(true, [&] { return ::fchown(fd, st.st_uid, st.st_gid) == 0; })
        && step(true, [&] { return ::fchmod(fd, st.st_mode & 07777) == 0; });
}

int ImgImplFileOps::copyXattrs(int from, int to)
{
    ssize_t length = ::flistxattr(from, nullptr, 0);
    if (length < 0)
        return (errno == ENOTSUP || errno == EOPNOTSUPP) ? 0 : -1;
    std::vector<char> names(size_t(length) + 1, '\0');
    length = ::flistxattr(from, names.data(), names.size());
    if (length < 0)
        return -1;
    for (const char *name = names.data(); name < names.data() + length; name += strlen(name) + 1) {
        ssize_t size = ::fgetxattr(from, name, nullptr, 0);
        if (size < 0)
            return -1;
        std::vector<char> value(size_t(size) + 1);
        size = ::fgetxattr(from, name, value.data(), value.size());
        if (size < 0)
            return -1;
        if (!step(true, [&] { return ::fsetxattr(to, name, value.data(), size_t(size), 0) == 0; })) {
            if (errno == EPERM || errno == EACCES || errno == ENOTSUP || errno == EOPNOTSUPP)
                return 1;
            return -1;
        }
    }
    return 0;
}

int ImgImplFileOps::createExclusive(int dirFd, const QByteArray &stem, mode_t mode, QByteArray &name)
{
    for (int attempt = 0; attempt < 32; ++attempt) {
        name = stem + randomSuffix();
        if (g_createHook)
            g_createHook(dirPath(dirFd) + '/' + name);
        const int fd = ::openat(dirFd, name.constData(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
        if (fd >= 0) {
            // Unlocked, a sweeper would take it for a dead writer's file.
            if (::flock(fd, LOCK_EX | LOCK_NB) == 0)
                return fd;
            const int error = errno;
            ::unlinkat(dirFd, name.constData(), 0);
            ::close(fd);
            errno = error;
            break;
        }
        if (errno != EEXIST)
            break;
    }
    name.clear();
    return -1;
}

bool ImgImplFileOps::renameNoReplace(int dirFd, const QByteArray &from, const QByteArray &to)
{
    return step(true, [&] {
        if (::renameat2(dirFd, from.constData(), dirFd, to.constData(), RENAME_NOREPLACE) == 0)
            return true;
        if (errno != EINVAL && errno != ENOSYS)
            return false;
        // File systems without the flag: link refuses an existing name too.
        if (::linkat(dirFd, from.constData(), dirFd, to.constData(), 0) != 0)
            return false;
        ::unlinkat(dirFd, from.constData(), 0);
        return true;
    });
}

int ImgImplFileOps::openDir(const QByteArray &path)
{
    return ::open(path.isEmpty() ? "." : path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

void ImgImplFileOps::splitPath(const QByteArray &path, QByteArray &dir, QByteArray &name)
{
    const int slash = path.lastIndexOf('/');
    if (slash < 0) {
        dir = ".";
        name = path;
        return;
    }
    dir = slash == 0 ? QByteArray("/") : path.left(slash);
    name = path.mid(slash + 1);
}
