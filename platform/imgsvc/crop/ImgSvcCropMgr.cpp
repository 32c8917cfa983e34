#include "ImgSvcCropMgr.h"
#include "ImgSvcCropCtl.h"
#include "ImgSvcCropView.h"
#include "ImgSvcFitMapper.h"
#include "ImgSvcKeys.h"
#include "ZGlobal.h"
#include "ZSoftKey.h"
#include <QKeyEvent>
#include <QLabel>
#include <cmath>

ImgSvcCropMgr::ImgSvcCropMgr(QWidget *canvas, QWidget *parent, const char *name, unsigned int flags)
    : ImgSvcScreen(parent, name, flags), m_ctl(new ImgSvcCropCtl(this))
{
    Q_UNUSED(canvas) // the screen draws its own picture
    setMainWidgetTitle(tr("Crop"));

    auto *page = new QWidget(pageParent());
    m_view = new ImgSvcCropView(m_ctl, page);
    m_status = new QLabel(page);
    layOutPicture(page, m_view, {m_status});
    setPage(page);

    getSoftKey()->setText(ZSoftKey::LEFT, tr("Crop"));
    getSoftKey()->setText(ZSoftKey::RIGHT, tr("Back"));
    connect(m_ctl, &ImgSvcCropCtl::rectChanged, this, &ImgSvcCropMgr::updateStatus);
    updateStatus();
}

ImgSvcCropMgr::~ImgSvcCropMgr() = default;

bool ImgSvcCropMgr::keypadKey(QKeyEvent *event)
{
    const QPoint dir = ImgSvcKeys::direction(event->key());
    if (!dir.isNull()) {
        const int pixel = screenPixel();
        const int step = heldStep(event, qMax(m_ctl->smallStep(), pixel), qMax(m_ctl->largeStep(), 8 * pixel));
        m_ctl->moveActiveCorner(dir.x() * step, dir.y() * step);
        return true;
    }
    if (!ImgSvcKeys::isSelect(event->key()))
        return false;
    if (!event->isAutoRepeat())
        m_ctl->switchCorner();
    return true;
}

void ImgSvcCropMgr::leftSoftKey()
{
    report(m_ctl, 0);
}

void ImgSvcCropMgr::rightSoftKey()
{
    report(m_ctl, 1);
}

int ImgSvcCropMgr::screenPixel() const
{
    // Measured against the home area rather than the view, which has its
    // final size only once the screen is shown.
    const ImgSvcFitMapper map(m_view->imageSize(), ZGlobal::getHomeR(false));
    return map.isValid() && map.scale() < 1 ? int(std::ceil(1 / map.scale())) : 1;
}

void ImgSvcCropMgr::updateStatus()
{
    const QRect r = m_ctl->getCropRect();
    m_status->setText(tr("%1 x %2   Select: other corner").arg(r.width()).arg(r.height()));
}
