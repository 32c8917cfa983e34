#include "ImgImplMainFrame.h"

#include "ImgEditorErrEvent.h"
#include "ImgImplMenuEvent.h"
#include "ImgImplServiceMgr.h"
#include "ImgSvcCtlEvent.h"
#include "ImgSvcSaveMgr.h"
#include "ZSoftKey.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTimer>

// Event dispatch, the menu slots, the key handler and input gating. A toolkit
// callback never does the work itself: it posts an event to the frame and
// returns, and customEvent runs the work from the event loop.

namespace {
constexpr int USER_INPUT_BLOCK_MS = 2000;
constexpr int MIN_USER_INPUT_BLOCK_MS = 200;

// The keypad's Clear key; a desktop keyboard has Backspace there.
bool isUndoKey(int key)
{
    return key == Qt::Key_Clear || key == Qt::Key_Backspace;
}
} // namespace

void ImgImplMainFrame::postToSelf(QEvent *event)
{
    QApplication::postEvent(this, event);
}

void ImgImplMainFrame::customEvent(QEvent *event)
{
    if (!event)
        return;
    const int type = event->type();
    if (type == IMG_OPTION_EVENT_TYPE) {
        if (auto *menuEvent = dynamic_cast<ImgImplMenuEvent *>(event))
            handleMenuEvent(menuEvent);
    } else if (type == IMG_ERR_EVENT_TYPE) {
        if (auto *errEvent = dynamic_cast<ImgEditorErrEvent *>(event))
            processErrEvent(errEvent);
    } else if (auto *ctlEvent = dynamic_cast<ImgSvcCtlEvent *>(event)) {
        // Whatever its type: an unknown sender still carries a result.
        handleCtlEvent(ctlEvent);
    }
}

void ImgImplMainFrame::slotRotate90Left() { postToSelf(new ImgImplMenuEvent(EVT_ROTATE_LEFT)); }
void ImgImplMainFrame::slotRotate90Right() { postToSelf(new ImgImplMenuEvent(EVT_ROTATE_RIGHT)); }
void ImgImplMainFrame::slotMirrorVer() { postToSelf(new ImgImplMenuEvent(EVT_MIRROR_VER)); }
void ImgImplMainFrame::slotMirrorHor() { postToSelf(new ImgImplMenuEvent(EVT_MIRROR_HOR)); }

void ImgImplMainFrame::slotCrop()
{
    disableUserInput(USER_INPUT_BLOCK_MS);
    postToSelf(new ImgImplMenuEvent(EVT_CROP));
}

void ImgImplMainFrame::slotResize()
{
    disableUserInput(USER_INPUT_BLOCK_MS);
    postToSelf(new ImgImplMenuEvent(EVT_RESIZE));
}

void ImgImplMainFrame::slotAddElement()
{
    disableUserInput(USER_INPUT_BLOCK_MS);
    postToSelf(new ImgImplMenuEvent(EVT_ADD_ELEMENT));
}

void ImgImplMainFrame::slotStyle()
{
    disableUserInput(USER_INPUT_BLOCK_MS);
    postToSelf(new ImgImplMenuEvent(EVT_STYLE));
}

void ImgImplMainFrame::slotCancel() { postToSelf(new ImgImplMenuEvent(EVT_CANCEL)); }
void ImgImplMainFrame::slotUndo() { postToSelf(new ImgImplMenuEvent(EVT_UNDO)); }

void ImgImplMainFrame::slotRightBtnClicked()
{
    if (!modified) {
        close(false);
        emit sigMeClosed();
        return;
    }
    disableUserInput(USER_INPUT_BLOCK_MS);
    replayedTmpSource(0);
    postToSelf(new ImgSvcCtlEvent(CTL_EVENT_APPLY, EVT_SVC_DONE));
}

void ImgImplMainFrame::keyPressEvent(QKeyEvent *event)
{
    // Up and Down rotate at once, whatever the mode and even while the soft
    // keys are blocked; the toolkit still sees every key.
    if (event->key() == Qt::Key_Up)
        rotate90Right();
    else if (event->key() == Qt::Key_Down)
        rotate90Left();
    else if (isUndoKey(event->key()) && !event->isAutoRepeat())
        slotUndo();
    ZKbMainWidget::keyPressEvent(event);
}

// The save screen is where a confirmed sub-editor's edit waits to be
// written: Clear there takes it back as in the main view. Not while a name
// is typed (Clear edits the name), a question is open or the screen has
// already reported.
void ImgImplMainFrame::watchSaveScreenKeys()
{
    serviceMgr->getSaveMgr()->installEventFilter(this);
}

bool ImgImplMainFrame::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && isUndoKey(static_cast<QKeyEvent *>(event)->key())
        && serviceMgr->hasEntry(SERVICE_SAVE) && watched == serviceMgr->getSaveMgr()) {
        const ImgSvcSaveMgr *save = serviceMgr->getSaveMgr();
        if (save->isNameEntryShown() || save->question() || save->waitDialog() || save->hasReported())
            return false;
        if (!static_cast<QKeyEvent *>(event)->isAutoRepeat())
            slotUndo();
        return true;
    }
    return ZKbMainWidget::eventFilter(watched, event);
}

void ImgImplMainFrame::slotEnableUserInput()
{
    enableUserInput();
}

void ImgImplMainFrame::initUserInputEnableTimer()
{
    destroyUserInputEnableTimer();
    inputEnableTimer = new QTimer(nullptr);
    connect(inputEnableTimer, "2timeout()", this, "1slotEnableUserInput()");
}

void ImgImplMainFrame::destroyUserInputEnableTimer()
{
    if (!inputEnableTimer)
        return;
    inputEnableTimer->stop();
    delete inputEnableTimer;
    inputEnableTimer = nullptr;
}

void ImgImplMainFrame::enableUserInput()
{
    if (inputEnableTimer && inputEnableTimer->isActive())
        inputEnableTimer->stop();
    if (!softKey->isButtonEnabled(ZSoftKey::LEFT))
        softKey->setButtonEnable(ZSoftKey::LEFT, true);
    if (!softKey->isButtonEnabled(ZSoftKey::RIGHT))
        softKey->setButtonEnable(ZSoftKey::RIGHT, true);
}

void ImgImplMainFrame::disableUserInput(int ms)
{
    if (softKey->isButtonEnabled(ZSoftKey::LEFT))
        softKey->setButtonEnable(ZSoftKey::LEFT, false);
    if (softKey->isButtonEnabled(ZSoftKey::RIGHT))
        softKey->setButtonEnable(ZSoftKey::RIGHT, false);
    if (!inputEnableTimer)
        initUserInputEnableTimer();
    if (inputEnableTimer->isActive())
        inputEnableTimer->stop();
    if (ms < 0)
        return;
    inputEnableTimer->setSingleShot(true);
    inputEnableTimer->start(qMax(ms, MIN_USER_INPUT_BLOCK_MS));
}
