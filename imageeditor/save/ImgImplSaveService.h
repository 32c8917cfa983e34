#pragma once
#include "ImgImplSaveResult.h"

#include <QString>
#include <list>

class ImgImplImageStore;
class MMCommand;

// The whole save, from the edits to a durable file: the commands are
// replayed on the store's real-size copy into a fresh working file, which
// is then written to the target crash-safe (ImgImplSafeSave). No widgets
// and no globals: the outcome is the return value, so it can run wherever
// its caller likes.
class ImgImplSaveService
{
public:
    explicit ImgImplSaveService(ImgImplImageStore *store);

    // Writes the edits over target (the edited file). On success the
    // store's real-size copy becomes the saved picture; on failure it stays
    // as it was, so a later save never applies the edits twice. lockFd,
    // when given, is the edit lock, which moves to the new file.
    ImgImplSaveResult saveOver(std::list<MMCommand *> &commands, const QString &target, int *lockFd = nullptr);
    // Writes the edits to path. An existing file there is replaced only when
    // replaceConfirmed (the person said yes); otherwise a file at the name
    // makes it NameTaken.
    ImgImplSaveResult saveAs(std::list<MMCommand *> &commands, const QString &path, bool replaceConfirmed,
                             int *lockFd = nullptr);

private:
    // Replays commands into a new working file; its path in out.
    ImgImplSaveResult replay(std::list<MMCommand *> &commands, const QString &suffix, QString &out);

    ImgImplImageStore *store;
};
