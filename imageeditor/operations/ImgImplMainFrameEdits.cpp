#include "ImgImplMainFrame.h"

#include "ImgImplImageStore.h"
#include "ImgImplMenuItems.h"
#include "ImgImplMenuEvent.h"
#include "ImgImplServiceMgr.h"
#include "ImgImplStatMachine.h"
#include "ImgSvcCropCtl.h"
#include "ImgSvcCropMgr.h"
#include "ImgSvcCtlEvent.h"
#include "ImgSvcEffectCtl.h"
#include "ImgSvcEffectMgr.h"
#include "ImgSvcOverlayCtl.h"
#include "ImgSvcOverlayMgr.h"
#include "ImgSvcResizeCtl.h"
#include "ImgSvcResizeMgr.h"
#include "ImgSvcSaveMgr.h"
#include "ImgSvcViewer.h"
#include "MMCropCommand.h"
#include "MMEffectCommand.h"
#include "MMMirrorCommand.h"
#include "MMOverlayImageCommand.h"
#include "MMResizeCommand.h"
#include "MMRotateCommand.h"
#include "ZOptionsMenu.h"
#include "ZSoftKey.h"

#include <QFile>

// The edits: quick edits change the preview at once and queue a command;
// sub-editors run on the tmp copy with the pending commands replayed first,
// and a confirmed one queues its command and goes on to the save screen. The
// edited file changes only when the commands are replayed by a save.

namespace {
MMCommand *rotation(int degree)
{
    auto *command = new MMRotateCommand();
    command->setDegree(degree);
    return command;
}

MMCommand *mirror(bool horizontal)
{
    auto *command = new MMMirrorCommand();
    command->setMirrorType(horizontal);
    return command;
}

MMRect toMMRect(const QRect &r)
{
    return MMRect(r.left(), r.top(), r.right() - r.left() + 1, r.bottom() - r.top() + 1);
}
} // namespace

void ImgImplMainFrame::setRightKeyText(const QString &text)
{
    softKey->setText(ZSoftKey::RIGHT, text, ZSoftKey::PRIORITY_NORMAL);
}

void ImgImplMainFrame::markEdited()
{
    modified = true;
    optionsMenu->setItemHide(OPT_ITEM_UNDO, false);
    optionsMenu->setItemHide(OPT_ITEM_CANCEL, false);
    setRightKeyText(QObject::tr("TXT_RID_SOFTKEY_APPLY", "Apply"));
}

void ImgImplMainFrame::rotate90Left()
{
    viewer->rotate90L();
    markEdited();
    cmdList.push_back(rotation(-90));
    editSteps.push_back({1, 0});
}

void ImgImplMainFrame::rotate90Right()
{
    viewer->rotate90R();
    markEdited();
    cmdList.push_back(rotation(90));
    editSteps.push_back({1, 0});
}

void ImgImplMainFrame::mirrorHorizontal()
{
    viewer->mirrorH();
    markEdited();
    cmdList.push_back(mirror(true));
    editSteps.push_back({1, 0});
}

void ImgImplMainFrame::mirrorVertical()
{
    viewer->mirrorV();
    markEdited();
    cmdList.push_back(mirror(false));
    editSteps.push_back({1, 0});
}

void ImgImplMainFrame::startCrop()
{
    auto *crop = static_cast<ImgSvcCropMgr *>(serviceMgr->getService(SERVICE_CROP));
    ImgSvcCropCtl *control = crop->getCropCtl();
    control->setCropMoveStep(1, 15);
    control->setEventReceiver(this);
    MMImageSource *tmp = replayedTmpSource(0);
    control->setInput(tmp);
    control->refresh(true);
    control->setOutput(tmp);
    const QSize size = control->getInputSize();
    control->set1stPoint(QPoint(size.width() / 2, size.height() / 2));
    control->refresh(true);
    crop->show();
    crop->activateWindow();
}

