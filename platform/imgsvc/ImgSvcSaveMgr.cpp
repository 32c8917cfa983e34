#include "ImgSvcSaveMgr.h"
#include "ImgSvcKeys.h"
#include "ImgSvcLayout.h"
#include "ImgSvcLayoutWidget.h"
#include "ImgSvcPictureView.h"
#include "ImgSvcSaveCtl.h"
#include "ImgSvcSaveNamePage.h"
#include "ZGlobal.h"
#include "ZPopup.h"
#include "ZSoftKey.h"
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSizePolicy>
#include <QStackedWidget>
#include <QVBoxLayout>

ImgSvcSaveMgr::ImgSvcSaveMgr(QWidget *canvas, QWidget *parent, const char *name, unsigned int flags)
    : ZKbMainWidget(parent, name, flags), m_ctl(new ImgSvcSaveCtl(this))
{
    Q_UNUSED(canvas) // the screen draws its own picture

    // Built inside the screen so that the screen's font applies from the start.
    auto *content = new ImgSvcLayoutWidget(this);
    m_pages = new QStackedWidget(content);
    auto *preview = new QWidget(m_pages);
    m_view = new ImgSvcPictureView(preview);
    m_nameLabel = new QLabel(preview);
    m_sizeLabel = new QLabel(preview);
    const qint16 *l = ImgSvcLayout::layout;
    for (QLabel *label : {m_nameLabel, m_sizeLabel}) {
        label->setAlignment(Qt::AlignCenter);
        label->setContentsMargins(l[0], l[2], l[1], 0);
        // A long name is elided rather than widening the screen.
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }
    m_sizeLabel->setContentsMargins(l[0], 0, l[1], l[3]);
    auto *box = new QVBoxLayout(preview);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    box->addWidget(m_view, 1);
    box->addWidget(m_nameLabel);
    box->addWidget(m_sizeLabel);

    m_namePage = new ImgSvcSaveNamePage(m_pages);
    m_pages->addWidget(preview);
    m_pages->addWidget(m_namePage);

    content->setService(m_pages);
    setContentWidget(content);

    ZSoftKey *keys = getSoftKey();
    keys->setClickedSlot(ZSoftKey::LEFT, this, SLOT(slotSave()));
    keys->setClickedSlot(ZSoftKey::RIGHT, this, SLOT(slotSaveAs()));
    connect(m_ctl, &ImgSvcCtlInterface::inputChanged, this, &ImgSvcSaveMgr::reload);
    showNameEntry(false);
    updateInfo();
}

ImgSvcSaveMgr::~ImgSvcSaveMgr()
{
    // Nobody could remove the wait dialog once we are gone.
    delete m_wait.data();
}

void ImgSvcSaveMgr::setOriginalFileName(const QString &file, const QSize &size)
{
    m_originalFile = file;
    m_newSize = size;
    m_fileName = QFileInfo(file).fileName();
    updateInfo();
}

void ImgSvcSaveMgr::deleteWaitDlg()
{
    delete m_wait.data();
}

ZPopup *ImgSvcSaveMgr::waitDialog() const
{
    return m_wait.data();
}

bool ImgSvcSaveMgr::isNameEntryShown() const
{
    return m_pages->currentWidget() == m_namePage;
}

QImage ImgSvcSaveMgr::shownImage() const
{
    return m_view->picture();
}

QString ImgSvcSaveMgr::shownSizeText() const
{
    return m_sizeLabel->isHidden() ? QString() : m_sizeLabel->text();
}

void ImgSvcSaveMgr::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (ImgSvcKeys::isSoftKey(key))
        ZKbMainWidget::keyPressEvent(event);
    else if (ImgSvcKeys::isSelect(key) && isNameEntryShown())
        acceptName();
    else
        event->ignore();
}

void ImgSvcSaveMgr::showEvent(QShowEvent *event)
{
    ZKbMainWidget::showEvent(event);
    // The output may have been rewritten since the last look.
    reload();
    if (isNameEntryShown())
        m_namePage->lineEdit()->setFocus();
    else
        setFocus();
}

