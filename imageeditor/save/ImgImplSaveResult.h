#pragma once

// How a save ended, named so that the person is told the truth: only
// NoRoom is the storage-full notice.
enum class ImgImplSaveResult {
    Saved,
    NoRoom,           // ENOSPC or EDQUOT, or the room rule said no
    IoError,          // the medium failed (EIO and everything not below)
    Permission,       // EACCES, EPERM, EROFS: we may not write there
    SourceUnreadable, // the picture being edited could not be read
    NameTaken,        // save as: the name was taken while it was written
    NoName,           // save as without a name: nothing to write
};

// The kind of failure an errno stands for.
ImgImplSaveResult saveResultFromErrno(int error);
