#pragma once
#include <QByteArray>
#include <QtGlobal>

#include <sys/stat.h>

// Writing a file in place, for when a rename cannot serve (a second hard
// link, an owner or ACL we may not set, a folder we may not write). The old
// bytes first go to a backup on the same file system; the backup counts
// only once it is complete, flushed and moved to its final name. Then the
// file is rewritten and flushed, and removing the backup commits the save.
// A crash in between leaves the backup, and the next launch puts the old
// bytes back before anything reads the file: a torn write never survives.
//
// Backups lie beside the file (".<name>.vo-backup"), or, when that folder is
// not writable, in the working folder ("backup_<dev>_<inode>") when it is on
// the same file system. Each starts with a header naming the file it
// belongs to. Its writer holds an flock on it, so a launch never restores
// under a live save.
class ImgImplBackupJournal
{
public:
    // Rewrites dirFd/name (whose stat is old) with size bytes of source.
    // 0 on success; -1 with the file holding its old bytes.
    static int writeInPlace(int sourceFd, qint64 size, int dirFd, const QByteArray &dir,
                            const QByteArray &name, const struct stat &old);
    // Restores what a crashed save left beside file, and sweeps the
    // temporaries of dead writers there.
    static void recoverBeside(const QByteArray &file);
    // The same for the backups and temporaries in the working folder.
    static void recoverIn(const QByteArray &workDir);

    static QByteArray backupName(const QByteArray &name) { return '.' + name + ".vo-backup"; }
    // Stem of every temporary made beside name.
    static QByteArray tempStem(const QByteArray &name) { return '.' + name + ".vo-"; }
};
