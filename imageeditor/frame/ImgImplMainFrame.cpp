#include "ImgImplMainFrame.h"

#include "ImgEditor5wayBtn.h"
#include "ImgImplImageStore.h"
#include "ImgImplMenuItems.h"
#include "ImgImplServiceMgr.h"
#include "ImgImplStatMachine.h"
#include "ImgSvcLayout.h"
#include "ImgSvcLayoutWidget.h"
#include "ImgSvcViewer.h"
#include "ImgSvcWaitDlg.h"
#include "MMCommand.h"
#include "MMImageSource.h"
#include "ZGlobal.h"
#include "ZNoticeDlg.h"
#include "ZOptionsMenu.h"
#include "ZSoftKey.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTimer>
#include <memory>

namespace {
// From about this size a photo takes longer to open than a user waits
// without a sign.
constexpr qint64 kWaitFromBytes = 1 << 20;
} // namespace

ImgImplMainFrame::ImgImplMainFrame(const QString &file, QWidget *parent, const char *name, unsigned int flags)
    : ZKbMainWidget(parent, name, flags),
      serviceMgr(nullptr),
      statMachine(nullptr),
      optionsMenu(nullptr),
      viewer(nullptr),
      softKey(nullptr),
      fiveWayBtn(nullptr),
      layoutWidget(nullptr),
      imageStore(nullptr),
      modified(false),
      lockFd(-1),
      inputEnableTimer(nullptr)
{
    originalFile = file;
    // Before anything else: no torn photo from a killed save survives a launch.
    ImgImplImageStore::recover(originalFile);

    // Copying and decoding a large photo takes seconds on a handset: the
    // wait dialog is on the screen before that starts and goes with this scope.
    std::unique_ptr<ImgSvcWaitDlg> wait;
    if (QFileInfo(file).size() >= kWaitFromBytes) {
        wait = std::make_unique<ImgSvcWaitDlg>(tr("TXT_RID_NOTICE_OPENING", "Opening..."));
        wait->showNow();
    }

    initUserInputEnableTimer();
    layoutWidget = new ImgSvcLayoutWidget(this, nullptr, 0);
    serviceMgr = new ImgImplServiceMgr(layoutWidget);
    imageStore = new ImgImplImageStore(originalFile);
    initOptionsMenu();
    initSoftKey();
    initLayout();
    init5wayBtn();
    setMainWidgetTitle(tr("TXT_RID_OPTION_EDIT", "Edit"));
    showPreview();

    statMachine = new ImgImplStatMachine();
    connect(this, "2sigChangeStat(ImgEditorState)", statMachine, "1slotChangeStat(ImgEditorState)");

    // A refused lock reports itself; an editor that holds the lock but has
    // nothing it can show says so too, rather than leaving a blank screen.
    if (lockEditFile() == 0 && (imageStore->isEmpty() || viewer->displayImage().isNull()))
        QTimer::singleShot(0, this, [this] { reportUnusableImage(); });
}

ImgImplMainFrame::~ImgImplMainFrame()
{
    destroyUserInputEnableTimer();
    unlockEditFile();

    delete statMachine;
    statMachine = nullptr;
    delete serviceMgr; // the viewer goes with it
    serviceMgr = nullptr;
    viewer = nullptr;
    delete imageStore;
    imageStore = nullptr;
    delete layoutWidget;
    layoutWidget = nullptr;
    delete fiveWayBtn;
    fiveWayBtn = nullptr;
    delete softKey;
    softKey = nullptr;
    delete optionsMenu;
    optionsMenu = nullptr;

    clearCommands();
}

void ImgImplMainFrame::initSoftKey()
{
    delete softKey;
    softKey = nullptr;
    softKey = getSoftKey(true);
    softKey->setText(ZSoftKey::LEFT, tr("TXT_RID_SOFTKEY_OPTIONS", "Options"), ZSoftKey::PRIORITY_NORMAL);
    softKey->setText(ZSoftKey::RIGHT, QObject::tr("TXT_RID_SOFTKEY_BACK", "Back"), ZSoftKey::PRIORITY_NORMAL);
    softKey->setClickedSlot(ZSoftKey::RIGHT, this, "1slotRightBtnClicked()");
    softKey->setOptMenu(ZSoftKey::LEFT, optionsMenu);
}

void ImgImplMainFrame::initLayout()
{
    const qint16 *table = ImgSvcLayout::layout;
    layoutWidget->setPadding(table[69], table[71], table[70], table[72]);
    viewer = static_cast<ImgSvcViewer *>(serviceMgr->getService(SERVICE_VIEWER));
    layoutWidget->setService(viewer);
    setContentWidget(layoutWidget);
}

void ImgImplMainFrame::init5wayBtn()
{
    delete fiveWayBtn;
    fiveWayBtn = nullptr;
    fiveWayBtn = new ImgEditor5wayBtn(this);

    const QRect cst = ZGlobal::getCstR();
    const QSize hint = fiveWayBtn->sizeHint();
    // Bottom minus top on both sides: the two off-by-ones cancel.
    const int frameHeight = rect().bottom() - rect().top();
    const int cstHeight = cst.bottom() - cst.top();
    const int y = (frameHeight - cstHeight) - ImgSvcLayout::layout[3] - hint.height();
    fiveWayBtn->setGeometry(ImgSvcLayout::layout[0], y, hint.width(), hint.height());
    fiveWayBtn->show();
}

void ImgImplMainFrame::showPreview()
{
    viewer->setInput(imageStore->hasPreview ? imageStore->getPreviewSource() : imageStore->getRealSource());
    viewer->createFitWindowImage();
    viewer->updateViewer();
}

void ImgImplMainFrame::reloadImage(const QString &file)
{
    imageStore->setImageFile(file);
    MMImageSource *real = imageStore->getRealSource();
    const QString realName = real ? QString::fromUtf8(real->getFileName().c_str()) : QString();
    showPreview();
    optionsMenu->setItemHide(OPT_ITEM_ADD_ELEMENTS, !ImgImplImageStore::isEditableImage(realName));
}

void ImgImplMainFrame::reportUnusableImage()
{
    const QString text = imageStore->isEmpty()
        ? tr("TXT_RID_NOTICE_NO_WORKING_STORAGE",
                    "The editor's working storage can not be used, so the picture can not be edited.")
        : tr("TXT_RID_NOTICE_CANNOT_OPEN_IMAGE", "The picture can not be opened for editing.");
    ZNoticeDlg::information(text, QString(), QString(), QString(), this, "1slotRightBtnClicked()");
}