void ImgImplMainFrame::startResize()
{
    MMImageSource *tmp = replayedTmpSource(1);
    auto *resize = static_cast<ImgSvcResizeMgr *>(serviceMgr->getService(SERVICE_RESIZE));
    ImgSvcResizeCtl *control = resize->getResizeCtl();
    control->setEventReceiver(this);
    control->setInput(tmp);
    control->setOutput(tmp);
    resize->launchResizeDlg(control->getInputSize());
}

void ImgImplMainFrame::startStyle()
{
    MMImageSource *tmp = replayedTmpSource(0);
    auto *effect = static_cast<ImgSvcEffectMgr *>(serviceMgr->getService(SERVICE_EFFECT));
    ImgSvcEffectCtl *control = effect->getEffectCtl();
    control->setEventReceiver(this);
    control->setInput(tmp);
    control->refresh(true);
    control->setOutput(tmp);
    effect->launchEffectDlg();
}

void ImgImplMainFrame::startAddElement()
{
    MMImageSource *tmp = replayedTmpSource(0);
    auto *overlay = static_cast<ImgSvcOverlayMgr *>(serviceMgr->getService(SERVICE_OVERLAY));
    ImgSvcOverlayCtl *control = overlay->getOverlayCtl();
    control->setEventReceiver(this);
    control->setInput(tmp);
    overlay->setOriginalFile(originalFile);
    overlay->show();
    overlay->activateWindow();
    control->refresh(true);
    control->setOutput(tmp);
}

void ImgImplMainFrame::handleMenuEvent(ImgImplMenuEvent *event)
{
    const int id = event->getEventId();
    switch (id) {
    case EVT_ROTATE_LEFT: rotate90Left(); break;
    case EVT_ROTATE_RIGHT: rotate90Right(); break;
    case EVT_MIRROR_HOR: mirrorHorizontal(); break;
    case EVT_MIRROR_VER: mirrorVertical(); break;
    case EVT_CROP: startCrop(); break;
    case EVT_RESIZE: startResize(); break;
    case EVT_STYLE: startStyle(); break;
    case EVT_ADD_ELEMENT: startAddElement(); break;
    case EVT_CANCEL: dropEditsAndReload(); break;
    case EVT_UNDO:
        // Undo also comes from a key, so in any mode: where the table has no
        // step back it is dropped, rather than ending the machine.
        if (statMachine->getNextStat(id) == STAT_END)
            return;
        undoLastStep();
        break;
    default: break;
    }
    emit sigChangeStat(statMachine->getNextStat(id));
}

void ImgImplMainFrame::handleCtlEvent(ImgSvcCtlEvent *event)
{
    const int result = event->getResult();
    const int action = statMachine->getStatAction(result);
    if (action == ACT_SAVE_TO_ORIGINAL || action == ACT_SAVE_AS || action == ACT_DISCARD)
        finishSave(action, event);
    else if (result == EVT_SVC_DONE)
        onServiceDone(event);
    else if (result == EVT_SVC_BACK)
        onServiceBack(event);
    emit sigChangeStat(statMachine->getNextStat(result));
}

void ImgImplMainFrame::onServiceDone(ImgSvcCtlEvent *event)
{
    const int action = statMachine->getStatAction(EVT_SVC_DONE);
    if (action == ACT_START_SAVE) {
        // The save screen is set up from the sub-editor's control before the
        // sub-editor is closed.
        startSave(event);
        const size_t commandsBefore = cmdList.size(), filesBefore = overlayTmpFiles.size();
        appendServiceCommand(event);
        recordStep(commandsBefore, filesBefore);
        watchSaveScreenKeys();
    }
    closeService(event->type());
}

void ImgImplMainFrame::onServiceBack(ImgSvcCtlEvent *event)
{
    imageStore->deleteTmpSource(); // the next sub-editor starts from a fresh copy
    closeService(event->type());
    enableUserInput();
}

