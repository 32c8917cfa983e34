#include "ImgImplMainFrame.h"

#include "ImgImplImageStore.h"
#include "ImgImplServiceMgr.h"
#include "ImgSvcCropCtl.h"
#include "ImgSvcCropMgr.h"
#include "ImgSvcCtlEvent.h"
#include "ImgSvcSaveCtl.h"
#include "ImgSvcSaveMgr.h"
#include "MMFileFormat.h"
#include "MMImageSource.h"
#include "VOUtility.h"
#include "ZNoticeDlg.h"
#include "ZOptionsMenu.h"
#include "ZSoftKey.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

// The save flow: edits reach a file only from the save screen, replayed on
// the real-size copy so that the written file has full resolution.

void ImgImplMainFrame::startSave(ImgSvcCtlEvent *event)
{
    ImgSvcSaveMgr *save = serviceMgr->getSaveMgr();
    save->setAutoDeleteWaitDlg(false);
    ImgSvcSaveCtl *control = save->getSaveCtl();
    control->setEventReceiver(this);
    // Resize names no file below; a new name still belongs beside this one.
    save->setEditedFile(originalFile);

    const int type = event->type();
    auto previewOrTmp = [this] {
        return imageStore->hasPreview ? imageStore->getPreviewSource() : imageStore->getTmpSource(1);
    };
    if (type == CTL_EVENT_CROP) {
        const QRect rect = realCropRect();
        save->setOriginalFileName(originalFile,
                                  QSize(rect.right() - rect.left() + 1, rect.bottom() - rect.top() + 1));
        control->setInput(imageStore->getTmpSource(0));
        control->setOutput(previewOrTmp());
    } else if (type == CTL_EVENT_RESIZE) {
        control->setInput(imageStore->getTmpSource(1));
        control->setOutput(imageStore->getTmpSource(1));
    } else if (type == CTL_EVENT_OVERLAY || type == CTL_EVENT_EFFECT || type == CTL_EVENT_APPLY) {
        save->setOriginalFileName(originalFile, QSize(0, 0));
        control->setInput(imageStore->getTmpSource(0));
        control->setOutput(previewOrTmp());
    }
    control->refresh(true);
    // Told before choosing: Save would write nothing.
    noticeUnwritableFormat();
    save->setMainWidgetTitle(QFileInfo(originalFile).fileName());
    save->show();
    save->activateWindow();
}

void ImgImplMainFrame::saveToOriginal()
{
    MMImageSource *real = imageStore->getRealSource();
    // A failed replay writes nothing; the edits are dropped all the same.
    // The picture is never written over in another format than its own.
    if (real && !noticeUnwritableFormat() && serviceMgr->processCmdList(*real, *real, cmdList) == 0) {
        // The edit lock moves to the new file with the save.
        if (imageStore->saveToOriginalFile(&lockFd) != 0)
            showMemoryFullNotice();
    }
    dropEditsAndReload();
}

void ImgImplMainFrame::saveAsNewFile()
{
    const QString chosen = serviceMgr->getSaveMgr()->getSaveAsFilename();
    MMImageSource *real = imageStore->getRealSource();
    if (!chosen.isNull() && real) {
        const QString extension = QFileInfo(chosen).suffix().trimmed().toLower();
        // The temporary's name is reserved with its extension, exclusively.
        const std::string reserved = VOUtility::genTempFileName("/tmp/", "." + extension.toUtf8().toStdString());
        if (!reserved.empty()) {
            const QString tmpPath = QString::fromUtf8(reserved.c_str());
            imageStore->recordTemporary(tmpPath);
            auto *destination = new MMImageSource(MMImageSource::SOURCE_FILE);
            destination->setFile(tmpPath.toUtf8().toStdString());
            if (serviceMgr->processCmdList(*real, *destination, cmdList) == 0) {
                if (!ImgImplImageStore::hasEnoughSpace(tmpPath, chosen))
                    showMemoryFullNotice();
                else if (ImgImplImageStore::copyFile(tmpPath, chosen, &lockFd) != 0)
                    showMemoryFullNotice();
            }
            ::unlink(tmpPath.toUtf8().constData());
            delete destination;
        }
    }
    dropEditsAndReload();
}

bool ImgImplMainFrame::noticeUnwritableFormat()
{
    if (MMFileFormat::canWriteBack(originalFile))
        return false;
    const QString text = QApplication::translate("ImgImplMainFrame", "TXT_RID_NOTICE_FORMAT_NOT_WRITABLE",
                                                 "Pictures in this format can not be saved over. Save as keeps "
                                                 "the edits in a new .%1 picture.")
                             .arg(MMFileFormat::saveSuffixFor(originalFile));
    auto *notice = new ZNoticeDlg(1, 0, QString(), text, nullptr, nullptr, true, 0);
    notice->setTitleIcon(QStringLiteral("error_pop"));
    notice->exec();
    delete notice;
    return true;
}

void ImgImplMainFrame::showMemoryFullNotice()
{
    const QString text = QApplication::translate(
        "ImgImplMainFrame",
        "TXT_RID_INSTRUCTIONALTXT_CURRENTLY_SELECTED_MEMORY_IS_FULL_SELECT_ANOTHER_MEMORY_LOCATION_OR_DELETE_FILES",
        "Because the currently selected memory is full, you must select another memory location or delete "
        "files to make room.");
    auto *notice = new ZNoticeDlg(1, 3000, QString(), text, nullptr, nullptr, true, 0);
    notice->setTitleIcon(QStringLiteral("error_pop"));
    notice->exec();
    delete notice;
}
