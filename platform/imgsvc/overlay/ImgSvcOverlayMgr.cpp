#include "ImgSvcOverlayMgr.h"
#include "ImgSvcElementFactory.h"
#include "ImgSvcKeys.h"
#include "ImgSvcOverlayCtl.h"
#include "ImgSvcOverlayView.h"
#include "MMOverlayImageCommand.h"
#include "ZSoftKey.h"
#include "MMMetadata.h"
#include <QFile>
#include <QKeyEvent>
#include <QLabel>

ImgSvcOverlayMgr::ImgSvcOverlayMgr(QWidget *parent, const char *name, unsigned int flags)
    : ImgSvcScreen(parent, name, flags), m_ctl(new ImgSvcOverlayCtl(this))
{
    setMainWidgetTitle(tr("Add Elements"));

    auto *page = new QWidget(pageParent());
    m_view = new ImgSvcOverlayView(page);
    m_status = new QLabel(page);
    layOutPicture(page, m_view, {m_status});
    setPage(page);

    connect(m_ctl, &ImgSvcCtlInterface::inputChanged, this, &ImgSvcOverlayMgr::inputChanged);
    setMoving(false);
}

ImgSvcOverlayMgr::~ImgSvcOverlayMgr()
{
    // After a confirm the files belong to whoever applies the commands.
    if (!m_confirmed) {
        for (const QString &f : m_tmpFiles)
            QFile::remove(f);
    }
}

void ImgSvcOverlayMgr::setOriginalFile(const QString &file)
{
    m_originalFile = file;
    // The date stamp tells when the photo was taken, when the camera said.
    m_stampDate = MMMetadata::captureDate(file);
    m_view->setStampDate(m_stampDate);
}

QRect ImgSvcOverlayMgr::currentRect() const
{
    const QSize s = ImgSvcElementFactory::elementSize(m_element, m_imageSize);
    if (s.isEmpty())
        return QRect();
    QRect r(QPoint(0, 0), s);
    r.moveCenter(m_centre);
    // Kept whole inside the picture.
    r.moveLeft(qBound(0, r.left(), m_imageSize.width() - s.width()));
    r.moveTop(qBound(0, r.top(), m_imageSize.height() - s.height()));
    return r;
}

bool ImgSvcOverlayMgr::keypadKey(QKeyEvent *event)
{
    if (m_imageSize.isEmpty())
        return false;
    const QPoint dir = ImgSvcKeys::direction(event->key());
    if (m_moving && !dir.isNull()) {
        move(dir, event);
    } else if (!m_moving && dir.y() == 0 && dir.x() != 0) {
        cycle(dir.x());
    } else if (ImgSvcKeys::isSelect(event->key()) && !event->isAutoRepeat()) {
        if (m_moving || !ImgSvcElementFactory::isMovable(m_element))
            place();
        else
            setMoving(true);
    } else {
        return false;
    }
    return true;
}

void ImgSvcOverlayMgr::leftSoftKey()
{
    if (m_moving) {
        place();
        return;
    }
    // Nothing placed is nothing to save: the same as leaving.
    if (m_ctl->getCommandList().empty()) {
        report(m_ctl, 1);
        return;
    }
    m_confirmed = true;
    m_ctl->releaseCommands();
    report(m_ctl, 0);
}

void ImgSvcOverlayMgr::rightSoftKey()
{
    if (m_moving)
        setMoving(false);
    else
        report(m_ctl, 1);
}

void ImgSvcOverlayMgr::inputChanged()
{
    m_imageSize = m_ctl->getInputSize();
    m_centre = QPoint(m_imageSize.width() / 2, m_imageSize.height() / 2);
    m_view->setPicture(ImgSvcPictureView::decodeForScreen(m_ctl->getInput()), m_imageSize);
    updateView();
}

void ImgSvcOverlayMgr::cycle(int delta)
{
    const int n = ImgSvcElementFactory::ElementCount;
    m_element = ((m_element + delta) % n + n) % n;
    updateView();
}

void ImgSvcOverlayMgr::move(const QPoint &dir, const QKeyEvent *event)
{
    // Steps in input pixels, scaled to the picture so that a move is
    // visible on the screen whatever the picture's size.
    const int shorter = qMin(m_imageSize.width(), m_imageSize.height());
    const int small = qMax(1, shorter / 60), large = qMax(small, shorter / 8);
    const int step = heldStep(event, small, large);
    // Start from where the element is shown, so that a move away from an
    // edge it was held against takes effect at once.
    m_centre = currentRect().center() + dir * step;
    updateView();
}

void ImgSvcOverlayMgr::place()
{
    const QRect r = currentRect();
    if (r.isEmpty())
        return;
    QString file = m_elementFiles.value(m_element);
    if (file.isEmpty()) {
        file = ImgSvcElementFactory::writeTempFile(m_element, r.size(), m_stampDate);
        if (file.isEmpty()) {
            m_status->setText(tr("Could not prepare the element."));
            return;
        }
        m_elementFiles.insert(m_element, file);
        m_tmpFiles.push_back(file);
    }
    MMImageSource element(MMImageSource::SOURCE_ELEMENT);
    element.setFile(file.toStdString());
    auto *command = new MMOverlayImageCommand;
    command->setData(MMRect(r.x(), r.y(), r.width(), r.height()), element);
    m_ctl->addCommand(command);
    m_view->addPlaced(m_element, r);
    setMoving(false);
}

void ImgSvcOverlayMgr::setMoving(bool moving)
{
    m_moving = moving;
    ZSoftKey *keys = getSoftKey();
    keys->setText(ZSoftKey::LEFT, moving ? tr("Place") : tr("Done"));
    keys->setText(ZSoftKey::RIGHT, moving ? tr("Cancel") : tr("Back"));
    updateView();
}

void ImgSvcOverlayMgr::updateView()
{
    m_view->setCurrent(m_imageSize.isEmpty() ? -1 : m_element, currentRect(), m_moving);
    const QString name = ImgSvcElementFactory::name(m_element);
    if (m_moving)
        m_status->setText(tr("Move: arrows   Place: Select"));
    else if (ImgSvcElementFactory::isMovable(m_element))
        m_status->setText(tr("< %1 >   Select: move").arg(name));
    else
        m_status->setText(tr("< %1 >   Select: add").arg(name));
}
