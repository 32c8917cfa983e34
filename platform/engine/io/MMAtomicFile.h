#pragma once
#include <QByteArray>
#include <QString>

// Replaces a file in one step: the bytes go to a fresh file beside it
// (created exclusively, so no one else's file is ever written), are flushed
// to storage, and the fresh file is renamed over the target. Readers see
// either the old file or the whole new one. A symbolic link at the target
// is replaced, not followed; the target's permission bits are kept.
class MMAtomicFile
{
public:
    // 0 on success; -1 on failure, with the target untouched and no
    // temporary file left behind.
    static int write(const QString &path, const QByteArray &data);
};
