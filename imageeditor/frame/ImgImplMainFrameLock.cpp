#include "ImgImplMainFrame.h"

#include "ImgEditorErrEvent.h"
#include "ZNoticeDlg.h"

#include <QCoreApplication>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

// The edit lock: an exclusive flock on the edited file from the end of
// construction to the start of teardown, so two editors never edit one file.

int ImgImplMainFrame::lockEditFile()
{
    lockFd = ::open(originalFile.toUtf8().constData(), O_RDWR);
    if (lockFd != -1) {
        // A process the host starts meanwhile must not inherit the lock and
        // keep it past our release.
        fcntl(lockFd, F_SETFD, FD_CLOEXEC);
        if (flock(lockFd, LOCK_EX | LOCK_NB) == 0)
            return 0;
        ::close(lockFd);
        lockFd = -1;
    }
    postToSelf(new ImgEditorErrEvent(ERR_FILE_IN_USE));
    return -1;
}

int ImgImplMainFrame::unlockEditFile()
{
    if (lockFd == -1)
        return -1;
    const int result = flock(lockFd, LOCK_UN);
    ::close(lockFd);
    lockFd = -1;
    return result;
}

void ImgImplMainFrame::processErrEvent(ImgEditorErrEvent *event)
{
    if (event->getErrCode() != ERR_FILE_IN_USE)
        return;
    const QString text = QCoreApplication::translate(
        "ImgImplMainFrame", "RESID_TBD",
        "The file is being edited now, it can not be edited in more instances at one time.");
    ZNoticeDlg::information(text, QString(), QString(), QString(), this, "1slotRightBtnClicked()");
}
