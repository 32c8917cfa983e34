#pragma once
#include <QString>
#include <QtGlobal>

// Writes a finished picture to its file so that, whatever happens (crash,
// power cut, full medium, I/O error), the file is either the old one byte
// for byte or the whole new one. No shell, no cp: every step is checked.
//
// Over an existing file the new bytes go to a fresh file beside it (created
// exclusively, private until done), get the old file's owner, group, mode,
// ACL and extended attributes, are flushed, and are renamed over it; then
// the folder is flushed. When a rename cannot keep the file what it was
// (a second hard link, an owner or ACL we may not set, a folder we may not
// write) the file is rewritten in place behind a backup (see
// ImgImplBackupJournal). A symlink is followed to its target, relative
// ones too; the link itself stays.
class ImgImplSafeSave
{
public:
    // Writes source's bytes to target. A target that exists when the write
    // starts is replaced as above; otherwise a new file is made with the
    // mode the umask gives, and it never replaces a file that appears
    // meanwhile. When lockFd holds the flock on the replaced file, the lock
    // moves to the new file before the rename and the old descriptor is
    // closed only after it, so no second editor can slip in between.
    // On failure the target is unchanged, save for a failed flush of its
    // folder after the commit.
    // With Replace::Never the target is always made new, and a file at its
    // name (however it came there) fails the write with EEXIST.
    // 0 on success; -1 with errno set on failure (ENOSPC for the room rule).
    enum class Replace { IfExists, Never };
    static int write(const QString &source, const QString &target, int *lockFd = nullptr,
                     Replace replace = Replace::IfExists);

    // The strict room rule: bytes fit in the folder's file system when they
    // are fewer than the space available minus five blocks.
    static bool fits(qint64 bytes, const QByteArray &dir);
};