void ImgImplMainFrame::appendServiceCommand(ImgSvcCtlEvent *event)
{
    switch (int(event->type())) {
    case CTL_EVENT_CROP: appendCropCommand(); break;
    case CTL_EVENT_RESIZE: appendResizeCommand(); break;
    case CTL_EVENT_OVERLAY: appendOverlayCommands(); break;
    case CTL_EVENT_EFFECT: appendEffectCommand(); break;
    default: break;
    }
}

// The crop screen works on the preview when there is one; the command and
// the size shown on the save screen are in real-size pixels.
QRect ImgImplMainFrame::realCropRect() const
{
    auto *crop = static_cast<ImgSvcCropMgr *>(serviceMgr->getService(SERVICE_CROP));
    QRect rect = crop->getCropCtl()->getCropRect();
    if (imageStore->hasPreview)
        imageStore->mapToRealRect(rect);
    return rect;
}

void ImgImplMainFrame::appendCropCommand()
{
    auto *command = new MMCropCommand();
    command->setRect(toMMRect(realCropRect()));
    cmdList.push_back(command);
}

void ImgImplMainFrame::appendResizeCommand()
{
    auto *resize = static_cast<ImgSvcResizeMgr *>(serviceMgr->getService(SERVICE_RESIZE));
    const QSize target = resize->getResizeCtl()->getTargetSize();
    auto *command = new MMResizeCommand();
    command->setTargetSize(MMSize(target.width(), target.height()));
    cmdList.push_back(command);
}

void ImgImplMainFrame::appendEffectCommand()
{
    auto *effect = static_cast<ImgSvcEffectMgr *>(serviceMgr->getService(SERVICE_EFFECT));
    // The style with what it carries: auto-fix's levels, the adjustments.
    cmdList.push_back(new MMEffectCommand(effect->getEffectCtl()->effectCommand()));
}

void ImgImplMainFrame::appendOverlayCommands()
{
    auto *overlay = static_cast<ImgSvcOverlayMgr *>(serviceMgr->getService(SERVICE_OVERLAY));
    ImgSvcOverlayCtl *control = overlay->getOverlayCtl();
    const std::list<MMOverlayImageCommand *> placed = control->getCommandList();
    if (placed.empty())
        return;
    // From here on the commands are ours: clearCommands deletes them.
    control->releaseCommands();
    for (MMOverlayImageCommand *command : placed) {
        MMRect rect;
        MMImageSource image(MMImageSource::ImageSourceType(1));
        command->getData(rect, image);
        if (imageStore->hasPreview) {
            QRect real(QPoint(rect.x, rect.y), QPoint(rect.x + rect.width - 1, rect.y + rect.height - 1));
            imageStore->mapToRealRect(real);
            command->setData(toMMRect(real), image);
        }
        cmdList.push_back(command);
    }
    const std::vector<QString> files = overlay->getOverlayTmpFiles();
    overlayTmpFiles.insert(overlayTmpFiles.end(), files.begin(), files.end());
}

void ImgImplMainFrame::closeService(int eventType)
{
    switch (eventType) {
    case CTL_EVENT_CROP:
        static_cast<ImgSvcCropMgr *>(serviceMgr->getService(SERVICE_CROP))->close(false);
        serviceMgr->removeService(SERVICE_CROP);
        break;
    case CTL_EVENT_RESIZE:
        serviceMgr->removeService(SERVICE_RESIZE);
        break;
    case CTL_EVENT_OVERLAY:
        static_cast<ImgSvcOverlayMgr *>(serviceMgr->getService(SERVICE_OVERLAY))->close(false);
        serviceMgr->removeService(SERVICE_OVERLAY);
        break;
    case CTL_EVENT_SAVE:
        serviceMgr->getSaveMgr()->close(false);
        serviceMgr->removeService(SERVICE_SAVE);
        break;
    case CTL_EVENT_EFFECT:
        serviceMgr->removeService(SERVICE_EFFECT);
        break;
    default:
        break;
    }
}

