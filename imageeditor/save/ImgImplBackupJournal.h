#pragma once
#include <QByteArray>
#include <QList>
#include <QtGlobal>

#include <sys/stat.h>

// Writing a file in place, for when a rename cannot serve (a second hard
// link, an owner or ACL we may not set, a folder we may not write). The old
// bytes first go to a backup on the same file system; the backup counts
// only once it is complete, flushed and moved to its final name. Then a
// journal entry in the working folder names the file by its identity and
// says where the backup lies; only then is the file rewritten and flushed,
// and removing the backup commits the save.
//
// A crash in between leaves the backup and its entry. Recovery goes by
// identity, never by a name alone: a backup goes back only onto the very
// inode it was taken from, only while that file still holds what the save
// left there (each block old, or new as the backup's header fingerprints
// it), and only from a backup of our own user. Anything else is left alone
// and reported. Every launch replays the journal before anything else, and
// opening a file with a pending backup, under any of its names, restores
// it first.
//
// Backups lie beside the file (".<name>.vo-backup"), or, when that folder is
// not writable, in the working folder ("backup_<dev>_<inode>") when it is on
// the same file system. Entries are "journal_<dev>_<inode>". Writers hold an
// flock on both, so a launch never restores under a live save.
class ImgImplBackupJournal
{
public:
    // What a recovery did: files put back, and backups it would not touch
    // (with why), for the caller to report.
    struct Report {
        int restored = 0;
        QList<QByteArray> leftAlone;
        // One line per backup and reason, however often it was met.
        void note(const QByteArray &line)
        {
            if (!leftAlone.contains(line))
                leftAlone += line;
        }
    };

    // Rewrites dirFd/name (whose stat is old) with size bytes of source.
    // 0 on success; -1 (errno set) with the file holding its old bytes.
    static int writeInPlace(int sourceFd, qint64 size, int dirFd, const QByteArray &dir,
                            const QByteArray &name, const struct stat &old);

    // The launch step: every journal entry in workDir whose writer is gone
    // is replayed, and the temporaries of dead writers there are swept.
    static Report recoverAll(const QByteArray &workDir);
    // Before file is read: a pending backup of its inode, wherever its
    // entry or the backup beside this name says it is, goes back; dead
    // writers' temporaries beside it are swept.
    static Report recoverFile(const QByteArray &workDir, const QByteArray &file);

    static QByteArray backupName(const QByteArray &name) { return '.' + name + ".vo-backup"; }
    // Stem of every temporary made beside name.
    static QByteArray tempStem(const QByteArray &name) { return '.' + name + ".vo-"; }
    static QByteArray entryName(dev_t dev, ino_t ino);
};
