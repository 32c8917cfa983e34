#include "ImgSvcSaveMgr.h"
#include "MMImageSource.h"
#include <QDir>
#include <QCoreApplication>
#include "ImgSvcKeys.h"
#include "ImgSvcLayout.h"
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

ImgSvcSaveMgr::ImgSvcSaveMgr(QWidget *canvas, QWidget *parent, const char *name, unsigned int flags)
    : ImgSvcScreen(parent, name, flags), m_ctl(new ImgSvcSaveCtl(this))
{
    Q_UNUSED(canvas) // the screen draws its own picture

    m_pages = new QStackedWidget(pageParent());
    auto *preview = new QWidget(m_pages);
    m_view = new ImgSvcPictureView(preview);
    m_nameLabel = new QLabel(preview);
    m_sizeLabel = new QLabel(preview);
    // A long name is elided rather than widening the screen.
    m_nameLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_sizeLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    layOutPicture(preview, m_view, {m_nameLabel, m_sizeLabel});

    m_namePage = new ImgSvcSaveNamePage(m_pages);
    m_pages->addWidget(preview);
    m_pages->addWidget(m_namePage);
    setPage(m_pages);

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

bool ImgSvcSaveMgr::keypadKey(QKeyEvent *event)
{
    if (!ImgSvcKeys::isSelect(event->key()) || !isNameEntryShown())
        return false;
    acceptName();
    return true;
}

void ImgSvcSaveMgr::settle()
{
    ImgSvcScreen::settle();
    m_namePage->lineEdit()->setReadOnly(true);
}

void ImgSvcSaveMgr::showEvent(QShowEvent *event)
{
    ImgSvcScreen::showEvent(event);
    // The output may have been rewritten since the last look.
    reload();
    if (isNameEntryShown())
        m_namePage->lineEdit()->setFocus();
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

void ImgSvcSaveMgr::leftSoftKey()
{
    if (isNameEntryShown()) {
        acceptName();
        return;
    }
    m_wait = new ZPopup(this);
    m_wait->setText(tr("Saving..."));
    m_wait->setTimeout(0);
    m_wait->installEventFilter(this);
    // Nothing to acknowledge: the popup's own soft keys are of no use.
    if (auto *popupKeys = m_wait->findChild<ZSoftKey *>())
        popupKeys->hide();
    m_wait->show();
    // The save runs synchronously once our report arrives: let the dialog
    // reach the screen first, or the user never sees it.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    report(m_ctl, 0);
}

void ImgSvcSaveMgr::rightSoftKey()
{
    if (isNameEntryShown()) {
        m_saveAsName = QString();
        report(m_ctl, 1);
    } else {
        showNameEntry(true);
    }
}

QString ImgSvcSaveMgr::namingReference() const
{
    if (!m_originalFile.isEmpty())
        return m_originalFile;
    // Told no file name: a new file goes to the user's home folder, in the
    // format of the picture being saved, rather than wherever the host runs.
    const MMImageSource *picture = m_ctl->getInput() ? m_ctl->getInput() : m_ctl->getOutput();
    QString suffix = picture ? QFileInfo(QString::fromUtf8(picture->getFileName().c_str())).suffix() : QString();
    if (suffix.isEmpty())
        suffix = QStringLiteral("jpg");
    return QDir(QDir::homePath()).filePath(QStringLiteral("picture.") + suffix);
}

void ImgSvcSaveMgr::reload()
{
    // The input is the working copy the edits so far were written into.
    MMImageSource *shown = m_ctl->getInput() ? m_ctl->getInput() : m_ctl->getOutput();
    m_view->setPicture(ImgSvcPictureView::decodeForScreen(shown));
}

void ImgSvcSaveMgr::showNameEntry(bool show)
{
    ZSoftKey *keys = getSoftKey();
    if (show) {
        m_namePage->offerNameFor(namingReference());
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
    // Nothing typed, or a folder: the page stays up.
    const QString path = m_namePage->chosenPath(namingReference());
    if (path.isEmpty())
        return;
    m_saveAsName = path;
    report(m_ctl, 1);
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
