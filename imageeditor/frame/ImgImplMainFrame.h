#pragma once
#include "ImgImplSaveResult.h"
#include "ImgEditorTypes.h"
#include "voimageeditor_export.h"
#include "ZKbMainWidget.h"

#include <QRect>
#include <QString>
#include <list>
#include <vector>

class ImgEditor5wayBtn;
class ImgEditorErrEvent;
class ImgImplImageStore;
class ImgImplMenuEvent;
class ImgImplServiceMgr;
class ImgImplStatMachine;
class ImgSvcCtlEvent;
class ImgSvcLayoutWidget;
class ImgSvcViewer;
class MMCommand;
class MMImageSource;
class QTimer;
class ZOptionsMenu;
class ZSoftKey;

// The editor's one window. It owns everything that belongs to the edit of
// one file and builds and tears it down in a fixed order. Every user choice
// and service report reaches it as a posted custom event.
class ImgImplMainFrame : public ZKbMainWidget
{
    Q_OBJECT
public:
    IMGIMPL_EXPORT ImgImplMainFrame(const QString &file, QWidget *parent, const char *name, unsigned int flags);
    IMGIMPL_EXPORT ~ImgImplMainFrame() override;

    // Read-only views for tests and diagnostics.
    ImgImplStatMachine *stateMachine() const { return statMachine; }
    ImgImplImageStore *store() const { return imageStore; }
    ImgImplServiceMgr *services() const { return serviceMgr; }
    ZOptionsMenu *menu() const { return optionsMenu; }
    ImgSvcViewer *imageViewer() const { return viewer; }
    ZSoftKey *softKeys() const { return softKey; }
    ImgEditor5wayBtn *rotationBar() const { return fiveWayBtn; }
    const std::list<MMCommand *> &pendingCommands() const { return cmdList; }
    bool isModified() const { return modified; }
    int lockDescriptor() const { return lockFd; }
    QTimer *inputTimer() const { return inputEnableTimer; }

signals:
    void sigChangeStat(ImgEditorState stat);
    void sigMeClosed();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void customEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void slotRotate90Left();
    void slotRotate90Right();
    void slotMirrorVer();
    void slotMirrorHor();
    void slotCrop();
    void slotResize();
    void slotAddElement();
    void slotStyle();
    void slotCancel();
    void slotUndo();
    void slotRightBtnClicked();
    void slotEnableUserInput();
    void initUserInputEnableTimer();
    void destroyUserInputEnableTimer();
    void enableUserInput();
    void disableUserInput(int ms);

private:
    // Construction steps (frame/).
    void initOptionsMenu();
    void initSoftKey();
    void initLayout();
    void init5wayBtn();
    void reloadImage(const QString &file);
    void showPreview();
    void reportUnusableImage();

    // Edit lock (frame/).
    int lockEditFile();
    int unlockEditFile();
    void processErrEvent(ImgEditorErrEvent *event);

    // Event dispatch (control/).
    void postToSelf(QEvent *event);
    void watchSaveScreenKeys();

    // Edit operations (operations/).
    void rotate90Left();
    void rotate90Right();
    void mirrorHorizontal();
    void mirrorVertical();
    void markEdited();
    void startCrop();
    void startResize();
    void startStyle();
    void startAddElement();
    void dropEditsAndReload();
    void undoLastStep();
    void showUndone(const MMCommand *command);
    void recordStep(size_t commandsBefore, size_t filesBefore);
    void handleMenuEvent(ImgImplMenuEvent *event);
    void handleCtlEvent(ImgSvcCtlEvent *event);
    void onServiceDone(ImgSvcCtlEvent *event);
    void onServiceBack(ImgSvcCtlEvent *event);
    void appendServiceCommand(ImgSvcCtlEvent *event);
    void appendCropCommand();
    void appendResizeCommand();
    void appendEffectCommand();
    void appendOverlayCommands();
    void closeService(int eventType);
    void clearCommands();
    MMImageSource *replayedTmpSource(int realSize);
    void setRightKeyText(const QString &text);
    QRect realCropRect() const;

    // Save flow (save/).
    void startSave(ImgSvcCtlEvent *event);
    void finishSave(int action, ImgSvcCtlEvent *event);
    void saveToOriginal();
    void saveAsNewFile();
    // The notice a failed save shows: storage full for no room only,
    // otherwise "could not be saved" with the reason.
    void showSaveFailure(ImgImplSaveResult result);
    void showMemoryFullNotice();
    // A picture whose format can not be written back: says so, and that
    // Save as keeps the edits in a format that can. True when it was shown.
    bool noticeUnwritableFormat();
    void showErrorNotice(const QString &text, int timeoutMs = 3000);

    ImgImplServiceMgr *serviceMgr;
    ImgImplStatMachine *statMachine;
    ZOptionsMenu *optionsMenu;
    QString originalFile;
    ImgSvcViewer *viewer;
    ZSoftKey *softKey;
    ImgEditor5wayBtn *fiveWayBtn;
    ImgSvcLayoutWidget *layoutWidget;
    ImgImplImageStore *imageStore;
    std::list<MMCommand *> cmdList;
    bool modified;
    int lockFd;
    std::vector<QString> overlayTmpFiles;
    QTimer *inputEnableTimer;
    // What Undo takes back: per step, oldest first, how many commands at
    // the end of cmdList and files at the end of overlayTmpFiles it added.
    struct EditStep
    {
        size_t commands;
        size_t files;
    };
    std::vector<EditStep> editSteps;
};
