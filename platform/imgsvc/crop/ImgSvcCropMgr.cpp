#include "ImgSvcCropMgr.h"
#include "ImgSvcCropCtl.h"
#include "ImgSvcCropView.h"
#include "ImgSvcFitMapper.h"
#include "ImgSvcKeys.h"
#include "ImgSvcPreviewScale.h"
#include "MMImageSource.h"
#include "ZGlobal.h"
#include "ZSoftKey.h"
#include <QKeyEvent>
#include <QLabel>
#include <algorithm>
#include <cmath>

ImgSvcCropMgr::ImgSvcCropMgr(QWidget *canvas, QWidget *parent, const char *name, unsigned int flags)
    : ImgSvcScreen(parent, name, flags), m_ctl(new ImgSvcCropCtl(this))
{
    Q_UNUSED(canvas) // the screen draws its own picture
    setMainWidgetTitle(tr("Crop"));

    auto *page = new QWidget(pageParent());
    m_view = new ImgSvcCropView(m_ctl, page);
    m_status = new QLabel(page);
    m_hint = new QLabel(page);
    layOutPicture(page, m_view, {m_status, m_hint});
    setPage(page);

    getSoftKey()->setText(ZSoftKey::LEFT, tr("Crop"));
    getSoftKey()->setText(ZSoftKey::RIGHT, tr("Back"));
    connect(m_ctl, &ImgSvcCropCtl::rectChanged, this, &ImgSvcCropMgr::updateStatus);
    connect(m_ctl, &ImgSvcCtlInterface::inputChanged, this, [this] {
        const MMImageSource *input = m_ctl->getInput();
        m_scale = input ? ImgSvcPreviewScale::scaleFor(QString::fromStdString(input->getFileName()),
                                                      m_ctl->getInputSize())
                        : 1.0f;
        updateStatus();
    });
    updateStatus();
}

ImgSvcCropMgr::~ImgSvcCropMgr() = default;

bool ImgSvcCropMgr::keypadKey(QKeyEvent *event)
{
    const QPoint dir = ImgSvcKeys::direction(event->key());
    if (!dir.isNull()) {
        // A fresh press moves about 1 % of the picture, a held key up to
        // a tenth: a few presses reach anywhere, and every press shows.
        const QSize size = m_ctl->getInputSize();
        const int longer = qMax(size.width(), size.height());
        const int pixel = screenPixel();
        const int small = std::max({m_ctl->smallStep(), pixel, (longer + 99) / 100});
        const int step = heldStep(event, small, std::max({m_ctl->largeStep(), 8 * pixel, longer / 10, small}));
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

QSize ImgSvcCropMgr::shownSize() const
{
    // In the pixels of the picture that will be written, not of the preview.
    const QRect r = m_ctl->getCropRect();
    return QSize(ImgSvcPreviewScale::toSource(r.width(), m_scale), ImgSvcPreviewScale::toSource(r.height(), m_scale));
}

void ImgSvcCropMgr::updateStatus()
{
    const QSize size = shownSize();
    m_status->setText(tr("TXT_RID_CROP_SIZE", "%1 x %2   Select: next").arg(size.width()).arg(size.height()));
    switch (m_ctl->activeHandle()) {
    case ImgSvcCropCtl::SecondCorner:
        m_hint->setText(tr("TXT_RID_CROP_HINT_SECOND", "Arrows: lower right corner"));
        break;
    case ImgSvcCropCtl::FirstCorner:
        m_hint->setText(tr("TXT_RID_CROP_HINT_FIRST", "Arrows: upper left corner"));
        break;
    case ImgSvcCropCtl::Whole:
        m_hint->setText(tr("TXT_RID_CROP_HINT_MOVE", "Arrows: move the frame"));
        break;
    }
}