void ImgSvcSaveMgr::hideEvent(QHideEvent *event)
{
    ZKbMainWidget::hideEvent(event);
    if (m_autoDeleteWait)
        deleteWaitDlg();
}

bool ImgSvcSaveMgr::eventFilter(QObject *watched, QEvent *event)
{
    // The wait dialog (the only object watched) stands for work the caller
    // is doing; a key must not take it away early. qobject_cast, not a
    // comparison with m_wait, which would downcast a dialog being destroyed.
    if (qobject_cast<ZPopup *>(watched) && (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease || event->type() == QEvent::ShortcutOverride))
        return true;
    return ZKbMainWidget::eventFilter(watched, event);
}

void ImgSvcSaveMgr::slotSave()
{
    if (m_reported)
        return;
    if (isNameEntryShown()) {
        acceptName();
        return;
    }
    m_reported = true;
    m_wait = new ZPopup(this);
    m_wait->setText(tr("Saving..."));
    m_wait->setTimeout(0);
    m_wait->installEventFilter(this);
    // Nothing to acknowledge: the popup's own soft keys are of no use.
    if (auto *popupKeys = m_wait->findChild<ZSoftKey *>())
        popupKeys->hide();
    m_wait->show();
    m_ctl->postResult(0);
    settle();
}

void ImgSvcSaveMgr::slotSaveAs()
{
    if (m_reported)
        return;
    if (!isNameEntryShown()) {
        showNameEntry(true);
        return;
    }
    m_reported = true;
    m_saveAsName = QString();
    m_ctl->postResult(1);
    settle();
}

void ImgSvcSaveMgr::settle()
{
    // Reported: the screen waits to be closed and offers nothing more.
    getSoftKey()->setButtonEnable(ZSoftKey::LEFT, false);
    getSoftKey()->setButtonEnable(ZSoftKey::RIGHT, false);
    m_namePage->lineEdit()->setReadOnly(true);
}

void ImgSvcSaveMgr::reload()
{
    m_view->setPicture(ImgSvcPictureView::decodeForScreen(m_ctl->getOutput()));
}

void ImgSvcSaveMgr::showNameEntry(bool show)
{
    ZSoftKey *keys = getSoftKey();
    if (show) {
        m_namePage->offerNameFor(m_originalFile);
        m_pages->setCurrentWidget(m_namePage);
        setMainWidgetTitle(tr("Save as"));
        keys->setText(ZSoftKey::LEFT, tr("OK"));
        keys->setText(ZSoftKey::RIGHT, tr("Back"));
        m_namePage->lineEdit()->setFocus();
    } else {
        m_pages->setCurrentIndex(0);
        setMainWidgetTitle(tr("Save"));
        keys->setText(ZSoftKey::LEFT, tr("Save"));
        keys->setText(ZSoftKey::RIGHT, tr("Save as"));
    }
}

void ImgSvcSaveMgr::acceptName()
{
    if (m_reported)
        return;
    const QString path = ImgSvcSaveNamePage::resolve(m_namePage->enteredName(), m_originalFile);
    if (path.isEmpty())
        return; // nothing typed: stay in the entry
    m_reported = true;
    m_saveAsName = path;
    m_ctl->postResult(1);
    settle();
}

void ImgSvcSaveMgr::updateInfo()
{
    // Labels get their width late, from the layout; the screen's is known now.
    const qint16 *l = ImgSvcLayout::layout;
    const int width = qMax(20, ZGlobal::screenSize().width() - l[69] - l[70] - l[0] - l[1]);
    m_nameLabel->setText(m_nameLabel->fontMetrics().elidedText(m_fileName, Qt::ElideMiddle, width));
    m_nameLabel->setToolTip(m_fileName);
    const bool hasSize = m_newSize.width() > 0 && m_newSize.height() > 0;
    m_sizeLabel->setText(hasSize ? tr("New size: %1 x %2").arg(m_newSize.width()).arg(m_newSize.height()) : QString());
    m_sizeLabel->setVisible(hasSize);
}
