#include "ImgImplSaveService.h"

#include "ImgImplImageStore.h"
#include "ImgImplSafeSave.h"
#include "ImgSvcAction.h"
#include "MMAtomicFile.h"
#include "MMImageSource.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

ImgImplSaveResult saveResultFromErrno(int error)
{
    switch (error) {
    case ENOSPC:
    case EDQUOT:
        return ImgImplSaveResult::NoRoom;
    case EACCES:
    case EPERM:
    case EROFS:
        return ImgImplSaveResult::Permission;
    case EEXIST:
        return ImgImplSaveResult::NameTaken;
    default:
        return ImgImplSaveResult::IoError;
    }
}

ImgImplSaveService::ImgImplSaveService(ImgImplImageStore *store)
    : store(store)
{
}

ImgImplSaveResult ImgImplSaveService::replay(std::list<MMCommand *> &commands, const QString &suffix, QString &out)
{
    MMImageSource *real = store ? store->getRealSource() : nullptr;
    if (!real)
        return ImgImplSaveResult::SourceUnreadable;
    out = store->reserveWorkingFile(QStringLiteral("tempsave_"), suffix);
    if (out.isEmpty())
        return saveResultFromErrno(errno);
    MMImageSource destination(MMImageSource::SOURCE_FILE);
    destination.setFile(out.toUtf8().toStdString());
    MMAtomicFile::clearLastError();
    if (ImgSvcAction::processCmdList(*real, destination, commands) == 0)
        return ImgImplSaveResult::Saved;
    // A write that failed says why; otherwise the picture could not be read.
    const int error = MMAtomicFile::lastError();
    QFile::remove(out);
    out.clear();
    return error ? saveResultFromErrno(error) : ImgImplSaveResult::SourceUnreadable;
}

ImgImplSaveResult ImgImplSaveService::saveOver(std::list<MMCommand *> &commands, const QString &target, int *lockFd)
{
    QString edited;
    // Same format as the real-size copy: the edits do not change it.
    const QString suffix = QLatin1Char('.') + QFileInfo(store ? store->realFilePath() : QString()).completeSuffix();
    const ImgImplSaveResult replayed = replay(commands, suffix, edited);
    if (replayed != ImgImplSaveResult::Saved)
        return replayed;
    const ImgImplSaveResult written = ImgImplSafeSave::write(edited, target, lockFd) == 0
        ? ImgImplSaveResult::Saved : saveResultFromErrno(errno);
    if (written == ImgImplSaveResult::Saved)
        store->adoptSavedCopy(edited);
    else
        QFile::remove(edited);
    return written;
}

ImgImplSaveResult ImgImplSaveService::saveAs(std::list<MMCommand *> &commands, const QString &path,
                                             bool replaceConfirmed, int *lockFd)
{
    if (path.isNull())
        return ImgImplSaveResult::NoName;
    // The written format follows the chosen name's extension.
    const QString extension = QFileInfo(path).suffix().trimmed().toLower();
    QString edited;
    const ImgImplSaveResult replayed = replay(commands, QLatin1Char('.') + extension, edited);
    if (replayed != ImgImplSaveResult::Saved)
        return replayed;
    const auto replace = replaceConfirmed ? ImgImplSafeSave::Replace::IfExists : ImgImplSafeSave::Replace::Never;
    const ImgImplSaveResult written = ImgImplSafeSave::write(edited, path, lockFd, replace) == 0
        ? ImgImplSaveResult::Saved : saveResultFromErrno(errno);
    QFile::remove(edited);
    return written;
}
