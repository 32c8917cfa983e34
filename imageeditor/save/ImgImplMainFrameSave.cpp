#include "ImgImplMainFrame.h"

#include "ImgImplImageStore.h"
#include "ImgImplSaveService.h"
#include "ImgImplServiceMgr.h"
#include "ImgSvcCropCtl.h"
#include "ImgSvcCropMgr.h"
#include "ImgSvcCtlEvent.h"
#include "ImgSvcSaveCtl.h"
#include "ImgSvcSaveMgr.h"
#include "MMFileFormat.h"
#include "ZNoticeDlg.h"
#include "ZOptionsMenu.h"
#include "ZSoftKey.h"

#include <QApplication>
#include <QFileInfo>


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

// The save screen's answer: Save, Save as or Discard.
void ImgImplMainFrame::finishSave(int action, ImgSvcCtlEvent *event)
{
    if (action == ACT_SAVE_TO_ORIGINAL) {
        saveToOriginal();
        // Its wait dialog stays up through the write.
        serviceMgr->getSaveMgr()->deleteWaitDlg();
        enableUserInput();
        closeService(event->type());
        return;
    }
    if (action == ACT_SAVE_AS)
        saveAsNewFile();
    else
        dropEditsAndReload();
    closeService(event->type());
    enableUserInput();
}

void ImgImplMainFrame::saveToOriginal()
{
    // The picture is never written over in another format than its own;
    // the notice said so and the edits are dropped all the same.
    if (!noticeUnwritableFormat()) {
        // The edit lock moves to the new file with the save.
        const ImgImplSaveResult result = ImgImplSaveService(imageStore).saveOver(cmdList, originalFile, &lockFd);
        showSaveFailure(result);
    }
    dropEditsAndReload();
}

void ImgImplMainFrame::saveAsNewFile()
{
    ImgSvcSaveMgr *save = serviceMgr->getSaveMgr();
    const ImgImplSaveResult result =
        ImgImplSaveService(imageStore).saveAs(cmdList, save->getSaveAsFilename(), save->replaceConfirmed(), &lockFd);
    showSaveFailure(result);
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
    // It stays until dismissed: the person has a choice to make after it.
    showErrorNotice(text, 0);
    return true;
}

void ImgImplMainFrame::showSaveFailure(ImgImplSaveResult result)
{
    QString reason;
    switch (result) {
    case ImgImplSaveResult::Saved:
    case ImgImplSaveResult::NoName: // nothing was asked to be written
        return;
    case ImgImplSaveResult::NoRoom:
        showMemoryFullNotice();
        return;
    case ImgImplSaveResult::Permission:
        reason = QApplication::translate("ImgImplMainFrame", "TXT_RID_SAVE_REASON_PERMISSION",
                                         "You may not change this file or its folder.");
        break;
    case ImgImplSaveResult::SourceUnreadable:
        reason = QApplication::translate("ImgImplMainFrame", "TXT_RID_SAVE_REASON_UNREADABLE",
                                         "It could not be read; it may be damaged.");
        break;
    case ImgImplSaveResult::NameTaken:
        reason = QApplication::translate("ImgImplMainFrame", "TXT_RID_SAVE_REASON_NAME_TAKEN",
                                         "Another file took that name meanwhile.");
        break;
    case ImgImplSaveResult::IoError:
        reason = QApplication::translate("ImgImplMainFrame", "TXT_RID_SAVE_REASON_IO_ERROR",
                                         "The memory could not be read or written.");
        break;
    }
    const QString text =
        QApplication::translate("ImgImplMainFrame", "TXT_RID_NOTICE_NOT_SAVED", "The picture could not be saved. %1")
            .arg(reason);
    showErrorNotice(text);
}

void ImgImplMainFrame::showMemoryFullNotice()
{
    const QString text = QApplication::translate(
        "ImgImplMainFrame",
        "TXT_RID_INSTRUCTIONALTXT_CURRENTLY_SELECTED_MEMORY_IS_FULL_SELECT_ANOTHER_MEMORY_LOCATION_OR_DELETE_FILES",
        "Because the currently selected memory is full, you must select another memory location or delete "
        "files to make room.");
    showErrorNotice(text);
}

void ImgImplMainFrame::showErrorNotice(const QString &text, int timeoutMs)
{
    auto *notice = new ZNoticeDlg(1, timeoutMs, QString(), text, nullptr, nullptr, true, 0);
    notice->setTitleIcon(QStringLiteral("error_pop"));
    notice->exec();
    delete notice;
}