// The tmp copy with the pending commands applied in place, so that a
// sub-editor or the save screen sees the picture as edited so far. The
// replay's result is not looked at: the screen opens on what there is.
MMImageSource *ImgImplMainFrame::replayedTmpSource(int realSize)
{
    MMImageSource *tmp = imageStore->getTmpSource(realSize);
    serviceMgr->processCmdList(*tmp, *tmp, cmdList);
    return tmp;
}

void ImgImplMainFrame::clearCommands()
{
    if (cmdList.empty())
        return;
    for (MMCommand *command : cmdList)
        delete command;
    cmdList.clear();
    editSteps.clear();
    for (const QString &file : overlayTmpFiles)
        QFile::remove(file);
    overlayTmpFiles.clear();
}

// Cancel and the end of every save, written or not: the pending edits go,
// and the editor starts over from the file as it is on disk.
void ImgImplMainFrame::dropEditsAndReload()
{
    reloadImage(originalFile);
    optionsMenu->setItemHide(OPT_ITEM_UNDO, true);
    optionsMenu->setItemHide(OPT_ITEM_CANCEL, true);
    setRightKeyText(QObject::tr("TXT_RID_SOFTKEY_BACK", "Back"));
    modified = false;
    clearCommands();
}

// One confirmed sub-editor is one step, however many commands it queued
// (every element placed in one add-elements session).
void ImgImplMainFrame::recordStep(size_t commandsBefore, size_t filesBefore)
{
    if (cmdList.size() > commandsBefore)
        editSteps.push_back({cmdList.size() - commandsBefore, overlayTmpFiles.size() - filesBefore});
}

// Takes back the last step. The main view shows only the turns and mirrors
// (the other edits go straight on to the save screen), so the preview is
// put back by the opposite turn of the small picture on the screen: nothing
// is decoded or replayed. From the save screen the screen goes, and so does
// the tmp copy, which holds every step replayed.
void ImgImplMainFrame::undoLastStep()
{
    if (editSteps.empty())
        return;
    if (serviceMgr->hasEntry(SERVICE_SAVE)) {
        closeService(CTL_EVENT_SAVE);
        enableUserInput();
    }
    imageStore->deleteTmpSource();
    const EditStep step = editSteps.back();
    editSteps.pop_back();
    for (size_t i = 0; i < step.commands && !cmdList.empty(); ++i) {
        MMCommand *command = cmdList.back();
        cmdList.pop_back();
        showUndone(command);
        delete command;
    }
    for (size_t i = 0; i < step.files && !overlayTmpFiles.empty(); ++i) {
        QFile::remove(overlayTmpFiles.back());
        overlayTmpFiles.pop_back();
    }
    if (!cmdList.empty())
        return;
    // Nothing left: as if nothing had been edited, so Back closes at once.
    modified = false;
    optionsMenu->setItemHide(OPT_ITEM_UNDO, true);
    optionsMenu->setItemHide(OPT_ITEM_CANCEL, true);
    setRightKeyText(QObject::tr("TXT_RID_SOFTKEY_BACK", "Back"));
}

void ImgImplMainFrame::showUndone(const MMCommand *command)
{
    if (command->type() == MMCommand::CMD_MIRROR) {
        if (static_cast<const MMMirrorCommand *>(command)->getMirrorType())
            viewer->mirrorH();
        else
            viewer->mirrorV();
    } else if (command->type() == MMCommand::CMD_ROTATE) {
        const int quarters = static_cast<const MMRotateCommand *>(command)->getDegree() / 90;
        const int back = ((-quarters) % 4 + 4) % 4; // right quarter turns that take it back
        if (back == 3)
            viewer->rotate90L();
        for (int i = 0; i < back && back != 3; ++i)
            viewer->rotate90R();
    }
}
