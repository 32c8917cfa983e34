#include "ImgSvcSaveMgr.h"
#include "MMImageSource.h"
#include <QDir>
#include <QCoreApplication>
#include "ImgSvcKeys.h"
#include "ImgSvcLayout.h"
#include "ImgSvcPictureView.h"
#include "ImgSvcSaveCtl.h"
#include "ImgSvcSaveNamePage.h"
#include "ImgSvcWaitDlg.h"
#include "ZGlobal.h"
#include "ZPopup.h"
#include "ZSoftKey.h"
#include "ZTheme.h"
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
    // Dropping the edits is offered, but never on a soft key next to Save.
    auto *discard = new QLabel(tr("TXT_RID_SAVE_SELECT_DISCARDS", "Select: discard the edits"), preview);
    // A long name is elided rather than widening the screen.
    for (QLabel *line : {m_nameLabel, m_sizeLabel, discard})
        line->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    layOutPicture(preview, m_view, {m_nameLabel, m_sizeLabel, discard});

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
    updateInfo();
}

void ImgSvcSaveMgr::setEditedFile(const QString &file)
{
    m_editedFile = file;
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

ZPopup *ImgSvcSaveMgr::question() const
{
    return m_question.data();
}

QString ImgSvcSaveMgr::shownFileName() const
{
    return QFileInfo(m_originalFile.isEmpty() ? m_editedFile : m_originalFile).fileName();
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
    if (!ImgSvcKeys::isSelect(event->key()))
        return false;
    if (event->isAutoRepeat())
        return true;
    if (isNameEntryShown())
        acceptName();
    else
        offerDiscard();
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

void ImgSvcSaveMgr::leftSoftKey()
{
    if (isNameEntryShown()) {
        acceptName();
        return;
    }
    // The save runs synchronously once our report arrives: the dialog
    // must be on the screen first, or the user never sees it.
    showWait();
    report(m_ctl, 0);
}

void ImgSvcSaveMgr::rightSoftKey()
{
    // Back from the name entry is back to the choices, edits kept.
    showNameEntry(!isNameEntryShown());
}

void ImgSvcSaveMgr::showWait()
{
    delete m_wait.data();
    auto *wait = new ImgSvcWaitDlg(tr("TXT_RID_SAVE_SAVING", "Saving..."), this);
    m_wait = wait;
    wait->showNow();
}

void ImgSvcSaveMgr::ask(const QString &question, std::function<void()> onYes)
{
    // Not exec(): a nested event loop would hold up whoever sent the key
    // that brought the question.
    delete m_question.data();
    auto *popup = new ZPopup(this);
    m_question = popup;
    popup->setText(question);
    popup->setSoftKeyTexts(tr("TXT_RID_SOFTKEY_YES", "Yes"), tr("TXT_RID_SOFTKEY_NO", "No"));
    connect(popup, &QDialog::finished, this, [this, popup, onYes](int result) {
        popup->deleteLater();
        // The popup had the keypad; it comes back to the screen, or to the entry.
        activateWindow();
        if (isNameEntryShown())
            m_namePage->lineEdit()->setFocus();
        else
            setFocus();
        if (result == QDialog::Accepted)
            onYes();
    });
    popup->open();
}

QString ImgSvcSaveMgr::fitted(const QString &fileName)
{
    // A name is one word to the line breaker: too long, it would be cut at
    // the popup's edges rather than wrapped.
    const int width = ZGlobal::screenSize().width() * 7 / 10;
    return QFontMetrics(ZTheme::bodyFont()).elidedText(fileName, Qt::ElideMiddle, width);
}

void ImgSvcSaveMgr::offerDiscard()
{
    ask(tr("TXT_RID_SAVE_DISCARD_QUESTION", "Discard all edits? The picture stays as it was."), [this] {
        // No name: the edits are not written anywhere.
        m_saveAsName = QString();
        m_replaceConfirmed = false;
        report(m_ctl, 2);
    });
}

QString ImgSvcSaveMgr::namingReference() const
{
    if (!m_originalFile.isEmpty())
        return m_originalFile;
    if (!m_editedFile.isEmpty())
        return m_editedFile;
    // Told no file at all: a new file goes to the user's home folder, in the
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
        keys->setText(ZSoftKey::LEFT, tr("TXT_RID_SOFTKEY_OK", "OK"));
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
    // Nothing typed, a folder, or a name the picture can not be written
    // under: the page stays up with a note.
    const QString path = m_namePage->chosenPath(namingReference());
    if (path.isEmpty())
        return;
    auto save = [this, path](bool replace) {
        m_saveAsName = path;
        m_replaceConfirmed = replace;
        showWait();
        report(m_ctl, 1);
    };
    // No: back to the entry, the name kept for correcting.
    if (QFileInfo::exists(path) || QFileInfo(path).isSymLink())
        ask(tr("TXT_RID_SAVE_REPLACE_QUESTION", "Replace %1?").arg(fitted(QFileInfo(path).fileName())),
            [save] { save(true); });
    else
        save(false);
}

void ImgSvcSaveMgr::updateInfo()
{
    // Labels get their width late, from the layout; the screen's is known now.
    const qint16 *l = ImgSvcLayout::layout;
    const int width = qMax(20, ZGlobal::screenSize().width() - l[69] - l[70] - l[0] - l[1]);
    const QString fileName = shownFileName();
    m_nameLabel->setText(m_nameLabel->fontMetrics().elidedText(fileName, Qt::ElideMiddle, width));
    m_nameLabel->setToolTip(fileName);
    const bool hasSize = m_newSize.width() > 0 && m_newSize.height() > 0;
    m_sizeLabel->setText(hasSize ? tr("New size: %1 x %2").arg(m_newSize.width()).arg(m_newSize.height()) : QString());
    m_sizeLabel->setVisible(hasSize);
}
