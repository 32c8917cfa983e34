#pragma once
#include <QByteArray>
#include <QString>

// Replaces a file in one step: the bytes go to a fresh file beside it
// (created exclusively, so no one else's file is ever written), are flushed
// to storage, and the fresh file is renamed over the target. Readers see
// either the old file or the whole new one. A symbolic link at the target
// is replaced, not followed; the target's permission bits are kept.
//
// The engine sits below whoever uses it, so they reach in only through
// Hooks: an editor can list each temporary with its own working files (so
// that a crash leaves none behind) and route the writes through its own
// checked steps.
class MMAtomicFile
{
public:
    struct Hooks {
        // A temporary was just created at path (it is renamed or removed
        // when the write ends); context is createdContext.
        void (*created)(const QByteArray &path, void *context) = nullptr;
        void *createdContext = nullptr;
        // Writes all of data to fd and flushes it: false with errno set.
        // When unset the engine's own loop and fsync do it.
        bool (*writeAndSync)(int fd, const QByteArray &data) = nullptr;
    };
    // Process-wide; a default Hooks unsets them.
    static void setHooks(const Hooks &hooks);
    static Hooks hooks();

    // 0 on success; -1 on failure, with the target untouched and no
    // temporary file left behind.
    static int write(const QString &path, const QByteArray &data);
    // errno of this thread's last failed write since clearLastError(), 0
    // when none failed: a caller can tell a write that failed from a
    // picture that could not be read.
    static int lastError();
    static void clearLastError();
};
