#include "ImgSvcCropMgr.h"
#include "ImgSvcCropCtl.h"
#include "ImgSvcCropView.h"
#include "ImgSvcFitMapper.h"
#include "ImgSvcKeys.h"
#include "ImgSvcLayout.h"
#include "ImgSvcLayoutWidget.h"
#include "ZGlobal.h"
#include "ZSoftKey.h"
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <cmath>

ImgSvcCropMgr::ImgSvcCropMgr(QWidget *canvas, QWidget *parent, const char *name, unsigned int flags)
    : ZKbMainWidget(parent, name, flags), m_ctl(new ImgSvcCropCtl(this))
{
    Q_UNUSED(canvas) // the screen draws its own picture
    setMainWidgetTitle(tr("Crop"));

    // Built inside the screen so that the screen's font applies from the start.
    auto *content = new ImgSvcLayoutWidget(this);
    auto *page = new QWidget(content);
    m_view = new ImgSvcCropView(m_ctl, page);
    m_status = new QLabel(page);
    m_status->setAlignment(Qt::AlignCenter);
    const qint16 *l = ImgSvcLayout::layout;
    m_status->setContentsMargins(l[0], l[2], l[1], l[3]);
    auto *box = new QVBoxLayout(page);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    box->addWidget(m_view, 1);
    box->addWidget(m_status);

    content->setService(page);
    setContentWidget(content);

    ZSoftKey *keys = getSoftKey();
    keys->setText(ZSoftKey::LEFT, tr("Crop"));
    keys->setClickedSlot(ZSoftKey::LEFT, this, SLOT(slotConfirm()));
    keys->setText(ZSoftKey::RIGHT, tr("Back"));
    keys->setClickedSlot(ZSoftKey::RIGHT, this, SLOT(slotBack()));

    connect(m_ctl, &ImgSvcCropCtl::rectChanged, this, &ImgSvcCropMgr::updateStatus);
    updateStatus();
}

ImgSvcCropMgr::~ImgSvcCropMgr() = default;

void ImgSvcCropMgr::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (ImgSvcKeys::isSoftKey(key)) {
        ZKbMainWidget::keyPressEvent(event);
        return;
    }
    const QPoint dir = ImgSvcKeys::direction(key);
    if (!dir.isNull() && !m_reported) {
        m_repeat = event->isAutoRepeat() ? m_repeat + 1 : 0;
        const int pixel = screenPixel();
        const int step = ImgSvcKeys::repeatStep(qMax(m_ctl->smallStep(), pixel), qMax(m_ctl->largeStep(), 8 * pixel), m_repeat);
        m_ctl->moveActiveCorner(dir.x() * step, dir.y() * step);
        return;
    }
    if (ImgSvcKeys::isSelect(key) && !m_reported) {
        if (!event->isAutoRepeat())
            m_ctl->switchCorner();
        return;
    }
    event->ignore();
}

void ImgSvcCropMgr::keyReleaseEvent(QKeyEvent *event)
{
    // An auto-repeating key sends releases too; only the real one ends the run.
    if (!ImgSvcKeys::direction(event->key()).isNull()) {
        if (!event->isAutoRepeat())
            m_repeat = 0;
        return;
    }
    event->ignore();
}

void ImgSvcCropMgr::showEvent(QShowEvent *event)
{
    ZKbMainWidget::showEvent(event);
    setFocus();
}

void ImgSvcCropMgr::slotConfirm()
{
    if (m_reported)
        return;
    m_reported = true;
    m_ctl->postResult(0);
    settle();
}

void ImgSvcCropMgr::slotBack()
{
    if (m_reported)
        return;
    m_reported = true;
    m_ctl->postResult(1);
    settle();
}

int ImgSvcCropMgr::screenPixel() const
{
    // Measured against the home area rather than the view, which has its
    // final size only once the screen is shown.
    const ImgSvcFitMapper map(m_view->imageSize(), ZGlobal::getHomeR(false));
    return map.isValid() && map.scale() < 1 ? int(std::ceil(1 / map.scale())) : 1;
}

void ImgSvcCropMgr::settle()
{
    // Reported: the screen waits to be closed and offers nothing more.
    getSoftKey()->setButtonEnable(ZSoftKey::LEFT, false);
    getSoftKey()->setButtonEnable(ZSoftKey::RIGHT, false);
}

void ImgSvcCropMgr::updateStatus()
{
    const QRect r = m_ctl->getCropRect();
    m_status->setText(tr("%1 x %2   Select: other corner").arg(r.width()).arg(r.height()));
}
